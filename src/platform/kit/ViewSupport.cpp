#include "ViewSupport.h"

#include <QVariant>
#include <QWidget>

namespace {
constexpr const char *kFrameProperty = "quorvelFrame";
}

namespace ViewSupport {

void setFrame(QWidget *widget, const QRectF &frame)
{
    widget->setProperty(kFrameProperty, frame);
    QRect pixels = frame.toAlignedRect();
    if (frame.width() <= 0)
        pixels.setWidth(0);
    if (frame.height() <= 0)
        pixels.setHeight(0);
    widget->setGeometry(pixels);
}

QRectF frame(const QWidget *widget)
{
    const QVariant stored = widget->property(kFrameProperty);
    if (stored.isValid()) {
        const QRectF frame = stored.toRectF();
        // A geometry changed behind our back (by a Qt layout or resize) wins.
        if (frame.toAlignedRect().size() == widget->size() || frame.width() <= 0 || frame.height() <= 0)
            return frame;
    }
    return QRectF(widget->geometry());
}

void addSubview(QWidget *superview, QWidget *subview)
{
    if (!subview || !superview)
        return;
    // A view hidden on purpose stays hidden; any other view shows, as UIKit views do.
    const bool hiddenOnPurpose =
        subview->isHidden() && subview->testAttribute(Qt::WA_WState_ExplicitShowHide);
    if (subview->parentWidget() != superview)
        subview->setParent(superview);
    subview->raise();
    if (!hiddenOnPurpose)
        subview->show();
}

void removeFromSuperview(QWidget *view)
{
    if (!view)
        return;
    view->hide();
    view->setParent(nullptr);
    view->deleteLater();
}

void setUserInteractionEnabled(QWidget *view, bool enabled)
{
    view->setAttribute(Qt::WA_TransparentForMouseEvents, !enabled);
}

bool isUserInteractionEnabled(const QWidget *view)
{
    return !view->testAttribute(Qt::WA_TransparentForMouseEvents);
}

void setAccessibilityLabel(QWidget *view, const QString &label)
{
    view->setAccessibleName(label);
}

} // namespace ViewSupport
