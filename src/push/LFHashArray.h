#pragma once
// An ordered set of unsent click reports keyed by message id: insertion order kept, one entry
// per id. Plain value; whoever owns it guards it.

#include <QJsonArray>
#include <QList>
#include <QString>

class LFHashArray
{
public:
    struct Entry
    {
        QString msgId;
        double ts = 0;
    };

    // Adds the entry at the end, or updates its time in place when the id is already there.
    void insert(const Entry &entry);
    void remove(const QString &msgId);
    bool contains(const QString &msgId) const;
    const QList<Entry> &entries() const { return m_entries; }
    int size() const { return int(m_entries.size()); }

    QJsonArray toJson() const;
    // Entries of the stored form; anything malformed in it is skipped.
    static LFHashArray fromJson(const QJsonArray &array);

private:
    QList<Entry> m_entries;
};
