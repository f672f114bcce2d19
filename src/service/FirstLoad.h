#pragma once
// The home screen's first data load for the user id: when none is stored, ask for a
// temporary user (and store it when it arrives); independently, and at once, ask for the
// boards with the id read now. On a first run the boards are therefore requested with
// user id 0 before the temporary id arrives; that order is intended. Main thread.

#include "HttpRequest.h"
#include "UserIdStore.h"

#include <functional>

class FirstLoad
{
public:
    FirstLoad() = delete;

    struct Handlers
    {
        std::function<void(const QJsonValue &boards)> sections;
        std::function<void(const QString &storedIdText)> userStored;
    };

    // Sends the requests; returns whether a temporary user was asked for. The store is
    // copied: it only refers to its user defaults, which must outlive the requests.
    static bool start(const UserIdStore &store, Handlers handlers);
};
