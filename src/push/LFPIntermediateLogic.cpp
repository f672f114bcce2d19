#include "LFPIntermediateLogic.h"

#include "LFPNetworkLogic.h"
#include "LFPushKeys.h"
#include "LFPushOptions.h"
#include "LFPushUtils.h"
#include "UserDefaults.h"

LFPIntermediateLogic::LFPIntermediateLogic(const LFPushOptions &options, LFPNetworkLogic &network)
    : m_options(options)
    , m_network(network)
{
}

bool LFPIntermediateLogic::alreadyReportedToday(bool isRegister) const
{
    const QString stored = m_options.defaults->stringForKey(isRegister ? LFPushKeys::kLatestDate
                                                                       : LFPushKeys::kLatestLaunchDate);
    if (stored != m_options.clock->dateText())
        return false;
    LFPushUtils::outLog(isRegister ? QStringLiteral("Today has already being reported for register!")
                                   : QStringLiteral("Today has already being reported for launch!"));
    return true;
}

void LFPIntermediateLogic::send(const QByteArray &token, bool isRegister, std::function<void(bool)> done)
{
    m_network.sendToken(token, isRegister, [isRegister, done = std::move(done)](const QJsonObject &, const QString &error) {
        done(!isRegister && error.isEmpty());
    });
}

void LFPIntermediateLogic::handleToken(const QByteArray &token, std::function<void(bool)> done)
{
    UserDefaults &defaults = *m_options.defaults;
    if (token.isEmpty()) {
        if (alreadyReportedToday(false))
            return done(false);
        return send(token, false, std::move(done));
    }

    const QByteArray stored = defaults.objectForKey(LFPushKeys::kDeviceToken).toByteArray();
    if (token != stored) {
        defaults.removeObjectForKey(LFPushKeys::kLatestDate);
        send(token, true, std::move(done));
        defaults.setObject(token, LFPushKeys::kDeviceToken);
        defaults.synchronize();
        return;
    }

    switch (defaults.objectForKey(LFPushKeys::kReportPolicy).toInt()) {
    case RegisterDaily:
        if (alreadyReportedToday(true))
            return done(false);
        return send(token, true, std::move(done));
    case LaunchAlways:
        return send(token, false, std::move(done));
    default:
        LFPushUtils::outLog(QStringLiteral("We don't report anything for this policy!"));
        return done(false);
    }
}
