#pragma once
// The gateway's tables in the server's database: devices with their last report,
// tags, aliases, the messages addressed to each device (numbered for delivery), and click
// reports. Lives on the database's thread (the main thread).

#include "ForumDatabase.h"

#include <QByteArray>
#include <QJsonObject>
#include <QList>
#include <QString>
#include <QStringList>

#include <optional>

class PushGatewayStore
{
public:
    struct StoredMessage
    {
        qint64 id = 0;
        QByteArray userInfo;  // compact JSON text
    };

    struct Click
    {
        QString deviceToken;
        QString msgId;
        double ts = 0;
    };

    // Whom a message goes to: one device, a tag's devices, an alias's devices, or all.
    struct Target
    {
        enum Kind { Device, Tag, Alias, All } kind = All;
        QString value;
    };

    // The change tag storeMessage() announces (ForumDatabase change listeners).
    static constexpr const char *kMessagesChanged = "push";

    // The tables come with the database's schema; throws StoreError when the epoch cannot be read.
    explicit PushGatewayStore(ForumDatabase &database);

    // A text made once per database: message numbers are only comparable within one epoch.
    QString epoch() const { return m_epoch; }

    void reportDevice(const QString &token, bool isRegister, const QJsonObject &header, qint64 now);
    // A device whose token-authenticated stream was accepted can be sent to even if it has not
    // reported to this database (it reports once a day; the database may be newer than that).
    void recordStreamDevice(const QString &token);

    QStringList tags(const QString &token);
    void addTags(const QString &token, const QStringList &tags);
    void removeTags(const QString &token, const QStringList &tags);
    void resetTags(const QString &token);

    QStringList aliases(const QString &token);
    void addAlias(const QString &token, const QString &alias, const QString &type);
    // Replaces the device's aliases of `type` by this one.
    void setAlias(const QString &token, const QString &alias, const QString &type);
    void removeAlias(const QString &token, const QString &alias, const QString &type);

    QStringList recipients(const Target &target);
    // Stores one message per recipient, as one write; their numbers in recipient order.
    QList<qint64> storeMessage(const QStringList &tokens, const QString &msgId, const QByteArray &userInfo,
                               qint64 now);
    QList<StoredMessage> messagesAfter(const QString &token, qint64 afterId);

    void recordClick(const QString &token, const QString &msgId, double ts, qint64 now);
    QList<Click> clicks();

private:
    QStringList column(QSqlQuery &query);
    // Runs a statement taking (token, tag) once per tag, all in one transaction.
    void execForEachTag(const QString &statement, const QString &token, const QStringList &tags);

    ForumDatabase &m_database;
    QString m_epoch;
};
