#include "LFTRecords.h"

#include "LFTBinaryProtocol.h"

LFT_RECORD_DEFINE(LFTClientStats)
LFT_RECORD_DEFINE(LFTAppInfo)
LFT_RECORD_DEFINE(LFTResolution)
LFT_RECORD_DEFINE(LFTDeviceInfo)
LFT_RECORD_DEFINE(LFTMiscInfo)
LFT_RECORD_DEFINE(LFTActivateMsg)
LFT_RECORD_DEFINE(LFTError)
LFT_RECORD_DEFINE(LFTPropertyValue)
LFT_RECORD_DEFINE(LFTEvent)
LFT_RECORD_DEFINE(LFTInstantMsg)
LFT_RECORD_DEFINE(LFTPage)
LFT_RECORD_DEFINE(LFTLocation)
LFT_RECORD_DEFINE(LFTTraffic)
LFT_RECORD_DEFINE(LFTSession)
LFT_RECORD_DEFINE(LFTImprintValue)
LFT_RECORD_DEFINE(LFTImprint)
LFT_RECORD_DEFINE(LFTIdSnapshot)
LFT_RECORD_DEFINE(LFTIdJournal)
LFT_RECORD_DEFINE(LFTIdTracking)
LFT_RECORD_DEFINE(LFTActiveUser)
LFT_RECORD_DEFINE(LFTLatent)
LFT_RECORD_DEFINE(LFTControlPolicy)
LFT_RECORD_DEFINE(LFTUALogEntry)
LFT_RECORD_DEFINE(LFTResponse)

template <typename Record> QByteArray LFTEncode(const Record &record)
{
    LFTMemoryBuffer buffer;
    LFTBinaryProtocol protocol(&buffer);
    record.write(protocol);
    return buffer.getBuffer();
}

template <typename Record> Record LFTDecode(const QByteArray &bytes)
{
    LFTMemoryBuffer buffer(bytes);
    LFTBinaryProtocol protocol(&buffer);
    Record record;
    record.read(protocol);
    return record;
}

#define LFT_CODEC_INSTANCES(Record)                                                                \
    template QByteArray LFTEncode<Record>(const Record &);                                          \
    template Record LFTDecode<Record>(const QByteArray &);

LFT_CODEC_INSTANCES(LFTUALogEntry)
LFT_CODEC_INSTANCES(LFTResponse)
LFT_CODEC_INSTANCES(LFTImprint)
LFT_CODEC_INSTANCES(LFTEvent)
LFT_CODEC_INSTANCES(LFTSession)
