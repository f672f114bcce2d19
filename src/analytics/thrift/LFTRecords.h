#pragma once
// The log records the analytics component sends and the reply it reads, with their field ids,
// types and required flags. Plain values; any thread.

#include "LFTBinaryProtocol.h"
#include "LFTRecordCodec.h"

#include <QByteArray>
#include <QList>
#include <QString>

#include <cstdint>

class LFTClientStats
{
    LFT_FIELD(LFTClientStats, 1, int32_t, successful_requests, Successful_requests, true)
    LFT_FIELD(LFTClientStats, 2, int32_t, failed_requests, Failed_requests, true)
    LFT_FIELD(LFTClientStats, 3, int32_t, last_request_spent_ms, Last_request_spent_ms, false)
    LFT_RECORD(LFTClientStats, "ClientStats", successful_requestsField(), failed_requestsField(),
               last_request_spent_msField())
};

class LFTAppInfo
{
    LFT_FIELD(LFTAppInfo, 1, QString, key, Key, true)
    LFT_FIELD(LFTAppInfo, 2, QString, version, Version, false)
    LFT_FIELD(LFTAppInfo, 3, int32_t, version_index, Version_index, false)
    LFT_FIELD(LFTAppInfo, 4, QString, package_name, Package_name, false)
    LFT_FIELD(LFTAppInfo, 5, int32_t, sdk_type, Sdk_type, true)
    LFT_FIELD(LFTAppInfo, 6, QString, sdk_version, Sdk_version, true)
    LFT_FIELD(LFTAppInfo, 7, QString, channel, Channel, true)
    LFT_FIELD(LFTAppInfo, 8, QString, wrapper_type, Wrapper_type, false)
    LFT_FIELD(LFTAppInfo, 9, QString, wrapper_version, Wrapper_version, false)
    LFT_FIELD(LFTAppInfo, 10, int32_t, vertical_type, Vertical_type, false)
    LFT_RECORD(LFTAppInfo, "AppInfo", keyField(), versionField(), version_indexField(),
               package_nameField(), sdk_typeField(), sdk_versionField(), channelField(),
               wrapper_typeField(), wrapper_versionField(), vertical_typeField())
};

class LFTResolution
{
    LFT_FIELD(LFTResolution, 1, int32_t, height, Height, true)
    LFT_FIELD(LFTResolution, 2, int32_t, width, Width, true)
    LFT_RECORD(LFTResolution, "Resolution", heightField(), widthField())
};

class LFTDeviceInfo
{
    LFT_FIELD(LFTDeviceInfo, 1, QString, device_id, Device_id, false)
    LFT_FIELD(LFTDeviceInfo, 2, QString, idmd5, Idmd5, false)
    LFT_FIELD(LFTDeviceInfo, 3, QString, mac_address, Mac_address, false)
    LFT_FIELD(LFTDeviceInfo, 4, QString, open_udid, Open_udid, false)
    LFT_FIELD(LFTDeviceInfo, 5, QString, model, Model, false)
    LFT_FIELD(LFTDeviceInfo, 6, QString, cpu, Cpu, false)
    LFT_FIELD(LFTDeviceInfo, 7, QString, os, Os, false)
    LFT_FIELD(LFTDeviceInfo, 8, QString, os_version, Os_version, false)
    LFT_FIELD(LFTDeviceInfo, 9, LFTResolution, resolution, Resolution, false)
    LFT_FIELD(LFTDeviceInfo, 10, bool, is_jailbroken, Is_jailbroken, false)
    LFT_FIELD(LFTDeviceInfo, 12, QString, device_board, Device_board, false)
    LFT_FIELD(LFTDeviceInfo, 13, QString, device_brand, Device_brand, false)
    LFT_FIELD(LFTDeviceInfo, 14, int64_t, device_manutime, Device_manutime, false)
    LFT_FIELD(LFTDeviceInfo, 15, QString, device_manufacturer, Device_manufacturer, false)
    LFT_FIELD(LFTDeviceInfo, 16, QString, device_manuid, Device_manuid, false)
    LFT_FIELD(LFTDeviceInfo, 17, QString, device_name, Device_name, false)
    LFT_RECORD(LFTDeviceInfo, "DeviceInfo", device_idField(), idmd5Field(), mac_addressField(),
               open_udidField(), modelField(), cpuField(), osField(), os_versionField(),
               resolutionField(), is_jailbrokenField(), device_boardField(), device_brandField(),
               device_manutimeField(), device_manufacturerField(), device_manuidField(),
               device_nameField())
};

