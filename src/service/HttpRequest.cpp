#include "HttpRequest.h"

#include "ServiceConfig.h"

void HttpRequest::GetAdRecomSuccessBlock(SuccessBlock success, FailBlock failBlock)
{
    RequestData::requestWith(QStringLiteral("%1GetAdRecom").arg(ServiceConfig::apiRoot()), {},
                             std::move(success), std::move(failBlock));
}

void HttpRequest::GetSectionSuccessBlock(SuccessBlock success, FailBlock failBlock)
{
    RequestData::requestWith(QStringLiteral("%1GetSection").arg(ServiceConfig::apiRoot()), {},
                             std::move(success), std::move(failBlock));
}

void HttpRequest::GetSectionSuccessBlock(SuccessBlock success, FailBlock failBlock,
                                         const QString &string)
{
    RequestData::requesEncodetWith(string, {}, std::move(success), std::move(failBlock),
                                   QStringLiteral("GetSection?data="));
}

void HttpRequest::GetTopicsSuccessBlock(SuccessBlock success, FailBlock failBlock,
                                        const QString &string)
{
    RequestData::requesEncodetWith(string, {}, std::move(success), std::move(failBlock),
                                   QStringLiteral("GetTopics?data="));
}

void HttpRequest::GetTopTopicSuccessBlock(SuccessBlock success, FailBlock failBlock,
                                          const QString &string)
{
    RequestData::requesEncodetWith(string, {}, std::move(success), std::move(failBlock),
                                   QStringLiteral("GetTopTopic?data="));
}

void HttpRequest::GetTempUserInfoSuccessBlock(SuccessBlock success, FailBlock failBlock,
                                              const QString &string)
{
    RequestData::requesEncodetWith(string, {}, std::move(success), std::move(failBlock),
                                   QStringLiteral("GetTempUserInfo?data="));
}

void HttpRequest::GetTopicDetailSuccessBlock(SuccessBlock success, FailBlock failBlock,
                                             const QString &string)
{
    RequestData::requesEncodetWith(string, {}, std::move(success), std::move(failBlock),
                                   QStringLiteral("TopicDetail?data="));
}

void HttpRequest::GetWriteTopicSuccessBlock(SuccessBlock success, FailBlock failBlock,
                                            const QString &string)
{
    RequestData::requesPostWith(string, {}, std::move(success), std::move(failBlock),
                                QStringLiteral("WriteTopic?data="));
}

void HttpRequest::GetRepliesLogSuccessBlock(SuccessBlock success, FailBlock failBlock,
                                            const QString &string)
{
    RequestData::requesEncodetWith(string, {}, std::move(success), std::move(failBlock),
                                   QStringLiteral("RepliesLog?data="));
}

void HttpRequest::GetRepliesleTopicSuccessBlock(SuccessBlock success, FailBlock failBlock,
                                                const QString &string)
{
    RequestData::requesPostWith(string, {}, std::move(success), std::move(failBlock),
                                QStringLiteral("RepliesleTopic?data="));
}

QColor HttpRequest::oxARGB(quint32 argb)
{
    return QColor::fromRgbF(float(((argb >> 16) & 0xFF) / 255.0), float(((argb >> 8) & 0xFF) / 255.0),
                            float((argb & 0xFF) / 255.0), 1.0f);
}
