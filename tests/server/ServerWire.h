#pragma once
// Requests to a running server process as the client sends them (the enciphered payload
// appended literally to the query, "+" and all), and the demo payloads the process tests
// use. Main thread.

#include "AnswerEnvelope.h"
#include "EventLoop.h"
#include "LocalForumServer.h"
#include "RequestPayload.h"

#include <QJsonArray>
#include <QJsonObject>
#include <QNetworkAccessManager>
#include <QNetworkReply>

#include <gtest/gtest.h>

#include <vector>

using Demo = LocalForumServer::Demo;

struct WireAnswer
{
    int status = 0;
    QByteArray contentType;
    QJsonValue rdata;
    QByteArray body;
};

class Wire
{
public:
    explicit Wire(const LocalForumServer &server) : m_apiRoot(server.apiRoot()) {}
    explicit Wire(const QString &apiRoot) : m_apiRoot(apiRoot) {}

    // Starts a request; `answers` receives it when it is done.
    void send(const QByteArray &method, const QString &endpoint, const QJsonObject &payload,
              std::vector<WireAnswer> *answers)
    {
        // The payload is appended literally, "+" and all, as the client does.
        const QString url = m_apiRoot + endpoint + "?data=" + QString::fromLatin1(RequestPayload::encode(payload));
        sendUrl(method, url, answers);
    }

    void sendUrl(const QByteArray &method, const QString &url, std::vector<WireAnswer> *answers)
    {
        QNetworkRequest request{QUrl(url, QUrl::TolerantMode)};
        request.setHeader(QNetworkRequest::ContentTypeHeader, "application/x-www-form-urlencoded");
        QNetworkReply *reply = m_manager.sendCustomRequest(request, method, method == "POST" ? QByteArray("=x") : QByteArray());
        QObject::connect(reply, &QNetworkReply::finished, reply, [reply, answers] {
            WireAnswer answer;
            answer.status = reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
            answer.contentType = reply->header(QNetworkRequest::ContentTypeHeader).toByteArray();
            answer.body = reply->readAll();
            answer.rdata = AnswerEnvelope::unwrap(answer.body).value_or(QJsonValue());
            answers->push_back(answer);
            reply->deleteLater();
        });
    }

    WireAnswer call(const QByteArray &method, const QString &endpoint, const QJsonObject &payload)
    {
        std::vector<WireAnswer> answers;
        send(method, endpoint, payload, &answers);
        EXPECT_TRUE(testsupport::waitUntil([&] { return !answers.empty(); }, 10000));
        return answers.empty() ? WireAnswer() : answers.front();
    }

    WireAnswer get(const QString &url)
    {
        std::vector<WireAnswer> answers;
        sendUrl("GET", url, &answers);
        EXPECT_TRUE(testsupport::waitUntil([&] { return !answers.empty(); }, 10000));
        return answers.empty() ? WireAnswer() : answers.front();
    }

private:
    QString m_apiRoot;
    QNetworkAccessManager m_manager;
};

inline QJsonObject device(const QString &imei)
{
    return {{"imei", imei}, {"devicetype", "IOS"}};
}

inline QJsonObject topicPayload(const QString &imei, const QString &title)
{
    QJsonObject payload = device(imei);
    payload.insert("userid", 0);
    payload.insert("sectionid", Demo::kBoardId);
    payload.insert("tag", Demo::kBoardTagId);
    payload.insert("title", title);
    payload.insert("content", "在服务器重启之后还应该在。");
    payload.insert("imgs", QJsonArray());
    return payload;
}

inline QJsonObject firstPage(const QString &imei, int pagesize = 10)
{
    QJsonObject payload = device(imei);
    for (const auto &[key, value] : {std::pair{"sectionid", Demo::kBoardId}, {"showtype", 0}, {"sorttype", 0},
                                     {"tag", Demo::kBoardTagId}, {"pageindex", 1}, {"pagesize", pagesize}})
        payload.insert(key, value);
    return payload;
}