class LFTMiscInfo
{
    LFT_FIELD(LFTMiscInfo, 1, int32_t, time_zone, Time_zone, false)
    LFT_FIELD(LFTMiscInfo, 2, QString, language, Language, false)
    LFT_FIELD(LFTMiscInfo, 3, QString, country, Country, false)
    LFT_FIELD(LFTMiscInfo, 4, double, latitude, Latitude, false)
    LFT_FIELD(LFTMiscInfo, 5, double, longitude, Longitude, false)
    LFT_FIELD(LFTMiscInfo, 6, QString, carrier, Carrier, false)
    LFT_FIELD(LFTMiscInfo, 7, int32_t, latency, Latency, false)
    LFT_FIELD(LFTMiscInfo, 8, QString, display_name, Display_name, false)
    LFT_FIELD(LFTMiscInfo, 9, int32_t, access_type, Access_type, false)
    LFT_FIELD(LFTMiscInfo, 10, QString, access_subtype, Access_subtype, false)
    LFT_RECORD(LFTMiscInfo, "MiscInfo", time_zoneField(), languageField(), countryField(),
               latitudeField(), longitudeField(), carrierField(), latencyField(),
               display_nameField(), access_typeField(), access_subtypeField())
};

class LFTActivateMsg
{
    LFT_FIELD(LFTActivateMsg, 1, int64_t, ts, Ts, true)
    LFT_RECORD(LFTActivateMsg, "ActivateMsg", tsField())
};

class LFTError
{
    LFT_FIELD(LFTError, 1, int64_t, ts, Ts, true)
    LFT_FIELD(LFTError, 2, QString, context, Context, true)
    LFT_FIELD(LFTError, 3, int32_t, source, Source, false)
    LFT_RECORD(LFTError, "Error", tsField(), contextField(), sourceField())
};

class LFTPropertyValue
{
    LFT_FIELD(LFTPropertyValue, 1, QString, string_value, String_value, false)
    LFT_FIELD(LFTPropertyValue, 2, int64_t, long_value, Long_value, false)
    LFT_RECORD(LFTPropertyValue, "PropertyValue", string_valueField(), long_valueField())
};

using LFTPropertyMap = LFTFlatMap<QString, LFTPropertyValue>;

class LFTEvent
{
    LFT_FIELD(LFTEvent, 1, QString, name, Name, true)
    LFT_FIELD(LFTEvent, 2, LFTPropertyMap, properties, Properties, true)
    LFT_FIELD(LFTEvent, 3, int64_t, duration, Duration, false)
    LFT_FIELD(LFTEvent, 4, int32_t, acc, Acc, false)
    LFT_FIELD(LFTEvent, 5, int64_t, ts, Ts, true)
    LFT_RECORD(LFTEvent, "Event", nameField(), propertiesField(), durationField(), accField(),
               tsField())
};

using LFTErrorList = QList<LFTError>;
using LFTEventList = QList<LFTEvent>;

class LFTInstantMsg
{
    LFT_FIELD(LFTInstantMsg, 1, QString, id, Id, true)
    LFT_FIELD(LFTInstantMsg, 2, LFTErrorList, errors, Errors, false)
    LFT_FIELD(LFTInstantMsg, 3, LFTEventList, events, Events, false)
    LFT_FIELD(LFTInstantMsg, 4, LFTEventList, game_events, Game_events, false)
    LFT_RECORD(LFTInstantMsg, "InstantMsg", idField(), errorsField(), eventsField(),
               game_eventsField())
};

