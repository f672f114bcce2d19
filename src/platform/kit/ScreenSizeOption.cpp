#include "ScreenSizeOption.h"

namespace {
const QString kOption = QStringLiteral("--screen");
constexpr int kLargestSide = 10000;
} // namespace

QSize ScreenSizeOption::parse(const QString &text)
{
    const QStringList parts = text.trimmed().toLower().split(QLatin1Char('x'));
    if (parts.size() != 2)
        return {};
    bool widthOk = false;
    bool heightOk = false;
    const int width = parts[0].toInt(&widthOk);
    const int height = parts[1].toInt(&heightOk);
    if (!widthOk || !heightOk || width < 1 || height < 1 || width > kLargestSide || height > kLargestSide)
        return {};
    return QSize(width, height);
}

QSize ScreenSizeOption::fromArguments(const QStringList &arguments, QString *error)
{
    for (qsizetype i = 0; i < arguments.size(); ++i) {
        QString value;
        if (arguments[i] == kOption) {
            value = i + 1 < arguments.size() ? arguments[i + 1] : QString();
        } else if (arguments[i].startsWith(kOption + QLatin1Char('='))) {
            value = arguments[i].mid(kOption.size() + 1);
        } else {
            continue;
        }
        const QSize size = parse(value);
        if (size.isValid())
            return size;
        if (error)
            *error = QStringLiteral("--screen expects WIDTHxHEIGHT in points (such as 375x667), not \"%1\"").arg(value);
        return kDefaultSize;
    }
    return kDefaultSize;
}
