// Enciphered data files: libsodium's secret stream (XChaCha20-Poly1305), a 24-byte header, then chunks of
// 4096 bytes of plain text, the last with the tag FINAL.
#pragma once

#include <array>
#include <filesystem>

namespace skl {

using CipherKey = std::array<unsigned char, 32>;

/// Deciphers `source` to `destination`. Never throws: a failure is logged, gives false and leaves no
/// destination.
bool gf_streamDecrypt(const std::filesystem::path& source, const std::filesystem::path& destination);
/// The same with a key of the caller's; throws std::runtime_error.
void lf_streamDecrypt(const CipherKey& key, const std::filesystem::path& source,
                      const std::filesystem::path& destination);
/// The other direction, for the tool that makes the files; throws std::runtime_error.
void gf_streamEncrypt(const CipherKey& key, const std::filesystem::path& source,
                      const std::filesystem::path& destination);
/// Deletes a plain file after use; a failure is a log line.
void gf_removeTemporary(const std::filesystem::path& path);

}  // namespace skl
