// Reading the command line. Each fault may be given several times.
#include "standin/site/options.h"

#include <fmt/format.h>

#include "standin/common/options.h"
#include "standin/common/text.h"

namespace site {

namespace {

// "PATH" or "PATH=NUMBER".
standin::Setter fault(Options& options, std::string_view name) {
    return [&options, name](const std::string& text) {
        const auto equals = text.rfind('=');
        std::vector<std::string> words{text.substr(0, equals)};
        if (equals != std::string::npos) {
            words.push_back(text.substr(equals + 1));
            if (standin::numberOf(words.back()).value_or(-1) < 0) {
                return false;
            }
        }
        options.faults.push_back(faultOf(name, words));
        return !words.front().empty();
    };
}

}  // namespace

std::string readOptions(const std::vector<std::string>& arguments, Options& options) {
    std::map<std::string, standin::Setter> setters{
        {"--root", standin::text(options.root)},
        {"--port", standin::whole(options.port, 0, 65535)},
        {"--script", standin::text(options.script)},
    };
    for (const auto& form : faultForms()) {
        setters.emplace(fmt::format("--{}", form.name), fault(options, form.name));
    }
    const auto complaint = standin::readOptions(arguments, setters, options.help);
    const bool missing = complaint.empty() && !options.help && options.root.empty();
    return missing ? "--root is missing, see --help" : complaint;
}

std::string helpText() {
    return R"(site: serves the files of a folder over HTTP/1.1 on 127.0.0.1, well or badly

  --root DIR           the folder; /a/b.xml is DIR/a/b.xml
  --port N             (8080); 0 takes any free one
  --missing PATH       answer 404 to all paths that begin so
  --cut PATH[=BYTES]   announce the whole length, send so many bytes of the body (half of it) and close
  --slow PATH[=RATE]   send so many bytes a second (1000)
  --hang PATH[=BYTES]  send the head and so many bytes of the body, then nothing more; without a number send
                       nothing at all
  --serve PATH         nothing of this: for a part of a path named before
  --script FILE        lines "SECONDS COMMAND PATH [NUMBER]", seconds since the start; the commands are those
                       above without their dashes, for requests that come from then on

The longest beginning that fits a path counts; a later word for the same one takes its place.

Prints "listening PORT" first and, at its end (SIGTERM, SIGINT), a report as one JSON object: requests by path,
each by the status answered, or "cut", "slow", "hung".
)";
}

}  // namespace site
