#pragma once
// The board's header card: its background picture with the board's icon, name, topic count
// and tag, and two invisible areas near the top whose taps go to the delegate with their
// tags. Placed from the screen's width, as the board screen sizes it. Main thread.

#include "ListModel.h"
#include "View.h"

class DetailViewDelegate;
class ImageView;
class Label;
class TapGestureRecognizer;

class DetailView : public View
{
    Q_OBJECT

public:
    explicit DetailView(const QRectF &frame, QWidget *parent = nullptr);

    ImageView *headImage();
    ImageView *back();
    ImageView *submit();
    ImageView *icon();
    Label *title();
    Label *topic();
    Label *label();
    Label *content();

    // Not owned; the board screen that sets it outlives the card.
    void setDelegate(DetailViewDelegate *delegate) { m_delegate = delegate; }
    DetailViewDelegate *delegate() const { return m_delegate; }

    // Fills the texts and starts loading the icon and the background from a board record.
    void getModel(const ListModel &model);

    void touchAction(TapGestureRecognizer *recognizer);

private:
    ImageView *makeTapArea(int tag);
    void placeSubviews();

    ImageView *m_headImage = nullptr;
    ImageView *m_back = nullptr;
    ImageView *m_submit = nullptr;
    ImageView *m_icon = nullptr;
    Label *m_title = nullptr;
    Label *m_topic = nullptr;
    Label *m_label = nullptr;
    Label *m_content = nullptr;
    DetailViewDelegate *m_delegate = nullptr;
};
