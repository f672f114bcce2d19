#pragma once
// The server's settings, read from the command line. Plain data; any thread.

#include "CollectorOptions.h"
#include "HttpLimits.h"

#include <QString>
#include <QStringList>

#include <optional>

struct ServerOptions
{
    // Defaults. Title and content lengths count UTF-16 code units, like the client's
    // composers; the content limit is generous because the client lets a body run past 800.
    static constexpr quint16 kDefaultPort = 8080;
    static constexpr int kDefaultPostIntervalSeconds = 10;
    static constexpr int kDefaultMaxBodyBytes = HttpLimits::kDefaultMaxBodyBytes;
    static constexpr int kDefaultMaxTitleLength = 30;
    static constexpr int kDefaultMaxContentLength = 2000;
    static constexpr int kMaxPageSize = 100;

    QString host = QStringLiteral("127.0.0.1");
    quint16 port = kDefaultPort;
    QString databasePath = QStringLiteral("quorvel-forum.sqlite");
    int postIntervalSeconds = kDefaultPostIntervalSeconds;
    int maxBodyBytes = kDefaultMaxBodyBytes;
    int maxTitleLength = kDefaultMaxTitleLength;
    int maxContentLength = kDefaultMaxContentLength;
    int bulkBoardTopics = 0;  // topics of the extra board seeded into a new database; 0 = none
    int pushLaunchPolicy = 0;  // the report policy the push gateway hands to clients (0, 1, 2)
    int maxHeaderBytes = HttpLimits::kDefaultMaxHeaderBytes;
    int readTimeoutSeconds = HttpLimits::kDefaultReadTimeoutSeconds;
    int idleTimeoutSeconds = HttpLimits::kDefaultIdleTimeoutSeconds;
    int maxConnections = HttpLimits::kDefaultMaxConnections;
    int threads = 0;  // HTTP pool threads; 0 = one per core, at least two
    CollectorOptions analytics;  // the analytics log collector, in the same database file

    HttpLimits httpLimits() const;
    // `threads`, with 0 read as one per core (at least two).
    int threadCount() const;
};

// The outcome of reading the command line: options to run with, or text to print and the
// exit code to leave with (help, or an argument error).
struct ServerOptionsParse
{
    std::optional<ServerOptions> options;
    QString message;
    int exitCode = 0;
};

ServerOptionsParse parseServerOptions(const QStringList &arguments);
