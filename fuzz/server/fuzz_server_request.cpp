// The server's request parsing, end to end in-process: any query string, or any text as
// an enciphered payload, sent to any endpoint with either method. Every request must get
// an answer of a known status, never a crash or a storage failure, and every 200 answer
// from the API must be a good envelope.
#include "AnswerEnvelope.h"
#include "DemoData.h"
#include "DesCryptUtil.h"
#include "ForumRouter.h"

#include <QCoreApplication>
#include <QSet>

#include <cstdint>
#include <cstdlib>
#include <memory>

namespace {

const char *const kPaths[] = {
    "/api/GetAdRecom", "/api/GetSection", "/api/GetTopics", "/api/GetTopTopic",
    "/api/GetTempUserInfo", "/api/TopicDetail", "/api/RepliesLog", "/api/WriteTopic",
    "/api/RepliesleTopic", "/api/Unknown", "/pages/1.html", "/nothing",
};

struct Forum
{
    std::unique_ptr<ForumDatabase> database;
    std::unique_ptr<ForumStore> store;
    std::unique_ptr<ForumRouter> router;
    qint64 nowMs = 1'790'000'000'000;
};

Forum &forum()
{
    static Forum instance = [] {
        Forum made;
        QString error;
        made.database = ForumDatabase::open(QStringLiteral(":memory:"), &error);
        if (!made.database)
            std::abort();
        made.store = std::make_unique<ForumStore>(*made.database);
        DemoData::seed(*made.store);
        return made;
    }();
    if (!instance.router)
        instance.router = std::make_unique<ForumRouter>(*instance.store, ServerOptions(),
                                                        [] { return forum().nowMs += 3'000; });
    return instance;
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int *argc, char ***argv)
{
    // QtSql loads its SQLite driver as a plugin, which wants an application object.
    static QCoreApplication app(*argc, *argv);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    if (size == 0)
        return 0;
    const uint8_t control = data[0];
    const QByteArray rest(reinterpret_cast<const char *>(data + 1), qsizetype(size - 1));
    const char *path = kPaths[(control >> 2) % std::size(kPaths)];

    ServerRequest request;
    request.path = path;
    request.method = (control & 2) ? "POST" : "GET";
    request.host = "127.0.0.1:8080";
    if (control & 1) {
        // Any text as the payload, enciphered as the client would: reaches the JSON and
        // field checks and the endpoint handlers.
        const std::optional<QString> base64 =
            DesCryptUtil::DesEncode(QString::fromUtf8(rest), DesCryptUtil::kKey, DesCryptUtil::kIV);
        request.rawQuery = "data=" + base64.value_or(QString()).toLatin1();
    } else {
        request.rawQuery = rest;
    }

    const ServerReply reply = forum().router->handle(request);
    static const QSet<int> kStatuses = {200, 400, 404, 405, 413, 414};
    if (!kStatuses.contains(reply.status))
        std::abort();
    if (reply.status == 200 && request.path.startsWith("/api/") && !AnswerEnvelope::unwrap(reply.body))
        std::abort();
    return 0;
}
