#include "PayloadFields.h"

#include <cmath>

namespace {

// Whole numbers beyond this lose precision in a JSON double; treat them as wrongly typed.
constexpr double kLargestExactInteger = 9007199254740992.0;

} // namespace

PayloadFields::PayloadFields(QJsonObject payload)
    : m_payload(std::move(payload))
{
}

std::optional<qint64> PayloadFields::wholeNumber(const QJsonValue &value) const
{
    if (!value.isDouble())
        return std::nullopt;
    const double number = value.toDouble();
    if (!std::isfinite(number) || std::trunc(number) != number || std::fabs(number) > kLargestExactInteger)
        return std::nullopt;
    return static_cast<qint64>(number);
}

void PayloadFields::fail(const char *key, const char *expected)
{
    if (m_error.isEmpty())
        m_error = QStringLiteral("field %1 must be %2").arg(QLatin1String(key), QLatin1String(expected));
}

qint64 PayloadFields::integer(const char *key)
{
    if (const std::optional<qint64> number = wholeNumber(m_payload.value(QLatin1String(key))))
        return *number;
    fail(key, "a whole number");
    return 0;
}

qint64 PayloadFields::integerOrNumericText(const char *key)
{
    const QJsonValue value = m_payload.value(QLatin1String(key));
    if (const std::optional<qint64> number = wholeNumber(value))
        return *number;
    bool ok = false;
    const qint64 parsed = value.isString() ? value.toString().trimmed().toLongLong(&ok) : 0;
    if (ok)
        return parsed;
    fail(key, "a whole number");
    return 0;
}

std::optional<qint64> PayloadFields::optionalInteger(const char *key)
{
    const QJsonValue value = m_payload.value(QLatin1String(key));
    if (value.isUndefined() || value.isNull())
        return std::nullopt;
    if (const std::optional<qint64> number = wholeNumber(value))
        return number;
    fail(key, "a whole number or null");
    return std::nullopt;
}

QString PayloadFields::text(const char *key)
{
    const QJsonValue value = m_payload.value(QLatin1String(key));
    if (value.isString())
        return value.toString();
    fail(key, "a string");
    return QString();
}

std::optional<QString> PayloadFields::optionalText(const char *key)
{
    const QJsonValue value = m_payload.value(QLatin1String(key));
    if (value.isUndefined() || value.isNull())
        return std::nullopt;
    return text(key);
}

void PayloadFields::requireArray(const char *key)
{
    if (!m_payload.value(QLatin1String(key)).isArray())
        fail(key, "an array");
}
