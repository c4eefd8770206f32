// Fetching over HTTP. Knows nothing of the program: who calls brings the patience.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

namespace skl::platform {

struct HttpRequest {
    std::string url;
    std::string userAgent;
    /// Takes the body piece by piece; false ends the transfer.
    std::function<bool(std::string_view piece)> body;
    /// Asked at least every 50 ms with the bytes that have come so far, head and body; false ends the
    /// transfer.
    std::function<bool(uint64_t received)> goOn;
};

struct HttpResult {
    bool whole = false;  ///< the answer was a success (status 2xx) and its body came whole
    int status = 0;      ///< of the answer; 0 if none came
    std::string error;  ///< why no whole answer came; empty where the status tells it, or the caller ended it
};

/// One GET on the calling thread.
HttpResult httpGet(const HttpRequest& request);

}  // namespace skl::platform
