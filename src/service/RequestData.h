#pragma once
// The one place the forum client talks HTTP: enciphers a request's JSON text, sends it as
// a GET or POST to the API root, and unwraps the enciphered answer down to its "RData"
// payload. Failures are logged and reach no handler. Main thread: call it there; handlers
// run there.

#include "HttpSessionManager.h"

#include <QJsonValue>
#include <QString>
#include <QVariant>

#include <functional>

class RequestData
{
public:
    RequestData() = delete;

    // (the finished task, the answer's RData value: Undefined when absent)
    using SuccessBlock = std::function<void(const HttpTask &task, const QJsonValue &payload)>;
    // Accepted for the interface; never called.
    using FailBlock = std::function<void(const HttpTask &task, const HttpError &error)>;

    // Plain GET of a full URL; also accepts text/html answers.
    static void requestWith(const QString &url, const QVariant &parameters,
                            SuccessBlock successBlock, FailBlock andFailBlock);
    // Enciphered GET: API root + endpoint + Base64 payload, appended literally.
    static void requesEncodetWith(const QString &jsonText, const QVariant &parameters,
                                  SuccessBlock successBlock, FailBlock andFailBlock,
                                  const QString &string);
    // Enciphered POST: the same URL, and the payload again as the form body "=<escaped>".
    static void requesPostWith(const QString &jsonText, const QVariant &parameters,
                               SuccessBlock successBlock, FailBlock andFailBlock,
                               const QString &string);

    // API root + endpoint + the enciphered payload (absent payload adds nothing).
    static QString encodedUrl(const QString &jsonText, const QString &endpoint);
    // The payload of an answer body: Data deciphered, parsed, its RData taken.
    static QJsonValue unwrapPayload(const QJsonValue &responseObject);
};
