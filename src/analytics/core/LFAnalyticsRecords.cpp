#include "LFAnalyticsRecords.h"

QDataStream &operator<<(QDataStream &out, const LFANBaseEvent &event)
{
    return out << event.type << event.date << event.time << event.session_id << event.ts
               << event.sendingFlag;
}

QDataStream &operator>>(QDataStream &in, LFANBaseEvent &event)
{
    return in >> event.type >> event.date >> event.time >> event.session_id >> event.ts
              >> event.sendingFlag;
}

QDataStream &operator<<(QDataStream &out, const LFANEvent &event)
{
    return out << static_cast<const LFANBaseEvent &>(event) << event.event_id << event.label
               << qint32(event.acc) << event.du;
}

QDataStream &operator>>(QDataStream &in, LFANEvent &event)
{
    qint32 acc = 0;
    in >> static_cast<LFANBaseEvent &>(event) >> event.event_id >> event.label >> acc >> event.du;
    event.acc = acc;
    return in;
}

QDataStream &operator<<(QDataStream &out, const LFANEkv &event)
{
    return out << static_cast<const LFANBaseEvent &>(event) << event.id << event.key
               << event.values << event.du << event.kind;
}

QDataStream &operator>>(QDataStream &in, LFANEkv &event)
{
    return in >> static_cast<LFANBaseEvent &>(event) >> event.id >> event.key >> event.values
              >> event.du >> event.kind;
}

QDataStream &operator<<(QDataStream &out, const LFANError &error)
{
    return out << static_cast<const LFANBaseEvent &>(error) << error.context << qint32(error.source);
}

QDataStream &operator>>(QDataStream &in, LFANError &error)
{
    qint32 source = 0;
    in >> static_cast<LFANBaseEvent &>(error) >> error.context >> source;
    error.source = source;
    return in;
}

QDataStream &operator<<(QDataStream &out, const LFANPage &page)
{
    return out << page.name << qint32(page.seconds);
}

QDataStream &operator>>(QDataStream &in, LFANPage &page)
{
    qint32 seconds = 0;
    in >> page.name >> seconds;
    page.seconds = seconds;
    return in;
}

QDataStream &operator<<(QDataStream &out, const LFANTerminate &record)
{
    return out << record.session_id << record.duration << record.startTime << record.endTime
               << record.latitude << record.longitude << record.gps_time << record.pageViews;
}

QDataStream &operator>>(QDataStream &in, LFANTerminate &record)
{
    return in >> record.session_id >> record.duration >> record.startTime >> record.endTime
              >> record.latitude >> record.longitude >> record.gps_time >> record.pageViews;
}
