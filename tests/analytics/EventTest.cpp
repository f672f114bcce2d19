// Event validation and the per-period event limit, on a manual clock.

#include "AnalyticsFixture.h"

#include "LFANUtil.h"

using EventTest = AnalyticsFixture;

namespace {
QVariantMap attributes(int count)
{
    QVariantMap map;
    for (int i = 0; i < count; ++i)
        map.insert(QStringLiteral("key%1").arg(i, 2, 10, QLatin1Char('0')), QStringLiteral("v%1").arg(i));
    return map;
}
} // namespace

TEST_F(EventTest, EventIdsMustBePresentAndAtMost128Bytes)
{
    start();
    events().event(QString(), QString(), 1, 0);
    events().event(QStringLiteral(" \t\n"), QString(), 1, 0);
    events().event(QString(128, QLatin1Char('a')), QString(), 1, 0);
    const QString tooLong = QString(43, QChar(0x4e2d));   // 129 bytes in UTF-8
    events().event(tooLong, QString(), 1, 0);
    drain();
    EXPECT_EQ(internal().containers().events.size(), 1);
    EXPECT_TRUE(logged(QStringLiteral("LFLOG: (Warning) event_id (%1) max bytes length > 128").arg(tooLong)));
}

TEST_F(EventTest, DurationsOfTwoHoursOrMoreAreDropped)
{
    start();
    events().event(QStringLiteral("long"), QString(), 1, 7200000);
    events().event(QStringLiteral("fine"), QStringLiteral("l"), 4, 7199999);
    drain();
    const auto kept = internal().containers().events;
    ASSERT_EQ(kept.size(), 1);
    EXPECT_EQ(kept[0].du, 7199999);
    EXPECT_EQ(kept[0].acc, 4);
    EXPECT_EQ(kept[0].session_id, internal().sessionId());
}

TEST_F(EventTest, ReservedKeysDropTheWholeEvent)
{
    start();
    for (const char *key : {"id", "ts", "du"})
        events().event(QStringLiteral("e"), QVariantMap{{QString::fromLatin1(key), QStringLiteral("1")}}, 0);
    events().event(QStringLiteral("e"), QVariantMap{}, 0);
    drain();
    EXPECT_TRUE(internal().containers().ekvs.isEmpty());
    EXPECT_EQ(capturedLogLines().count(QStringLiteral(
                  "LFLOG: (ERROR) 关键字id, ts, du是LefiseixSDK保留字段，不能作为key使用。")),
              3);
}

TEST_F(EventTest, AttributesAreCutToTenKeepingTheCounter)
{
    start();
    events().event(QStringLiteral("twelve"), attributes(12), 0);
    QVariantMap withCounter = attributes(12);
    withCounter.insert(QStringLiteral("__ct__"), QStringLiteral("7"));
    events().event(QStringLiteral("counted"), withCounter, 0);
    events().eventAttributesCounter(QStringLiteral("counter"), attributes(1), -3);
    drain();
    const auto ekvs = internal().containers().ekvs;
    ASSERT_EQ(ekvs.size(), 3);
    EXPECT_EQ(ekvs[0].values.size(), 10);
    EXPECT_TRUE(ekvs[0].values.contains(QStringLiteral("key09")));
    EXPECT_FALSE(ekvs[0].values.contains(QStringLiteral("key10")));
    EXPECT_EQ(ekvs[1].values.size(), 11);
    EXPECT_EQ(ekvs[1].values.value(QStringLiteral("__ct__")).toString(), QStringLiteral("7"));
    EXPECT_EQ(ekvs[2].values.value(QStringLiteral("__ct__")).toString(), QStringLiteral("-3"));
}

TEST_F(EventTest, AppEventAttributesMustBeTextAndAreCutOnCharacterBoundaries)
{
    start();
    const QString longKey = QString(130, QLatin1Char('k'));
    const QString longValue = QString(100, QChar(0x4e2d));   // 300 bytes
    events().event(QStringLiteral("e"),
                   QVariantMap{{longKey, longValue}, {QStringLiteral("number"), 5}, {QStringLiteral("ok"), QStringLiteral("v")}},
                   0);
    events().event(QStringLiteral("g"), QVariantMap{{longKey, longValue}, {QStringLiteral("number"), 5}}, 0,
                   QStringLiteral("gkv"));
    drain();
    EXPECT_TRUE(logged(QStringLiteral("LFLOG: (ERROR) Lefiseix event's keys and values must be string ,key's max "
                                      "length 128 and value's max length 256")));
    const auto ekvs = internal().containers().ekvs;
    ASSERT_EQ(ekvs.size(), 2);
    EXPECT_EQ(ekvs[0].values.size(), 2);
    EXPECT_EQ(ekvs[0].values.value(QString(128, QLatin1Char('k'))).toString(), QString(85, QChar(0x4e2d)));
    EXPECT_EQ(ekvs[1].kind, QStringLiteral("gkv"));
    EXPECT_EQ(ekvs[1].values.value(QString(128, QLatin1Char('k'))).toString(), longValue);
    EXPECT_EQ(ekvs[1].values.value(QStringLiteral("number")).toInt(), 5);
}

