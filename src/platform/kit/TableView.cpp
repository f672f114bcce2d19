#include "TableView.h"

#include "KitLog.h"
#include "TableViewCell.h"
#include "TableViewDataSource.h"
#include "TableViewDelegate.h"
#include "ViewSupport.h"


TableView::TableView(QWidget *parent) : ScrollView(parent)
{
    // A table moves under a vertical drag however few its rows, as on the phone.
    setAlwaysBounceVertical(true);
}

TableView::TableView(const QRectF &frame, QWidget *parent) : TableView(parent)
{
    setFrame(frame);
}

TableView::~TableView() = default;

void TableView::setDataSource(TableViewDataSource *dataSource)
{
    m_dataSource = dataSource;
    m_loaded = false;
}

void TableView::setDelegate(TableViewDelegate *delegate)
{
    m_delegate = delegate;
    ScrollView::setDelegate(delegate);
    m_loaded = false;
}

void TableView::registerClass(const QString &reuseIdentifier, CellFactory factory)
{
    m_factories.insert(reuseIdentifier, std::move(factory));
}

TableViewCell *TableView::dequeueReusableCellWithIdentifier(const QString &reuseIdentifier)
{
    QList<TableViewCell *> &pool = m_reusePool[reuseIdentifier];
    if (!pool.isEmpty()) {
        TableViewCell *cell = pool.takeLast();
        cell->prepareForReuse();
        return cell;
    }
    const auto factory = m_factories.constFind(reuseIdentifier);
    if (factory == m_factories.constEnd() || !*factory)
        return nullptr;
    TableViewCell *cell = (*factory)(reuseIdentifier);
    if (cell)
        cell->setParent(viewport());
    return cell;
}

TableViewCell *TableView::dequeueReusableCellWithIdentifier(const QString &reuseIdentifier, const IndexPath &)
{
    return dequeueReusableCellWithIdentifier(reuseIdentifier);
}

qreal TableView::askedHeight(qreal asked, qreal fallback) const
{
    return asked == TableViewDelegate::kAutomaticDimension ? fallback : asked;
}

void TableView::reloadData()
{
    if (m_layingOut) {
        m_reloadRequested = true;
        return;
    }
    m_loaded = true;
    std::vector<TableLayout::SectionHeights> sections;
    if (m_dataSource) {
        const int sectionCount = qMax(0, m_dataSource->numberOfSectionsInTableView(this));
        sections.resize(sectionCount);
        for (int section = 0; section < sectionCount; ++section) {
            TableLayout::SectionHeights &heights = sections[section];
            heights.header = m_delegate ? askedHeight(m_delegate->heightForHeaderInSection(this, section),
                                                      m_sectionHeaderHeight)
                                        : m_sectionHeaderHeight;
            heights.footer = m_delegate ? askedHeight(m_delegate->heightForFooterInSection(this, section),
                                                      m_sectionFooterHeight)
                                        : m_sectionFooterHeight;
            const int rowCount = qMax(0, m_dataSource->numberOfRowsInSection(this, section));
            heights.rows.resize(rowCount, m_rowHeight);
            if (m_delegate) {
                for (int row = 0; row < rowCount; ++row)
                    heights.rows[row] =
                        askedHeight(m_delegate->heightForRowAtIndexPath(this, IndexPath{section, row}), m_rowHeight);
            }
        }
    }
    m_layout = TableLayout(m_tableHeaderHeight, sections, m_tableFooterHeight);
    for (const auto &[path, cell] : m_visibleCells)
        recycle(cell);
    m_visibleCells.clear();
    dropSectionViews(m_headerViews);
    dropSectionViews(m_footerViews);
    if (m_selected && rectForRowAtIndexPath(*m_selected).isEmpty())
        m_selected.reset();
    setContentSize(QSizeF(viewport()->width(), m_layout.contentHeight()));
    const QPointF maximum = maximumContentOffset();
    if (contentOffset().y() > maximum.y() && !isDragging() && !isDecelerating())
        setContentOffset(QPointF(contentOffset().x(), maximum.y()));
    setNeedsLayout();
}

void TableView::setSeparatorStyle(SeparatorStyle style)
{
    m_separatorStyle = style;
    for (const auto &[path, cell] : m_visibleCells)
        cell->setSeparatorVisible(style == SeparatorStyle::SingleLine);
}

