#pragma once
// The vertical geometry of a table, in content coordinates: the table header view, then for
// each section its header, its rows and its footer, then the table footer view. Finds the rows
// and sections in a range by binary search, so a table of 100,000 rows costs a lookup, not a
// walk. Pure data: no widgets. Main thread.

#include "IndexPath.h"

#include <QList>
#include <QRectF>

#include <vector>

class TableLayout
{
public:
    struct SectionHeights
    {
        qreal header = 0;
        qreal footer = 0;
        std::vector<qreal> rows;
    };

    TableLayout() = default;
    TableLayout(qreal tableHeaderHeight, const std::vector<SectionHeights> &sections, qreal tableFooterHeight);

    int numberOfSections() const { return int(m_sections.size()); }
    int numberOfRowsInSection(int section) const;
    qreal contentHeight() const { return m_contentHeight; }
    qreal tableHeaderHeight() const { return m_tableHeaderHeight; }
    // Where the table footer view starts.
    qreal tableFooterTop() const;

    // Spans (top, height); empty for paths out of range.
    QRectF rectForRow(const IndexPath &path, qreal width) const;
    QRectF rectForHeaderInSection(int section, qreal width) const;
    QRectF rectForFooterInSection(int section, qreal width) const;
    // The whole section, header to footer.
    QRectF rectForSection(int section, qreal width) const;

    // Rows and sections touching [top, bottom), in order.
    QList<IndexPath> rowsInRange(qreal top, qreal bottom) const;
    QList<int> sectionsInRange(qreal top, qreal bottom) const;
    // The row under a content point; an invalid path (-1, -1) when none.
    IndexPath rowAtPoint(qreal y) const;

private:
    struct Section
    {
        qreal top = 0;
        qreal header = 0;
        qreal footer = 0;
        // Row i spans rowTops[i] .. rowTops[i + 1]; one more entry than rows.
        std::vector<qreal> rowTops;
        qreal bottom() const { return rowTops.back() + footer; }
    };

    std::vector<Section> m_sections;
    qreal m_tableHeaderHeight = 0;
    qreal m_contentHeight = 0;
};
