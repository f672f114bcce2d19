#pragma once
// Tolerant Base64 helpers for byte buffers and strings, independent of the payload codec:
// decoding skips every character outside the alphabet (line breaks, padding, stray
// characters), and encoding can wrap lines. Stateless; any thread.

#include <QByteArray>
#include <QString>

#include <optional>

namespace Base64 {

// Decoded bytes, or absent when nothing decoded.
std::optional<QByteArray> dataWithBase64EncodedString(const QString &string);
// Encoded text with "\r\n" after every full line of `wrapWidth` characters (rounded down to
// a multiple of 4; below 4 means no breaks). Absent for empty input.
std::optional<QString> base64EncodedStringWithWrapWidth(const QByteArray &data, int wrapWidth);
std::optional<QString> base64EncodedString(const QByteArray &data);

// The same for strings, over their UTF-8 bytes.
std::optional<QString> stringWithBase64EncodedString(const QString &string);
std::optional<QString> base64EncodedStringWithWrapWidth(const QString &string, int wrapWidth);
std::optional<QString> base64EncodedString(const QString &string);
std::optional<QString> base64DecodedString(const QString &string);
std::optional<QByteArray> base64DecodedData(const QString &string);

} // namespace Base64
