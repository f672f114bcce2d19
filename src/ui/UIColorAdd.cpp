#include "UIColorAdd.h"

namespace {

// Scans leading hexadecimal digits of a two-character pair; a pair that starts with no
// digit gives 0.
int scanHexPair(QStringView pair)
{
    int value = 0;
    for (const QChar c : pair) {
        const int digit = (c >= u'0' && c <= u'9') ? c.unicode() - '0'
                          : (c >= u'A' && c <= u'F') ? c.unicode() - 'A' + 10
                                                     : -1;
        if (digit < 0)
            break;
        value = value * 16 + digit;
    }
    return value;
}

} // namespace

namespace UIColorAdd {

QColor grayColor()
{
    return QColor::fromRgbF(0.5f, 0.5f, 0.5f, 1.0f);
}

QColor colorWithHexString(const QString &color, qreal alpha)
{
    QString digits = color.trimmed().toUpper();
    if (digits.size() < 6)
        return grayColor();
    if (digits.startsWith(QLatin1String("0X")))
        digits.remove(0, 2);
    if (digits.size() != 6)
        return grayColor();
    const QStringView view(digits);
    return QColor::fromRgbF(float(scanHexPair(view.mid(0, 2)) / 255.0),
                            float(scanHexPair(view.mid(2, 2)) / 255.0),
                            float(scanHexPair(view.mid(4, 2)) / 255.0), float(alpha));
}

QColor colorWithHexString(const QString &color)
{
    return colorWithHexString(color, 1.0);
}

} // namespace UIColorAdd
