#include "BarButtonItem.h"

BarButtonItem::BarButtonItem(const QString &title, Style style, Action action, QObject *parent)
    : QObject(parent), m_title(title), m_style(style), m_action(std::move(action))
{
}

void BarButtonItem::setTitle(const QString &title)
{
    m_title = title;
    emit changed();
}

void BarButtonItem::trigger()
{
    emit triggered();
    if (m_action)
        m_action();
}
