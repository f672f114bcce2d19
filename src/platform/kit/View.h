#pragma once
// Base of the kit's views: a widget placed by its frame in points, with a background colour,
// a tag and UIKit-style subviews. Subclasses place their own subviews in layoutSubviews(),
// from their size; no Qt layouts are involved. Main thread.

#include <QColor>
#include <QWidget>

class View : public QWidget
{
    Q_OBJECT
public:
    explicit View(QWidget *parent = nullptr);
    explicit View(const QRectF &frame, QWidget *parent = nullptr);

    void setFrame(const QRectF &frame);
    QRectF frame() const;
    QRectF bounds() const { return QRectF(QPointF(0, 0), frame().size()); }

    // Invalid colour = clear (the default).
    void setBackgroundColor(const QColor &color);
    QColor backgroundColor() const { return m_backgroundColor; }

    void addSubview(QWidget *subview);
    void removeFromSuperview();

    void setUserInteractionEnabled(bool enabled);
    bool isUserInteractionEnabled() const;

    void setTag(int tag) { m_tag = tag; }
    int tag() const { return m_tag; }

protected:
    // Called whenever the view's size changes.
    virtual void layoutSubviews() {}

    void resizeEvent(QResizeEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    QColor m_backgroundColor;
    int m_tag = 0;
};
