#pragma once
// The forum payload codec: JSON text <-> DES-CBC (PKCS#7) <-> Base64. Every request's
// arguments and every answer's payload pass through it. Stateless; any thread.

#include <QString>

#include <cstdint>
#include <optional>

class DesCryptUtil
{
public:
    DesCryptUtil() = delete;

    // The key and initialisation vector shared with the forum server. Every byte is below
    // 0x80: a byte at or above it would not survive the key's trip through UTF-8.
    static constexpr uint8_t kKey[8] = {0x3A, 0x5D, 0x19, 0x62, 0x0C, 0x47, 0x2B, 0x71};
    static constexpr uint8_t kIV[8] = {0x1E, 0x08, 0x4F, 0x27, 0x0D, 0x33, 0x6A, 0x15};

    static constexpr uint32_t kEncrypt = 0;
    static constexpr uint32_t kDecrypt = 1;

    // Base64 of the cipher bytes; absent when enciphering produced nothing.
    static std::optional<QString> DesEncode(const QString &text, const uint8_t *rgbKey,
                                            const uint8_t *rgbIV);
    // The deciphered text: empty when nothing deciphers (not strict Base64, wrong key,
    // bad padding), absent when the deciphered bytes are not UTF-8.
    static std::optional<QString> DesDecode(const QString &text, const uint8_t *rgbKey,
                                            const uint8_t *rgbIV);
    // The core both of the above call; `encryptOrDecrypt` is kEncrypt or kDecrypt.
    static std::optional<QString> encrypt(const QString &text, uint32_t encryptOrDecrypt,
                                          const uint8_t *rgbKey, const uint8_t *rgbIV);

    // 32 lowercase hex digits of the MD5 of the text's UTF-8 form up to its first NUL.
    static QString md5(const QString &text);
};
