#pragma once
// A persistent key-value store in the user's configuration folder, the counterpart of the
// phone's user defaults. Thread-safe: any thread may read and write.

#include <QMutex>
#include <QSettings>
#include <QString>
#include <QVariant>

#include <memory>

class UserDefaults
{
public:
    // A store backed by the given INI file (created on first write).
    explicit UserDefaults(const QString &filePath);

    // The process-wide store: "defaults.ini" in the application's configuration folder
    // (under $XDG_CONFIG_HOME), created on first use.
    static UserDefaults &standardUserDefaults();

    QVariant objectForKey(const QString &key) const;
    // The value as text; absent keys and values that are not text give a null QString.
    QString stringForKey(const QString &key) const;
    void setObject(const QVariant &value, const QString &key);
    void removeObjectForKey(const QString &key);
    // Writes pending changes to disk and picks up changes made by other processes.
    bool synchronize();

    QString filePath() const;

private:
    mutable QMutex m_mutex;
    std::unique_ptr<QSettings> m_settings;
};
