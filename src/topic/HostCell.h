#pragma once
// One reply in the topic's list: poster, time and up to two lines of the reply's text in a
// frame as tall as the whole text. Main thread.

#include "ReplyListModel.h"
#include "TableViewCell.h"

class Label;

class HostCell : public TableViewCell
{
    Q_OBJECT

public:
    explicit HostCell(const QString &reuseIdentifier, QWidget *parent = nullptr);

    Label *user();
    Label *time();
    Label *content();

    void getModel(const ReplyListModel &model);

private:
    Label *m_user = nullptr;
    Label *m_time = nullptr;
    Label *m_content = nullptr;
};
