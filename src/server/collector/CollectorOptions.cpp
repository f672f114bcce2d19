#include "CollectorOptions.h"

namespace {
const QString kPortOption = QStringLiteral("analytics-port");

struct ImprintOption
{
    const char *option;
    const char *key;
    const char *help;
};
constexpr ImprintOption kImprintOptions[] = {
    {"imprint-report-policy", "report_policy", "Report policy the collector's imprint asks for (0, 1, 6 or 8)."},
    {"imprint-report-interval", "report_interval", "Send interval in seconds the imprint asks for."},
    {"imprint-defcon", "defcon", "Back-off level the imprint asks for (0 to 3; more means 0)."},
    {"imprint-codex", "codex", "1 asks clients to encrypt their envelopes, 0 not to."},
    {"imprint-latent-hours", "latent_hours", "Hours without a post after which clients delay their send."},
};
} // namespace

QList<QCommandLineOption> CollectorOptions::commandLineOptions()
{
    QList<QCommandLineOption> options{
        QCommandLineOption(kPortOption,
                           QStringLiteral("TCP port of the analytics log collector (default %1); 0 picks a "
                                          "free one. The second line on stdout names its root.")
                               .arg(kDefaultPort),
                           QStringLiteral("port"), QString::number(kDefaultPort))};
    for (const ImprintOption &imprint : kImprintOptions)
        options.append(QCommandLineOption(QString::fromLatin1(imprint.option), QString::fromLatin1(imprint.help),
                                          QStringLiteral("value")));
    return options;
}

std::optional<CollectorOptions> CollectorOptions::fromParser(const QCommandLineParser &parser, QString *error)
{
    CollectorOptions options;
    bool ok = false;
    const int port = parser.value(kPortOption).toInt(&ok);
    if (!ok || port < 0 || port > 65535) {
        *error = QStringLiteral("--%1 needs a whole number from 0 to 65535\n").arg(kPortOption);
        return std::nullopt;
    }
    options.port = quint16(port);
    for (const ImprintOption &imprint : kImprintOptions) {
        const QString name = QString::fromLatin1(imprint.option);
        if (!parser.isSet(name))
            continue;
        const QString value = parser.value(name);
        value.toLongLong(&ok);
        if (!ok) {
            *error = QStringLiteral("--%1 needs a whole number\n").arg(name);
            return std::nullopt;
        }
        options.imprint.insert(QString::fromLatin1(imprint.key), value);
    }
    return options;
}
