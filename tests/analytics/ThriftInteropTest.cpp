// Apache Thrift's own C++ code, generated from an IDL written apart from the client, as the
// oracle: what we write it reads as the same values, and what it writes we read as the same.

#include "AnalyticsFixture.h"

#include "LFTBinaryProtocol.h"
#include "analytics_types.h"

#include <thrift/protocol/TBinaryProtocol.h>
#include <thrift/transport/TBufferTransports.h>

#include <memory>

namespace {

namespace o = quorvel_oracle;
using apache::thrift::protocol::TBinaryProtocol;
using apache::thrift::transport::TMemoryBuffer;

template <typename T> QByteArray theirEncode(const T &record)
{
    auto buffer = std::make_shared<TMemoryBuffer>();
    TBinaryProtocol protocol(buffer);
    record.write(&protocol);
    return QByteArray::fromStdString(buffer->getBufferAsString());
}

template <typename T> T theirDecode(const QByteArray &bytes)
{
    auto buffer = std::make_shared<TMemoryBuffer>(
        reinterpret_cast<uint8_t *>(const_cast<char *>(bytes.constData())), uint32_t(bytes.size()));
    TBinaryProtocol protocol(buffer);
    T record;
    record.read(&protocol);
    return record;
}

std::string s(const char *text)
{
    return std::string(text);
}

QString q(const char *text)
{
    return QString::fromUtf8(text);
}

// The same imprint on both sides.
LFTImprint ourImprint()
{
    LFTImprintValue set;
    set.setValue(q("6"));
    set.setTs(1700000000001);
    set.setGuid(q("guid-1"));
    LFTImprintValue unset;
    unset.setTs(-5);
    unset.setGuid(q("guid-2"));
    LFTImprint imprint;
    imprint.setProperty({{q("report_policy"), set}, {q("defcon"), unset}});
    imprint.setVersion(4);
    imprint.setChecksum(q("0123abcd"));
    return imprint;
}

o::Imprint theirImprint()
{
    o::ImprintValue set;
    set.__set_value(s("6"));
    set.ts = 1700000000001;
    set.guid = s("guid-1");
    o::ImprintValue unset;
    unset.ts = -5;
    unset.guid = s("guid-2");
    o::Imprint imprint;
    imprint.property = {{s("report_policy"), set}, {s("defcon"), unset}};
    imprint.version = 4;
    imprint.checksum = s("0123abcd");
    return imprint;
}

LFTUALogEntry ourEntry()
{
    LFTClientStats stats;
    stats.setSuccessful_requests(12);
    stats.setFailed_requests(-1);
    stats.setLast_request_spent_ms(350);

    LFTAppInfo app;
    app.setKey(q("3c1f9a27b84e0d65a2f7c913"));
    app.setVersion(q("1.0.0"));
    app.setVersion_index(7);
    app.setPackage_name(q("org.quorvel.Quorvel"));
    app.setSdk_type(1);
    app.setSdk_version(q("3.6.6"));
    app.setChannel(q("App Store"));
    app.setWrapper_type(q("qml"));
    app.setWrapper_version(q("6.4"));
    app.setVertical_type(2);

    LFTResolution resolution;
    resolution.setHeight(1334);
    resolution.setWidth(750);
    LFTDeviceInfo device;
    device.setDevice_id(q("d1"));
    device.setIdmd5(q("m"));
    device.setMac_address(q("02:00:00:00:00:00"));
    device.setOpen_udid(q("u"));
    device.setModel(q("ThinkPad"));
    device.setCpu(q("x86_64"));
    device.setOs(q("debian"));
    device.setOs_version(q("12"));
    device.setResolution(resolution);
    device.setIs_jailbroken(true);
    device.setDevice_board(q("b"));
    device.setDevice_brand(q("br"));
    device.setDevice_manutime(-9000000000LL);
    device.setDevice_manufacturer(q("mf"));
    device.setDevice_manuid(q("mi"));
    device.setDevice_name(q("名字"));

    LFTMiscInfo misc;
    misc.setTime_zone(-8);
    misc.setLanguage(q("zh"));
    misc.setCountry(q("CN"));
    misc.setLatitude(31.2304);
    misc.setLongitude(-121.4737);
    misc.setCarrier(q("中国移动"));
    misc.setLatency(3);
    misc.setDisplay_name(q("Quorvel"));
    misc.setAccess_type(2);
    misc.setAccess_subtype(q("LTE"));

    LFTActivateMsg activate;
    activate.setTs(1700000000000);

    LFTError error;
    error.setTs(1700000000500);
    error.setContext(q("((\n\tframe\n)"));
    error.setSource(1);
    LFTPropertyValue text;
    text.setString_value(q("标签"));
    LFTPropertyValue number;
    number.setLong_value(-42);
    LFTEvent event;
    event.setName(q("share"));
    event.setProperties({{q("share"), text}, {q("count"), number}});
    event.setDuration(1500);
    event.setAcc(3);
    event.setTs(1700000000600);
    LFTEvent bare;
    bare.setName(q("bare"));
    bare.setProperties({});
    bare.setTs(1);
    LFTInstantMsg message;
    message.setId(q("session-1"));
    message.setErrors({error});
    message.setEvents({event, bare});
    message.setGame_events({bare});

    LFTPage page;
    page.setPage_name(q("home"));
    page.setDuration(9000);
    LFTLocation location;
    location.setLat(31.25);
    location.setLng(121.5);
    location.setTs(1700000000700);
    LFTTraffic traffic;
    traffic.setUpload_traffic(10);
    traffic.setDownload_traffic(20);
    LFTSession session;
    session.setId(q("session-1"));
    session.setStart_time(1700000000000);
    session.setEnd_time(1700000060000);
    session.setDuration(60000);
    session.setPages({page, page});
    session.setLocations({location});
    session.setTraffic(traffic);

    LFTIdSnapshot snapshot;
    snapshot.setIdentity(q("id"));
    snapshot.setTs(2);
    snapshot.setVersion(1);
    LFTIdJournal journal;
    journal.setDomain(q("udid"));
    journal.setOld_id(q("a"));
    journal.setNew_id(q("b"));
    journal.setTs(3);
    LFTIdTracking tracking;
    tracking.setSnapshots({{q("udid"), snapshot}});
    tracking.setJournals({journal});
    tracking.setChecksum(q("cs"));

    LFTActiveUser user;
    user.setProvider(q("qq"));
    user.setPuid(q("u9"));
    LFTLatent latent;
    latent.setLatency(7);
    latent.setInterval(1296000000);
    LFTControlPolicy policy;
    policy.setLatent(latent);

    LFTUALogEntry entry;
    entry.setClient_stats(stats);
    entry.setApp_info(app);
    entry.setDevice_info(device);
    entry.setMisc_info(misc);
    entry.setActivate_msg(activate);
    entry.setInstant_msgs({message});
    entry.setSessions({session});
    entry.setImprint(ourImprint());
    entry.setId_tracking(tracking);
    entry.setActive_user(user);
    entry.setControl_policy(policy);
    entry.setGroup_info({{q("SIG7"), 2}, {q("RPT"), -1}});
    return entry;
}

o::UALogEntry theirEntry()
{
    o::ClientStats stats;
    stats.successful_requests = 12;
    stats.failed_requests = -1;
    stats.__set_last_request_spent_ms(350);

    o::AppInfo app;
    app.key = s("3c1f9a27b84e0d65a2f7c913");
    app.__set_version(s("1.0.0"));
    app.__set_version_index(7);
    app.__set_package_name(s("org.quorvel.Quorvel"));
    app.sdk_type = 1;
    app.sdk_version = s("3.6.6");
    app.channel = s("App Store");
    app.__set_wrapper_type(s("qml"));
    app.__set_wrapper_version(s("6.4"));
    app.__set_vertical_type(2);

    o::Resolution resolution;
    resolution.height = 1334;
    resolution.width = 750;
    o::DeviceInfo device;
    device.__set_device_id(s("d1"));
    device.__set_idmd5(s("m"));
    device.__set_mac_address(s("02:00:00:00:00:00"));
    device.__set_open_udid(s("u"));
    device.__set_model(s("ThinkPad"));
    device.__set_cpu(s("x86_64"));
    device.__set_os(s("debian"));
    device.__set_os_version(s("12"));
    device.__set_resolution(resolution);
    device.__set_is_jailbroken(true);
    device.__set_device_board(s("b"));
    device.__set_device_brand(s("br"));
    device.__set_device_manutime(-9000000000LL);
    device.__set_device_manufacturer(s("mf"));
    device.__set_device_manuid(s("mi"));
    device.__set_device_name(s("名字"));

    o::MiscInfo misc;
    misc.__set_time_zone(-8);
    misc.__set_language(s("zh"));
    misc.__set_country(s("CN"));
    misc.__set_latitude(31.2304);
    misc.__set_longitude(-121.4737);
    misc.__set_carrier(s("中国移动"));
    misc.__set_latency(3);
    misc.__set_display_name(s("Quorvel"));
    misc.__set_access_type(2);
    misc.__set_access_subtype(s("LTE"));

    o::ActivateMsg activate;
    activate.ts = 1700000000000;

    o::Error error;
    error.ts = 1700000000500;
    error.context = s("((\n\tframe\n)");
    error.__set_source(1);
    o::PropertyValue text;
    text.__set_string_value(s("标签"));
    o::PropertyValue number;
    number.__set_long_value(-42);
    o::Event event;
    event.name = s("share");
    event.properties = {{s("share"), text}, {s("count"), number}};
    event.__set_duration(1500);
    event.__set_acc(3);
    event.ts = 1700000000600;
    o::Event bare;
    bare.name = s("bare");
    bare.ts = 1;
    o::InstantMsg message;
    message.id = s("session-1");
    message.__set_errors({error});
    message.__set_events({event, bare});
    message.__set_game_events({bare});

    o::Page page;
    page.page_name = s("home");
    page.duration = 9000;
    o::Location location;
    location.lat = 31.25;
    location.lng = 121.5;
    location.ts = 1700000000700;
    o::Traffic traffic;
    traffic.upload_traffic = 10;
    traffic.download_traffic = 20;
    o::Session session;
    session.id = s("session-1");
    session.start_time = 1700000000000;
    session.end_time = 1700000060000;
    session.duration = 60000;
    session.__set_pages({page, page});
    session.__set_locations({location});
    session.__set_traffic(traffic);

    o::IdSnapshot snapshot;
    snapshot.identity = s("id");
    snapshot.ts = 2;
    snapshot.version = 1;
    o::IdJournal journal;
    journal.domain = s("udid");
    journal.__set_old_id(s("a"));
    journal.new_id = s("b");
    journal.ts = 3;
    o::IdTracking tracking;
    tracking.snapshots = {{s("udid"), snapshot}};
    tracking.__set_journals({journal});
    tracking.__set_checksum(s("cs"));

    o::ActiveUser user;
    user.provider = s("qq");
    user.puid = s("u9");
    o::Latent latent;
    latent.latency = 7;
    latent.interval = 1296000000;
    o::ControlPolicy policy;
    policy.__set_latent(latent);

    o::UALogEntry entry;
    entry.client_stats = stats;
    entry.app_info = app;
    entry.device_info = device;
    entry.misc_info = misc;
    entry.__set_activate_msg(activate);
    entry.__set_instant_msgs({message});
    entry.__set_sessions({session});
    entry.__set_imprint(theirImprint());
    entry.__set_id_tracking(tracking);
    entry.__set_active_user(user);
    entry.__set_control_policy(policy);
    entry.__set_group_info({{s("SIG7"), 2}, {s("RPT"), -1}});
    return entry;
}

} // namespace

