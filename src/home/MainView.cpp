#include "MainView.h"

#include "Fonts.h"
#include "HomeStyle.h"
#include "ImageView.h"
#include "Label.h"
#include "MainScreen.h"

namespace {

constexpr qreal kIconSide = 64;
constexpr qreal kIconCornerRadius = 6;
// The icon's inset from the view's top-left corner, its gap to the texts, and the
// hairline's distance below it.
constexpr qreal kGap = 14;
constexpr qreal kTextWidth = 140;
constexpr qreal kTitleTop = 28;
constexpr qreal kTitleHeight = 18;
constexpr qreal kTopicGapBelowTitle = 7;
constexpr qreal kTopicHeight = 13;

Label *makeLabel(int fontSize, const QColor &textColor)
{
    auto *label = new Label;
    label->setFont(Fonts::systemFontOfSize(fontSize));
    label->setTextColor(textColor);
    return label;
}

} // namespace

MainView::MainView(const QRectF &frame, QWidget *parent) : View(frame, parent)
{
    addSubview(icon());
    addSubview(title());
    addSubview(topic());
    addSubview(lineView());
    placeSubviews();
}

ImageView *MainView::icon()
{
    if (!m_icon) {
        m_icon = new ImageView;
        m_icon->setCornerRadius(kIconCornerRadius);
        m_icon->setBackgroundColor(BoardStyle::color(HomeStyle::kIconBackgroundColor));
    }
    return m_icon;
}

Label *MainView::title()
{
    if (!m_title)
        m_title = makeLabel(HomeStyle::kTitleFont, BoardStyle::color(HomeStyle::kTitleColor));
    return m_title;
}

Label *MainView::topic()
{
    if (!m_topic)
        m_topic = makeLabel(HomeStyle::kTopicFont, HomeStyle::lightGrayColor());
    return m_topic;
}

View *MainView::lineView()
{
    if (!m_lineView) {
        m_lineView = new View;
        m_lineView->setBackgroundColor(BoardStyle::color(BoardStyle::kLineColor));
    }
    return m_lineView;
}

void MainView::placeSubviews()
{
    icon()->setFrame(QRectF(kGap, kGap, kIconSide, kIconSide));
    const qreal textLeft = icon()->frame().right() + kGap;
    title()->setFrame(QRectF(textLeft, kTitleTop, kTextWidth, kTitleHeight));
    topic()->setFrame(QRectF(textLeft, title()->frame().bottom() + kTopicGapBelowTitle, kTextWidth, kTopicHeight));
    lineView()->setFrame(
        QRectF(0, icon()->frame().bottom() + kGap, MainScreen::width(), BoardStyle::kLineHeight));
}
