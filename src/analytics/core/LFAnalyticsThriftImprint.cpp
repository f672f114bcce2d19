// The imprint side of LFAnalyticsThrift: checksums and merging of server imprints.

#include "LFAnalyticsThrift.h"

#include "LFAnalyticsApp.h"
#include "LFAnalyticsConfig.h"
#include "LFAnalyticsContext.h"
#include "LFAnalyticsJob.h"

#include <QCryptographicHash>
#include <QStringList>

#include <algorithm>

namespace {
const QString kImprintKey = QStringLiteral("lfImprint");
const QString kDefconKey = QStringLiteral("lfDefcon");
const QString kExperimentPolicyKey = QStringLiteral("lfExperimentRPT");
const QString kExperimentGroupsKey = QStringLiteral("lfExperimentGroupInfo");
const QString kExperimentKeys[] = {QStringLiteral("SIG7"), QStringLiteral("SIG13"), QStringLiteral("FIXED")};
} // namespace

QString LFAnalyticsThrift::generateImprintChecksum(const LFTImprint &imprint)
{
    QStringList keys;
    for (auto it = imprint.property().cbegin(); it != imprint.property().cend(); ++it)
        keys.append(it.key());
    std::sort(keys.begin(), keys.end(), [](const QString &a, const QString &b) {
        return a.compare(b, Qt::CaseInsensitive) < 0;
    });
    QString text;
    for (const QString &key : keys) {
        const LFTImprintValue value = imprint.property().value(key);
        text += key;
        if (value.valueIsSet())
            text += value.value();
        text += QString::number(value.ts()) + value.guid();
    }
    text += QString::number(imprint.version());
    return QString::fromLatin1(QCryptographicHash::hash(text.toUtf8(), QCryptographicHash::Md5).toHex());
}

bool LFAnalyticsThrift::validateImprintChecksum(const LFTImprint &imprint)
{
    return imprint.checksum() == generateImprintChecksum(imprint);
}

void LFAnalyticsThrift::updateImprint(const LFTImprint &imprint)
{
    LFAnalyticsConfig &config = m_context.config();
    const LFTImprintMap &incoming = imprint.property();
    if (const auto defcon = incoming.constFind(QStringLiteral("defcon")); defcon != incoming.cend()) {
        int level = 0;
        if (defcon->valueIsSet()) {
            const int given = defcon->value().toInt();
            level = given < kMaxDefconLevel ? given : 0;
            config.setConfigure(QString::number(level), kDefconKey);
        } else {
            config.removeConfigureWithKey(kDefconKey);
        }
        m_context.job().setDefconLevel(level);
    }

    LFTImprintMap merged = buildImprint().value_or(LFTImprint()).property();
    QList<LFTImprintMap::Entry> kept;
    for (auto it = merged.cbegin(); it != merged.cend(); ++it) {
        if (!incoming.contains(it.key()))
            kept.append({it.key(), it.value()});
    }
    for (auto it = incoming.cbegin(); it != incoming.cend(); ++it) {
        if (it->valueIsSet())
            kept.append({it.key(), it.value()});
    }
    LFTImprint stored;
    stored.setProperty(LFTImprintMap(std::move(kept)));
    stored.setVersion(imprint.version());
    stored.setChecksum(generateImprintChecksum(stored));
    config.setConfigure(LFTEncode(stored), kImprintKey);

    if (!m_context.options().integratedTestMode) {
        if (const auto test = incoming.constFind(QStringLiteral("client_test")); test != incoming.cend()) {
            if (test->valueIsSet()) {
                configureExperimentWithString(test->value());
            } else {
                config.removeConfigureWithKey(kExperimentPolicyKey);
                config.removeConfigureWithKey(kExperimentGroupsKey);
            }
        }
    }
    for (const QString &key : {QStringLiteral("client_test"), QStringLiteral("test_report_interval"),
                               QStringLiteral("report_interval")}) {
        if (incoming.contains(key)) {
            m_context.app().updateLogSendInterval();
            break;
        }
    }
}

void LFAnalyticsThrift::configureExperimentWithString(const QString &text)
{
    QVariantMap groups;
    std::optional<int> policy;
    for (const QString &group : text.split(QLatin1Char('|'), Qt::SkipEmptyParts)) {
        for (const QString &pair : group.split(QLatin1Char(','), Qt::SkipEmptyParts)) {
            const QStringList parts = pair.split(QLatin1Char(':'));
            bool ok = false;
            const int value = parts.value(1).toInt(&ok);
            if (parts.size() != 2 || !ok) {
                m_context.logAlways(QStringLiteral("ERROR: experiment params invalid."));
                return;
            }
            const QString key = parts.constFirst().trimmed();
            if (key == QStringLiteral("RPT"))
                policy = value;
            else if (std::find(std::begin(kExperimentKeys), std::end(kExperimentKeys), key) != std::end(kExperimentKeys))
                groups.insert(key, value);
            else
                m_context.logAlways(QStringLiteral("ERROR: unknow experiment group key"));
        }
    }
    LFAnalyticsConfig &config = m_context.config();
    if (policy)
        config.setConfigure(*policy, kExperimentPolicyKey);
    config.setConfigure(groups, kExperimentGroupsKey);
}
