#include "FirstLoad.h"

#include "ForumPayloads.h"
#include "JsonChangDic.h"

bool FirstLoad::start(const UserIdStore &store, Handlers handlers)
{
    const QString devicePair = JsonChangDic::jsonWithDictionary(ForumPayloads::devicePair());
    const qint64 userId = store.userId();
    const bool askForUser = userId == 0;
    if (askForUser) {
        HttpRequest::GetTempUserInfoSuccessBlock(
            [store = UserIdStore(store), done = handlers.userStored](const HttpTask &, const QJsonValue &payload) mutable {
                const QString stored = store.storeFromTempUserAnswer(payload);
                if (done)
                    done(stored);
            },
            {}, devicePair);
    }
    HttpRequest::GetSectionSuccessBlock(
        [done = handlers.sections](const HttpTask &, const QJsonValue &payload) {
            if (done)
                done(payload);
        },
        {}, JsonChangDic::jsonWithDictionary(ForumPayloads::section(userId)));
    return askForUser;
}
