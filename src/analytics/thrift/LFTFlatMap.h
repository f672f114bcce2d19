#pragma once
// A map held as one array of key-value pairs sorted by key. Plain value; any thread.
//
// Record maps are small (an event's few attributes) and arrive in key order, since that is the
// order they are written in: one array is then one allocation and an append per entry, where a
// node-based map allocates and balances per entry. The interface is the part of QMap's the
// records use, with QMap's order and its insert that replaces an existing key's value.

#include <QList>

#include <algorithm>
#include <initializer_list>
#include <utility>

template <typename K, typename V>
class LFTFlatMap
{
public:
    using Entry = std::pair<K, V>;

    // Iterates in key order like a QMap iterator: key(), value(), and * or -> for the value.
    class const_iterator
    {
    public:
        explicit const_iterator(const Entry *entry) : m_entry(entry) {}
        const K &key() const { return m_entry->first; }
        const V &value() const { return m_entry->second; }
        const V &operator*() const { return m_entry->second; }
        const V *operator->() const { return &m_entry->second; }
        const_iterator &operator++()
        {
            ++m_entry;
            return *this;
        }
        bool operator==(const const_iterator &other) const = default;

    private:
        const Entry *m_entry;
    };

    LFTFlatMap() = default;
    LFTFlatMap(std::initializer_list<Entry> entries) : LFTFlatMap(QList<Entry>(entries)) {}
    // Entries in any order; of entries with equal keys the last one stays, as with insert().
    explicit LFTFlatMap(QList<Entry> entries) : m_entries(std::move(entries)) { sortByKey(); }

    qsizetype size() const { return m_entries.size(); }
    bool isEmpty() const { return m_entries.isEmpty(); }

    const_iterator cbegin() const { return const_iterator(m_entries.constData()); }
    const_iterator cend() const { return const_iterator(m_entries.constData() + size()); }
    const_iterator begin() const { return cbegin(); }
    const_iterator end() const { return cend(); }
    const_iterator constBegin() const { return cbegin(); }
    const_iterator constEnd() const { return cend(); }

    const_iterator constFind(const K &key) const
    {
        const Entry *at = lowerBound(key);
        return at != m_entries.constData() + size() && at->first == key ? const_iterator(at) : cend();
    }
    bool contains(const K &key) const { return constFind(key) != cend(); }
    V value(const K &key, const V &fallback = V()) const
    {
        const const_iterator found = constFind(key);
        return found == cend() ? fallback : *found;
    }

    void insert(K key, V value)
    {
        // Entries added in key order are appended without a search.
        if (m_entries.isEmpty() || m_entries.constLast().first < key) {
            m_entries.emplace_back(std::move(key), std::move(value));
            return;
        }
        const qsizetype index = lowerBound(key) - m_entries.constData();
        if (m_entries.at(index).first == key)
            m_entries[index].second = std::move(value);
        else
            m_entries.emplace(index, std::move(key), std::move(value));
    }

    bool operator==(const LFTFlatMap &other) const = default;

private:
    // One sort rather than an insert per entry, so that even a long list out of order (as
    // forged input may be) costs n log n.
    void sortByKey()
    {
        const auto notBefore = [](const Entry &a, const Entry &b) { return !(a.first < b.first); };
        // Entries written by a map are already in order: one pass finds that out.
        if (std::adjacent_find(m_entries.cbegin(), m_entries.cend(), notBefore) == m_entries.cend())
            return;
        std::stable_sort(m_entries.begin(), m_entries.end(),
                         [](const Entry &a, const Entry &b) { return a.first < b.first; });
        // Of a run of equal keys, keep the entry that came last.
        qsizetype kept = 0;
        for (qsizetype i = 0; i < m_entries.size(); ++i) {
            if (i + 1 < m_entries.size() && notBefore(m_entries.at(i), m_entries.at(i + 1)))
                continue;
            if (kept != i)
                m_entries[kept] = std::move(m_entries[i]);
            ++kept;
        }
        m_entries.resize(kept);
    }

    const Entry *lowerBound(const K &key) const
    {
        return std::lower_bound(m_entries.constData(), m_entries.constData() + size(), key,
                                [](const Entry &entry, const K &k) { return entry.first < k; });
    }

    QList<Entry> m_entries;
};
