#pragma once
// How screens and requests read record fields: as text the way "%@" formats an object,
// and as the integer value a number or numeric text gives. Stateless; any thread.

#include <QJsonValue>
#include <QString>

#include <optional>

namespace FieldValue {

// "%@" of the value: numbers without a needless fraction ("12", "12.5"), strings as they
// are, "(null)" for absent, "<null>" for JSON null, compact JSON for arrays and objects.
QString describe(const QJsonValue &value);

// The text a label shows for the value: nothing for absent or null, else describe().
QString displayText(const QJsonValue &value);

// The value as a text that may be absent (absent or null), for measuring.
std::optional<QString> optionalText(const QJsonValue &value);

// The integer value: a number truncated toward zero; a string's leading decimal integer
// (after white space, with an optional sign), else 0; anything else 0.
qint64 integerValue(const QJsonValue &value);

// The integer value of text, by the same rule.
qint64 integerValue(const QString &text);

} // namespace FieldValue
