#pragma once
// Reads an envelope as the log endpoint does: checks its checksum, decrypts it with the key its
// signature gives when codex is 1, inflates it, checks its length and decodes the log entry.
// Stateless; any thread.

#include "LFEnvelope.h"
#include "LFTRecords.h"

#include <QByteArray>
#include <QString>

#include <optional>

class LFEnvelopeOpener
{
public:
    LFEnvelopeOpener() = delete;

    struct Opened
    {
        LFEnvelope envelope;
        QByteArray entryBytes;     // the encoded log entry
        LFTUALogEntry entry;
    };
    struct Result
    {
        std::optional<Opened> opened;
        QString problem;           // why not, when nothing was opened
    };

    static Result open(const QByteArray &bytes);
    // The envelope record alone, or nothing when the bytes are not one.
    static std::optional<LFEnvelope> decodeEnvelope(const QByteArray &bytes, QString *problem = nullptr);
};
