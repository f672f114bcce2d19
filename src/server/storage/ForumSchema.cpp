#include "ForumSchema.h"

namespace {

// Version 1: the tables as the single-process server made them (databases made before
// versions were counted already hold them, hence IF NOT EXISTS).
QStringList firstTables()
{
    return {
        // The forum.
        "CREATE TABLE IF NOT EXISTS sections(sectionid {int} PRIMARY KEY, name TEXT NOT NULL,"
        " tag TEXT NOT NULL, tagid {int} NOT NULL, sortorder {int} NOT NULL)",
        "CREATE TABLE IF NOT EXISTS users(userid {id}, imei TEXT UNIQUE,"
        " devicetype TEXT NOT NULL DEFAULT '', username TEXT NOT NULL, created {int} NOT NULL,"
        " lastpost {int})",
        "CREATE TABLE IF NOT EXISTS topics(tid {id},"
        " sectionid {int} NOT NULL REFERENCES sections(sectionid),"
        " userid {int} NOT NULL REFERENCES users(userid), title TEXT NOT NULL, content TEXT NOT NULL,"
        " topictype {int} NOT NULL DEFAULT 0, featured {int} NOT NULL DEFAULT 0,"
        " created {int} NOT NULL)",
        "CREATE INDEX IF NOT EXISTS topics_by_section ON topics(sectionid, created DESC, tid DESC)",
        "CREATE TABLE IF NOT EXISTS replies(rid {id},"
        " tid {int} NOT NULL REFERENCES topics(tid), userid {int} NOT NULL REFERENCES users(userid),"
        " content TEXT NOT NULL, istop {int} NOT NULL DEFAULT 0, created {int} NOT NULL)",
        "CREATE INDEX IF NOT EXISTS replies_by_topic ON replies(tid, istop, created DESC)",
        "CREATE TABLE IF NOT EXISTS banners(bid {int} PRIMARY KEY, title TEXT NOT NULL,"
        " tid {int} NOT NULL, urltype {int} NOT NULL, page {int} NOT NULL DEFAULT 0)",
        // The push gateway.
        "CREATE TABLE IF NOT EXISTS push_devices(token TEXT PRIMARY KEY, appkey TEXT NOT NULL,"
        " header TEXT NOT NULL, registered {int}, launched {int}, reports {int} NOT NULL DEFAULT 0)",
        "CREATE TABLE IF NOT EXISTS push_tags(token TEXT NOT NULL, tag TEXT NOT NULL, PRIMARY KEY(token, tag))",
        "CREATE TABLE IF NOT EXISTS push_aliases(token TEXT NOT NULL, alias TEXT NOT NULL, type TEXT NOT NULL,"
        " PRIMARY KEY(token, alias, type))",
        "CREATE TABLE IF NOT EXISTS push_messages(id {id}, token TEXT NOT NULL,"
        " msgid TEXT NOT NULL, userinfo TEXT NOT NULL, created {int} NOT NULL)",
        "CREATE INDEX IF NOT EXISTS push_messages_by_token ON push_messages(token, id)",
        "CREATE TABLE IF NOT EXISTS push_clicks(id {id}, token TEXT NOT NULL, msgid TEXT NOT NULL,"
        " ts {real} NOT NULL, received {int} NOT NULL)",
        // The analytics collector.
        "CREATE TABLE IF NOT EXISTS analytics_devices(device_id TEXT PRIMARY KEY, app_key TEXT NOT NULL,"
        " app_version TEXT, model TEXT, os TEXT, os_version TEXT, first_seen {int} NOT NULL,"
        " last_seen {int} NOT NULL)",
        "CREATE TABLE IF NOT EXISTS analytics_sessions(session_id TEXT PRIMARY KEY, device_id TEXT NOT NULL,"
        " start_ms {int} NOT NULL, end_ms {int} NOT NULL, duration_ms {int} NOT NULL)",
        "CREATE TABLE IF NOT EXISTS analytics_pages(id {id}, session_id TEXT NOT NULL,"
        " page_name TEXT NOT NULL, duration_ms {int} NOT NULL)",
        "CREATE TABLE IF NOT EXISTS analytics_events(id {id}, session_id TEXT NOT NULL,"
        " device_id TEXT NOT NULL, name TEXT NOT NULL, properties TEXT NOT NULL, acc {int},"
        " duration_ms {int}, ts {int} NOT NULL)",
        "CREATE TABLE IF NOT EXISTS analytics_errors(id {id}, session_id TEXT NOT NULL,"
        " device_id TEXT NOT NULL, ts {int} NOT NULL, context TEXT NOT NULL, source {int})",
    };
}

} // namespace

const QList<ForumSchema::Step> &ForumSchema::steps()
{
    static const QList<Step> all = {
        {1, firstTables()},
        // Sending to a tag looks its devices up by tag, not by device.
        {2, {"CREATE INDEX IF NOT EXISTS push_tags_by_tag ON push_tags(tag, token)"}},
    };
    return all;
}

int ForumSchema::latestVersion()
{
    return steps().constLast().version;
}
