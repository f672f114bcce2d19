#include "BoardCell.h"

#include "BoardStyle.h"
#include "MainScreen.h"

BoardCell::BoardCell(const QString &reuseIdentifier, QWidget *parent) : TableViewCell(reuseIdentifier, parent)
{
}

View *BoardCell::lineView()
{
    if (!m_lineView) {
        m_lineView = new View;
        m_lineView->setBackgroundColor(BoardStyle::color(BoardStyle::kLineColor));
    }
    return m_lineView;
}

void BoardCell::layoutSubviews()
{
    TableViewCell::layoutSubviews();
    const qreal bottom = contentView()->bounds().height() - BoardStyle::kLineBottomInset;
    lineView()->setFrame(QRectF(0, bottom - BoardStyle::kLineHeight, MainScreen::width(), BoardStyle::kLineHeight));
}
