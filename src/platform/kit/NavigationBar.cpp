#include "NavigationBar.h"

#include "BarButtonItem.h"
#include "Button.h"
#include "Fonts.h"
#include "Label.h"
#include "NavigationItem.h"
#include "ViewSupport.h"

#include <QPainter>

namespace {
const QColor kTranslucentBackground(248, 248, 248, 235);
const QColor kOpaqueBackground(248, 248, 248);
const QColor kHairlineColor(178, 178, 178);
const QColor kTintColor(0, 122, 255);
const QColor kTitleColor(0, 0, 0);
constexpr int kTitleFontSize = 17;
constexpr int kItemFontSize = 17;
constexpr qreal kItemWidth = 88;
constexpr qreal kSideMargin = 8;
const QString kBackArrow = QStringLiteral("‹ ");
const QString kDefaultBackTitle = QStringLiteral("返回");
} // namespace

NavigationBar::NavigationBar(QWidget *parent)
    : View(parent), m_titleLabel(new Label(this)), m_leftButton(new Button(this)), m_backButton(new Button(this)),
      m_rightButton(new Button(this))
{
    QFont titleFont = Fonts::systemFontOfSize(kTitleFontSize);
    titleFont.setBold(true);
    m_titleLabel->setFont(titleFont);
    m_titleLabel->setTextColor(kTitleColor);
    m_titleLabel->setTextAlignment(TextAlignment::Center);
    for (Button *button : {m_leftButton, m_backButton, m_rightButton}) {
        button->setTitleColor(kTintColor);
        button->setTitleFont(Fonts::systemFontOfSize(kItemFontSize));
        button->hide();
    }
    m_leftButton->setContentHorizontalAlignment(ContentHorizontalAlignment::Left);
    m_backButton->setContentHorizontalAlignment(ContentHorizontalAlignment::Left);
    m_rightButton->setContentHorizontalAlignment(ContentHorizontalAlignment::Right);
    connect(m_backButton, &Button::touchUpInside, this, &NavigationBar::backRequested);
    connect(m_leftButton, &Button::touchUpInside, this, [this] {
        if (m_top && m_top->leftBarButtonItem())
            m_top->leftBarButtonItem()->trigger();
    });
    connect(m_rightButton, &Button::touchUpInside, this, [this] {
        if (m_top && m_top->rightBarButtonItem())
            m_top->rightBarButtonItem()->trigger();
    });
}

void NavigationBar::setTranslucent(bool translucent)
{
    if (m_translucent == translucent)
        return;
    m_translucent = translucent;
    update();
    emit translucencyChanged();
}

void NavigationBar::setItems(NavigationItem *top, NavigationItem *back)
{
    if (m_top)
        disconnect(m_top, nullptr, this, nullptr);
    if (m_back)
        disconnect(m_back, nullptr, this, nullptr);
    m_top = top;
    m_back = back;
    if (top)
        connect(top, &NavigationItem::changed, this, &NavigationBar::refresh);
    if (back)
        connect(back, &NavigationItem::changed, this, &NavigationBar::refresh);
    refresh();
}

void NavigationBar::refresh()
{
    m_titleLabel->setText(m_top ? m_top->title() : QString());
    BarButtonItem *left = m_top ? m_top->leftBarButtonItem() : nullptr;
    BarButtonItem *right = m_top ? m_top->rightBarButtonItem() : nullptr;
    m_leftButton->setVisible(left != nullptr);
    m_leftButton->setTitle(left ? left->title() : QString());
    m_rightButton->setVisible(right != nullptr);
    m_rightButton->setTitle(right ? right->title() : QString());
    const bool showsBack = m_back && !left && !m_top->hidesBackButton();
    m_backButton->setVisible(showsBack);
    const QString backTitle = m_back && !m_back->title().isEmpty() ? m_back->title() : kDefaultBackTitle;
    m_backButton->setTitle(kBackArrow + backTitle);
    // The arrow is drawn for the eye; a reader says the title alone.
    ViewSupport::setAccessibilityLabel(m_backButton, backTitle);
}

void NavigationBar::layoutSubviews()
{
    const qreal width = frame().width();
    m_leftButton->setFrame(QRectF(kSideMargin, kStatusBarHeight, kItemWidth, kBarHeight));
    m_backButton->setFrame(QRectF(kSideMargin, kStatusBarHeight, kItemWidth, kBarHeight));
    m_rightButton->setFrame(QRectF(width - kSideMargin - kItemWidth, kStatusBarHeight, kItemWidth, kBarHeight));
    m_titleLabel->setFrame(
        QRectF(kSideMargin + kItemWidth, kStatusBarHeight, width - 2 * (kSideMargin + kItemWidth), kBarHeight));
}

void NavigationBar::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.fillRect(rect(), m_translucent ? kTranslucentBackground : kOpaqueBackground);
    painter.fillRect(QRectF(0, kHeight - 0.5, width(), 0.5), kHairlineColor);
}
