#include "LFAnalyticsConfig.h"

#include <QStandardPaths>

LFAnalyticsConfig::LFAnalyticsConfig(std::shared_ptr<UserDefaults> store)
    : m_store(std::move(store))
{
}

std::shared_ptr<UserDefaults> LFAnalyticsConfig::defaultStore()
{
    return std::make_shared<UserDefaults>(
        QStandardPaths::writableLocation(QStandardPaths::AppConfigLocation)
        + QStringLiteral("/LFAnalyticsConfig.ini"));
}

QVariant LFAnalyticsConfig::configureWithKey(const QString &key) const
{
    return m_store->objectForKey(key);
}

void LFAnalyticsConfig::setConfigure(const QVariant &value, const QString &key)
{
    m_store->setObject(value, key);
}

void LFAnalyticsConfig::removeConfigureWithKey(const QString &key)
{
    m_store->removeObjectForKey(key);
}

void LFAnalyticsConfig::synchronize()
{
    m_store->synchronize();
}

std::optional<double> LFAnalyticsConfig::numberWithKey(const QString &key) const
{
    const QVariant value = configureWithKey(key);
    if (!value.isValid() || value.isNull())
        return std::nullopt;
    bool ok = false;
    const double number = value.toDouble(&ok);
    if (!ok)
        return std::nullopt;
    return number;
}

QString LFAnalyticsConfig::stringWithKey(const QString &key) const
{
    const QVariant value = configureWithKey(key);
    if (!value.isValid() || value.isNull())
        return {};
    return value.toString();
}
