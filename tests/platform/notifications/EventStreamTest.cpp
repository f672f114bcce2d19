// The event-stream reader: fields, events ended by an empty line, pieces of any size, comments,
// and a hostile overlong line dropped with its event.
#include "LogCapture.h"
#include "ServerSentEventParser.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace {

const QByteArray kStream = QByteArrayLiteral(
    ": heartbeat\n\n"
    "id: e1:1\r\ndata: {\"d\":\"a\"}\r\n\r\n"
    "id: e1:2\nevent: message\ndata: line one\ndata: line two\n\n"
    "data:no space\n\n");

TEST(EventStream, ReadsIdsEventsAndJoinedDataLinesWhateverThePieces)
{
    for (int step : {1, 2, 5, 13, int(kStream.size())}) {
        ServerSentEventParser parser;
        QList<ServerSentEvent> events;
        for (qsizetype at = 0; at < kStream.size(); at += step)
            events += parser.feed(kStream.mid(at, step));
        ASSERT_EQ(events.size(), 3) << "pieces of " << step;
        EXPECT_EQ(events[0].id, "e1:1");
        EXPECT_EQ(events[0].data, "{\"d\":\"a\"}");
        EXPECT_EQ(events[1].id, "e1:2");
        EXPECT_EQ(events[1].event, "message");
        EXPECT_EQ(events[1].data, "line one\nline two");
        EXPECT_EQ(events[2].data, "no space");
    }
}

TEST(EventStream, AnEventIsHandedOnOnlyOnceItsEmptyLineArrives)
{
    ServerSentEventParser parser;
    EXPECT_TRUE(parser.feed("id: e:1\ndata: x\n").isEmpty());
    EXPECT_EQ(parser.feed("\n").size(), 1);
}

TEST(EventStream, AnOverlongLineDropsItsEventAndTheStreamGoesOn)
{
    ServerSentEventParser parser;
    const QByteArray huge(ServerSentEventParser::kMaxLineBytes + 10, 'x');
    QList<ServerSentEvent> events = parser.feed("id: e:1\ndata: " + huge.left(1000));
    events += parser.feed(huge + "\n\nid: e:2\ndata: ok\n\n");
    ASSERT_EQ(events.size(), 1);
    EXPECT_EQ(events[0].id, "e:2");
    EXPECT_EQ(events[0].data, "ok");
}

TEST(EventStream, AnEventWhoseDataGrowsPastTheLimitIsDroppedAndLoggedOnce)
{
    LogCapture log("quorvel.notifications");
    ServerSentEventParser parser;
    // Lines each within their limit that together run far past the event's.
    const QByteArray line = "data: " + QByteArray(ServerSentEventParser::kMaxLineBytes - 10, 'x') + "\n";
    QList<ServerSentEvent> events = parser.feed("id: e:1\n");
    const int lines = ServerSentEventParser::kMaxEventDataBytes / line.size() * 3;
    for (int i = 0; i < lines; ++i)
        events += parser.feed(line);
    events += parser.feed("\nid: e:2\ndata: ok\n\n");
    ASSERT_EQ(events.size(), 1);
    EXPECT_EQ(events[0].id, "e:2");
    EXPECT_EQ(events[0].data, "ok");
    EXPECT_EQ(log.lines(), QStringList({QStringLiteral("notification channel: event with data over the size limit dropped")}));

    // Data exactly at the limit, lines and their joins counted, still arrives.
    QByteArray atLimit = "id: e:3\n";
    for (qsizetype left = ServerSentEventParser::kMaxEventDataBytes, joins = 0; left > 0; ++joins) {
        left -= joins > 0 ? 1 : 0;
        const qsizetype size = std::min<qsizetype>(left, 200'000);
        atLimit += "data: " + QByteArray(size, 'y') + "\n";
        left -= size;
    }
    events = parser.feed(atLimit + "\n");
    ASSERT_EQ(events.size(), 1);
    EXPECT_EQ(events[0].data.size(), ServerSentEventParser::kMaxEventDataBytes);
}

} // namespace