class LFTPage
{
    LFT_FIELD(LFTPage, 1, QString, page_name, Page_name, true)
    LFT_FIELD(LFTPage, 2, int64_t, duration, Duration, true)
    LFT_RECORD(LFTPage, "Page", page_nameField(), durationField())
};

class LFTLocation
{
    LFT_FIELD(LFTLocation, 1, double, lat, Lat, true)
    LFT_FIELD(LFTLocation, 2, double, lng, Lng, true)
    LFT_FIELD(LFTLocation, 3, int64_t, ts, Ts, true)
    LFT_RECORD(LFTLocation, "Location", latField(), lngField(), tsField())
};

class LFTTraffic
{
    LFT_FIELD(LFTTraffic, 1, int32_t, upload_traffic, Upload_traffic, true)
    LFT_FIELD(LFTTraffic, 2, int32_t, download_traffic, Download_traffic, true)
    LFT_RECORD(LFTTraffic, "Traffic", upload_trafficField(), download_trafficField())
};

using LFTPageList = QList<LFTPage>;
using LFTLocationList = QList<LFTLocation>;

class LFTSession
{
    LFT_FIELD(LFTSession, 1, QString, id, Id, true)
    LFT_FIELD(LFTSession, 2, int64_t, start_time, Start_time, true)
    LFT_FIELD(LFTSession, 3, int64_t, end_time, End_time, true)
    LFT_FIELD(LFTSession, 4, int64_t, duration, Duration, true)
    LFT_FIELD(LFTSession, 5, LFTPageList, pages, Pages, false)
    LFT_FIELD(LFTSession, 6, LFTLocationList, locations, Locations, false)
    LFT_FIELD(LFTSession, 7, LFTTraffic, traffic, Traffic, false)
    LFT_RECORD(LFTSession, "Session", idField(), start_timeField(), end_timeField(),
               durationField(), pagesField(), locationsField(), trafficField())
};

class LFTImprintValue
{
    LFT_FIELD(LFTImprintValue, 1, QString, value, Value, false)
    LFT_FIELD(LFTImprintValue, 2, int64_t, ts, Ts, true)
    LFT_FIELD(LFTImprintValue, 3, QString, guid, Guid, true)
    LFT_RECORD(LFTImprintValue, "ImprintValue", valueField(), tsField(), guidField())
};

using LFTImprintMap = LFTFlatMap<QString, LFTImprintValue>;

class LFTImprint
{
    LFT_FIELD(LFTImprint, 1, LFTImprintMap, property, Property, true)
    LFT_FIELD(LFTImprint, 2, int32_t, version, Version, true)
    LFT_FIELD(LFTImprint, 3, QString, checksum, Checksum, true)
    LFT_RECORD(LFTImprint, "Imprint", propertyField(), versionField(), checksumField())
};

class LFTIdSnapshot
{
    LFT_FIELD(LFTIdSnapshot, 1, QString, identity, Identity, true)
    LFT_FIELD(LFTIdSnapshot, 2, int64_t, ts, Ts, true)
    LFT_FIELD(LFTIdSnapshot, 3, int32_t, version, Version, true)
    LFT_RECORD(LFTIdSnapshot, "IdSnapshot", identityField(), tsField(), versionField())
};

class LFTIdJournal
{
    LFT_FIELD(LFTIdJournal, 1, QString, domain, Domain, true)
    LFT_FIELD(LFTIdJournal, 2, QString, old_id, Old_id, false)
    LFT_FIELD(LFTIdJournal, 3, QString, new_id, New_id, true)
    LFT_FIELD(LFTIdJournal, 4, int64_t, ts, Ts, true)
    LFT_RECORD(LFTIdJournal, "IdJournal", domainField(), old_idField(), new_idField(), tsField())
};

using LFTIdSnapshotMap = LFTFlatMap<QString, LFTIdSnapshot>;
using LFTIdJournalList = QList<LFTIdJournal>;

