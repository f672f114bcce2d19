#pragma once
// Single DES in CBC mode with PKCS#7 padding over OpenSSL 3's EVP interface. DES lives in
// OpenSSL's legacy provider, which is loaded once into a private library context so the
// process-wide context stays untouched. Thread-safe.

#include <QByteArray>

#include <cstdint>

namespace DesCbc {

enum class Direction : uint32_t { Encrypt = 0, Decrypt = 1 };

// Runs the cipher over `input` into a zeroed buffer of `capacity` bytes and returns the
// bytes produced; empty when the cipher fails (bad padding, partial block, no provider).
QByteArray run(Direction direction, const uint8_t key[8], const uint8_t iv[8],
               const QByteArray &input, qsizetype capacity);

} // namespace DesCbc
