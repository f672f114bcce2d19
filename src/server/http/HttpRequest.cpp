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
    const qsizetype mark = rawTarget.indexOf('?');
    path = mark < 0 ? rawTarget : rawTarget.left(mark);
    query = mark < 0 ? QByteArray() : rawTarget.mid(mark + 1);
}
