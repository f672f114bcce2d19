#include "JsonChangDic.h"

#include "ForumLog.h"
#include "TextMeasure.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonParseError>

namespace {

constexpr qreal kListMargin = 20;
constexpr qreal kComposerMargin = 110;

} // namespace

namespace JsonChangDic {

QJsonValue dictionaryWithJsonString(const std::optional<QString> &jsonString)
{
    if (!jsonString)
        return QJsonValue(QJsonValue::Undefined);
    QJsonParseError error{};
    const QJsonDocument document = QJsonDocument::fromJson(jsonString->toUtf8(), &error);
    if (error.error != QJsonParseError::NoError) {
        forumLog(QStringLiteral("json解析失败：%1 (offset %2)").arg(error.errorString(), QString::number(error.offset)));
        return QJsonValue(QJsonValue::Undefined);
    }
    if (document.isArray())
        return document.array();
    return document.object();
}

QString jsonWithDictionary(const QJsonObject &dictionary)
{
    return QString::fromUtf8(QJsonDocument(dictionary).toJson(QJsonDocument::Indented));
}

qreal adaptiveWithText(const std::optional<QString> &text)
{
    return TextMeasure::bodyTextHeight(text, kListMargin);
}

qreal adaptHeight(const std::optional<QString> &text)
{
    return TextMeasure::bodyTextHeight(text, kComposerMargin);
}

} // namespace JsonChangDic
