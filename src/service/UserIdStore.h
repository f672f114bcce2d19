#pragma once
// The temporary user id the server issued for this device, kept as text under "userIDStr"
// in the user defaults. Absent, empty, non-numeric and "0" all mean "no user yet". Main
// thread (like every reader of the id).

#include "ListModel.h"
#include "UserDefaults.h"

#include <QJsonValue>
#include <QString>

class UserIdStore
{
public:
    explicit UserIdStore(UserDefaults &defaults = UserDefaults::standardUserDefaults());

    static constexpr const char *kKey = "userIDStr";

    // The stored text (null when absent), read after synchronising with the store.
    QString text() const;
    // Its integer value, 0 when there is none.
    qint64 userId() const;
    bool hasUserId() const { return userId() != 0; }

    // Takes a GetTempUserInfo answer: its `userinfo` object fills a board record whose
    // `userid` is formatted as text and stored (replacing any earlier entry). An answer
    // without one stores "(null)", which counts as no id, so the next load asks again.
    // Returns the stored text.
    QString storeFromTempUserAnswer(const QJsonValue &payload);
    // The same in two steps: the answer's user record, and storing its `userid`.
    static ListModel userOfTempUserAnswer(const QJsonValue &payload);
    QString storeUser(const ListModel &user);

private:
    UserDefaults &m_defaults;
};
