#pragma once
// What an endpoint handler gives back: the `RData` payload, or why the request is bad; a
// reading endpoint also names what its answer was made of (AnswerTags), for the cache.

#include <QJsonValue>
#include <QString>
#include <QStringList>

struct EndpointAnswer
{
    QJsonValue rdata;
    QString badRequest;  // non-empty: the request is answered 400 with this reason
    QStringList tags;    // empty: the answer is not cached

    static EndpointAnswer of(const QJsonValue &rdata, const QStringList &tags = {}) { return {rdata, QString(), tags}; }
    static EndpointAnswer rejected(const QString &reason) { return {QJsonValue(), reason, {}}; }
};
