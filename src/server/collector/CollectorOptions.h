#pragma once
// The collector's settings from quorvel-server's command line: the analytics port and the
// imprint every accepted upload is answered with. Plain data; any thread.

#include <QCommandLineOption>
#include <QCommandLineParser>
#include <QList>
#include <QMap>
#include <QString>

#include <optional>

struct CollectorOptions
{
    static constexpr quint16 kDefaultPort = 8081;
    static constexpr int kImprintVersion = 1;

    quint16 port = kDefaultPort;
    // Imprint keys ("report_policy", "report_interval", "defcon", "codex", "latent_hours") and
    // their values; only those given are sent.
    QMap<QString, QString> imprint;

    // The options quorvel-server offers for the collector.
    static QList<QCommandLineOption> commandLineOptions();
    // Reads them back; nothing, with `error` set, when a value is out of range.
    static std::optional<CollectorOptions> fromParser(const QCommandLineParser &parser, QString *error);
};
