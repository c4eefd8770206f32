// Datagrams of the weather stream: any text.
#include <cstdint>
#include <string_view>

#include "feed/qnh_reader.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static skl::QnhReader reader;
    reader.processText({reinterpret_cast<const char*>(data), size});
    return 0;
}
