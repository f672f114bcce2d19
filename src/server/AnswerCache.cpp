#include "AnswerCache.h"

#include <mutex>

std::optional<QByteArray> AnswerCache::find(const QByteArray &key) const
{
    std::shared_lock lock(m_mutex);
    const auto found = m_answers.constFind(key);
    if (found == m_answers.constEnd())
        return std::nullopt;
    return *found;
}

void AnswerCache::insert(const QByteArray &key, const QByteArray &body, const QStringList &tags)
{
    std::unique_lock lock(m_mutex);
    if (m_answers.contains(key))
        return;
    const qsizetype cost = answerCost(key, body) + key.size() * tags.size();
    if (m_answers.size() >= kMaxAnswers || m_bytes + cost > kMaxBytes)
        clear();
    m_answers.insert(key, body);
    m_bytes += cost;
    for (const QString &tag : tags)
        m_keysByTag[tag].insert(key);
}

void AnswerCache::drop(const QStringList &tags)
{
    std::unique_lock lock(m_mutex);
    if (tags.contains(QLatin1String(kEverything))) {
        clear();
        return;
    }
    for (const QString &tag : tags) {
        // An answer under several tags stays listed under the others until they are dropped
        // too (or it is stored again, which lists it once): finding it gone does nothing.
        for (const QByteArray &key : m_keysByTag.take(tag)) {
            m_bytes -= key.size();  // its listing under this tag
            const auto found = m_answers.constFind(key);
            if (found == m_answers.constEnd())
                continue;
            m_bytes -= answerCost(key, *found);
            m_answers.erase(found);
        }
    }
}

qsizetype AnswerCache::answerCost(const QByteArray &key, const QByteArray &body)
{
    // Besides this, the key is held once more under each of the answer's tags.
    return body.size() + key.size() + kEntryOverheadBytes;
}

qsizetype AnswerCache::count() const
{
    std::shared_lock lock(m_mutex);
    return m_answers.size();
}

void AnswerCache::clear()
{
    m_answers.clear();
    m_keysByTag.clear();
    m_bytes = 0;
}
