#include "HeadView.h"

#include "FieldValue.h"
#include "Fonts.h"
#include "ForumLog.h"
#include "Label.h"
#include "TextView.h"
#include "TopicStyle.h"

#include <QFontMetricsF>

namespace {

constexpr qreal kSide = 15;
constexpr qreal kGap = 20;
constexpr qreal kMetaHeight = 12;
constexpr qreal kUserWidth = 75;
constexpr qreal kTimeGap = 14;

} // namespace

HeadView::HeadView(const QRectF &frame, QWidget *parent) : View(frame, parent)
{
    // Created in this order on purpose: the title's set-up reaches for the user label.
    addSubview(content());
    addSubview(user());
    addSubview(time());
    addSubview(title());
    layoutSubviews();
}

TextView *HeadView::content()
{
    if (!m_content) {
        m_content = new TextView;
        m_content->setFont(Fonts::systemFontOfSize(TopicStyle::kBodyFont));
        m_content->setTextColor(TopicStyle::color(TopicStyle::kTextColor));
        m_content->setDelegate(this);
    }
    return m_content;
}

Label *HeadView::user()
{
    if (!m_user) {
        m_user = new Label;
        m_user->setFont(Fonts::systemFontOfSize(TopicStyle::kMetaFont));
        m_user->setTextColor(TopicStyle::color(TopicStyle::kTextColor));
    }
    return m_user;
}

Label *HeadView::time()
{
    if (!m_time) {
        m_time = new Label;
        m_time->setFont(Fonts::systemFontOfSize(TopicStyle::kMetaFont));
        m_time->setTextColor(TopicStyle::color(TopicStyle::kMutedColor));
    }
    return m_time;
}

Label *HeadView::title()
{
    if (!m_title) {
        m_title = new Label;
        m_title->setFont(Fonts::systemFontOfSize(TopicStyle::kTitleFont));
        m_title->setTextColor(TopicStyle::color(TopicStyle::kTextColor));
        m_title->setLineBreakMode(LineBreakMode::ByCharWrapping);
        // The unlimited line count lands on the user label, not the title: the title keeps
        // its single line. That is the look of this screen.
        if (m_user)
            m_user->setNumberOfLines(0);
    }
    return m_title;
}

void HeadView::layoutSubviews()
{
    const qreal width = bounds().width();
    const qreal titleHeight = QFontMetricsF(title()->font()).height();
    const qreal metaTop = kGap + titleHeight + kGap;
    const qreal contentTop = metaTop + kMetaHeight + kGap;
    title()->setFrame(QRectF(kSide, kGap, width - 2 * kSide, titleHeight));
    user()->setFrame(QRectF(kSide, metaTop, kUserWidth, kMetaHeight));
    const qreal timeLeft = kSide + kUserWidth + kTimeGap;
    time()->setFrame(QRectF(timeLeft, metaTop, width - kSide - timeLeft, kMetaHeight));
    content()->setFrame(QRectF(kSide, contentTop, width - 2 * kSide,
                               qMax<qreal>(0, bounds().height() - kGap - contentTop)));
}

void HeadView::getModel(const PostModel &model)
{
    forumLog(QStringLiteral("%1  %2  %3")
                 .arg(FieldValue::describe(model.title()), FieldValue::describe(model.topiccontent()),
                      FieldValue::describe(model.username())));
    title()->setText(FieldValue::displayText(model.title()));
    time()->setText(FieldValue::displayText(model.time()));
    content()->setText(FieldValue::displayText(model.topiccontent()));
    user()->setText(FieldValue::displayText(model.username()));
}

bool HeadView::textViewShouldBeginEditing(TextView *textView)
{
    return textView->isFirstResponder();
}
