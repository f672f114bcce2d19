#include "GTMBase64.h"

#include "Base64Alphabet.h"

namespace {

constexpr const char *kAlphabet = Base64Alphabet::kCharacters;
constexpr uint8_t kInvalid = 0xFF;
constexpr std::array<uint8_t, 256> kDecode = Base64Alphabet::decodeTable<256>(kInvalid);

} // namespace

QByteArray GTMBase64::encodeData(const QByteArray &data)
{
    const auto *in = reinterpret_cast<const uint8_t *>(data.constData());
    const qsizetype n = data.size();
    QByteArray out((n + 2) / 3 * 4, Qt::Uninitialized);
    char *o = out.data();
    qsizetype i = 0;
    for (; i + 3 <= n; i += 3) {
        const uint32_t v = (uint32_t(in[i]) << 16) | (uint32_t(in[i + 1]) << 8) | in[i + 2];
        *o++ = kAlphabet[(v >> 18) & 63];
        *o++ = kAlphabet[(v >> 12) & 63];
        *o++ = kAlphabet[(v >> 6) & 63];
        *o++ = kAlphabet[v & 63];
    }
    if (const qsizetype rest = n - i; rest > 0) {
        const uint32_t v = (uint32_t(in[i]) << 16) | (rest == 2 ? uint32_t(in[i + 1]) << 8 : 0);
        *o++ = kAlphabet[(v >> 18) & 63];
        *o++ = kAlphabet[(v >> 12) & 63];
        *o++ = rest == 2 ? kAlphabet[(v >> 6) & 63] : '=';
        *o++ = '=';
    }
    return out;
}

std::optional<QString> GTMBase64::stringByEncodingData(const QByteArray &data)
{
    if (data.isEmpty())
        return std::nullopt;
    return QString::fromLatin1(encodeData(data));
}

QByteArray GTMBase64::decodeData(const QByteArray &base64)
{
    const qsizetype n = base64.size();
    if (n == 0 || n % 4 != 0)
        return {};
    const auto *in = reinterpret_cast<const uint8_t *>(base64.constData());
    const int padding = (in[n - 1] == '=') + (in[n - 1] == '=' && in[n - 2] == '=');

    QByteArray out(n / 4 * 3 - padding, Qt::Uninitialized);
    auto *o = reinterpret_cast<uint8_t *>(out.data());
    for (qsizetype i = 0; i < n; i += 4) {
        const bool last = i + 4 == n;
        uint32_t v = 0;
        for (int k = 0; k < 4; ++k) {
            const uint8_t c = in[i + k];
            if (c == '=' && last && k >= 4 - padding) {
                v <<= 6;
                continue;
            }
            const uint8_t d = kDecode[c];
            if (d == kInvalid)
                return {};
            v = (v << 6) | d;
        }
        *o++ = uint8_t(v >> 16);
        if (!last || padding < 2)
            *o++ = uint8_t(v >> 8);
        if (!last || padding < 1)
            *o++ = uint8_t(v);
    }
    return out;
}
