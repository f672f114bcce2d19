#pragma once
// The bar on top of a navigation controller: a 20-point status bar strip and a 44-point bar
// with the top screen's title, its left item or a back button, and its right item. A
// translucent bar lies over the screen's view; an opaque one pushes the view below it.
// Main thread.

#include "NavigationItem.h"
#include "View.h"

#include <QPointer>

class Button;
class Label;

class NavigationBar : public View
{
    Q_OBJECT
public:
    static constexpr qreal kStatusBarHeight = 20;
    static constexpr qreal kBarHeight = 44;
    static constexpr qreal kHeight = kStatusBarHeight + kBarHeight;

    explicit NavigationBar(QWidget *parent = nullptr);

    void setTranslucent(bool translucent);
    bool isTranslucent() const { return m_translucent; }

    // Shows `top`, with a back button to `back` (none when null).
    void setItems(NavigationItem *top, NavigationItem *back);
    NavigationItem *topItem() const { return m_top; }

    Label *titleLabel() const { return m_titleLabel; }
    // Visible only when the top item has a left item; the back button otherwise.
    Button *leftButton() const { return m_leftButton; }
    Button *backButton() const { return m_backButton; }
    Button *rightButton() const { return m_rightButton; }

signals:
    void backRequested();
    void translucencyChanged();

protected:
    void layoutSubviews() override;
    void paintEvent(QPaintEvent *event) override;

private:
    void refresh();

    bool m_translucent = true;
    QPointer<NavigationItem> m_top;
    QPointer<NavigationItem> m_back;
    Label *m_titleLabel;
    Button *m_leftButton;
    Button *m_backButton;
    Button *m_rightButton;
};
