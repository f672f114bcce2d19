// One forum request end to end on loopback: payload built from records, enciphered, sent
// over HTTP to quorvel-server, deciphered, parsed and filled into records; against curl
// fetching the same URL (one curl process, keep-alive, so only the requests are timed).

#include "ForumPayloads.h"
#include "HttpRequest.h"
#include "JsonChangDic.h"
#include "PostModel.h"
#include "ServiceConfig.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QJsonArray>
#include <QProcess>
#include <QTemporaryDir>

#include <algorithm>
#include <cstdio>
#include <vector>

namespace {

constexpr int kRequests = 300;
constexpr int kWarmUp = 20;

QString startServer(QProcess &server, const QTemporaryDir &dir)
{
    server.start(QStringLiteral(QUORVEL_SERVER_BINARY),
                 {QStringLiteral("--port"), QStringLiteral("0"), QStringLiteral("--db"),
                  dir.filePath(QStringLiteral("forum.sqlite"))});
    server.setReadChannel(QProcess::StandardOutput);
    while (server.waitForReadyRead(30000)) {
        while (server.canReadLine()) {
            const QString line = QString::fromUtf8(server.readLine());
            const qsizetype at = line.indexOf(QStringLiteral("http://"));
            if (at >= 0)
                return line.mid(at).trimmed();
        }
    }
    return {};
}

// Mean microseconds per request through the client, answered one after another.
double clientMicros(const QString &payload, int count)
{
    int done = 0;
    std::vector<PostModel> topics;
    QElapsedTimer timer;
    timer.start();
    std::function<void()> next = [&] {
        HttpRequest::GetTopicsSuccessBlock(
            [&](const HttpTask &, const QJsonValue &answer) {
                topics.clear();
                for (const QJsonValue &entry : answer.toArray())
                    topics.push_back(PostModel::fromJson(entry));
                if (++done < count)
                    next();
                else
                    QCoreApplication::quit();
            },
            {}, payload);
    };
    next();
    QCoreApplication::exec();
    return double(timer.nsecsElapsed()) / 1000.0 / count;
}

double curlMicros(const QString &url, int count)
{
    QStringList args{QStringLiteral("-s"), QStringLiteral("-o"), QStringLiteral("/dev/null")};
    for (int i = 0; i < count; ++i)
        args << url;
    QProcess curl;
    QElapsedTimer timer;
    timer.start();
    curl.start(QStringLiteral("curl"), args);
    curl.waitForFinished(120000);
    return double(timer.nsecsElapsed()) / 1000.0 / count;
}

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    QTemporaryDir dir;
    QProcess server;
    const QString apiRoot = startServer(server, dir);
    if (apiRoot.isEmpty()) {
        std::fprintf(stderr, "quorvel-server did not start\n");
        return 1;
    }
    ServiceConfig::setApiRoot(apiRoot);

    ListModel board = ListModel::fromJson(QJsonObject{{QStringLiteral("sectionid"), 1}, {QStringLiteral("tagid"), 1}});
    const QString payload = JsonChangDic::jsonWithDictionary(ForumPayloads::topics(board, 1));
    const QString url = RequestData::encodedUrl(payload, QStringLiteral("GetTopics?data="));

    clientMicros(payload, kWarmUp);
    curlMicros(url, kWarmUp);
    const double client = clientMicros(payload, kRequests);
    const double curl = curlMicros(url, kRequests);
    std::printf("GetTopics page of 10 over loopback, %d sequential requests\n", kRequests);
    std::printf("  quorvel client (payload, cipher, HTTP, decipher, records): %8.1f us/request\n", client);
    std::printf("  curl, same URL, one process with keep-alive:               %8.1f us/request\n", curl);
    std::printf("  client / curl time ratio: %.2f\n", client / curl);

    server.terminate();
    server.waitForFinished(5000);
    return 0;
}
