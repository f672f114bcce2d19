#pragma once
// Test helpers that act on a running quorvel-server's push gateway as its clients do: a device
// report, and `quorvel-server push send` run as the operator would. Main thread.

#include "LocalForumServer.h"
#include "ProgramRun.h"

#include <QEventLoop>
#include <QJsonDocument>
#include <QJsonObject>
#include <QNetworkAccessManager>
#include <QNetworkReply>

namespace gatewayclient {

inline QString pushRoot(const LocalForumServer &server)
{
    return server.origin() + QStringLiteral("/push");
}

// POSTs `body` to the gateway call `path`; the answer's status and JSON object.
inline std::pair<int, QJsonObject> post(const LocalForumServer &server, const QString &path, const QJsonObject &body)
{
    QNetworkAccessManager network;
    QNetworkRequest request(QUrl(pushRoot(server) + path));
    request.setRawHeader("Content-type", "application/json;charset=utf-8");
    QNetworkReply *reply = network.post(request, QJsonDocument(body).toJson(QJsonDocument::Compact));
    QEventLoop loop;
    QObject::connect(reply, &QNetworkReply::finished, &loop, &QEventLoop::quit);
    loop.exec();
    reply->deleteLater();
    return {reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt(),
            QJsonDocument::fromJson(reply->readAll()).object()};
}

inline bool registerDevice(const LocalForumServer &server, const QByteArray &token)
{
    return post(server, QStringLiteral("/register"),
                {{QStringLiteral("header"), QJsonObject{{QStringLiteral("appkey"), QStringLiteral("test")}}},
                 {QStringLiteral("device_token"), QString::fromLatin1(token.toHex())}})
               .first == 200;
}

// `quorvel-server push send` to one device, naming `topicId` in board 1.
inline testsupport::ProgramResult sendToDevice(const LocalForumServer &server, const QByteArray &token, int topicId,
                                               const QStringList &extra = {})
{
    QStringList arguments{QStringLiteral("push"), QStringLiteral("send"), QStringLiteral("--gateway"), pushRoot(server),
                          QStringLiteral("--device"), QString::fromLatin1(token.toHex()), QStringLiteral("--topic"),
                          QString::number(topicId), QStringLiteral("--section"), QStringLiteral("1"),
                          QStringLiteral("--title"), QStringLiteral("标题%1").arg(topicId)};
    if (extra.isEmpty())
        arguments << QStringLiteral("--db") << server.databasePath();
    else
        arguments += extra;
    return testsupport::runProgram(QStringLiteral(QUORVEL_SERVER_BINARY), arguments);
}

} // namespace gatewayclient
