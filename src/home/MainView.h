#pragma once
// One board of the home screen's list: its round-cornered icon, its name, the count of its
// topics below the name, and a hairline under the icon. Main thread.

#include "View.h"

class ImageView;
class Label;

class MainView : public View
{
    Q_OBJECT

public:
    explicit MainView(const QRectF &frame, QWidget *parent = nullptr);

    ImageView *icon();
    Label *title();
    Label *topic();
    View *lineView();

private:
    void placeSubviews();

    ImageView *m_icon = nullptr;
    Label *m_title = nullptr;
    Label *m_topic = nullptr;
    View *m_lineView = nullptr;
};
