#pragma once
// A custom-type button: a title (and optional image) drawn over its background, aligned left,
// centre or right, that emits touchUpInside() when a press is released inside it. Buttons
// never take keyboard focus, so tapping one leaves a text view editing. Main thread.

#include "View.h"

#include <QFont>
#include <QImage>

enum class ContentHorizontalAlignment { Center = 0, Left = 1, Right = 2 };

class Button : public View
{
    Q_OBJECT
public:
    explicit Button(QWidget *parent = nullptr);
    explicit Button(const QRectF &frame, QWidget *parent = nullptr);

    void setTitle(const QString &title);
    QString title() const { return m_title; }
    void setTitleColor(const QColor &color);
    QColor titleColor() const { return m_titleColor; }
    void setTitleFont(const QFont &font);
    QFont titleFont() const { return m_font; }
    void setImage(const QImage &image);
    QImage image() const { return m_image; }
    void setContentHorizontalAlignment(ContentHorizontalAlignment alignment);
    ContentHorizontalAlignment contentHorizontalAlignment() const { return m_alignment; }

    bool isHighlighted() const { return m_pressed && m_inside; }

signals:
    void touchUpInside();

protected:
    void paintEvent(QPaintEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;

private:
    QString m_title;
    QColor m_titleColor = Qt::white;
    QFont m_font;
    QImage m_image;
    ContentHorizontalAlignment m_alignment = ContentHorizontalAlignment::Center;
    bool m_pressed = false;
    bool m_inside = false;
};