TEST(ThriftInterop, EntryWrittenByUsReadsTheSameInApacheThrift)
{
    const QByteArray ours = LFTEncode(ourEntry());
    EXPECT_TRUE(theirDecode<o::UALogEntry>(ours) == theirEntry());
    EXPECT_EQ(ours.toHex(), theirEncode(theirEntry()).toHex());
}

TEST(ThriftInterop, EntryWrittenByApacheThriftReadsTheSameWithUs)
{
    EXPECT_TRUE(LFTDecode<LFTUALogEntry>(theirEncode(theirEntry())) == ourEntry());
}

TEST(ThriftInterop, ResponsesBothWays)
{
    o::Response theirs;
    theirs.resp_code = 1;
    theirs.__set_msg(s("ok"));
    theirs.__set_imprint(theirImprint());
    LFTResponse ours;
    ours.setResp_code(1);
    ours.setMsg(q("ok"));
    ours.setImprint(ourImprint());

    EXPECT_TRUE(LFTDecode<LFTResponse>(theirEncode(theirs)) == ours);
    EXPECT_TRUE(theirDecode<o::Response>(LFTEncode(ours)) == theirs);

    o::Response failed;
    failed.resp_code = 2;
    const LFTResponse decoded = LFTDecode<LFTResponse>(theirEncode(failed));
    EXPECT_EQ(decoded.resp_code(), 2);
    EXPECT_FALSE(decoded.msgIsSet());
    EXPECT_FALSE(decoded.imprintIsSet());
}

