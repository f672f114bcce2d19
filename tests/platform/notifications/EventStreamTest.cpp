// The event-stream reader: fields, events ended by an empty line, pieces of any size, comments,
// and a hostile overlong line dropped with its event.
#include "ServerSentEventParser.h"

#include <gtest/gtest.h>

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

} // namespace
