// Reading a head.
#include "standin/site/request.h"

#include <algorithm>

#include "standin/common/text.h"

namespace site {

namespace {

std::string_view withoutOrigin(std::string_view target) {
    constexpr std::string_view kScheme = "http://";
    if (!standin::lowerCase(target.substr(0, kScheme.size())).starts_with(kScheme)) {
        return target;
    }
    const auto slash = target.find('/', kScheme.size());
    return slash == std::string_view::npos ? "/" : target.substr(slash);
}

struct Fields {
    bool host = false, body = false, close = false, keepAlive = false, wellFormed = true;
};

void read(std::string_view line, Fields& fields) {
    const auto colon = line.find(':');
    if (colon == 0 || colon == std::string_view::npos) {
        fields.wellFormed = false;
        return;
    }
    const auto name = standin::lowerCase(line.substr(0, colon));
    const auto value = standin::lowerCase(standin::trimmed(line.substr(colon + 1)));
    fields.host |= name == "host";
    fields.body |= name == "transfer-encoding" || (name == "content-length" && value != "0");
    if (name == "connection") {
        fields.close |= value.find("close") != std::string::npos;
        fields.keepAlive |= value.find("keep-alive") != std::string::npos;
    }
}

}  // namespace

std::optional<std::string> percentDecoded(std::string_view text) {
    std::string result;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '%') {
            result += text[i];
            continue;
        }
        const auto byte = i + 2 < text.size() ? standin::bytesOf(text.substr(i + 1, 2)) : std::nullopt;
        if (!byte || byte->front() == '\0') {
            return std::nullopt;
        }
        result += *byte;
        i += 2;
    }
    return result;
}

bool staysInside(std::string_view path) {
    const auto parts = standin::split(path, '/');
    return path.starts_with('/') && std::find(parts.begin(), parts.end(), "..") == parts.end() &&
           path.find('\0') == std::string_view::npos;
}

std::optional<Request> parseRequest(std::string_view head) {
    const auto lineEnd = std::min(head.find("\r\n"), head.size());
    const auto words = standin::split(head.substr(0, lineEnd), ' ');
    if (words.size() != 3 || words[0].empty() || (words[2] != "HTTP/1.1" && words[2] != "HTTP/1.0")) {
        return std::nullopt;
    }
    Fields fields;
    for (auto begin = lineEnd + 2; begin < head.size();) {
        const auto end = std::min(head.find("\r\n", begin), head.size());
        read(head.substr(begin, end - begin), fields);
        begin = end + 2;
    }
    const bool newer = words[2] == "HTTP/1.1";
    const auto target = withoutOrigin(words[1]);
    const auto path = percentDecoded(target.substr(0, target.find('?')));
    if (!fields.wellFormed || !path || (newer && !fields.host)) {
        return std::nullopt;
    }
    return Request{std::string(words[0]), *path, !fields.close && (newer || fields.keepAlive), fields.body};
}

}  // namespace site
