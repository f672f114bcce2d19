#pragma once
// Judges a finished reply as the JSON response serializer does: transport errors, status
// codes outside 200-299 and content types outside the acceptable set are errors; an empty
// body is a null object; anything else must parse as JSON. Main thread.

#include "HttpTask.h"

#include <QJsonValue>
#include <QSet>

#include <optional>

class QNetworkReply;

class JsonResponseSerializer
{
public:
    struct Result
    {
        QJsonValue responseObject;
        std::optional<HttpError> error;
    };

    explicit JsonResponseSerializer(QSet<QString> acceptableContentTypes);

    static QSet<QString> defaultAcceptableContentTypes();
    // "Text/HTML; charset=utf-8" -> "text/html".
    static QString mimeTypeOf(const QString &contentTypeHeader);

    Result responseObjectForReply(QNetworkReply *reply, const HttpTask &task) const;

private:
    QSet<QString> m_acceptableContentTypes;
};
