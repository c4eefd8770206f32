// The head of an HTTP request, as far as a server of files needs it.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace site {

struct Request {
    std::string method;
    std::string path;  // decoded, without the query
    bool keepAlive = true;
    bool hasBody = false;
};

// `head` ends before the blank line. Nothing when it is no request of HTTP/1.0 or 1.1.
std::optional<Request> parseRequest(std::string_view head);

// Undoes %XX; nothing for a broken one or a NUL.
std::optional<std::string> percentDecoded(std::string_view text);

// Whether the path begins with '/' and none of its parts leads out of the folder.
bool staysInside(std::string_view path);

}  // namespace site
