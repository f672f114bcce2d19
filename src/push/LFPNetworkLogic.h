#pragma once
// Sends the push component's requests: register and launch reports (and what their answers
// set), click reports, tags and aliases, all as JSON POSTs to the push message endpoint.
// Requests run asynchronously; answers come back on the main thread. Main thread.

#include <QByteArray>
#include <QJsonObject>
#include <QString>
#include <QStringList>

#include <functional>
#include <memory>

class LFPInstallation;
class QNetworkAccessManager;
struct LFPushOptions;

class LFPNetworkLogic
{
public:
    // `error` is empty when the answer carried "success".
    using Response = std::function<void(const QJsonObject &responseObject, const QString &error)>;

    static constexpr int kTokenHexLength = 64;

    LFPNetworkLogic(const LFPushOptions &options, LFPInstallation &installation);
    ~LFPNetworkLogic();

    void sendRegister(const QByteArray &token, Response response = {});
    void sendLaunch(const QByteArray &token, Response response = {});
    void sendToken(const QByteArray &token, bool isRegister, Response response);
    void sendClickMsgId(const QString &msgId, double ts, std::function<void(bool sent)> finish);

    void getTags(Response response);
    void addTag(const QString &tag, Response response);
    void removeTag(const QString &tag, Response response);
    void removeAllTags(Response response);
    void addAlias(const QString &name, const QString &type, Response response);
    void setAlias(const QString &name, const QString &type, Response response);
    void removeAlias(const QString &name, const QString &type, Response response);

    // POSTs `parameters` as JSON to `url`; the answer must be a JSON object with "success",
    // or with "errors" for a refusal.
    void post(const QString &url, const QJsonObject &parameters, Response response);

    // The token as hex text, or 64 "0" characters when there is none.
    static QString tokenText(const QByteArray &token);

private:
    QString urlFor(const char *path) const;
    QJsonObject bodyWithToken() const;
    void tokenReported(const QByteArray &token, bool isRegister, const QJsonObject &responseObject);
    void sendTags(const char *path, const char *verb, const QString &tag, bool withTags, Response response);
    void sendAlias(const char *path, const char *operation, const QString &name, const QString &type,
                   Response response);

    const LFPushOptions &m_options;
    LFPInstallation &m_installation;
    std::unique_ptr<QNetworkAccessManager> m_network;
};
