#pragma once
// An in-process forum: the server's router over a real database, seeded with the demo
// data, with a clock the test moves by hand: a SQLite file in a temporary folder, or a fresh
// database of the throwaway PostgreSQL cluster. Requests are made as the client makes them
// (pretty-printed JSON, enciphered, in the raw query). Suites run on both stores through
// StoreKind parameters (see BothStores.h).

#include "AnswerEnvelope.h"
#include "DemoData.h"
#include "DesCryptUtil.h"
#include "ForumRouter.h"
#include "BothStores.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <memory>

// A database of `kind` seeded with the demo forum: a file in `folder`, or a fresh database
// of the shared test cluster. Empty, after a test failure, when it cannot be made.
inline QString seededForum(StoreKind kind, const QTemporaryDir &folder)
{
    if (kind == StoreKind::SQLite)
        return folder.filePath(QStringLiteral("forum.sqlite"));
    LocalPostgres &postgres = LocalPostgres::shared();
    const QString url = postgres.freshDatabase([](const QString &templateUrl) {
        QString error;
        std::unique_ptr<ForumDatabase> database = ForumDatabase::open(templateUrl, &error);
        if (!database)
            return false;
        ForumStore store(*database);
        DemoData::seed(store);
        return true;
    });
    EXPECT_FALSE(url.isEmpty()) << postgres.errorString().toStdString();
    return url;
}

struct ApiAnswer
{
    int status = 0;
    QJsonValue rdata;  // Undefined unless the body was a good envelope
    ServerReply reply;
};

class ServerHarness
{
public:
    static constexpr const char *kOrigin = "http://forum.test:8080";
    static constexpr const char *kImei = "0123456789abcdef0123456789abcdef01234567";

    explicit ServerHarness(StoreKind kind = StoreKind::SQLite, ServerOptions options = defaultOptions())
    {
        QString error;
        m_database = ForumDatabase::open(seededForum(kind, m_folder), &error);
        if (!m_database) {
            ADD_FAILURE() << error.toStdString();
            return;
        }
        m_store = std::make_unique<ForumStore>(*m_database);
        DemoData::seed(*m_store);
        m_router = std::make_unique<ForumRouter>(*m_store, options, [this] { return nowMs; });
    }

    static ServerOptions defaultOptions()
    {
        ServerOptions options;
        options.postIntervalSeconds = 10;
        return options;
    }

    // The client's text for a payload: pretty-printed JSON.
    static QByteArray encipher(const QJsonObject &payload)
    {
        const QString text = QString::fromUtf8(QJsonDocument(payload).toJson(QJsonDocument::Indented));
        return DesCryptUtil::DesEncode(text, DesCryptUtil::kKey, DesCryptUtil::kIV)->toLatin1();
    }

    ApiAnswer raw(const QByteArray &method, const QByteArray &path, const QByteArray &rawQuery = {},
                  const QByteArray &body = {}, const QByteArray &host = "forum.test:8080")
    {
        ApiAnswer answer;
        if (!m_router)
            return answer;
        answer.reply = m_router->handle({method, path, rawQuery, body, host});
        answer.status = answer.reply.status;
        if (const std::optional<QJsonValue> rdata = AnswerEnvelope::unwrap(answer.reply.body))
            answer.rdata = *rdata;
        return answer;
    }

    // GET (or POST for the posting endpoints) of /api/<name>?data=<payload>.
    ApiAnswer call(const QByteArray &name, const QJsonObject &payload)
    {
        const bool posting = name == "WriteTopic" || name == "RepliesleTopic";
        return raw(posting ? "POST" : "GET", "/api/" + name, "data=" + encipher(payload));
    }

    static QJsonObject device(const QString &imei = QString::fromLatin1(kImei))
    {
        return {{"imei", imei}, {"devicetype", "IOS"}};
    }
    static QJsonObject with(QJsonObject base, const QJsonObject &more)
    {
        for (auto it = more.begin(); it != more.end(); ++it)
            base.insert(it.key(), it.value());
        return base;
    }

    QJsonArray topicsPage(qint64 sectionid, int pageindex, int pagesize = 10)
    {
        return call("GetTopics", with(device(), {{"sectionid", sectionid}, {"showtype", 0}, {"sorttype", 0},
                                                 {"tag", 100 + sectionid}, {"pageindex", pageindex},
                                                 {"pagesize", pagesize}}))
            .rdata.toArray();
    }
    QJsonObject detailPayload(qint64 tid, qint64 sectionid = 1, int pageindex = 1)
    {
        return with(device(), {{"sectionid", sectionid}, {"userid", 0}, {"tid", tid},
                               {"pageindex", pageindex}, {"pagesize", 50}, {"islandlord", 0}});
    }
    QJsonValue detail(qint64 tid) { return call("TopicDetail", detailPayload(tid)).rdata; }
    QJsonArray replies(qint64 tid, int pageindex = 1)
    {
        return call("RepliesLog", detailPayload(tid, 1, pageindex)).rdata.toArray();
    }
    QJsonArray boards() { return raw("GET", "/api/GetSection").rdata.toArray(); }
    qint64 userFor(const QString &imei)
    {
        return call("GetTempUserInfo", device(imei)).rdata[QStringLiteral("userinfo")][QStringLiteral("userid")]
            .toInteger();
    }

    QJsonObject topicPayload(qint64 userid, const QString &title, const QString &content, qint64 sectionid = 1)
    {
        return with(device(), {{"userid", userid}, {"sectionid", sectionid}, {"tag", 100 + sectionid},
                               {"title", title}, {"content", content}, {"imgs", QJsonArray()}});
    }
    QJsonObject replyPayload(qint64 userid, qint64 tid, const QString &content)
    {
        return with(device(), {{"sectionid", 1}, {"userid", userid}, {"tid", tid}, {"content", content},
                               {"imgs", QJsonArray()}, {"pid", -1}, {"title", "回复标题"}});
    }
    QString describe(const ApiAnswer &answer) { return answer.rdata[QStringLiteral("description")].toString(); }

    qint64 nowMs = 1'790'000'000'000;  // moved by the tests; the rate limit reads it

    ForumRouter &router() { return *m_router; }

private:
    QTemporaryDir m_folder;
    std::unique_ptr<ForumDatabase> m_database;
    std::unique_ptr<ForumStore> m_store;
    std::unique_ptr<ForumRouter> m_router;
};
