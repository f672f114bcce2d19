#include "PushGatewayRequest.h"

#include <QHash>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonParseError>

#include <cmath>

namespace {

using Kind = PushGatewayRequest::Kind;

bool needsRealToken(Kind kind)
{
    return kind != Kind::Launch && kind != Kind::PushLogs;
}

bool isName(const QJsonValue &value)
{
    return value.isString() && !value.toString().isEmpty()
           && value.toString().size() <= PushGatewayRequest::kMaxNameLength;
}

std::optional<QJsonObject> objectOf(const QByteArray &body, QString *error)
{
    QJsonParseError parseError{};
    const QJsonDocument document = QJsonDocument::fromJson(body, &parseError);
    if (!document.isObject()) {
        *error = QStringLiteral("the body is not a JSON object");
        return std::nullopt;
    }
    return document.object();
}

QString readTags(const QJsonObject &body, QStringList *tags)
{
    const QJsonValue value = body.value(QStringLiteral("tags"));
    if (!value.isArray() || value.toArray().isEmpty() || value.toArray().size() > PushGatewayRequest::kMaxTags)
        return QStringLiteral("tags must be a list of 1 to %1 names").arg(PushGatewayRequest::kMaxTags);
    for (const QJsonValue &tag : value.toArray()) {
        if (!isName(tag))
            return QStringLiteral("a tag must be text of 1 to %1 characters").arg(PushGatewayRequest::kMaxNameLength);
        *tags << tag.toString();
    }
    return {};
}

QString readKindFields(Kind kind, const QJsonObject &body, PushGatewayRequest::Device *device)
{
    switch (kind) {
    case Kind::TagAdd:
    case Kind::TagDelete:
        return readTags(body, &device->tags);
    case Kind::AliasAdd:
    case Kind::AliasSet:
    case Kind::AliasDelete: {
        if (!isName(body.value(QStringLiteral("alias"))))
            return QStringLiteral("alias must be text of 1 to %1 characters").arg(PushGatewayRequest::kMaxNameLength);
        const QJsonValue type = body.value(QStringLiteral("type"));
        if (!type.isUndefined() && !(type.isString() && type.toString().size() <= PushGatewayRequest::kMaxNameLength))
            return QStringLiteral("type must be text");
        device->alias = body.value(QStringLiteral("alias")).toString();
        device->type = type.toString();
        return {};
    }
    case Kind::PushLogs: {
        const QJsonValue ts = body.value(QStringLiteral("ts"));
        if (!isName(body.value(QStringLiteral("msg_id"))))
            return QStringLiteral("msg_id must be text");
        if (!ts.isDouble() || !std::isfinite(ts.toDouble()) || ts.toDouble() <= 0)
            return QStringLiteral("ts must be a positive number");
        device->msgId = body.value(QStringLiteral("msg_id")).toString();
        device->ts = ts.toDouble();
        return {};
    }
    default:
        return {};
    }
}

} // namespace

std::optional<PushGatewayRequest::Kind> PushGatewayRequest::kindForPath(const QString &path)
{
    static const QHash<QString, Kind> kinds{
        {QStringLiteral("/register"), Kind::Register},     {QStringLiteral("/launch"), Kind::Launch},
        {QStringLiteral("/push_logs"), Kind::PushLogs},    {QStringLiteral("/tag/get"), Kind::TagGet},
        {QStringLiteral("/tag/add"), Kind::TagAdd},        {QStringLiteral("/tag/delete"), Kind::TagDelete},
        {QStringLiteral("/tag/reset"), Kind::TagReset},    {QStringLiteral("/alias"), Kind::AliasAdd},
        {QStringLiteral("/alias/set"), Kind::AliasSet},    {QStringLiteral("/alias/delete"), Kind::AliasDelete},
    };
    const auto found = kinds.constFind(path);
    if (found == kinds.constEnd())
        return std::nullopt;
    return *found;
}

bool PushGatewayRequest::isWellFormedToken(const QString &token)
{
    if (token.size() != kTokenHexLength)
        return false;
    for (const QChar c : token) {
        if (!((c >= u'0' && c <= u'9') || (c >= u'a' && c <= u'f')))
            return false;
    }
    return true;
}

bool PushGatewayRequest::isNoToken(const QString &token)
{
    return token == QString(kTokenHexLength, QLatin1Char('0'));
}

PushGatewayRequest::Parsed<PushGatewayRequest::Device> PushGatewayRequest::parseDevice(Kind kind, const QByteArray &body)
{
    Parsed<Device> parsed;
    const std::optional<QJsonObject> object = objectOf(body, &parsed.error);
    if (!object)
        return parsed;
    const QJsonValue header = object->value(QStringLiteral("header"));
    if (!header.isObject()) {
        parsed.error = QStringLiteral("header must be an object");
        return parsed;
    }
    Device device;
    device.header = header.toObject();
    device.deviceToken = object->value(QStringLiteral("device_token")).toString().toLower();
    if (!isWellFormedToken(device.deviceToken)) {
        parsed.error = QStringLiteral("device_token must be %1 hexadecimal digits").arg(kTokenHexLength);
        return parsed;
    }
    if (needsRealToken(kind) && isNoToken(device.deviceToken)) {
        parsed.error = QStringLiteral("device_token is missing");
        return parsed;
    }
    parsed.error = readKindFields(kind, *object, &device);
    if (parsed.error.isEmpty())
        parsed.request = std::move(device);
    return parsed;
}

PushGatewayRequest::Parsed<PushGatewayRequest::Send> PushGatewayRequest::parseSend(const QByteArray &body)
{
    Parsed<Send> parsed;
    const std::optional<QJsonObject> object = objectOf(body, &parsed.error);
    if (!object)
        return parsed;
    const QJsonObject target = object->value(QStringLiteral("target")).toObject();
    const QJsonObject userInfo = object->value(QStringLiteral("user_info")).toObject();
    Send send;
    if (target.size() != 1) {
        parsed.error = QStringLiteral("target must name exactly one of device, tag, alias, all");
        return parsed;
    }
    const QString key = target.constBegin().key();
    const QJsonValue value = target.constBegin().value();
    if (key == QLatin1String("all") && value.toBool()) {
        send.target = {PushGatewayStore::Target::All, QString()};
    } else if (key == QLatin1String("device") && isWellFormedToken(value.toString().toLower())) {
        send.target = {PushGatewayStore::Target::Device, value.toString().toLower()};
    } else if (key == QLatin1String("tag") && isName(value)) {
        send.target = {PushGatewayStore::Target::Tag, value.toString()};
    } else if (key == QLatin1String("alias") && isName(value)) {
        send.target = {PushGatewayStore::Target::Alias, value.toString()};
    } else {
        parsed.error = QStringLiteral("target %1 is not usable").arg(key.left(kMaxNameLength));
        return parsed;
    }
    if (!isName(userInfo.value(QStringLiteral("d")))) {
        parsed.error = QStringLiteral("user_info must be an object with a message id under \"d\"");
        return parsed;
    }
    if (QJsonDocument(userInfo).toJson(QJsonDocument::Compact).size() > kMaxUserInfoBytes) {
        parsed.error = QStringLiteral("user_info is over %1 bytes").arg(kMaxUserInfoBytes);
        return parsed;
    }
    send.userInfo = userInfo;
    send.msgId = userInfo.value(QStringLiteral("d")).toString();
    parsed.request = std::move(send);
    return parsed;
}
