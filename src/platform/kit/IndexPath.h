#pragma once
// A row's place in a table: its section and its row within the section.

#include <QHashFunctions>

#include <compare>

struct IndexPath
{
    int section = 0;
    int row = 0;

    static IndexPath indexPathForRow(int row, int section) { return IndexPath{section, row}; }

    friend auto operator<=>(const IndexPath &, const IndexPath &) = default;
};

inline size_t qHash(const IndexPath &path, size_t seed = 0)
{
    return qHashMulti(seed, path.section, path.row);
}
