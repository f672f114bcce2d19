// The analytics log records, written independently of the client code so that Apache Thrift
// can serve as an oracle for its binary encoding. Used by tests and benchmarks only.

namespace cpp quorvel_oracle
namespace py quorvel_oracle

struct ClientStats {
  1: required i32 successful_requests
  2: required i32 failed_requests
  3: optional i32 last_request_spent_ms
}

struct AppInfo {
  1: required string key
  2: optional string version
  3: optional i32 version_index
  4: optional string package_name
  5: required i32 sdk_type
  6: required string sdk_version
  7: required string channel
  8: optional string wrapper_type
  9: optional string wrapper_version
  10: optional i32 vertical_type
}

struct Resolution {
  1: required i32 height
  2: required i32 width
}

struct DeviceInfo {
  1: optional string device_id
  2: optional string idmd5
  3: optional string mac_address
  4: optional string open_udid
  5: optional string model
  6: optional string cpu
  7: optional string os
  8: optional string os_version
  9: optional Resolution resolution
  10: optional bool is_jailbroken
  12: optional string device_board
  13: optional string device_brand
  14: optional i64 device_manutime
  15: optional string device_manufacturer
  16: optional string device_manuid
  17: optional string device_name
}

struct MiscInfo {
  1: optional i32 time_zone
  2: optional string language
  3: optional string country
  4: optional double latitude
  5: optional double longitude
  6: optional string carrier
  7: optional i32 latency
  8: optional string display_name
  9: optional i32 access_type
  10: optional string access_subtype
}

struct ActivateMsg {
  1: required i64 ts
}

struct Error {
  1: required i64 ts
  2: required string context
  3: optional i32 source
}

struct PropertyValue {
  1: optional string string_value
  2: optional i64 long_value
}

struct Event {
  1: required string name
  2: required map<string, PropertyValue> properties
  3: optional i64 duration
  4: optional i32 acc
  5: required i64 ts
}

struct InstantMsg {
  1: required string id
  2: optional list<Error> errors
  3: optional list<Event> events
  4: optional list<Event> game_events
}

struct Page {
  1: required string page_name
  2: required i64 duration
}

struct Location {
  1: required double lat
  2: required double lng
  3: required i64 ts
}

struct Traffic {
  1: required i32 upload_traffic
  2: required i32 download_traffic
}

struct Session {
  1: required string id
  2: required i64 start_time
  3: required i64 end_time
  4: required i64 duration
  5: optional list<Page> pages
  6: optional list<Location> locations
  7: optional Traffic traffic
}

struct ImprintValue {
  1: optional string value
  2: required i64 ts
  3: required string guid
}

struct Imprint {
  1: required map<string, ImprintValue> property
  2: required i32 version
  3: required string checksum
}

struct IdSnapshot {
  1: required string identity
  2: required i64 ts
  3: required i32 version
}

struct IdJournal {
  1: required string domain
  2: optional string old_id
  3: required string new_id
  4: required i64 ts
}

struct IdTracking {
  1: required map<string, IdSnapshot> snapshots
  2: optional list<IdJournal> journals
  3: optional string checksum
}

struct ActiveUser {
  1: required string provider
  2: required string puid
}

struct Latent {
  1: required i32 latency
  2: required i64 interval
}

struct ControlPolicy {
  1: optional Latent latent
}

struct UALogEntry {
  1: required ClientStats client_stats
  2: required AppInfo app_info
  3: required DeviceInfo device_info
  4: required MiscInfo misc_info
  5: optional ActivateMsg activate_msg
  6: optional list<InstantMsg> instant_msgs
  7: optional list<Session> sessions
  8: optional Imprint imprint
  9: optional IdTracking id_tracking
  10: optional ActiveUser active_user
  11: optional ControlPolicy control_policy
  12: optional map<string, i32> group_info
}

struct Response {
  1: required i32 resp_code
  2: optional string msg
  3: optional Imprint imprint
}
