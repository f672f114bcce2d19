#pragma once
// A private analytics component per test: a manual clock, its own settings file and caches
// folder in a temporary directory, and the log lines it printed.

#include "LFAnalyticsApp.h"
#include "LFAnalyticsConfig.h"
#include "LFAnalyticsContext.h"
#include "LFAnalyticsEvent.h"
#include "LFAnalyticsInternal.h"
#include "LFAnalyticsJob.h"
#include "LFAnalyticsLocation.h"
#include "LFAnalyticsSession.h"
#include "LFAnalyticsThrift.h"
#include "LFWorkDispatch.h"

#include "EventLoop.h"

#include <gtest/gtest.h>

#include <QStringList>
#include <QTemporaryDir>

#include <memory>

inline QStringList &capturedLogLines()
{
    static QStringList lines;
    return lines;
}

class AnalyticsFixture : public ::testing::Test
{
protected:
    static constexpr double kStart = 1700000000;   // 2023-11-14
    static inline const QString kAppKey = QStringLiteral("3c1f9a27b84e0d65a2f7c913");

    void SetUp() override
    {
        capturedLogLines().clear();
        m_previousHandler = qInstallMessageHandler([](QtMsgType, const QMessageLogContext &, const QString &text) {
            capturedLogLines().append(text);
        });
        clock = std::make_shared<LFManualClock>(kStart, 7);
        makeContext();
    }

    void TearDown() override
    {
        context.reset();
        qInstallMessageHandler(m_previousHandler);
    }

    // A new component on the same settings and caches, as at the next launch.
    void makeContext()
    {
        context.reset();
        LFAnalyticsOptions options;
        options.clock = clock;
        options.configStore = std::make_shared<UserDefaults>(folder.filePath(QStringLiteral("config.ini")));
        options.cacheDirectory = folder.filePath(QStringLiteral("caches"));
        options.bundleIdentifier = QStringLiteral("org.quorvel.test");
        options.appVersion = QStringLiteral("1.0.0");
        options.networkReachable = [this] { return reachable; };
        options.accessText = [] { return QStringLiteral("WiFi"); };
        options.screenPixels = QSize(750, 1334);
        options.envelopeWriter = [this](const QByteArray &entry) {
            envelopes.append(entry);
            return writerSucceeds;
        };
        options.performJob = [this] { ++jobsStarted; };
        adjustOptions(options);
        context = std::make_unique<LFAnalyticsContext>(std::move(options));
    }

    virtual void adjustOptions(LFAnalyticsOptions &) {}

    // Runs the queued main-thread work until the dispatcher is idle.
    void drain()
    {
        ASSERT_TRUE(testsupport::waitUntil([this] { return context->dispatch().pendingCount() == 0; }));
    }

    void start(uint32_t policy = 1)
    {
        context->app().startWithAppkey(kAppKey, policy, QString());
        ASSERT_TRUE(testsupport::waitUntil([this] {
            return context->session().sessionStatus() == LFAnalyticsSession::Active;
        }));
        drain();
    }

    bool logged(const QString &line) const { return capturedLogLines().contains(line); }

    LFAnalyticsApp &app() { return context->app(); }
    LFAnalyticsConfig &config() { return context->config(); }
    LFAnalyticsEvent &events() { return context->event(); }
    LFAnalyticsInternal &internal() { return context->internal(); }
    LFAnalyticsJob &job() { return context->job(); }
    LFAnalyticsSession &session() { return context->session(); }
    LFAnalyticsThrift &thrift() { return context->thrift(); }

    QTemporaryDir folder;
    std::shared_ptr<LFManualClock> clock;
    std::unique_ptr<LFAnalyticsContext> context;
    QList<QByteArray> envelopes;
    bool writerSucceeds = true;
    bool reachable = true;
    int jobsStarted = 0;

private:
    QtMessageHandler m_previousHandler = nullptr;
};