void TableView::replaceTableView(QPointer<QWidget> &slot, QWidget *view, qreal &height)
{
    // Deleted later: the replacing may come from the old view's own signal.
    if (slot && slot != view)
        ViewSupport::removeFromSuperview(slot);
    slot = view;
    height = view ? ViewSupport::frame(view).height() : 0;
    if (view) {
        view->setParent(viewport());
        view->show();
    }
    if (m_loaded)
        reloadData();
}

void TableView::setTableHeaderView(QWidget *view)
{
    replaceTableView(m_tableHeaderView, view, m_tableHeaderHeight);
}

void TableView::setTableFooterView(QWidget *view)
{
    replaceTableView(m_tableFooterView, view, m_tableFooterHeight);
}

QRectF TableView::rectForRowAtIndexPath(const IndexPath &indexPath) const
{
    return m_layout.rectForRow(indexPath, viewport()->width());
}

QRectF TableView::rectForHeaderInSection(int section) const
{
    return m_layout.rectForHeaderInSection(section, viewport()->width());
}

QRectF TableView::rectForFooterInSection(int section) const
{
    return m_layout.rectForFooterInSection(section, viewport()->width());
}

std::optional<IndexPath> TableView::indexPathForRowAtPoint(const QPointF &point) const
{
    const IndexPath path = m_layout.rowAtPoint(point.y());
    if (path.section < 0)
        return std::nullopt;
    return path;
}

TableViewCell *TableView::visibleCell(const IndexPath &indexPath) const
{
    const auto found = m_visibleCells.find(indexPath);
    return found == m_visibleCells.end() ? nullptr : found->second;
}

TableViewCell *TableView::cellForRowAtIndexPath(const IndexPath &indexPath)
{
    layoutIfNeeded();
    return visibleCell(indexPath);
}

QList<TableViewCell *> TableView::visibleCells()
{
    layoutIfNeeded();
    QList<TableViewCell *> cells;
    for (const auto &[path, cell] : m_visibleCells)
        cells.append(cell);
    return cells;
}

QList<IndexPath> TableView::indexPathsForVisibleRows()
{
    layoutIfNeeded();
    QList<IndexPath> paths;
    for (const auto &[path, cell] : m_visibleCells)
        paths.append(path);
    return paths;
}

QWidget *TableView::headerViewForSection(int section)
{
    layoutIfNeeded();
    const auto found = m_headerViews.find(section);
    return found == m_headerViews.end() ? nullptr : found->second.data();
}

int TableView::liveCellCount() const
{
    int count = int(m_visibleCells.size());
    for (const QList<TableViewCell *> &pool : m_reusePool)
        count += int(pool.size());
    return count;
}

void TableView::selectRowAtIndexPath(const IndexPath &indexPath, bool animated)
{
    if (m_selected && *m_selected != indexPath)
        deselectRowAtIndexPath(*m_selected, animated);
    m_selected = indexPath;
    if (TableViewCell *cell = visibleCell(indexPath))
        cell->setSelected(true, animated);
}

void TableView::deselectRowAtIndexPath(const IndexPath &indexPath, bool animated)
{
    if (m_selected == indexPath)
        m_selected.reset();
    if (TableViewCell *cell = visibleCell(indexPath))
        cell->setSelected(false, animated);
}

void TableView::scrollToRowAtIndexPath(const IndexPath &indexPath, bool animated)
{
    const QRectF row = rectForRowAtIndexPath(indexPath);
    if (row.isNull())
        return;
    const qreal top = qBound(minimumContentOffset().y(), row.top() - adjustedContentInset().top,
                             maximumContentOffset().y());
    setContentOffset(QPointF(contentOffset().x(), top), animated);
}

void TableView::contentOffsetDidChange()
{
    // Subviews added to the table scroll with it; rows wait for the layout pass.
    ScrollView::contentOffsetDidChange();
    setNeedsLayout();
}

void TableView::showEvent(QShowEvent *event)
{
    ScrollView::showEvent(event);
    if (!m_loaded)
        reloadData();
}

void TableView::layoutSubviews()
{
    if (!m_loaded)
        return;
    m_layingOut = true;
    const qreal top = contentOffset().y();
    const qreal bottom = top + viewport()->height();
    placeTableView(m_tableHeaderView, 0);
    placeTableView(m_tableFooterView, m_layout.tableFooterTop());
    layoutCells(top, bottom);
    layoutSectionViews(top, bottom, false);
    layoutSectionViews(top, bottom, true);
    m_layingOut = false;
    if (m_reloadRequested) {
        m_reloadRequested = false;
        reloadData();
    }
}

