#pragma once
// The envelope record that carries one compressed (and maybe encrypted) log entry to the
// analytics log endpoint. Plain value; any thread.

#include "LFTBinaryProtocol.h"
#include "LFTRecordCodec.h"

#include <QByteArray>
#include <QString>

#include <cstdint>

class LFEnvelope
{
    LFT_FIELD(LFEnvelope, 1, QString, version, Version, true)
    LFT_FIELD(LFEnvelope, 2, QString, address, Address, true)
    LFT_FIELD(LFEnvelope, 3, QString, signature, Signature, true)
    LFT_FIELD(LFEnvelope, 4, int32_t, serial_num, Serial_num, true)
    LFT_FIELD(LFEnvelope, 5, int32_t, ts_secs, Ts_secs, true)
    LFT_FIELD(LFEnvelope, 6, int32_t, length, Length, true)
    LFT_FIELD(LFEnvelope, 7, QByteArray, entity, Entity, true)
    LFT_FIELD(LFEnvelope, 8, QString, guid, Guid, true)
    LFT_FIELD(LFEnvelope, 9, QString, checksum, Checksum, true)
    LFT_FIELD(LFEnvelope, 10, int32_t, codex, Codex, false)
    LFT_RECORD(LFEnvelope, "LFEnvelope", versionField(), addressField(), signatureField(),
               serial_numField(), ts_secsField(), lengthField(), entityField(), guidField(),
               checksumField(), codexField())
};
