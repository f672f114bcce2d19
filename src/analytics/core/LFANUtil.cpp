#include "LFANUtil.h"

#include <QRegularExpression>
#include <QStringView>

#include <algorithm>
#include <cmath>

namespace {
int utf8Bytes(char32_t codePoint)
{
    if (codePoint < 0x80)
        return 1;
    if (codePoint < 0x800)
        return 2;
    if (codePoint < 0x10000)
        return 3;
    return 4;
}
} // namespace

QString LFANUtil::getString(const QString &text, int bytesLength)
{
    int bytes = 0;
    qsizetype end = 0;
    while (end < text.size()) {
        const QChar unit = text.at(end);
        const bool pair = unit.isHighSurrogate() && end + 1 < text.size()
                          && text.at(end + 1).isLowSurrogate();
        const char32_t codePoint = pair ? QChar::surrogateToUcs4(unit, text.at(end + 1)) : unit.unicode();
        const int size = utf8Bytes(codePoint);
        if (bytes + size > bytesLength)
            break;
        bytes += size;
        end += pair ? 2 : 1;
    }
    return end == text.size() ? text : text.left(end);
}

int LFANUtil::utf8Length(const QString &text)
{
    return int(QStringView(text).toUtf8().size());
}

bool LFANUtil::isBlank(const QString &text)
{
    return text.trimmed().isEmpty();
}

std::optional<double> LFANUtil::presentNumber(const QString &text)
{
    if (text.isNull())
        return std::nullopt;
    static const QRegularExpression leadingNumber(
        QStringLiteral("^\\s*[+-]?(\\d+\\.?\\d*|\\.\\d+)([eE][+-]?\\d+)?"));
    const QRegularExpressionMatch match = leadingNumber.match(text);
    const double number = match.hasMatch() ? match.captured().trimmed().toDouble() : 0;
    return std::isfinite(number) ? number : 0;
}

std::optional<double> LFANUtil::presentNumber(const QVariant &value)
{
    if (!value.isValid() || value.isNull())
        return std::nullopt;
    if (value.typeId() == QMetaType::QString || value.typeId() == QMetaType::QByteArray)
        return presentNumber(value.toString());
    const double number = value.toDouble();
    return std::isfinite(number) ? number : 0;
}

uint32_t LFANUtil::toUnsigned32(double number)
{
    // Clamped first: a double beyond 64 bits has no integer value to wrap.
    constexpr double limit = 9.0e18;
    return uint32_t(int64_t(std::clamp(number, -limit, limit)));
}
