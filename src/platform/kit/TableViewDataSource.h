#pragma once
// What a table asks of its data source. Main thread.

#include "IndexPath.h"

class TableView;
class TableViewCell;

class TableViewDataSource
{
public:
    virtual ~TableViewDataSource() = default;

    virtual int numberOfSectionsInTableView(TableView *) { return 1; }
    virtual int numberOfRowsInSection(TableView *tableView, int section) = 0;
    // Normally a cell from tableView->dequeueReusableCellWithIdentifier(...).
    virtual TableViewCell *cellForRowAtIndexPath(TableView *tableView, const IndexPath &indexPath) = 0;
};
