#include "LFPNetworkLogic.h"

#include "GatewayUrl.h"
#include "LFPHeader.h"
#include "LFPInstallation.h"
#include "LFPushKeys.h"
#include "LFPushOptions.h"
#include "LFPushUtils.h"
#include "UserDefaults.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QNetworkRequest>

namespace {

constexpr int kTimeoutMs = 60'000;
const QByteArray kContentType = QByteArrayLiteral("application/json;charset=utf-8");
const QString kSuccessKey = QStringLiteral("success");
const QString kErrorsKey = QStringLiteral("errors");

} // namespace

LFPNetworkLogic::LFPNetworkLogic(const LFPushOptions &options, LFPInstallation &installation)
    : m_options(options)
    , m_installation(installation)
    , m_network(std::make_unique<QNetworkAccessManager>())
{
    m_network->setTransferTimeout(kTimeoutMs);
}

LFPNetworkLogic::~LFPNetworkLogic()
{
    // Answers still on their way are dropped: their handlers refer to this object.
    for (QNetworkReply *reply : m_network->findChildren<QNetworkReply *>())
        reply->disconnect();
}

QString LFPNetworkLogic::tokenText(const QByteArray &token)
{
    return token.isEmpty() ? QString(kTokenHexLength, QLatin1Char('0')) : LFPushUtils::hexText(token);
}

QString LFPNetworkLogic::urlFor(const char *path) const
{
    return GatewayUrl::join(m_options.pushUrl, QString::fromLatin1(path));
}

void LFPNetworkLogic::sendRegister(const QByteArray &token, Response response)
{
    sendToken(token, true, std::move(response));
}

void LFPNetworkLogic::sendLaunch(const QByteArray &token, Response response)
{
    sendToken(token, false, std::move(response));
}

void LFPNetworkLogic::sendToken(const QByteArray &token, bool isRegister, Response response)
{
    const QJsonObject parameters{{QStringLiteral("header"), LFPHeader::dictionary(m_installation, m_options)},
                                 {QStringLiteral("device_token"), tokenText(token)}};
    LFPushUtils::outLog(QStringLiteral("register param [%1]").arg(LFPushUtils::jsonText(parameters)));
    post(urlFor(isRegister ? "/register" : "/launch"), parameters,
         [this, token, isRegister, response = std::move(response)](const QJsonObject &answer, const QString &error) {
             if (error.isEmpty())
                 tokenReported(token, isRegister, answer);
             else
                 LFPushUtils::outLog(QStringLiteral("register error [%1] object[%2]")
                                         .arg(error, LFPushUtils::jsonText(answer)));
             if (response)
                 response(answer, error);
         });
}

void LFPNetworkLogic::tokenReported(const QByteArray &token, bool isRegister, const QJsonObject &answer)
{
    const QString hex = LFPushUtils::hexText(token);
    if (isRegister)
        LFPushUtils::outLog(QStringLiteral("register ok for token [%1]!").arg(hex));
    else if (token.isEmpty())
        LFPushUtils::outLog(QStringLiteral("launch ok!"));
    else
        LFPushUtils::outLog(QStringLiteral("launch ok for token [%1]!").arg(hex));

    UserDefaults &defaults = *m_options.defaults;
    if (answer.value(QStringLiteral("launch_policy")).isDouble())
        defaults.setObject(answer.value(QStringLiteral("launch_policy")).toInt(), LFPushKeys::kReportPolicy);
    if (answer.value(QStringLiteral("tag_policy")).isDouble())
        m_installation.tagPolicy = answer.value(QStringLiteral("tag_policy")).toInt();
    defaults.removeObjectForKey(LFPushKeys::kLocation);
    defaults.setObject(m_options.clock->dateText(), isRegister ? LFPushKeys::kLatestDate : LFPushKeys::kLatestLaunchDate);
    defaults.synchronize();
}

void LFPNetworkLogic::sendClickMsgId(const QString &msgId, double ts, std::function<void(bool sent)> finish)
{
    QJsonObject parameters = bodyWithToken();
    parameters.insert(QStringLiteral("msg_id"), msgId);
    parameters.insert(QStringLiteral("ts"), ts);
    parameters.insert(QStringLiteral("action"), QStringLiteral("click"));
    post(urlFor("/push_logs"), parameters, [finish = std::move(finish)](const QJsonObject &, const QString &error) {
        if (finish)
            finish(error.isEmpty());
    });
}

