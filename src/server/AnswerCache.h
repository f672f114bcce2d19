#pragma once
// The enciphered answers of reading requests, kept in memory under their query's key with
// the tags of what they were made of (AnswerTags); a write drops every answer its tags
// name. Found from any thread (the HTTP threads answer hits without queueing); filled and
// dropped from the store's thread. Bounded: past its budget it starts over empty.

#include <QByteArray>
#include <QHash>
#include <QSet>
#include <QString>
#include <QStringList>

#include <optional>
#include <shared_mutex>

class AnswerCache
{
public:
    // Counted with each answer's bookkeeping, so the budget is near what the process holds:
    // answers that carry the request's Host can be made to differ without end.
    static constexpr qsizetype kMaxBytes = 24 * 1024 * 1024;
    static constexpr qsizetype kMaxAnswers = 20'000;
    static constexpr qsizetype kEntryOverheadBytes = 256;
    // Drops everything (changes were missed).
    static constexpr const char *kEverything = "*";

    std::optional<QByteArray> find(const QByteArray &key) const;
    void insert(const QByteArray &key, const QByteArray &body, const QStringList &tags);
    void drop(const QStringList &tags);
    qsizetype count() const;

private:
    void clear();
    static qsizetype answerCost(const QByteArray &key, const QByteArray &body);

    mutable std::shared_mutex m_mutex;
    QHash<QByteArray, QByteArray> m_answers;
    QHash<QString, QSet<QByteArray>> m_keysByTag;
    qsizetype m_bytes = 0;
};
