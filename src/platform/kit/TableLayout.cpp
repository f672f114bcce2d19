#include "TableLayout.h"

#include <algorithm>

TableLayout::TableLayout(qreal tableHeaderHeight, const std::vector<SectionHeights> &sections,
                         qreal tableFooterHeight)
    : m_tableHeaderHeight(qMax<qreal>(0, tableHeaderHeight))
{
    qreal y = m_tableHeaderHeight;
    m_sections.reserve(sections.size());
    for (const SectionHeights &heights : sections) {
        Section section;
        section.top = y;
        section.header = qMax<qreal>(0, heights.header);
        section.footer = qMax<qreal>(0, heights.footer);
        section.rowTops.reserve(heights.rows.size() + 1);
        y += section.header;
        for (qreal row : heights.rows) {
            section.rowTops.push_back(y);
            y += qMax<qreal>(0, row);
        }
        section.rowTops.push_back(y);
        y += section.footer;
        m_sections.push_back(std::move(section));
    }
    m_contentHeight = y + qMax<qreal>(0, tableFooterHeight);
}

int TableLayout::numberOfRowsInSection(int section) const
{
    if (section < 0 || section >= numberOfSections())
        return 0;
    return int(m_sections[section].rowTops.size()) - 1;
}

qreal TableLayout::tableFooterTop() const
{
    return m_sections.empty() ? m_tableHeaderHeight : m_sections.back().bottom();
}

QRectF TableLayout::rectForRow(const IndexPath &path, qreal width) const
{
    if (path.row < 0 || path.row >= numberOfRowsInSection(path.section))
        return {};
    const std::vector<qreal> &tops = m_sections[path.section].rowTops;
    return QRectF(0, tops[path.row], width, tops[path.row + 1] - tops[path.row]);
}

QRectF TableLayout::rectForHeaderInSection(int section, qreal width) const
{
    if (section < 0 || section >= numberOfSections())
        return {};
    const Section &s = m_sections[section];
    return QRectF(0, s.top, width, s.header);
}

QRectF TableLayout::rectForFooterInSection(int section, qreal width) const
{
    if (section < 0 || section >= numberOfSections())
        return {};
    const Section &s = m_sections[section];
    return QRectF(0, s.rowTops.back(), width, s.footer);
}

QRectF TableLayout::rectForSection(int section, qreal width) const
{
    if (section < 0 || section >= numberOfSections())
        return {};
    const Section &s = m_sections[section];
    return QRectF(0, s.top, width, s.bottom() - s.top);
}

QList<int> TableLayout::sectionsInRange(qreal top, qreal bottom) const
{
    QList<int> sections;
    // First section whose bottom lies below `top`.
    auto first = std::partition_point(m_sections.begin(), m_sections.end(),
                                      [top](const Section &s) { return s.bottom() <= top; });
    for (auto it = first; it != m_sections.end() && it->top < bottom; ++it)
        sections.append(int(it - m_sections.begin()));
    return sections;
}

QList<IndexPath> TableLayout::rowsInRange(qreal top, qreal bottom) const
{
    QList<IndexPath> rows;
    for (int section : sectionsInRange(top, bottom)) {
        const std::vector<qreal> &tops = m_sections[section].rowTops;
        const int count = int(tops.size()) - 1;
        // First row whose bottom lies below `top`.
        const auto first = std::upper_bound(tops.begin() + 1, tops.end(), top);
        for (int row = int(first - tops.begin()) - 1; row < count && tops[row] < bottom; ++row) {
            if (tops[row + 1] > tops[row])
                rows.append(IndexPath{section, row});
        }
    }
    return rows;
}

IndexPath TableLayout::rowAtPoint(qreal y) const
{
    const QList<IndexPath> rows = rowsInRange(y, y + 0.001);
    for (const IndexPath &path : rows) {
        if (rectForRow(path, 1).contains(QPointF(0.5, y)))
            return path;
    }
    return IndexPath{-1, -1};
}
