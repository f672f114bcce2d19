#include "DesCryptUtil.h"

#include "DesCbc.h"
#include "GTMBase64.h"

#include <QCryptographicHash>
#include <QStringDecoder>

namespace {

// Strict UTF-8: absent for any malformed sequence.
std::optional<QString> utf8Text(const QByteArray &bytes)
{
    QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    QString text = decoder.decode(bytes);
    if (decoder.hasError())
        return std::nullopt;
    return text;
}

// The key bytes as DES receives them: read as an 8-byte UTF-8 string and written back.
// Only valid UTF-8 of exactly 8 bytes survives that unchanged; anything else fails.
bool keyMaterialSurvivesUtf8(const uint8_t *bytes)
{
    const QByteArray raw(reinterpret_cast<const char *>(bytes), 8);
    const std::optional<QString> text = utf8Text(raw);
    return text && text->toUtf8() == raw;
}

} // namespace

std::optional<QString> DesCryptUtil::DesEncode(const QString &text, const uint8_t *rgbKey,
                                               const uint8_t *rgbIV)
{
    return encrypt(text, kEncrypt, rgbKey, rgbIV);
}

std::optional<QString> DesCryptUtil::DesDecode(const QString &text, const uint8_t *rgbKey,
                                               const uint8_t *rgbIV)
{
    return encrypt(text, kDecrypt, rgbKey, rgbIV);
}

std::optional<QString> DesCryptUtil::encrypt(const QString &text, uint32_t encryptOrDecrypt,
                                             const uint8_t *rgbKey, const uint8_t *rgbIV)
{
    const bool enciphering = encryptOrDecrypt == kEncrypt;
    const QByteArray input = enciphering ? text.toUtf8() : GTMBase64::decodeData(text.toUtf8());
    // Room for the input plus one padding block, rounded down to whole blocks.
    const qsizetype capacity = (input.size() + 8) & ~qsizetype(7);

    QByteArray produced;
    if (rgbKey && rgbIV && keyMaterialSurvivesUtf8(rgbKey) && keyMaterialSurvivesUtf8(rgbIV)) {
        const auto direction = enciphering ? DesCbc::Direction::Encrypt : DesCbc::Direction::Decrypt;
        produced = DesCbc::run(direction, rgbKey, rgbIV, input, capacity);
    }

    if (enciphering)
        return GTMBase64::stringByEncodingData(produced);
    return utf8Text(produced);
}

QString DesCryptUtil::md5(const QString &text)
{
    QByteArray bytes = text.toUtf8();
    if (const qsizetype nul = bytes.indexOf('\0'); nul >= 0)
        bytes.truncate(nul);
    return QString::fromLatin1(QCryptographicHash::hash(bytes, QCryptographicHash::Md5).toHex());
}
