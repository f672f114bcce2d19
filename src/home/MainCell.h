#pragma once
// A row of the home screen's board list: one MainView filled from a board. Main thread.

#include "ListModel.h"
#include "TableViewCell.h"

class MainView;

class MainCell : public TableViewCell
{
    Q_OBJECT

public:
    explicit MainCell(const QString &reuseIdentifier, QWidget *parent = nullptr);

    MainView *mainView();

    // Shows the board's name and topic count, and loads its icon with no placeholder: the
    // icon's yellow background shows until the picture arrives, or for good without one.
    void getModel(const ListModel &model);

private:
    MainView *m_mainView = nullptr;
};
