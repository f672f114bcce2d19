#include "FirstCell.h"

#include "BoardStyle.h"
#include "FieldValue.h"
#include "Fonts.h"
#include "ImageView.h"
#include "Label.h"
#include "MainScreen.h"

namespace {

constexpr QRectF kBadgeFrame{10, 10, 32, 17};
constexpr qreal kTitleLeft = 52;
constexpr qreal kTitleTop = 10;
constexpr qreal kTitleHeight = 18;
// The title stops this far short of the screen's right edge.
constexpr qreal kTitleWidthInset = 74;

} // namespace

FirstCell::FirstCell(const QString &reuseIdentifier, QWidget *parent) : BoardCell(reuseIdentifier, parent)
{
    contentView()->addSubview(image());
    contentView()->addSubview(label());
    contentView()->addSubview(lineView());
}

ImageView *FirstCell::image()
{
    if (!m_image) {
        m_image = new ImageView(kBadgeFrame);
        m_image->setImageNamed(BoardStyle::kPinnedBadge);
    }
    return m_image;
}

Label *FirstCell::label()
{
    if (!m_label) {
        m_label = new Label(QRectF(kTitleLeft, kTitleTop, MainScreen::width() - kTitleWidthInset, kTitleHeight));
        m_label->setFont(Fonts::systemFontOfSize(BoardStyle::kPinnedTitleFont));
    }
    return m_label;
}

void FirstCell::getModel(const PostModel &model)
{
    label()->setText(FieldValue::displayText(model.title()));
}

void FirstCell::prepareForReuse()
{
    BoardCell::prepareForReuse();
    image()->setImageNamed(BoardStyle::kPinnedBadge);
}
