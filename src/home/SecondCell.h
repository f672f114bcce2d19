#pragma once
// An ordinary topic in a board: its title, up to two lines of its text, and the poster and
// time right-aligned along the bottom. A text measuring 60 points or more leaves the text
// frame as an earlier topic set it: a reused row keeps that height. Main thread.

#include "BoardCell.h"
#include "PostModel.h"

class Label;

class SecondCell : public BoardCell
{
    Q_OBJECT

public:
    explicit SecondCell(const QString &reuseIdentifier, QWidget *parent = nullptr);

    Label *title();
    Label *content();
    Label *user();
    Label *time();

    void getModel(const PostModel &model);

protected:
    void layoutSubviews() override;

private:
    // Poster and time sit on the bottom edge, the time as wide as its text.
    void placeByline();

    Label *m_title = nullptr;
    Label *m_content = nullptr;
    Label *m_user = nullptr;
    Label *m_time = nullptr;
};
