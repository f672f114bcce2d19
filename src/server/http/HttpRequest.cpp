#include "HttpRequest.h"

#include <chrono>

namespace {
qint64 steadyNowNs()
{
    using namespace std::chrono;
    return duration_cast<nanoseconds>(steady_clock::now().time_since_epoch()).count();
}
} // namespace

qint64 HttpRequest::ageNs() const
{
    return steadyNowNs() - receivedNs;
}

QByteArray HttpRequest::header(const QByteArray &name) const
{
    for (const auto &[field, value] : headers) {
        if (field.compare(name, Qt::CaseInsensitive) == 0)
            return value;
    }
    return {};
}

void HttpRequest::markReceived()
{
    receivedNs = steadyNowNs();
}

void HttpRequest::setTarget(const QByteArray &rawTarget)
{
    target = rawTarget;
    // A proxy's absolute form ("http://host:port/path?query") names the same resource.
    QByteArray local = rawTarget;
    const qsizetype scheme = rawTarget.indexOf("://");
    if (scheme > 0 && !rawTarget.left(scheme).contains('/') && !rawTarget.left(scheme).contains('?')) {
        const qsizetype slash = rawTarget.indexOf('/', scheme + 3);
        const qsizetype mark = rawTarget.indexOf('?', scheme + 3);
        const qsizetype start = slash < 0 || (mark >= 0 && mark < slash) ? -1 : slash;
        local = start < 0 ? "/" + (mark < 0 ? QByteArray() : rawTarget.mid(mark)) : rawTarget.mid(start);
    }
    const qsizetype mark = local.indexOf('?');
    path = mark < 0 ? local : local.left(mark);
    query = mark < 0 ? QByteArray() : local.mid(mark + 1);
}
