// encipher SOURCE DESTINATION: makes an enciphered data file out of a plain one, with the key of the program.
// Exit status 0 done, 1 failed (the old destination stays), 2 wrong use.
#include <fmt/format.h>

#include <cstdio>
#include <exception>
#include <string_view>

#include "distribution/cipher_key.h"
#include "distribution/stream_cipher.h"

int main(int argc, char** argv) {
    constexpr std::string_view usage =
        "usage: encipher SOURCE DESTINATION\n"
        "Enciphers the plain file SOURCE, such as dbase.xml, to DESTINATION, such as input/dbase.enc.\n";
    if (argc == 2 && std::string_view(argv[1]) == "--help") {
        fmt::print("{}", usage);
        return 0;
    }
    if (argc != 3) {
        fmt::print(stderr, "{}", usage);
        return 2;
    }
    try {
        skl::gf_streamEncrypt(skl::cipherKey, argv[1], argv[2]);
        return 0;
    } catch (const std::exception& e) {
        fmt::print(stderr, "encipher: {}\n", e.what());
        return 1;
    }
}
