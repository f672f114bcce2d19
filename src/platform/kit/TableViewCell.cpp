#include "TableViewCell.h"

#include <QPainter>

namespace {
const QColor kSelectedColor(217, 217, 217);
const QColor kSeparatorColor(200, 199, 204);
constexpr qreal kSeparatorInset = 15;
constexpr qreal kSeparatorThickness = 0.5;
} // namespace

TableViewCell::TableViewCell(const QString &reuseIdentifier, QWidget *parent)
    : View(parent), m_reuseIdentifier(reuseIdentifier), m_contentView(new View(this))
{
    setBackgroundColor(Qt::white);
}

void TableViewCell::setSelected(bool selected, bool)
{
    m_selected = selected;
    const bool highlighted = selected && m_selectionStyle != TableViewCellSelectionStyle::None;
    m_contentView->setBackgroundColor(highlighted ? kSelectedColor : QColor());
}

void TableViewCell::setSeparatorVisible(bool visible)
{
    if (visible == m_separatorVisible)
        return;
    m_separatorVisible = visible;
    update();
}

void TableViewCell::layoutSubviews()
{
    m_contentView->setFrame(bounds());
}

void TableViewCell::paintEvent(QPaintEvent *event)
{
    View::paintEvent(event);
    if (!m_separatorVisible)
        return;
    QPainter painter(this);
    painter.fillRect(QRectF(kSeparatorInset, height() - kSeparatorThickness, width() - kSeparatorInset,
                            kSeparatorThickness),
                     kSeparatorColor);
}
