#pragma once
// A whole topic laid out in one row: title, poster, time and body, each on a random colour.
// No screen places it yet. Main thread.

#include "TableViewCell.h"

class Label;

class HostContentCell : public TableViewCell
{
    Q_OBJECT

public:
    explicit HostContentCell(const QString &reuseIdentifier, QWidget *parent = nullptr);

    Label *title() const { return m_title; }
    Label *user() const { return m_user; }
    Label *time() const { return m_time; }
    Label *content() const { return m_content; }

    // The random background: red and green in fixed bands; blue is computed over 25, not
    // 255, so it always clamps to full blue.
    static QColor randomBackgroundColor();

private:
    Label *m_title;
    Label *m_user;
    Label *m_time;
    Label *m_content;
};
