#pragma once
// A gateway router over a fresh database of either store (BothStores.h), with a known secret
// and a recorder of what it hands to delivery streams. Main thread.

#include "BothStores.h"
#include "ForumDatabase.h"
#include "PushGatewayRouter.h"
#include "PushGatewayStore.h"

#include <gtest/gtest.h>

#include <QJsonArray>
#include <QJsonDocument>
#include <QTemporaryDir>

class GatewayFixture : public ::testing::TestWithParam<StoreKind>
{
protected:
    static constexpr qint64 kNow = 1'772'452'800;
    inline static const QByteArray kSecret = QByteArray(64, 's');
    inline static const QString kToken = QString(64, QLatin1Char('a'));
    inline static const QString kOtherToken = QString(64, QLatin1Char('b'));

    struct Delivered
    {
        QString token;
        qint64 id;
        QByteArray userInfo;
    };

    void SetUp() override
    {
        QString error;
        location = emptyForum(GetParam(), folder);
        database = ForumDatabase::open(location, &error);
        ASSERT_TRUE(database) << error.toStdString();
        // The forum's schema holds the meta table the gateway keeps its epoch in.
        store = std::make_unique<PushGatewayStore>(*database);
        router = std::make_unique<PushGatewayRouter>(
            *store, kSecret, PushGatewayRouter::Policies{2, 1}, [] { return kNow; },
            [this](const QString &token, qint64 id, const QByteArray &userInfo) { delivered.append({token, id, userInfo}); });
    }

    GatewayReply post(const QString &path, const QJsonObject &body, const QByteArray &authorization = {})
    {
        return router->handle("POST", path, authorization, QJsonDocument(body).toJson(QJsonDocument::Compact));
    }

    static QJsonObject device(const QString &token, const QJsonObject &extra = {})
    {
        QJsonObject body{{QStringLiteral("header"), QJsonObject{{QStringLiteral("appkey"), QStringLiteral("k")}}},
                         {QStringLiteral("device_token"), token}};
        for (auto it = extra.begin(); it != extra.end(); ++it)
            body.insert(it.key(), it.value());
        return body;
    }

    QTemporaryDir folder;
    QString location;
    std::unique_ptr<ForumDatabase> database;
    std::unique_ptr<PushGatewayStore> store;
    std::unique_ptr<PushGatewayRouter> router;
    QList<Delivered> delivered;
};
