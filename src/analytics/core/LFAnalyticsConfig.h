#pragma once
// The component's persisted string-keyed settings, kept in a user defaults store of their own.
// Any thread.

#include "UserDefaults.h"

#include <QString>
#include <QVariant>

#include <memory>
#include <optional>

class LFAnalyticsConfig
{
public:
    explicit LFAnalyticsConfig(std::shared_ptr<UserDefaults> store);

    // The store used when none is given: "LFAnalyticsConfig.ini" in the configuration folder.
    static std::shared_ptr<UserDefaults> defaultStore();

    QVariant configureWithKey(const QString &key) const;
    void setConfigure(const QVariant &value, const QString &key);
    void removeConfigureWithKey(const QString &key);
    void synchronize();

    // The value as a number when it is present and reads as one (stores may keep numbers as text).
    std::optional<double> numberWithKey(const QString &key) const;
    // The value as text, or a null string when absent.
    QString stringWithKey(const QString &key) const;

private:
    std::shared_ptr<UserDefaults> m_store;
};
