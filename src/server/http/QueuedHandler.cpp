#include "QueuedHandler.h"

#include <QMetaObject>

namespace QueuedHandler {

HttpServer::Handler onThreadOf(QObject *context, HttpServer::Handler handler)
{
    auto shared = std::make_shared<HttpServer::Handler>(std::move(handler));
    return [context, shared](HttpRequest request, HttpResponder responder) {
        // Queued on the context: Qt drops the call with the object's other posted events when
        // it is destroyed.
        QMetaObject::invokeMethod(
            context,
            [shared, request = std::move(request), responder = std::move(responder)]() mutable {
                (*shared)(std::move(request), std::move(responder));
            },
            Qt::QueuedConnection);
    };
}

} // namespace QueuedHandler