void TableView::placeTableView(QWidget *view, qreal contentTop)
{
    if (!view)
        return;
    ViewSupport::setFrame(view, QRectF(0, contentTop - contentOffset().y(), viewport()->width(),
                                       ViewSupport::frame(view).height()));
}

void TableView::layoutCells(qreal top, qreal bottom)
{
    const QList<IndexPath> rows = m_layout.rowsInRange(top, bottom);
    // Cells that left the visible range go to the pool first, so the new rows reuse them.
    for (auto it = m_visibleCells.begin(); it != m_visibleCells.end();) {
        if (std::binary_search(rows.begin(), rows.end(), it->first)) {
            ++it;
            continue;
        }
        TableViewCell *cell = it->second;
        it = m_visibleCells.erase(it);
        recycle(cell);
    }
    const qreal width = viewport()->width();
    for (const IndexPath &path : rows) {
        TableViewCell *cell = visibleCell(path);
        if (!cell) {
            cell = m_dataSource ? m_dataSource->cellForRowAtIndexPath(this, path) : nullptr;
            if (!cell) {
                KitLog::warning("TableView", QStringLiteral("no cell for section %1 row %2").arg(path.section).arg(path.row));
                cell = new TableViewCell();
            }
            cell->setParent(viewport());
            cell->setSeparatorVisible(m_separatorStyle == SeparatorStyle::SingleLine);
            cell->setSelected(m_selected == path);
            m_visibleCells[path] = cell;
        }
        const QRectF rect = m_layout.rectForRow(path, width);
        cell->setFrame(rect.translated(0, -top));
        cell->show();
    }
}

void TableView::layoutSectionViews(qreal top, qreal bottom, bool headers)
{
    std::map<int, QPointer<QWidget>> &views = headers ? m_headerViews : m_footerViews;
    const QList<int> sections = m_layout.sectionsInRange(top, bottom);
    const qreal width = viewport()->width();
    for (auto it = views.begin(); it != views.end();) {
        if (it->second && sections.contains(it->first)) {
            ++it;
            continue;
        }
        if (it->second)
            ViewSupport::removeFromSuperview(it->second);
        it = views.erase(it);
    }
    const qreal pinnedTop = top + adjustedContentInset().top;
    for (int section : sections) {
        QRectF rect = headers ? m_layout.rectForHeaderInSection(section, width)
                              : m_layout.rectForFooterInSection(section, width);
        if (rect.height() <= 0 || !m_delegate)
            continue;
        QPointer<QWidget> &view = views[section];
        if (!view) {
            view = headers ? m_delegate->viewForHeaderInSection(this, section)
                           : m_delegate->viewForFooterInSection(this, section);
            if (!view) {
                views.erase(section);
                continue;
            }
            view->setParent(viewport());
        }
        if (headers) {
            // Pinned under the top inset while the section's rows pass beneath it.
            const qreal sectionBottom = m_layout.rectForSection(section, width).bottom();
            rect.moveTop(qMax(rect.top(), qMin(pinnedTop, sectionBottom - rect.height())));
        }
        ViewSupport::setFrame(view, rect.translated(0, -top));
        view->show();
        view->raise();
    }
}

void TableView::dropSectionViews(std::map<int, QPointer<QWidget>> &views)
{
    for (auto &[section, view] : views) {
        if (view)
            ViewSupport::removeFromSuperview(view);
    }
    views.clear();
}

void TableView::recycle(TableViewCell *cell)
{
    cell->hide();
    cell->setSelected(false);
    if (cell->reuseIdentifier().isEmpty()) {
        cell->deleteLater();
        return;
    }
    m_reusePool[cell->reuseIdentifier()].append(cell);
}

void TableView::handleTap(const QPointF &position)
{
    for (const auto &[section, view] : m_headerViews) {
        if (view && view->geometry().contains(position.toPoint()))
            return;
    }
    const std::optional<IndexPath> path = indexPathForRowAtPoint(position + QPointF(0, contentOffset().y()));
    if (!path)
        return;
    selectRowAtIndexPath(*path);
    if (m_delegate)
        m_delegate->didSelectRowAtIndexPath(this, *path);
}