QJsonObject LFPNetworkLogic::bodyWithToken() const
{
    return {{QStringLiteral("header"), LFPHeader::dictionary(m_installation, m_options)},
            {QStringLiteral("device_token"),
             m_installation.deviceToken.isEmpty() ? tokenText({}) : m_installation.deviceToken}};
}

void LFPNetworkLogic::getTags(Response response)
{
    sendTags("/tag/get", "get", QString(), false, std::move(response));
}

void LFPNetworkLogic::addTag(const QString &tag, Response response)
{
    sendTags("/tag/add", "add", tag, true, std::move(response));
}

void LFPNetworkLogic::removeTag(const QString &tag, Response response)
{
    sendTags("/tag/delete", "remove", tag, true, std::move(response));
}

void LFPNetworkLogic::removeAllTags(Response response)
{
    sendTags("/tag/reset", "reset", QString(), false, std::move(response));
}

void LFPNetworkLogic::sendTags(const char *path, const char *verb, const QString &tag, bool withTags,
                               Response response)
{
    if (m_installation.deviceToken.isEmpty()) {
        const QString message = QStringLiteral("%1 tag[%2] error token nil").arg(QLatin1String(verb), tag);
        LFPushUtils::outLog(message);
        if (response)
            response({}, message);
        return;
    }
    QJsonObject parameters = bodyWithToken();
    if (withTags)
        parameters.insert(QStringLiteral("tags"), QJsonArray{tag});
    post(urlFor(path), parameters, std::move(response));
}

void LFPNetworkLogic::addAlias(const QString &name, const QString &type, Response response)
{
    sendAlias("/alias", "addAlias", name, type, std::move(response));
}

void LFPNetworkLogic::setAlias(const QString &name, const QString &type, Response response)
{
    sendAlias("/alias/set", "setAlias", name, type, std::move(response));
}

void LFPNetworkLogic::removeAlias(const QString &name, const QString &type, Response response)
{
    sendAlias("/alias/delete", "removeAlias", name, type, std::move(response));
}

void LFPNetworkLogic::sendAlias(const char *path, const char *operation, const QString &name,
                                const QString &type, Response response)
{
    QString refusal;
    if (m_installation.deviceToken.isEmpty())
        refusal = QStringLiteral("%1 error token nil").arg(QLatin1String(operation));
    else if (name.isEmpty())
        refusal = QStringLiteral("error:name is nil");
    if (!refusal.isEmpty()) {
        LFPushUtils::outLog(refusal);
        if (response)
            response({}, refusal);
        return;
    }
    if (type.isEmpty())
        LFPushUtils::outLog(QStringLiteral("warning: type is nil"));
    QJsonObject parameters = bodyWithToken();
    parameters.insert(QStringLiteral("alias"), name);
    parameters.insert(QStringLiteral("type"), type);
    post(urlFor(path), parameters, std::move(response));
}

void LFPNetworkLogic::post(const QString &url, const QJsonObject &parameters, Response response)
{
    if (url.isEmpty() || parameters.isEmpty()) {
        const QString message = QStringLiteral("requestWithUrl:url or parameters nil");
        LFPushUtils::outLog(message);
        if (response)
            response({}, message);
        return;
    }
    QNetworkRequest request{QUrl(url)};
    request.setRawHeader("Content-type", kContentType);
    QNetworkReply *reply = m_network->post(request, QJsonDocument(parameters).toJson(QJsonDocument::Compact));
    QObject::connect(reply, &QNetworkReply::finished, reply, [reply, response = std::move(response)] {
        reply->deleteLater();
        const QByteArray body = reply->readAll();
        const QString networkError = reply->error() == QNetworkReply::NoError ? QString() : reply->errorString();
        QJsonObject answer;
        QString error;
        if (body.isEmpty() && networkError.isEmpty()) {
            error = QStringLiteral("error,responseString nil,error nil?");
            LFPushUtils::outLog(error);
        } else if (const QJsonDocument document = QJsonDocument::fromJson(body); document.isObject()) {
            answer = document.object();
            if (answer.contains(kErrorsKey)) {
                error = LFPushUtils::jsonText(answer.value(kErrorsKey));
            } else if (!answer.contains(kSuccessKey)) {
                error = QStringLiteral("responseDic didn't find success or errors [%1]").arg(LFPushUtils::jsonText(answer));
                LFPushUtils::outLog(error);
            }
        } else {
            error = networkError.isEmpty() ? QStringLiteral("responseDic didn't find success or errors [%1]")
                                                 .arg(QString::fromUtf8(body.left(200)))
                                           : networkError;
            if (networkError.isEmpty())
                LFPushUtils::outLog(error);
        }
        if (response)
            response(answer, error);
    });
}
