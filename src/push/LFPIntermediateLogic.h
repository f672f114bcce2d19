#pragma once
// Decides what a token report sends: a new token is registered, a known one follows the
// server's report policy (0 register once a day, 1 nothing, 2 launch), and no token sends
// the daily launch. Main thread.

#include <QByteArray>

#include <functional>

class LFPNetworkLogic;
struct LFPushOptions;

class LFPIntermediateLogic
{
public:
    enum ReportPolicy { RegisterDaily = 0, ReportNothing = 1, LaunchAlways = 2 };

    LFPIntermediateLogic(const LFPushOptions &options, LFPNetworkLogic &network);

    // `done` runs once whatever was sent has been answered (at once when nothing was sent);
    // `launchSent` tells whether a launch report went out and succeeded.
    void handleToken(const QByteArray &token, std::function<void(bool launchReported)> done);

private:
    bool alreadyReportedToday(bool isRegister) const;
    void send(const QByteArray &token, bool isRegister, std::function<void(bool)> done);

    const LFPushOptions &m_options;
    LFPNetworkLogic &m_network;
};
