#pragma once
// The block above a topic's replies: title (one line, cut at a character), poster, time and
// the read-only body text. Laid out from its own size: the title takes one line, the body
// takes what is left. Main thread.

#include "PostModel.h"
#include "TextViewDelegate.h"
#include "View.h"

class Label;
class TextView;

class HeadView : public View, public TextViewDelegate
{
    Q_OBJECT

public:
    explicit HeadView(const QRectF &frame, QWidget *parent = nullptr);

    Label *title();
    Label *user();
    Label *time();
    TextView *content();

    // Fills the four texts from a topic record (and logs them).
    void getModel(const PostModel &model);

    // The body can be scrolled and selected but never starts editing.
    bool textViewShouldBeginEditing(TextView *textView) override;

protected:
    void layoutSubviews() override;

private:
    Label *m_title = nullptr;
    Label *m_user = nullptr;
    Label *m_time = nullptr;
    TextView *m_content = nullptr;
};
