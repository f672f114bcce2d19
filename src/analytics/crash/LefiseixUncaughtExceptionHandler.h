#pragma once
// Process-wide crash capture: uncaught C++ exceptions through std::set_terminate and the fatal
// signals SIGABRT, SIGILL, SIGSEGV, SIGFPE and SIGBUS through sigaction on an alternate stack.
// Any thread: install and observe from the main thread, the handlers on whichever crashes.
//
// An uncaught exception is recorded at once, on the thread that let it escape: the recorder
// takes its own locks, so it does not wait for the main thread, which may be the one that is
// failing. A signal handler may do almost nothing safely, so it writes text prepared at install
// time and the raw stack symbols to a file opened in advance, and the next launch turns that
// file into the same record. The first crashing thread records; any other thread that crashes
// meanwhile waits for the process to end. The process then dies as it would have: by its signal,
// or through the previous terminate handler.

#include "LFCrashReport.h"

#include <QString>

#include <csignal>
#include <functional>
#include <optional>

class LefiseixUncaughtExceptionHandler
{
public:
    static inline const QString kSignalExceptionName = QStringLiteral("signalRaisedException");
    static constexpr int kCaughtSignals[] = {SIGABRT, SIGILL, SIGSEGV, SIGFPE, SIGBUS};
    static constexpr int kMaxFrames = 128;

    using Observer = std::function<void(const LFCrashReport &)>;

    LefiseixUncaughtExceptionHandler() = delete;

    // The image facts a signal record carries, in this order.
    static inline const QStringList kImageKeys = {
        QStringLiteral("binary_uuid"), QStringLiteral("cpu_arch"), QStringLiteral("slide_address"),
        QStringLiteral("image_name"), QStringLiteral("image_base_address")};

    // Installs the handlers unless they are installed; a signal's record goes to
    // `signalRecordPath`, with the app version and image facts of this process. False when the
    // file cannot be opened.
    static bool install(const QString &signalRecordPath, const QString &appVersion, const QVariantMap &imageInfo);
    static bool installed();
    // The observer of "LFAnalyticsCrashCatch", the one receiver of crash reports; an empty one
    // stops observing. The handlers, once installed, stay for the process: without an observer
    // a crash records nothing (a signal writes no record) and the process dies as it would.
    static void setObserver(Observer observer);

    // The record a signal left in `signalRecordPath` at an earlier launch, or nothing. The
    // file is emptied either way.
    static std::optional<LFCrashReport> takeSignalRecord(const QString &signalRecordPath);

    // Signal number to name ("SIGSEGV"), or an empty text.
    static QString signalName(int signalNumber);
    // The calling thread's stack as symbol lines.
    static QStringList backtrace();

    // Posts the report to the observer, restoring the default handlers first.
    static void handleException(const LFCrashReport &report);
    static void validateAndSaveCriticalApplicationData(const LFCrashReport &report);
};