TEST(LFANUtil, CutsNeverSplitACharacter)
{
    const QString text = QStringLiteral("a") + QString::fromUcs4(U"\U0001F600") + QStringLiteral("b");
    EXPECT_EQ(LFANUtil::getString(text, 4), QStringLiteral("a"));
    EXPECT_EQ(LFANUtil::getString(text, 5), text.left(3));
    EXPECT_EQ(LFANUtil::getString(text, 6), text);
    EXPECT_EQ(LFANUtil::getString(QStringLiteral("中文"), 5), QStringLiteral("中"));
}

TEST_F(EventTest, AtMost5000EventsPerEightHours)
{
    start();
    app().setLogEnabled(true);
    config().setConfigure(4998, QStringLiteral("lfPeriodEvtCount"));
    events().event(QStringLiteral("4999th"), QString(), 1, 0);
    events().event(QStringLiteral("5000th"), QVariantMap{{QStringLiteral("k"), QStringLiteral("v")}}, 0);
    events().event(QStringLiteral("5001st"), QString(), 1, 0);
    drain();
    EXPECT_EQ(internal().eventCountInMemory(), 2);
    EXPECT_TRUE(logged(QStringLiteral("LFLOG: WARNING event max count 5000 per 8 hours.")));

    clock->advance(28800);
    events().event(QStringLiteral("still the same period"), QString(), 1, 0);
    drain();
    EXPECT_EQ(internal().eventCountInMemory(), 2);

    clock->advance(1);
    events().event(QStringLiteral("new period"), QString(), 1, 0);
    drain();
    EXPECT_EQ(internal().eventCountInMemory(), 3);
    EXPECT_EQ(config().numberWithKey(QStringLiteral("lfPeriodEvtCount")), 0);
    EXPECT_EQ(config().numberWithKey(QStringLiteral("lfSeparatedTime")), kStart + 28801);
}

TEST_F(EventTest, EnvelopesCountTowardsThePeriod)
{
    start();
    for (int i = 0; i < 3; ++i)
        events().event(QStringLiteral("e"), QString(), 1, 0);
    drain();
    ASSERT_TRUE(internal().generateEnvelopeFile());
    EXPECT_EQ(config().numberWithKey(QStringLiteral("lfPeriodEvtCount")), 3);
    EXPECT_EQ(internal().eventCountInMemory(), 0);

    writerSucceeds = false;
    events().event(QStringLiteral("e"), QString(), 1, 0);
    drain();
    EXPECT_FALSE(internal().generateEnvelopeFile());
    EXPECT_EQ(internal().eventCountInMemory(), 1);   // nothing is lost when no envelope was made
}

TEST_F(EventTest, TimedEventsMeasureTheirDuration)
{
    start();
    events().beginEvent(QStringLiteral("load"), QStringLiteral("topic"));
    events().beginEvent(QStringLiteral("read"), QStringLiteral("pk"), QVariantMap{{QStringLiteral("board"), QStringLiteral("3")}});
    drain();
    clock->advance(2.5);
    events().endEvent(QStringLiteral("load"), QStringLiteral("other label"));
    events().endEvent(QStringLiteral("load"), QStringLiteral("topic"));
    events().endEventPrimarykey(QStringLiteral("read"), QStringLiteral("pk"));
    drain();
    const auto memory = internal().containers();
    ASSERT_EQ(memory.events.size(), 1);
    EXPECT_EQ(memory.events[0].du, 2500);
    EXPECT_EQ(memory.events[0].label, QStringLiteral("topic"));
    ASSERT_EQ(memory.ekvs.size(), 1);
    EXPECT_EQ(memory.ekvs[0].du, 2500);
    EXPECT_EQ(memory.ekvs[0].values.value(QStringLiteral("board")).toString(), QStringLiteral("3"));
}
