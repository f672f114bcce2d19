#include "LefiseixUncaughtExceptionHandler.h"

#include <QFile>
#include <QMutex>
#include <QMutexLocker>

#include <atomic>
#include <chrono>
#include <csignal>
#include <cstring>
#include <cxxabi.h>
#include <exception>
#include <execinfo.h>
#include <fcntl.h>
#include <thread>
#include <typeinfo>
#include <unistd.h>

namespace {
// Reset to their defaults before the process dies; 13 (SIGPIPE) among them although it is
// never caught, as it always was.
constexpr int kResetSignals[] = {SIGABRT, SIGILL, SIGSEGV, SIGFPE, SIGBUS, SIGPIPE};
constexpr int kSignalCount = 65;
constexpr size_t kAlternateStackSize = 64 * 1024;
constexpr size_t kPreparedTextSize = 1024;
// After recording an uncaught exception, time for what the record started to reach the disk.
constexpr std::chrono::milliseconds kPauseBeforeDying{1000};

struct SignalName
{
    int number;
    const char *name;
};
constexpr SignalName kSignalNames[] = {
    {SIGABRT, "SIGABRT"}, {SIGBUS, "SIGBUS"}, {SIGFPE, "SIGFPE"},
    {SIGILL, "SIGILL"},   {SIGSEGV, "SIGSEGV"}, {SIGTRAP, "SIGTRAP"},
};

// Everything the signal handler touches is set up before it can run.
struct State
{
    QMutex mutex;    // install and the observer; never taken by the signal handler
    bool installed = false;
    LefiseixUncaughtExceptionHandler::Observer observer;
    // Whether anyone observes: the signal handler reads it without the lock.
    std::atomic<bool> observed{false};
    std::terminate_handler previousTerminate = nullptr;
    int recordFd = -1;
    char prepared[kSignalCount][kPreparedTextSize] = {};
    size_t preparedLength[kSignalCount] = {};
};

State &state()
{
    static State *instance = new State;   // outlives every thread that may crash
    return *instance;
}

std::atomic<bool> crashing{false};
alignas(16) char alternateStack[kAlternateStackSize];

void restoreDefaults()
{
    for (int number : kResetSignals)
        std::signal(number, SIG_DFL);
}

void onSignal(int number, siginfo_t *, void *)
{
    if (crashing.exchange(true)) {
        // Another thread records; the process ends with it.
        for (;;)
            pause();
    }
    State &s = state();
    if (s.observed.load() && s.recordFd >= 0 && number > 0 && number < kSignalCount) {
        [[maybe_unused]] ssize_t written = write(s.recordFd, s.prepared[number], s.preparedLength[number]);
        void *frames[LefiseixUncaughtExceptionHandler::kMaxFrames];
        const int count = ::backtrace(frames, LefiseixUncaughtExceptionHandler::kMaxFrames);
        backtrace_symbols_fd(frames, count, s.recordFd);
        fsync(s.recordFd);
    }
    restoreDefaults();
    // Delivered once this handler returns, now with the default action.
    raise(number);
}

QString currentExceptionName()
{
    const std::type_info *type = abi::__cxa_current_exception_type();
    if (!type)
        return QStringLiteral("std::terminate");
    int status = 0;
    char *demangled = abi::__cxa_demangle(type->name(), nullptr, nullptr, &status);
    const QString name = QString::fromUtf8(status == 0 && demangled ? demangled : type->name());
    std::free(demangled);
    return name;
}

QString currentExceptionReason()
{
    try {
        if (std::exception_ptr current = std::current_exception())
            std::rethrow_exception(current);
    } catch (const std::exception &error) {
        return QString::fromUtf8(error.what());
    } catch (...) {
    }
    return QStringLiteral("uncaught exception");
}

void onTerminate()
{
    if (crashing.exchange(true)) {
        for (;;)
            pause();
    }
    const std::terminate_handler previous = state().previousTerminate;
    LFCrashReport report;
    report.name = currentExceptionName();
    report.reason = currentExceptionReason();
    report.callStackSymbols = LefiseixUncaughtExceptionHandler::backtrace();
    LefiseixUncaughtExceptionHandler::handleException(report);
    std::this_thread::sleep_for(kPauseBeforeDying);
    if (previous)
        previous();
    std::abort();
}

// Signal name, app version and one line per image fact, then the stack follows.
void prepareTexts(State &s, const QString &appVersion, const QVariantMap &imageInfo)
{
    QString facts = appVersion + QLatin1Char('\n');
    for (const QString &key : LefiseixUncaughtExceptionHandler::kImageKeys)
        facts += imageInfo.value(key).toString() + QLatin1Char('\n');
    for (int number = 1; number < kSignalCount; ++number) {
        const QByteArray text = (LefiseixUncaughtExceptionHandler::signalName(number) + QLatin1Char('\n') + facts)
                                    .toUtf8()
                                    .left(kPreparedTextSize);
        std::memcpy(s.prepared[number], text.constData(), size_t(text.size()));
        s.preparedLength[number] = size_t(text.size());
    }
}
} // namespace

