#pragma once
// The strict Base64 coder of the payload codec: standard alphabet, "=" padding required,
// no line breaks. Any character outside the alphabet fails the whole decoding.
// Stateless; any thread.

#include <QByteArray>
#include <QString>

#include <optional>

class GTMBase64
{
public:
    GTMBase64() = delete;

    // Base64 text of the bytes, or absent for empty input (nothing to encode).
    static std::optional<QString> stringByEncodingData(const QByteArray &data);

    // Encoded bytes (ASCII); empty for empty input.
    static QByteArray encodeData(const QByteArray &data);

    // Decoded bytes, or empty when the input is not strict Base64 (wrong length, a
    // character outside the alphabet, misplaced or missing padding).
    static QByteArray decodeData(const QByteArray &base64);
};
