// The reply to the version question: any text, cut at its end as the link does.
#include <cstdint>
#include <cstdlib>
#include <string>

#include "feed/rt_link.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    const size_t length = skl::lf_replyLength(text).value_or(0);
    if (length > size) std::abort();
    skl::lf_readVersion(text.substr(0, length));
    return 0;
}
