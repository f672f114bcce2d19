// analytics_test_child: the analytics component in a process of its own, for tests that need
// the process to end: as the app starts and quits it, writing envelope files until killed, or
// crashing in a chosen way.
//
//   analytics_test_child app
//   analytics_test_child envelopes FOLDER
//   analytics_test_child crash SIGSEGV|SIGBUS|SIGFPE|SIGILL|SIGABRT|throw|threads FOLDER

#include "ChildComponent.h"
#include "LFAnalytics.h"
#include "LFAnalyticsApp.h"
#include "LFAnalyticsContext.h"
#include "LFAnalyticsEnvelope.h"

#include <QCoreApplication>
#include <QRandomGenerator>
#include <QTimer>

#include <barrier>
#include <csignal>
#include <cstdio>
#include <stdexcept>
#include <thread>
#include <vector>

namespace {
constexpr int kQuitAfterMs = 500;
constexpr int kCrashingThreads = 20;
// Random bytes barely compress, so each envelope file is about this large.
constexpr int kEnvelopeEntryBytes = 150 * 1024;
const QString kAppKey = QStringLiteral("3c1f9a27b84e0d65a2f7c913");

// Starts and quits as the app does, reporting one banner tap in between.
int runApp(QCoreApplication &app)
{
    LFAnalytics::setAppVersion(QStringLiteral("1.0.0"));
    LFAnalytics::startWithAppkey(kAppKey, 1, QString());
    LFAnalytics::event(QStringLiteral("advertisingClick"));
    QTimer::singleShot(kQuitAfterMs, &app, &QCoreApplication::quit);
    const int code = app.exec();
    return LFAnalytics::finishUploads() ? code : 3;
}

int writeEnvelopes(const QString &folder)
{
    LFAnalyticsContext context(ChildComponent::options(folder));
    context.app().setAppid(kAppKey);
    QByteArray entry(kEnvelopeEntryBytes, Qt::Uninitialized);
    QRandomGenerator::global()->fillRange(reinterpret_cast<quint32 *>(entry.data()), entry.size() / 4);
    bool announced = false;
    for (;;) {
        if (!context.envelope().writeEnvelopeFile(entry))
            return 1;
        if (!announced) {
            std::puts("writing");
            std::fflush(stdout);
            announced = true;
        }
    }
}

[[noreturn]] void crashBy(const QString &how)
{
    if (how == QStringLiteral("SIGSEGV")) {
        volatile int *nowhere = nullptr;
        *nowhere = 1;
    } else if (how == QStringLiteral("SIGFPE")) {
        // Both operands unknown, so the compiler cannot turn the division into a comparison.
        volatile int zero = 0;
        volatile int seven = 7;
        volatile int quotient = seven / zero;
        (void)quotient;
    } else if (how == QStringLiteral("SIGILL")) {
        __builtin_trap();
    } else if (how == QStringLiteral("SIGBUS")) {
        raise(SIGBUS);
    } else if (how == QStringLiteral("SIGABRT")) {
        std::abort();
    } else if (how == QStringLiteral("throw")) {
        throw std::runtime_error("banner list went away");
    } else if (how == QStringLiteral("threads")) {
        std::barrier start(kCrashingThreads);
        std::vector<std::thread> threads;
        for (int i = 0; i < kCrashingThreads; ++i) {
            threads.emplace_back([&start] {
                start.arrive_and_wait();
                volatile int *nowhere = nullptr;
                *nowhere = 1;
            });
        }
        for (std::thread &thread : threads)
            thread.join();
    }
    std::_Exit(4);
}

int crash(const QString &how, const QString &folder)
{
    LFAnalyticsContext context(ChildComponent::options(folder));
    context.app().setAppVersion(QStringLiteral("1.0.0"));
    context.app().startWithAppkey(kAppKey, 1, QString());
    if (!context.app().appCrashedHandlerInstalled())
        return 5;
    // "off-HOW": reporting turned off again before crashing.
    const QString offPrefix = QStringLiteral("off-");
    if (how.startsWith(offPrefix)) {
        context.app().setCrashReportEnabled(false);
        crashBy(how.mid(offPrefix.size()));
    }
    crashBy(how);
}
} // namespace

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("quorvel"));
    const QStringList arguments = QCoreApplication::arguments();
    const QString mode = arguments.value(1);
    if (mode == QStringLiteral("app") && arguments.size() == 2)
        return runApp(app);
    if (mode == QStringLiteral("envelopes") && arguments.size() == 3)
        return writeEnvelopes(arguments.at(2));
    if (mode == QStringLiteral("crash") && arguments.size() == 4)
        return crash(arguments.at(2), arguments.at(3));
    std::fputs("usage: analytics_test_child app | envelopes FOLDER | crash HOW FOLDER\n", stderr);
    return 2;
}
