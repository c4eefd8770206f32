// Text files in any character set, and the conversions between UTF-8 and UTF-16: any bytes. What can be
// converted comes back the same.
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>
#include <string_view>
#include <vector>

#include "core/charset.h"
#include "fuzz/scratch_folder.h"
#include "platform/text_conversion.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static const skl::fuzz::ScratchFolder folder;
    skl::fuzz::write("text", data, size);
    const skl::Charset charset = skl::gf_detectCharset("text");
    std::vector<std::string> lines;
    if (charset != skl::Charset::noneFound) skl::gf_readLines(charset, "text", lines);
    for (const std::string& line : lines)
        if (line.find('\n') != std::string::npos) std::abort();

    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    std::u16string units(size / 2, u'\0');
    if (!units.empty()) std::memcpy(units.data(), data, units.size() * 2);
    try {
        if (win32::utf16ToUtf8(win32::utf8ToUtf16(bytes)) != bytes) std::abort();
    } catch (const win32::Utf8ConversionException&) {
    }
    try {
        if (win32::utf8ToUtf16(win32::utf16ToUtf8(units)) != units) std::abort();
    } catch (const win32::Utf8ConversionException&) {
    }
    return 0;
}
