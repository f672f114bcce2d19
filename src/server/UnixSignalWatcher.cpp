#include "UnixSignalWatcher.h"

#include <QSocketNotifier>

#include <csignal>
#include <sys/socket.h>
#include <unistd.h>

namespace {

int g_signalSockets[2] = {-1, -1};

void onSignal(int signalNumber)
{
    const char byte = static_cast<char>(signalNumber);
    [[maybe_unused]] const ssize_t written = ::write(g_signalSockets[0], &byte, 1);
}

} // namespace

UnixSignalWatcher::UnixSignalWatcher(QObject *parent)
    : QObject(parent)
{
    if (::socketpair(AF_UNIX, SOCK_STREAM, 0, g_signalSockets) != 0)
        return;
    m_notifier = new QSocketNotifier(g_signalSockets[1], QSocketNotifier::Read, this);
    connect(m_notifier, &QSocketNotifier::activated, this, [this] {
        char byte = 0;
        if (::read(g_signalSockets[1], &byte, 1) == 1)
            emit terminationRequested(byte);
    });
    struct sigaction action = {};
    action.sa_handler = onSignal;
    sigemptyset(&action.sa_mask);
    action.sa_flags = SA_RESTART;
    sigaction(SIGTERM, &action, nullptr);
    sigaction(SIGINT, &action, nullptr);
}

UnixSignalWatcher::~UnixSignalWatcher()
{
    if (g_signalSockets[0] < 0)
        return;
    std::signal(SIGTERM, SIG_DFL);
    std::signal(SIGINT, SIG_DFL);
    ::close(g_signalSockets[0]);
    ::close(g_signalSockets[1]);
    g_signalSockets[0] = g_signalSockets[1] = -1;
}
