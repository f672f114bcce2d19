#pragma once
// How a call's path joins the push root, for every client of the gateway: the root's trailing
// slashes are dropped, so ".../push" and ".../push/" name the same calls. Any thread.

#include <QString>
#include <QStringView>

class GatewayUrl
{
public:
    GatewayUrl() = delete;

    // "http://h/push/" + "/events" -> "http://h/push/events"; an empty root stays empty.
    static QString join(QString root, QStringView path);
};
