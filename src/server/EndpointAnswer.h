#pragma once
// What an endpoint handler gives back: the `RData` payload, or why the request is bad.

#include <QJsonValue>
#include <QString>

struct EndpointAnswer
{
    QJsonValue rdata;
    QString badRequest;  // non-empty: the request is answered 400 with this reason

    static EndpointAnswer of(const QJsonValue &rdata) { return {rdata, QString()}; }
    static EndpointAnswer rejected(const QString &reason) { return {QJsonValue(), reason}; }
};
