// The secret stream of the enciphered data files, both directions. A chunk is known by its fixed size alone,
// there are no length fields; memory use is one chunk of each kind, whatever the size of the file.
#include "distribution/stream_cipher.h"

#include <fmt/format.h>
#include <sodium.h>

#include <fstream>
#include <stdexcept>
#include <vector>

#include "core/log.h"
#include "core/text.h"
#include "distribution/cipher_key.h"

namespace skl {

namespace fs = std::filesystem;

namespace {

constexpr size_t headerSize = crypto_secretstream_xchacha20poly1305_HEADERBYTES;
constexpr size_t plainChunk = 4096;
constexpr size_t cipherChunk = plainChunk + crypto_secretstream_xchacha20poly1305_ABYTES;
static_assert(std::tuple_size_v<CipherKey> == crypto_secretstream_xchacha20poly1305_KEYBYTES);

using Bytes = std::vector<unsigned char>;

std::ifstream openInput(const fs::path& path) {
    std::ifstream in;
    // A folder opens like a file on some systems and then reads as an empty one.
    std::error_code ignored;
    if (!fs::is_directory(path, ignored)) in.open(path, std::ios::binary);
    if (!in.is_open()) throw std::runtime_error("Could not open input file: " + gf_pathText(path));
    return in;
}

std::ofstream openOutput(const fs::path& path) {
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    if (!out.is_open()) throw std::runtime_error("Could not open output file: " + gf_pathText(path));
    return out;
}

/// Reads up to the buffer's size and gives the count; throws when the medium fails, since that is no end of
/// file.
size_t readChunk(std::ifstream& in, Bytes& buffer, const fs::path& path) {
    in.read(reinterpret_cast<char*>(buffer.data()), static_cast<std::streamsize>(buffer.size()));
    if (in.bad()) throw std::runtime_error("Could not read input file: " + gf_pathText(path));
    return static_cast<size_t>(in.gcount());
}

void writeBytes(std::ofstream& out, const unsigned char* bytes, unsigned long long size,
                const fs::path& path) {
    out.write(reinterpret_cast<const char*>(bytes), static_cast<std::streamsize>(size));
    if (!out) throw std::runtime_error("Could not write output file: " + gf_pathText(path));
}

void closeOutput(std::ofstream& out, const fs::path& path) {
    out.close();
    if (!out) throw std::runtime_error("Could not write output file: " + gf_pathText(path));
}

void requireSodium() {
    if (sodium_init() < 0) throw std::runtime_error("libsodium could not be initialised");
}

void encryptTo(const CipherKey& key, const fs::path& source, const fs::path& destination) {
    auto in = openInput(source);
    auto out = openOutput(destination);

    crypto_secretstream_xchacha20poly1305_state state;
    unsigned char header[headerSize];
    crypto_secretstream_xchacha20poly1305_init_push(&state, header, key.data());
    writeBytes(out, header, headerSize, destination);

    Bytes plain(plainChunk), cipher(cipherChunk);
    bool last = false;
    while (!last) {
        const size_t n = readChunk(in, plain, source);
        // One look ahead: a text that ends with the chunk must not be followed by an empty one.
        last = n < plainChunk || in.peek() == std::ifstream::traits_type::eof();
        const unsigned char tag = last ? crypto_secretstream_xchacha20poly1305_TAG_FINAL : 0;
        unsigned long long size = 0;
        crypto_secretstream_xchacha20poly1305_push(&state, cipher.data(), &size, plain.data(), n, nullptr, 0,
                                                   tag);
        writeBytes(out, cipher.data(), size, destination);
    }
    closeOutput(out, destination);
}

}  // namespace

void lf_streamDecrypt(const CipherKey& key, const fs::path& source, const fs::path& destination) {
    requireSodium();
    auto in = openInput(source);
    auto out = openOutput(destination);

    Bytes header(headerSize);
    readChunk(in, header, source);
    crypto_secretstream_xchacha20poly1305_state state;
    if (crypto_secretstream_xchacha20poly1305_init_pull(&state, header.data(), key.data()) != 0)
        throw std::runtime_error("Invalid header or key");

    Bytes cipher(cipherChunk), plain(plainChunk);
    for (size_t n = readChunk(in, cipher, source); n != 0; n = readChunk(in, cipher, source)) {
        unsigned char tag = 0;
        unsigned long long size = 0;
        if (crypto_secretstream_xchacha20poly1305_pull(&state, plain.data(), &size, &tag, cipher.data(), n,
                                                       nullptr, 0) != 0)
            throw std::runtime_error("Decryption failed");
        writeBytes(out, plain.data(), size, destination);
        if (tag == crypto_secretstream_xchacha20poly1305_TAG_FINAL) break;
    }
    closeOutput(out, destination);
}

bool gf_streamDecrypt(const fs::path& source, const fs::path& destination) {
    try {
        lf_streamDecrypt(cipherKey, source, destination);
        return true;
    } catch (const std::exception& e) {
        gf_log(fmt::format("{} exception: {}", "gf_streamDecrypt", e.what()));
        gf_removeTemporary(destination);
        return false;
    }
}

void gf_streamEncrypt(const CipherKey& key, const fs::path& source, const fs::path& destination) {
    requireSodium();
    fs::path beside = destination;
    beside += ".part";
    try {
        encryptTo(key, source, beside);
        fs::rename(beside, destination);
    } catch (...) {
        std::error_code ignored;
        fs::remove(beside, ignored);
        throw;
    }
}

void gf_removeTemporary(const fs::path& path) {
    std::error_code error;
    fs::remove(path, error);
    if (error)
        gf_logError(
            fmt::format("Warning: could not remove {}, errorcode: {}", gf_pathText(path), error.message()));
}

}  // namespace skl
