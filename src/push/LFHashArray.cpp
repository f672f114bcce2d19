#include "LFHashArray.h"

#include <QJsonObject>

#include <algorithm>

namespace {
const QString kMsgIdKey = QStringLiteral("msg_id");
const QString kTsKey = QStringLiteral("ts");
} // namespace

void LFHashArray::insert(const Entry &entry)
{
    for (Entry &existing : m_entries) {
        if (existing.msgId == entry.msgId) {
            existing.ts = entry.ts;
            return;
        }
    }
    m_entries.append(entry);
}

void LFHashArray::remove(const QString &msgId)
{
    m_entries.removeIf([&msgId](const Entry &entry) { return entry.msgId == msgId; });
}

bool LFHashArray::contains(const QString &msgId) const
{
    return std::any_of(m_entries.cbegin(), m_entries.cend(),
                       [&msgId](const Entry &entry) { return entry.msgId == msgId; });
}

QJsonArray LFHashArray::toJson() const
{
    QJsonArray array;
    for (const Entry &entry : m_entries)
        array.append(QJsonObject{{kMsgIdKey, entry.msgId}, {kTsKey, entry.ts}});
    return array;
}

LFHashArray LFHashArray::fromJson(const QJsonArray &array)
{
    LFHashArray cache;
    for (const QJsonValue &value : array) {
        const QJsonObject object = value.toObject();
        const QString msgId = object.value(kMsgIdKey).toString();
        const double ts = object.value(kTsKey).toDouble();
        if (!msgId.isEmpty() && ts > 0)
            cache.insert({msgId, ts});
    }
    return cache;
}
