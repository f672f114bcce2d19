// quorvel-bench-urls API_ROOT: prints the requests the server benchmark sends, one a line as
// "<endpoint> <url>". They are made as the client makes them (its payload fields, its
// pretty-printed JSON text, its cipher, the Base64 appended literally, "+" and all), for the
// demo forum's first board and its most-replied topic; each is checked to read back through
// the server's own decoder, so the benchmark never measures refusals.
#include "DemoData.h"
#include "ForumPayloads.h"
#include "JsonChangDic.h"
#include "RequestData.h"
#include "RequestPayload.h"
#include "ServiceConfig.h"

#include <QCoreApplication>

#include <cstdio>

namespace {

constexpr qint64 kBoard = 1;
constexpr int kMostRepliedTopic = 1;  // the board's first topic: DemoData::kManyReplies replies
constexpr int kFirstPage = 1;
constexpr qint64 kNoUser = 0;         // a device that has not asked for its temporary user yet

struct Request
{
    QString endpoint;
    QJsonObject payload;
};

bool readsBack(const QString &url, const QJsonObject &payload)
{
    const std::optional<QByteArray> data = RequestPayload::dataParameter(url.section(QLatin1Char('?'), 1).toLatin1());
    return data && RequestPayload::decode(*data).object == payload;
}

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("quorvel-bench-urls"));
    if (app.arguments().size() != 2) {
        std::fputs("usage: quorvel-bench-urls API_ROOT\n", stderr);
        return 2;
    }
    ServiceConfig::setApiRoot(app.arguments().at(1));

    ListModel board;
    board.setValueForKey(kBoard, u"sectionid");
    board.setValueForKey(DemoData::tagIdOf(kBoard), u"tagid");
    PostModel topic;
    topic.setValueForKey(DemoData::topicIdOf(kBoard, kMostRepliedTopic), u"tid");
    const Request requests[] = {
        {QStringLiteral("GetTopics"), ForumPayloads::topics(board, kFirstPage)},
        {QStringLiteral("TopicDetail"), ForumPayloads::topicDetail(board, topic, kNoUser)},
    };
    for (const Request &request : requests) {
        const QString url = RequestData::encodedUrl(JsonChangDic::jsonWithDictionary(request.payload),
                                                    request.endpoint + QStringLiteral("?data="));
        if (!readsBack(url, request.payload)) {
            std::fprintf(stderr, "the server does not read back the %s request\n", qPrintable(request.endpoint));
            return 1;
        }
        std::printf("%s %s\n", qPrintable(request.endpoint), qPrintable(url));
    }
    return 0;
}
