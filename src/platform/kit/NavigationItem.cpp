#include "NavigationItem.h"

#include "BarButtonItem.h"

NavigationItem::NavigationItem(QObject *parent) : QObject(parent) {}

void NavigationItem::setTitle(const QString &title)
{
    m_title = title;
    emit changed();
}

void NavigationItem::setLeftBarButtonItem(BarButtonItem *item)
{
    replaceItem(m_left, item);
}

void NavigationItem::setRightBarButtonItem(BarButtonItem *item)
{
    replaceItem(m_right, item);
}

void NavigationItem::replaceItem(QPointer<BarButtonItem> &slot, BarButtonItem *item)
{
    if (slot == item)
        return;
    if (slot)
        slot->deleteLater();
    slot = item;
    if (item) {
        item->setParent(this);
        connect(item, &BarButtonItem::changed, this, &NavigationItem::changed);
    }
    emit changed();
}

void NavigationItem::setHidesBackButton(bool hides, bool)
{
    m_hidesBackButton = hides;
    emit changed();
}