bool LefiseixUncaughtExceptionHandler::install(const QString &signalRecordPath, const QString &appVersion,
                                               const QVariantMap &imageInfo)
{
    State &s = state();
    QMutexLocker lock(&s.mutex);
    if (s.installed)
        return true;
    s.recordFd = open(QFile::encodeName(signalRecordPath).constData(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
    if (s.recordFd < 0)
        return false;
    prepareTexts(s, appVersion, imageInfo);
    // The first backtrace loads the unwinder, which a signal handler must not have to do.
    void *warmUp[1];
    ::backtrace(warmUp, 1);

    stack_t stack = {};
    stack.ss_sp = alternateStack;
    stack.ss_size = sizeof alternateStack;
    sigaltstack(&stack, nullptr);
    struct sigaction action = {};
    action.sa_sigaction = onSignal;
    action.sa_flags = SA_SIGINFO | SA_ONSTACK;
    sigemptyset(&action.sa_mask);
    for (int number : kCaughtSignals)
        sigaction(number, &action, nullptr);
    s.previousTerminate = std::set_terminate(onTerminate);
    s.installed = true;
    return true;
}

bool LefiseixUncaughtExceptionHandler::installed()
{
    State &s = state();
    QMutexLocker lock(&s.mutex);
    return s.installed;
}

void LefiseixUncaughtExceptionHandler::setObserver(Observer observer)
{
    State &s = state();
    QMutexLocker lock(&s.mutex);
    s.observed = bool(observer);
    s.observer = std::move(observer);
}

std::optional<LFCrashReport> LefiseixUncaughtExceptionHandler::takeSignalRecord(const QString &signalRecordPath)
{
    QFile file(signalRecordPath);
    if (!file.open(QIODevice::ReadWrite))
        return std::nullopt;
    const QByteArray text = file.readAll();
    file.resize(0);
    QStringList lines = QString::fromUtf8(text).split(QLatin1Char('\n'));
    const qsizetype header = 2 + kImageKeys.size();
    if (lines.size() < header || lines.constFirst().isEmpty())
        return std::nullopt;
    LFCrashReport report;
    report.name = kSignalExceptionName;
    report.reason = QStringLiteral("Application received signal %1").arg(lines.at(0));
    report.appVersion = lines.at(1);
    for (qsizetype i = 0; i < kImageKeys.size(); ++i) {
        if (!lines.at(2 + i).isEmpty())
            report.imageInfo.insert(kImageKeys.at(i), lines.at(2 + i));
    }
    for (qsizetype i = header; i < lines.size(); ++i) {
        if (!lines.at(i).isEmpty())
            report.callStackSymbols.append(lines.at(i));
    }
    return report;
}

QString LefiseixUncaughtExceptionHandler::signalName(int signalNumber)
{
    for (const SignalName &entry : kSignalNames) {
        if (entry.number == signalNumber)
            return QString::fromLatin1(entry.name);
    }
    return {};
}

QStringList LefiseixUncaughtExceptionHandler::backtrace()
{
    void *frames[kMaxFrames];
    const int count = ::backtrace(frames, kMaxFrames);
    QStringList lines;
    if (char **symbols = backtrace_symbols(frames, count)) {
        for (int i = 0; i < count; ++i)
            lines.append(QString::fromUtf8(symbols[i]));
        std::free(symbols);
    }
    return lines;
}

void LefiseixUncaughtExceptionHandler::handleException(const LFCrashReport &report)
{
    restoreDefaults();
    validateAndSaveCriticalApplicationData(report);
}

void LefiseixUncaughtExceptionHandler::validateAndSaveCriticalApplicationData(const LFCrashReport &report)
{
    Observer observer;
    {
        State &s = state();
        QMutexLocker lock(&s.mutex);
        observer = s.observer;
    }
    if (observer)
        observer(report);
}
