#pragma once
// Reads and checks the JSON bodies the gateway accepts: the device reports, tag and alias
// calls and click reports of the push component, and the operator's send request. Anything
// malformed gives a reason and no request. Stateless; any thread.

#include "PushGatewayStore.h"

#include <QByteArray>
#include <QJsonObject>
#include <QString>
#include <QStringList>

#include <optional>

class PushGatewayRequest
{
public:
    PushGatewayRequest() = delete;

    static constexpr int kTokenHexLength = 64;
    static constexpr int kMaxNameLength = 128;   // a tag, an alias, its type, a message id
    static constexpr int kMaxTags = 64;
    static constexpr int kMaxUserInfoBytes = 4096;  // as the phone's notification service

    enum class Kind { Register, Launch, PushLogs, TagGet, TagAdd, TagDelete, TagReset, AliasAdd, AliasSet, AliasDelete };

    struct Device
    {
        QString deviceToken;  // lower-case hex; all "0" when the client has none
        QJsonObject header;
        QStringList tags;
        QString alias;
        QString type;
        QString msgId;
        double ts = 0;
    };

    struct Send
    {
        PushGatewayStore::Target target;
        QJsonObject userInfo;
        QString msgId;
    };

    template<typename T>
    struct Parsed
    {
        std::optional<T> request;
        QString error;
    };

    // The kind of a path below the gateway's root ("/register", "/tag/add", ...).
    static std::optional<Kind> kindForPath(const QString &path);
    static Parsed<Device> parseDevice(Kind kind, const QByteArray &body);
    static Parsed<Send> parseSend(const QByteArray &body);

    static bool isWellFormedToken(const QString &token);
    static bool isNoToken(const QString &token);
};
