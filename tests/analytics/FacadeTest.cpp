// The app-facing class operations and the process-wide component behind them, made on first use.
// The only test in this process that uses the process-wide component.

#include "LFAnalytics.h"
#include "LFAnalyticsConfig.h"
#include "LFAnalyticsContext.h"
#include "LFAnalyticsInternal.h"
#include "LFWorkDispatch.h"

#include "EventLoop.h"

#include <gtest/gtest.h>

#include <QTemporaryDir>
#include <QThread>

#include <latch>
#include <memory>
#include <vector>

TEST(FacadeTest, FirstUseFromManyThreadsMakesOneComponentThatGetsEveryCall)
{
    static QTemporaryDir folder;   // outlives the component, which lives as long as the process
    auto clock = std::make_shared<LFManualClock>(1700000000, 7);
    LFAnalyticsOptions options;
    options.clock = clock;
    options.configStore = std::make_shared<UserDefaults>(folder.filePath(QStringLiteral("config.ini")));
    options.cacheDirectory = folder.filePath(QStringLiteral("caches"));
    options.bundleIdentifier = QStringLiteral("org.quorvel.facade");
    ASSERT_TRUE(LFAnalytics::setupWithOptions(options));   // nothing made it before

    constexpr int kThreads = 6;
    constexpr int kEventsEach = 40;
    std::latch go(kThreads);
    std::vector<LFAnalyticsContext *> seen(kThreads, nullptr);
    std::vector<std::unique_ptr<QThread>> threads;
    for (int i = 0; i < kThreads; ++i) {
        threads.emplace_back(QThread::create([&go, &seen, i] {
            go.arrive_and_wait();
            for (int n = 0; n < kEventsEach; ++n)
                LFAnalytics::event(QStringLiteral("from thread"), QString::number(i));
            seen[i] = &LFAnalyticsContext::shared();
        }));
        threads.back()->start();
    }
    for (auto &thread : threads)
        thread->wait();

    LFAnalyticsContext &component = LFAnalyticsContext::shared();
    for (LFAnalyticsContext *one : seen)
        EXPECT_EQ(one, &component);
    EXPECT_FALSE(LFAnalytics::setupWithOptions(options));

    LFAnalytics::eventAttributesCounter(QStringLiteral("counted"), {{QStringLiteral("k"), QStringLiteral("v")}}, 7);
    LFAnalytics::beginEvent(QStringLiteral("timed"), QStringLiteral("pk"), {{QStringLiteral("a"), QStringLiteral("b")}});
    ASSERT_TRUE(testsupport::waitUntil([&component] { return component.dispatch().pendingCount() == 0; }));
    clock->advance(2);
    LFAnalytics::endEventPrimarykey(QStringLiteral("timed"), QStringLiteral("pk"));
    LFAnalytics::profileSignInWithPUID(QStringLiteral("u42"), QStringLiteral("weibo"));
    ASSERT_TRUE(testsupport::waitUntil([&component] { return component.dispatch().pendingCount() == 0; }));

    const LFANContainers memory = component.internal().containers();
    // Had a second component been made, the calls that went to it would be missing here.
    EXPECT_EQ(memory.events.size(), kThreads * kEventsEach);
    ASSERT_EQ(memory.ekvs.size(), 2);
    EXPECT_EQ(memory.ekvs[0].id, QStringLiteral("counted"));
    EXPECT_EQ(memory.ekvs[0].values,
              (QVariantMap{{QStringLiteral("k"), QStringLiteral("v")}, {QStringLiteral("__ct__"), QStringLiteral("7")}}));
    EXPECT_EQ(memory.ekvs[1].id, QStringLiteral("timed"));
    EXPECT_EQ(memory.ekvs[1].key, QStringLiteral("pk"));
    EXPECT_EQ(memory.ekvs[1].du, 2000);
    EXPECT_EQ(memory.ekvs[1].values.value(QStringLiteral("a")).toString(), QStringLiteral("b"));
    EXPECT_EQ(component.config().stringWithKey(QStringLiteral("LFProfilePUID")), QStringLiteral("u42"));
    EXPECT_EQ(component.config().stringWithKey(QStringLiteral("LFProfileProvider")), QStringLiteral("weibo"));
}
