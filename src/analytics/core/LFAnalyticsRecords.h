#pragma once
// What the component keeps in memory until it is sent: events, attribute events, errors and
// session-end records, each archivable so that it survives in the cache file. Plain values;
// owned by LFAnalyticsInternal on the main thread.

#include <QDataStream>
#include <QList>
#include <QString>
#include <QVariantMap>

struct LFANBaseEvent
{
    QString type;
    QString date;        // "yyyy-MM-dd", local time
    QString time;        // "HH:mm:ss", local time
    QString session_id;
    double ts = 0;       // seconds since 1970
    bool sendingFlag = false;
};

// A plain event.
struct LFANEvent : LFANBaseEvent
{
    QString event_id;
    QString label;       // null when none was given
    int acc = 1;
    qint64 du = 0;       // milliseconds
};

// An event with attributes; kind "ekv" for app events, "gkv" for game events.
struct LFANEkv : LFANBaseEvent
{
    QString id;
    QString key;         // primary key of a timed attribute event
    QVariantMap values;
    qint64 du = 0;       // milliseconds
    QString kind = QStringLiteral("ekv");
};

struct LFANError : LFANBaseEvent
{
    QString context;
    int source = 0;
};

struct LFANPage
{
    QString name;
    int seconds = 0;
};

// The record left by one ended session.
struct LFANTerminate
{
    QString session_id;
    double duration = 0;       // seconds
    double startTime = 0;      // seconds since 1970
    double endTime = 0;        // seconds since 1970
    double latitude = 0;
    double longitude = 0;
    qint64 gps_time = 0;       // milliseconds since 1970
    QList<LFANPage> pageViews;

    bool hasLocation() const { return latitude != 0 && longitude != 0; }
};

// Everything waiting to be sent.
struct LFANContainers
{
    QList<LFANEvent> events;
    QList<LFANError> errors;
    QList<LFANEkv> ekvs;
    QList<LFANTerminate> terminates;
    QList<LFANPage> pages;      // pages not yet handed to a session-end record
};

QDataStream &operator<<(QDataStream &out, const LFANBaseEvent &event);
QDataStream &operator>>(QDataStream &in, LFANBaseEvent &event);
QDataStream &operator<<(QDataStream &out, const LFANEvent &event);
QDataStream &operator>>(QDataStream &in, LFANEvent &event);
QDataStream &operator<<(QDataStream &out, const LFANEkv &event);
QDataStream &operator>>(QDataStream &in, LFANEkv &event);
QDataStream &operator<<(QDataStream &out, const LFANError &error);
QDataStream &operator>>(QDataStream &in, LFANError &error);
QDataStream &operator<<(QDataStream &out, const LFANPage &page);
QDataStream &operator>>(QDataStream &in, LFANPage &page);
QDataStream &operator<<(QDataStream &out, const LFANTerminate &record);
QDataStream &operator>>(QDataStream &in, LFANTerminate &record);