TEST(ThriftInterop, RequiredFieldsAreEnforcedAlikeOnRead)
{
    LFTMemoryBuffer buffer;
    LFTBinaryProtocol out(&buffer);
    out.writeFieldBegin("msg", LFTType::String, 2);
    out.writeString(q("no code"));
    out.writeFieldStop();
    EXPECT_THROW(LFTDecode<LFTResponse>(buffer.getBuffer()), LFTProtocolException);
    EXPECT_THROW(theirDecode<o::Response>(buffer.getBuffer()), apache::thrift::protocol::TProtocolException);
}

using ComponentInterop = AnalyticsFixture;

TEST_F(ComponentInterop, LogEntryFromTheComponentReadsInApacheThrift)
{
    start();
    events().event(QStringLiteral("open"), QStringLiteral("首页"), 2, 0);
    events().event(QStringLiteral("read"), QVariantMap{{QStringLiteral("board"), QStringLiteral("7")}}, 800);
    events().logPageView(QStringLiteral("home"), 9);
    context->location().setLatitude(31.25, 121.5);
    drain();
    clock->advance(60);
    session().appInactivate();
    drain();
    session().appActivate();
    drain();

    const o::UALogEntry entry = theirDecode<o::UALogEntry>(thrift().toData());
    EXPECT_EQ(entry.app_info.key, s("3c1f9a27b84e0d65a2f7c913"));
    ASSERT_EQ(entry.instant_msgs.size(), 1u);
    ASSERT_EQ(entry.instant_msgs[0].events.size(), 2u);
    EXPECT_EQ(entry.instant_msgs[0].events[0].properties.at(s("open")).string_value, s("首页"));
    EXPECT_EQ(entry.instant_msgs[0].events[0].acc, 2);
    EXPECT_EQ(entry.instant_msgs[0].events[1].duration, 800);
    ASSERT_EQ(entry.sessions.size(), 1u);
    EXPECT_EQ(entry.sessions[0].duration, 60000);
    EXPECT_EQ(entry.sessions[0].pages[0].page_name, s("home"));
    EXPECT_EQ(entry.sessions[0].locations[0].lng, 121.5);
    EXPECT_EQ(entry.device_info.resolution.width, 750);
}
