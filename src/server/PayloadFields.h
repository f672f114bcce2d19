#pragma once
// Typed reading of a request payload's fields. The first missing or wrongly typed field
// is remembered, so a handler reads all it needs and then checks `ok()` once.
// Not shared between threads.

#include <QJsonObject>
#include <QString>

#include <optional>

class PayloadFields
{
public:
    explicit PayloadFields(QJsonObject payload);

    // A JSON number holding a whole number.
    qint64 integer(const char *key);
    // Like `integer`, but also a string holding a whole number (a record field passed back
    // as it arrived).
    qint64 integerOrNumericText(const char *key);
    // Absent or null is fine; anything present must be a whole number.
    std::optional<qint64> optionalInteger(const char *key);
    QString text(const char *key);
    // A string, or null or absent (a record field the client never had).
    std::optional<QString> optionalText(const char *key);
    void requireArray(const char *key);

    bool ok() const { return m_error.isEmpty(); }
    const QString &error() const { return m_error; }

private:
    std::optional<qint64> wholeNumber(const QJsonValue &value) const;
    void fail(const char *key, const char *expected);

    QJsonObject m_payload;
    QString m_error;
};
