#pragma once
// A pinned or guide topic in a board: the badge and the topic's title on one line. The badge
// is the pinned one; the board screen puts the guide badge into image() on guide rows.
// Main thread.

#include "BoardCell.h"
#include "PostModel.h"

class ImageView;
class Label;

class FirstCell : public BoardCell
{
    Q_OBJECT

public:
    explicit FirstCell(const QString &reuseIdentifier, QWidget *parent = nullptr);

    ImageView *image();
    Label *label();

    // Shows the topic's title; the badge stays as it is.
    void getModel(const PostModel &model);

protected:
    // A reused row starts pinned again: a guide badge left from its last row would
    // otherwise show on a pinned one.
    void prepareForReuse() override;

private:
    ImageView *m_image = nullptr;
    Label *m_label = nullptr;
};
