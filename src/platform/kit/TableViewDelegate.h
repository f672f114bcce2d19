#pragma once
// What a table asks of and tells its delegate: heights, section header views, selection, and
// the scroll view calls. Every operation is optional; a height of kAutomaticDimension means
// "use the table's own default" (rowHeight, sectionHeaderHeight, sectionFooterHeight).
// Main thread.

#include "IndexPath.h"
#include "ScrollViewDelegate.h"

#include <QtGlobal>

class QWidget;
class TableView;

class TableViewDelegate : public ScrollViewDelegate
{
public:
    static constexpr qreal kAutomaticDimension = -1;

    virtual qreal heightForRowAtIndexPath(TableView *, const IndexPath &) { return kAutomaticDimension; }
    virtual qreal heightForHeaderInSection(TableView *, int) { return kAutomaticDimension; }
    virtual qreal heightForFooterInSection(TableView *, int) { return kAutomaticDimension; }
    // A new view each time; the table owns it and deletes it once the header scrolls away.
    virtual QWidget *viewForHeaderInSection(TableView *, int) { return nullptr; }
    virtual QWidget *viewForFooterInSection(TableView *, int) { return nullptr; }
    virtual void didSelectRowAtIndexPath(TableView *, const IndexPath &) {}
};
