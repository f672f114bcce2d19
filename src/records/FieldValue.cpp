#include "FieldValue.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLocale>

#include <cmath>
#include <limits>

namespace FieldValue {

QString describe(const QJsonValue &value)
{
    switch (value.type()) {
    case QJsonValue::Undefined:
        return QStringLiteral("(null)");
    case QJsonValue::Null:
        return QStringLiteral("<null>");
    case QJsonValue::Bool:
        return value.toBool() ? QStringLiteral("1") : QStringLiteral("0");
    case QJsonValue::Double: {
        const double number = value.toDouble();
        if (std::trunc(number) == number && std::abs(number) < 1e15)
            return QString::number(qint64(number));
        return QString::number(number, 'g', QLocale::FloatingPointShortest);
    }
    case QJsonValue::String:
        return value.toString();
    case QJsonValue::Array:
        return QString::fromUtf8(QJsonDocument(value.toArray()).toJson(QJsonDocument::Compact));
    case QJsonValue::Object:
        return QString::fromUtf8(QJsonDocument(value.toObject()).toJson(QJsonDocument::Compact));
    }
    return {};
}

QString displayText(const QJsonValue &value)
{
    return value.isUndefined() || value.isNull() ? QString() : describe(value);
}

std::optional<QString> optionalText(const QJsonValue &value)
{
    if (value.isUndefined() || value.isNull())
        return std::nullopt;
    return describe(value);
}

qint64 integerValue(const QString &text)
{
    qsizetype i = 0;
    while (i < text.size() && text.at(i).isSpace())
        ++i;
    bool negative = false;
    if (i < text.size() && (text.at(i) == u'-' || text.at(i) == u'+'))
        negative = text.at(i++) == u'-';
    qint64 magnitude = 0;
    for (; i < text.size() && text.at(i) >= u'0' && text.at(i) <= u'9'; ++i) {
        const int digit = text.at(i).unicode() - u'0';
        if (magnitude > (std::numeric_limits<qint64>::max() - digit) / 10)
            return negative ? std::numeric_limits<qint64>::min() : std::numeric_limits<qint64>::max();
        magnitude = magnitude * 10 + digit;
    }
    return negative ? -magnitude : magnitude;
}

qint64 integerValue(const QJsonValue &value)
{
    if (value.isDouble()) {
        const double number = value.toDouble();
        if (!std::isfinite(number))
            return 0;
        if (number >= 9.2e18)
            return std::numeric_limits<qint64>::max();
        if (number <= -9.2e18)
            return std::numeric_limits<qint64>::min();
        return qint64(number);
    }
    if (value.isString())
        return integerValue(value.toString());
    if (value.isBool())
        return value.toBool() ? 1 : 0;
    return 0;
}

} // namespace FieldValue
