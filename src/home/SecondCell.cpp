#include "SecondCell.h"

#include "BoardStyle.h"
#include "FieldValue.h"
#include "Fonts.h"
#include "JsonChangDic.h"
#include "Label.h"
#include "MainScreen.h"

namespace {

constexpr qreal kSide = 10;
constexpr qreal kTitleTop = 20;
constexpr qreal kTitleHeight = 18;
// The title stops this far short of the screen's right edge.
constexpr qreal kTitleWidthInset = 40;
constexpr qreal kContentTop = 48;
constexpr qreal kContentInitialHeight = 30;
// A text measuring this much or more leaves the text frame as it was.
constexpr qreal kContentKeepFrameHeight = 60;
constexpr int kContentLines = 2;

constexpr qreal kBylineHeight = 11;
constexpr qreal kBylineBottomInset = 20;
constexpr qreal kTimeRightInset = 14;
constexpr qreal kUserGapBeforeTime = 12;
constexpr qreal kUserWidth = 80;

QRectF contentFrame(qreal height)
{
    return QRectF(kSide, kContentTop, MainScreen::width() - 2 * kSide, height);
}

Label *makeBylineLabel(int fontSize, const char *textColor)
{
    auto *label = new Label;
    label->setFont(Fonts::systemFontOfSize(fontSize));
    label->setTextColor(BoardStyle::color(textColor));
    label->setTextAlignment(TextAlignment::Right);
    return label;
}

} // namespace

SecondCell::SecondCell(const QString &reuseIdentifier, QWidget *parent) : BoardCell(reuseIdentifier, parent)
{
    contentView()->addSubview(title());
    contentView()->addSubview(content());
    contentView()->addSubview(user());
    contentView()->addSubview(time());
    contentView()->addSubview(lineView());
}

Label *SecondCell::title()
{
    if (!m_title)
        m_title = new Label(QRectF(kSide, kTitleTop, MainScreen::width() - kTitleWidthInset, kTitleHeight));
    return m_title;
}

Label *SecondCell::content()
{
    if (!m_content) {
        m_content = new Label(contentFrame(kContentInitialHeight));
        m_content->setTextColor(BoardStyle::color(BoardStyle::kMutedColor));
        m_content->setFont(Fonts::systemFontOfSize(BoardStyle::kTopicMetaFont));
        m_content->setLineBreakMode(LineBreakMode::ByCharWrapping);
        m_content->setNumberOfLines(kContentLines);
    }
    return m_content;
}

Label *SecondCell::user()
{
    if (!m_user)
        m_user = makeBylineLabel(BoardStyle::kTopicMetaFont, BoardStyle::kUserColor);
    return m_user;
}

Label *SecondCell::time()
{
    if (!m_time)
        m_time = makeBylineLabel(BoardStyle::kTopicTimeFont, BoardStyle::kMutedColor);
    return m_time;
}

void SecondCell::layoutSubviews()
{
    BoardCell::layoutSubviews();
    placeByline();
}

void SecondCell::placeByline()
{
    const QRectF bounds = contentView()->bounds();
    const qreal top = bounds.height() - kBylineBottomInset - kBylineHeight;
    const qreal timeWidth = time()->sizeThatFits(QSizeF()).width();
    const qreal timeLeft = bounds.width() - kTimeRightInset - timeWidth;
    time()->setFrame(QRectF(timeLeft, top, timeWidth, kBylineHeight));
    user()->setFrame(QRectF(timeLeft - kUserGapBeforeTime - kUserWidth, top, kUserWidth, kBylineHeight));
}

void SecondCell::getModel(const PostModel &model)
{
    const qreal height = JsonChangDic::adaptiveWithText(FieldValue::optionalText(model.topiccontent()));
    if (height < kContentKeepFrameHeight)
        content()->setFrame(contentFrame(height));
    title()->setText(FieldValue::displayText(model.title()));
    content()->setText(FieldValue::displayText(model.topiccontent()));
    user()->setText(FieldValue::displayText(model.username()));
    time()->setText(FieldValue::displayText(model.timeformat()));
    placeByline();
}
