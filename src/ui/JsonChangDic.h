#pragma once
// JSON text <-> objects, and the heights texts need at the app's body font.
// Main thread (the height helpers read the screen width and fonts).

#include <QJsonObject>
#include <QJsonValue>
#include <QString>

#include <optional>

namespace JsonChangDic {

// The parsed object or array; Undefined (absent) for absent input or text that does not
// parse, which is logged as "json解析失败：<error>".
QJsonValue dictionaryWithJsonString(const std::optional<QString> &jsonString);

// Pretty-printed JSON text of the object.
QString jsonWithDictionary(const QJsonObject &dictionary);

// Height in points of the text at the body font (system font 17) across the screen width
// less 20 points (lists and the topic header) or less 110 points (the reply composer).
// Absent text measures 0. Results are cached per text; the cache never changes a result.
qreal adaptiveWithText(const std::optional<QString> &text);
qreal adaptHeight(const std::optional<QString> &text);

} // namespace JsonChangDic
