#include "LFANUtil.h"

#include <QStringView>

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
