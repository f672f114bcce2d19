#pragma once
// A UIKit-style table on ScrollView: asks its data source for sections, rows and cells and its
// delegate for heights and section header views, lays them out with TableLayout (table header
// view, then per section header, rows, footer, then table footer view), and keeps only the
// visible cells alive, reusing them by identifier. Section headers stay pinned under the top
// inset while their section scrolls, as in a plain UIKit table. Counts and heights are asked
// on the first showing and at every reloadData(); cells only in the layout pass that a scroll,
// resize, inset change or reload marks, once control returns to the event loop (or at
// layoutIfNeeded()), so a handler may empty its data, move things and reload in any order.
// Main thread.

#include "IndexPath.h"
#include "ScrollView.h"
#include "TableLayout.h"

#include <QHash>
#include <QList>
#include <QPointer>

#include <functional>
#include <map>
#include <optional>

class TableViewCell;
class TableViewDataSource;
class TableViewDelegate;

class TableView : public ScrollView
{
    Q_OBJECT
public:
    enum class SeparatorStyle { None = 0, SingleLine = 1 };
    using CellFactory = std::function<TableViewCell *(const QString &reuseIdentifier)>;
    static constexpr qreal kDefaultRowHeight = 44;

    explicit TableView(QWidget *parent = nullptr);
    explicit TableView(const QRectF &frame, QWidget *parent = nullptr);
    ~TableView() override;

    void setDataSource(TableViewDataSource *dataSource);
    TableViewDataSource *dataSource() const { return m_dataSource; }
    void setDelegate(TableViewDelegate *delegate);
    TableViewDelegate *delegate() const { return m_delegate; }

    // Cells for `reuseIdentifier` are made by `factory`; registerClass<HostCell>("cell1") makes
    // them with HostCell(reuseIdentifier).
    void registerClass(const QString &reuseIdentifier, CellFactory factory);
    template <class Cell>
    void registerClass(const QString &reuseIdentifier)
    {
        registerClass(reuseIdentifier, [](const QString &identifier) { return new Cell(identifier); });
    }
    // A cell waiting for reuse, or a new one from the registered class; null when the
    // identifier was never registered.
    TableViewCell *dequeueReusableCellWithIdentifier(const QString &reuseIdentifier);
    TableViewCell *dequeueReusableCellWithIdentifier(const QString &reuseIdentifier, const IndexPath &indexPath);

    void reloadData();

    void setRowHeight(qreal height) { m_rowHeight = height; }
    qreal rowHeight() const { return m_rowHeight; }
    void setSectionHeaderHeight(qreal height) { m_sectionHeaderHeight = height; }
    qreal sectionHeaderHeight() const { return m_sectionHeaderHeight; }
    void setSectionFooterHeight(qreal height) { m_sectionFooterHeight = height; }
    qreal sectionFooterHeight() const { return m_sectionFooterHeight; }
    void setSeparatorStyle(SeparatorStyle style);
    SeparatorStyle separatorStyle() const { return m_separatorStyle; }

    // The table owns these views and takes their height from their frame when set; a
    // replaced view is deleted once control returns to the event loop.
    void setTableHeaderView(QWidget *view);
    QWidget *tableHeaderView() const { return m_tableHeaderView; }
    void setTableFooterView(QWidget *view);
    QWidget *tableFooterView() const { return m_tableFooterView; }

    int numberOfSections() const { return m_layout.numberOfSections(); }
    int numberOfRowsInSection(int section) const { return m_layout.numberOfRowsInSection(section); }
    // Content coordinates.
    QRectF rectForRowAtIndexPath(const IndexPath &indexPath) const;
    QRectF rectForHeaderInSection(int section) const;
    QRectF rectForFooterInSection(int section) const;
    std::optional<IndexPath> indexPathForRowAtPoint(const QPointF &point) const;

    // Only visible rows have cells; these lay out first when a layout is pending.
    TableViewCell *cellForRowAtIndexPath(const IndexPath &indexPath);
    QList<TableViewCell *> visibleCells();
    QList<IndexPath> indexPathsForVisibleRows();
    QWidget *headerViewForSection(int section);
    // Cells alive now: the visible ones and those waiting for reuse.
    int liveCellCount() const;

    std::optional<IndexPath> indexPathForSelectedRow() const { return m_selected; }
    void selectRowAtIndexPath(const IndexPath &indexPath, bool animated = false);
    void deselectRowAtIndexPath(const IndexPath &indexPath, bool animated = false);
    // Brings the row to the top of the visible area (as far as the content allows).
    void scrollToRowAtIndexPath(const IndexPath &indexPath, bool animated = false);

protected:
    void contentOffsetDidChange() override;
    void layoutSubviews() override;
    void handleTap(const QPointF &position) override;
    void showEvent(QShowEvent *event) override;

private:
    qreal askedHeight(qreal asked, qreal fallback) const;
    TableViewCell *visibleCell(const IndexPath &indexPath) const;
    void layoutCells(qreal top, qreal bottom);
    void layoutSectionViews(qreal top, qreal bottom, bool headers);
    void recycle(TableViewCell *cell);
    void dropSectionViews(std::map<int, QPointer<QWidget>> &views);
    void placeTableView(QWidget *view, qreal contentTop);
    void replaceTableView(QPointer<QWidget> &slot, QWidget *view, qreal &height);

    TableViewDataSource *m_dataSource = nullptr;
    TableViewDelegate *m_delegate = nullptr;
    TableLayout m_layout;
    qreal m_rowHeight = kDefaultRowHeight;
    qreal m_sectionHeaderHeight = 0;
    qreal m_sectionFooterHeight = 0;
    SeparatorStyle m_separatorStyle = SeparatorStyle::SingleLine;
    QPointer<QWidget> m_tableHeaderView;
    QPointer<QWidget> m_tableFooterView;
    qreal m_tableHeaderHeight = 0;
    qreal m_tableFooterHeight = 0;
    QHash<QString, CellFactory> m_factories;
    QHash<QString, QList<TableViewCell *>> m_reusePool;
    std::map<IndexPath, TableViewCell *> m_visibleCells;
    std::map<int, QPointer<QWidget>> m_headerViews;
    std::map<int, QPointer<QWidget>> m_footerViews;
    std::optional<IndexPath> m_selected;
    bool m_loaded = false;
    bool m_layingOut = false;
    bool m_reloadRequested = false;
};
