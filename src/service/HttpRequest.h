#pragma once
// The forum's endpoint catalogue: one operation per endpoint, each forwarding the screen's
// JSON payload to the transport under the endpoint's name. Screens call these, never the
// transport. Main thread.

#include "RequestData.h"

#include <QColor>

class HttpRequest
{
public:
    HttpRequest() = delete;

    using SuccessBlock = RequestData::SuccessBlock;
    using FailBlock = RequestData::FailBlock;

    // Promoted banner items (plain GET).
    static void GetAdRecomSuccessBlock(SuccessBlock success, FailBlock failBlock);
    // Boards, plain GET; kept in the interface, the screens use the enciphered form.
    static void GetSectionSuccessBlock(SuccessBlock success, FailBlock failBlock);
    static void GetSectionSuccessBlock(SuccessBlock success, FailBlock failBlock, const QString &string);
    static void GetTopicsSuccessBlock(SuccessBlock success, FailBlock failBlock, const QString &string);
    static void GetTopTopicSuccessBlock(SuccessBlock success, FailBlock failBlock, const QString &string);
    static void GetTempUserInfoSuccessBlock(SuccessBlock success, FailBlock failBlock,
                                            const QString &string);
    static void GetTopicDetailSuccessBlock(SuccessBlock success, FailBlock failBlock,
                                           const QString &string);
    static void GetWriteTopicSuccessBlock(SuccessBlock success, FailBlock failBlock,
                                          const QString &string);
    static void GetRepliesLogSuccessBlock(SuccessBlock success, FailBlock failBlock,
                                          const QString &string);
    static void GetRepliesleTopicSuccessBlock(SuccessBlock success, FailBlock failBlock,
                                              const QString &string);

    // Opaque colour from a packed integer: red bits 16-23, green 8-15, blue 0-7. The top
    // byte is ignored despite the name.
    static QColor oxARGB(quint32 argb);
};
