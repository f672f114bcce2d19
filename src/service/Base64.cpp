#include "Base64.h"

#include "GTMBase64.h"
#include "Base64Alphabet.h"

#include <QStringDecoder>

namespace {

// Every character outside the alphabet maps to this and is skipped.
constexpr uint8_t kSkip = 99;
constexpr std::array<uint8_t, 128> kDecode = Base64Alphabet::decodeTable<128>(kSkip);

} // namespace

namespace Base64 {

std::optional<QByteArray> dataWithBase64EncodedString(const QString &string)
{
    // Lossy ASCII: anything beyond it becomes "?", which the table skips.
    QByteArray ascii = string.toLatin1();
    for (char &c : ascii) {
        if (static_cast<uint8_t>(c) > 0x7F)
            c = '?';
    }
    QByteArray out(ascii.size() / 4 * 3 + 3, Qt::Uninitialized);
    auto *o = reinterpret_cast<uint8_t *>(out.data());
    uint8_t group[4];
    int filled = 0;
    for (const char ch : ascii) {
        const uint8_t value = kDecode[static_cast<uint8_t>(ch) & 0x7F];
        if (value >= kSkip)
            continue;
        group[filled++] = value;
        if (filled == 4) {
            *o++ = uint8_t(group[0] << 2 | group[1] >> 4);
            *o++ = uint8_t(group[1] << 4 | group[2] >> 2);
            *o++ = uint8_t(group[2] << 6 | group[3]);
            filled = 0;
        }
    }
    // Two left-over values carry one more byte, three carry two; one alone carries none.
    if (filled >= 2)
        *o++ = uint8_t(group[0] << 2 | group[1] >> 4);
    if (filled == 3)
        *o++ = uint8_t(group[1] << 4 | group[2] >> 2);

    out.truncate(o - reinterpret_cast<uint8_t *>(out.data()));
    if (out.isEmpty())
        return std::nullopt;
    return out;
}

std::optional<QString> base64EncodedStringWithWrapWidth(const QByteArray &data, int wrapWidth)
{
    if (data.isEmpty())
        return std::nullopt;
    const QByteArray flat = GTMBase64::encodeData(data);
    const qsizetype lineLength = wrapWidth >= 4 ? wrapWidth / 4 * 4 : 0;
    if (lineLength == 0 || flat.size() <= lineLength)
        return QString::fromLatin1(flat);

    // Lines hold whole four-character groups, so a break never splits a group, and none
    // ends the text.
    QByteArray out;
    out.reserve(flat.size() + (flat.size() / lineLength) * 2);
    for (qsizetype at = 0; at < flat.size(); at += lineLength) {
        if (at > 0)
            out.append("\r\n", 2);
        out.append(flat.constData() + at, qMin(lineLength, flat.size() - at));
    }
    return QString::fromLatin1(out);
}

std::optional<QString> base64EncodedString(const QByteArray &data)
{
    return base64EncodedStringWithWrapWidth(data, 0);
}

std::optional<QString> stringWithBase64EncodedString(const QString &string)
{
    const std::optional<QByteArray> bytes = dataWithBase64EncodedString(string);
    if (!bytes)
        return std::nullopt;
    QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    QString text = decoder.decode(*bytes);
    if (decoder.hasError())
        return std::nullopt;
    return text;
}

std::optional<QString> base64EncodedStringWithWrapWidth(const QString &string, int wrapWidth)
{
    return base64EncodedStringWithWrapWidth(string.toUtf8(), wrapWidth);
}

std::optional<QString> base64EncodedString(const QString &string)
{
    return base64EncodedStringWithWrapWidth(string.toUtf8(), 0);
}

std::optional<QString> base64DecodedString(const QString &string)
{
    return stringWithBase64EncodedString(string);
}

std::optional<QByteArray> base64DecodedData(const QString &string)
{
    return dataWithBase64EncodedString(string);
}

} // namespace Base64
