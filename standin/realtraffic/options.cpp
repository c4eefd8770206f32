// Reading the command line: each option with its value and its bounds.
#include "standin/realtraffic/options.h"

#include <fmt/format.h>

#include <functional>
#include <map>

#include "standin/realtraffic/text.h"

namespace realtraffic {

namespace {

using Setter = std::function<bool(const std::string&)>;

Setter number(double& target, double low, double high) {
    return [&target, low, high](const std::string& text) {
        const auto value = numberOf(text);
        if (!value || *value < low || *value > high) {
            return false;
        }
        target = *value;
        return true;
    };
}

Setter whole(int& target, int low, int high) {
    return [&target, low, high](const std::string& text) {
        double value = 0;
        if (!number(value, low, high)(text) || value != static_cast<int>(value)) {
            return false;
        }
        target = static_cast<int>(value);
        return true;
    };
}

Setter text(std::string& target) {
    return [&target](const std::string& value) {
        target = value;
        return !value.empty();
    };
}

}  // namespace

std::string readOptions(const std::vector<std::string>& arguments, Options& options) {
    const std::map<std::string, Setter> setters{
        {"--feed", text(options.feed)},
        {"--host", text(options.host)},
        {"--tcp-port", whole(options.tcpPort, 1, 65535)},
        {"--traffic-port", whole(options.trafficPort, 1, 65535)},
        {"--weather-port", whole(options.weatherPort, 1, 65535)},
        {"--level", whole(options.level, 1, 2)},
        {"--qnh", number(options.qnh, -1e6, 1e6)},
        {"--speed", number(options.speed, 0.01, 1e6)},
        {"--wait", number(options.wait, 0, 1e6)},
        {"--linger", number(options.linger, 0, 1e6)},
        {"--script", text(options.script)},
    };
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const auto& name = arguments[i];
        if (name == "--help" || name == "-h") {
            options.help = true;
            return {};
        }
        const auto setter = setters.find(name);
        if (setter == setters.end()) {
            return fmt::format("unknown option {}, see --help", name);
        }
        if (++i == arguments.size()) {
            return fmt::format("{} needs a value, see --help", name);
        }
        if (!setter->second(arguments[i])) {
            return fmt::format("{} is no value for {}, see --help", arguments[i], name);
        }
    }
    return options.feed.empty() ? "--feed is missing, see --help" : "";
}

std::string helpText() {
    return R"(realtraffic: plays RealTraffic from a recording

  --feed FILE          the recording: one record a line, as in the datagrams
  --host ADDRESS       IPv4 address of the PC that shows the traffic (127.0.0.1)
  --tcp-port N         its port for the link (10747)
  --traffic-port N     its UDP port for the records (49005)
  --weather-port N     its UDP port for the pressure (49004)
  --level 1|2          level told to the version question (1)
  --qnh N              pressure told every 5 seconds, in any number (1013)
  --speed X            so many times faster, for load (1)
  --wait SECONDS       begin without a link after so long (60); 0 for a PC that wants none
  --linger SECONDS     go on for so long after the last record (60)
  --script FILE        lines "SECONDS COMMAND [ARGUMENTS]", seconds since the start:
                         drop-link           the link is closed; records go on
                         reconnect           and opened again
                         silent [SECONDS]    nothing is sent, on the link nor as datagrams; records of that
                                             time are lost
                         half-reply          the next version question gets half an answer
                         raw HEX             these bytes go out as a datagram among the records

The link is tried again each second until it stands, and after it was lost. The recording begins when the other
side has asked for the version. Its time stamps are moved by as many whole seconds as make it begin then; they
set the pace. A line without a readable stamp goes out with the line before it.

Prints "listening PORT" first (it listens nowhere: the port is that of the link, so that it starts as other
stand-ins do) and, at its end (SIGTERM, SIGINT, end of the recording), a report as one JSON object.
)";
}

}  // namespace realtraffic
