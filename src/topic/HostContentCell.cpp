#include "HostContentCell.h"

#include "Fonts.h"
#include "Label.h"
#include "MainScreen.h"
#include "TopicStyle.h"

#include <QRandomGenerator>

namespace {

Label *makeLabel(const QRectF &frame, const char *textColor)
{
    auto *label = new Label(frame);
    label->setTextColor(TopicStyle::color(textColor));
    label->setBackgroundColor(HostContentCell::randomBackgroundColor());
    return label;
}

} // namespace

QColor HostContentCell::randomBackgroundColor()
{
    QRandomGenerator *random = QRandomGenerator::global();
    const double red = (random->generate() % 25 + 80) / 255.0;
    const double green = (random->generate() % 48 + 70) / 255.0;
    const double blue = (random->generate() % 96 + 140) / 25.0;
    return QColor::fromRgbF(float(red), float(green), float(qMin(blue, 1.0)), 1.0f);
}

HostContentCell::HostContentCell(const QString &reuseIdentifier, QWidget *parent)
    : TableViewCell(reuseIdentifier, parent)
{
    const qreal width = MainScreen::width();
    m_title = makeLabel(QRectF(15, 20, width - 30, 60), TopicStyle::kTextColor);
    m_title->setFont(Fonts::systemFontOfSize(TopicStyle::kTitleFont));
    m_user = makeLabel(QRectF(15, 100, 100, 12), TopicStyle::kTextColor);
    m_time = makeLabel(QRectF(15, 100, width - 130, 11), TopicStyle::kMutedColor);
    m_content = makeLabel(QRectF(15, 131, width - 30, 300), TopicStyle::kTextColor);
    for (Label *label : {m_title, m_user, m_time, m_content})
        contentView()->addSubview(label);
}
