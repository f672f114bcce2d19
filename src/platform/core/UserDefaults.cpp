#include "UserDefaults.h"

#include <QDir>
#include <QFileInfo>
#include <QMutexLocker>
#include <QStandardPaths>

UserDefaults::UserDefaults(const QString &filePath)
    : m_settings(std::make_unique<QSettings>(filePath, QSettings::IniFormat))
{
    QDir().mkpath(QFileInfo(filePath).absolutePath());
}

UserDefaults &UserDefaults::standardUserDefaults()
{
    static UserDefaults defaults(
        QStandardPaths::writableLocation(QStandardPaths::AppConfigLocation)
        + QStringLiteral("/defaults.ini"));
    return defaults;
}

QVariant UserDefaults::objectForKey(const QString &key) const
{
    QMutexLocker lock(&m_mutex);
    return m_settings->value(key);
}

QString UserDefaults::stringForKey(const QString &key) const
{
    const QVariant value = objectForKey(key);
    if (value.typeId() != QMetaType::QString)
        return {};
    return value.toString();
}

void UserDefaults::setObject(const QVariant &value, const QString &key)
{
    QMutexLocker lock(&m_mutex);
    m_settings->setValue(key, value);
}

void UserDefaults::removeObjectForKey(const QString &key)
{
    QMutexLocker lock(&m_mutex);
    m_settings->remove(key);
}

bool UserDefaults::synchronize()
{
    QMutexLocker lock(&m_mutex);
    m_settings->sync();
    return m_settings->status() == QSettings::NoError;
}

QString UserDefaults::filePath() const
{
    return m_settings->fileName();
}
