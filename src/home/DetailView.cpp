#include "DetailView.h"

#include "BoardStyle.h"
#include "DetailViewDelegate.h"
#include "FieldValue.h"
#include "ImageView.h"
#include "Label.h"
#include "MainScreen.h"
#include "TapGestureRecognizer.h"

namespace {

constexpr qreal kSide = 18;
constexpr qreal kAreaTop = 8;
constexpr qreal kBackSide = 31;
constexpr QSizeF kSubmitSize{64, 29};
constexpr qreal kIconGapBelowBack = 40;
constexpr qreal kIconSide = 64;
constexpr qreal kIconCornerRadius = 8;
constexpr qreal kTextGapRightOfIcon = 18;
constexpr qreal kTitleTop = 83;
constexpr qreal kTitleHeight = 18;
constexpr qreal kRowGap = 6;
constexpr qreal kRowHeight = 13;
constexpr qreal kTopicWordWidth = 100;
// Title and tag run from here to the screen's right edge.
constexpr qreal kTextWidthInset = 100;

Label *makeLabel(const char *textColor)
{
    auto *label = new Label;
    label->setTextColor(BoardStyle::color(textColor));
    return label;
}

} // namespace

DetailView::DetailView(const QRectF &frame, QWidget *parent) : View(frame, parent)
{
    addSubview(headImage());
    for (QWidget *subview : std::initializer_list<QWidget *>{back(), submit(), icon(), title(), topic(), content(), label()})
        headImage()->addSubview(subview);
    placeSubviews();
}

ImageView *DetailView::headImage()
{
    if (!m_headImage) {
        m_headImage = new ImageView;
        // Image views let touches through by default; the tap areas inside need them.
        m_headImage->setUserInteractionEnabled(true);
    }
    return m_headImage;
}

ImageView *DetailView::makeTapArea(int tag)
{
    auto *area = new ImageView;
    // No picture: the area is invisible, yet takes taps.
    area->setUserInteractionEnabled(true);
    area->setTag(tag);
    new TapGestureRecognizer(area, [this](TapGestureRecognizer *recognizer) { touchAction(recognizer); });
    return area;
}

ImageView *DetailView::back()
{
    if (!m_back)
        m_back = makeTapArea(BoardStyle::kBackTag);
    return m_back;
}

ImageView *DetailView::submit()
{
    if (!m_submit)
        m_submit = makeTapArea(BoardStyle::kSubmitTag);
    return m_submit;
}

ImageView *DetailView::icon()
{
    if (!m_icon) {
        m_icon = new ImageView;
        m_icon->setCornerRadius(kIconCornerRadius);
    }
    return m_icon;
}

Label *DetailView::title()
{
    if (!m_title)
        m_title = makeLabel(BoardStyle::kHeaderTextColor);
    return m_title;
}

Label *DetailView::topic()
{
    if (!m_topic)
        m_topic = makeLabel(BoardStyle::kTopicCountColor);
    return m_topic;
}

Label *DetailView::label()
{
    if (!m_label) {
        m_label = makeLabel(BoardStyle::kHeaderTextColor);
        m_label->setText(QStringLiteral("话题"));
    }
    return m_label;
}

Label *DetailView::content()
{
    if (!m_content)
        m_content = makeLabel(BoardStyle::kHeaderTextColor);
    return m_content;
}

void DetailView::placeSubviews()
{
    const qreal width = MainScreen::width();
    headImage()->setFrame(QRectF(0, 0, width, BoardStyle::kHeaderHeight));
    back()->setFrame(QRectF(kSide, kAreaTop, kBackSide, kBackSide));
    submit()->setFrame(QRectF(QPointF(width - kSide - kSubmitSize.width(), kAreaTop), kSubmitSize));
    const QRectF iconFrame(kSide, back()->frame().bottom() + kIconGapBelowBack, kIconSide, kIconSide);
    icon()->setFrame(iconFrame);

    const qreal textLeft = iconFrame.right() + kTextGapRightOfIcon;
    const qreal textWidth = width - kTextWidthInset;
    title()->setFrame(QRectF(textLeft, kTitleTop, textWidth, kTitleHeight));
    const qreal countTop = title()->frame().bottom() + kRowGap;
    // The count is as wide as its text, so the fixed word follows right behind it.
    const qreal countWidth = topic()->sizeThatFits(QSizeF()).width();
    topic()->setFrame(QRectF(textLeft, countTop, countWidth, kRowHeight));
    label()->setFrame(QRectF(topic()->frame().right(), countTop, kTopicWordWidth, kRowHeight));
    content()->setFrame(QRectF(textLeft, topic()->frame().bottom() + kRowGap, textWidth, kRowHeight));
}

void DetailView::getModel(const ListModel &model)
{
    title()->setText(FieldValue::displayText(model.sectionname()));
    topic()->setText(FieldValue::describe(model.sectiontopic()) + QStringLiteral("个"));
    content()->setText(FieldValue::displayText(model.sectiontag()));
    icon()->setImageWithURL(QUrl(FieldValue::displayText(model.sectionico())));
    headImage()->setImageWithURL(QUrl(FieldValue::displayText(model.backgroundimg())));
    placeSubviews();
}

void DetailView::touchAction(TapGestureRecognizer *recognizer)
{
    if (m_delegate)
        m_delegate->back(static_cast<View *>(recognizer->view())->tag());
}
