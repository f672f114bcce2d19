#pragma once
// What the board's topic rows share: a white row with a hairline along its bottom. Subclasses
// add lineView() to the content view after their own subviews. Main thread.

#include "TableViewCell.h"

class BoardCell : public TableViewCell
{
    Q_OBJECT

public:
    View *lineView();

protected:
    explicit BoardCell(const QString &reuseIdentifier, QWidget *parent = nullptr);

    void layoutSubviews() override;

private:
    View *m_lineView = nullptr;
};