class LFTIdTracking
{
    LFT_FIELD(LFTIdTracking, 1, LFTIdSnapshotMap, snapshots, Snapshots, true)
    LFT_FIELD(LFTIdTracking, 2, LFTIdJournalList, journals, Journals, false)
    LFT_FIELD(LFTIdTracking, 3, QString, checksum, Checksum, false)
    LFT_RECORD(LFTIdTracking, "IdTracking", snapshotsField(), journalsField(), checksumField())
};

class LFTActiveUser
{
    LFT_FIELD(LFTActiveUser, 1, QString, provider, Provider, true)
    LFT_FIELD(LFTActiveUser, 2, QString, puid, Puid, true)
    LFT_RECORD(LFTActiveUser, "ActiveUser", providerField(), puidField())
};

class LFTLatent
{
    LFT_FIELD(LFTLatent, 1, int32_t, latency, Latency, true)
    LFT_FIELD(LFTLatent, 2, int64_t, interval, Interval, true)
    LFT_RECORD(LFTLatent, "Latent", latencyField(), intervalField())
};

class LFTControlPolicy
{
    LFT_FIELD(LFTControlPolicy, 1, LFTLatent, latent, Latent, false)
    LFT_RECORD(LFTControlPolicy, "ControlPolicy", latentField())
};

using LFTInstantMsgList = QList<LFTInstantMsg>;
using LFTSessionList = QList<LFTSession>;
using LFTGroupInfo = LFTFlatMap<QString, int32_t>;

class LFTUALogEntry
{
    LFT_FIELD(LFTUALogEntry, 1, LFTClientStats, client_stats, Client_stats, true)
    LFT_FIELD(LFTUALogEntry, 2, LFTAppInfo, app_info, App_info, true)
    LFT_FIELD(LFTUALogEntry, 3, LFTDeviceInfo, device_info, Device_info, true)
    LFT_FIELD(LFTUALogEntry, 4, LFTMiscInfo, misc_info, Misc_info, true)
    LFT_FIELD(LFTUALogEntry, 5, LFTActivateMsg, activate_msg, Activate_msg, false)
    LFT_FIELD(LFTUALogEntry, 6, LFTInstantMsgList, instant_msgs, Instant_msgs, false)
    LFT_FIELD(LFTUALogEntry, 7, LFTSessionList, sessions, Sessions, false)
    LFT_FIELD(LFTUALogEntry, 8, LFTImprint, imprint, Imprint, false)
    LFT_FIELD(LFTUALogEntry, 9, LFTIdTracking, id_tracking, Id_tracking, false)
    LFT_FIELD(LFTUALogEntry, 10, LFTActiveUser, active_user, Active_user, false)
    LFT_FIELD(LFTUALogEntry, 11, LFTControlPolicy, control_policy, Control_policy, false)
    LFT_FIELD(LFTUALogEntry, 12, LFTGroupInfo, group_info, Group_info, false)
    LFT_RECORD(LFTUALogEntry, "UALogEntry", client_statsField(), app_infoField(),
               device_infoField(), misc_infoField(), activate_msgField(), instant_msgsField(),
               sessionsField(), imprintField(), id_trackingField(), active_userField(),
               control_policyField(), group_infoField())
};

class LFTResponse
{
    LFT_FIELD(LFTResponse, 1, int32_t, resp_code, Resp_code, true)
    LFT_FIELD(LFTResponse, 2, QString, msg, Msg, false)
    LFT_FIELD(LFTResponse, 3, LFTImprint, imprint, Imprint, false)
    LFT_RECORD(LFTResponse, "Response", resp_codeField(), msgField(), imprintField())
};

// Encodes a record into fresh bytes with the binary protocol.
template <LFTRecordType Record> QByteArray LFTEncode(const Record &record)
{
    LFTMemoryBuffer buffer;
    LFTBinaryProtocol protocol(&buffer);
    record.write(protocol);
    return buffer.getBuffer();
}

// Decodes a record from bytes; throws LFTException on malformed data.
template <LFTRecordType Record> Record LFTDecode(const QByteArray &bytes)
{
    LFTMemoryBuffer buffer(bytes);
    LFTBinaryProtocol protocol(&buffer);
    Record record;
    record.read(protocol);
    return record;
}
