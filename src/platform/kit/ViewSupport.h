#pragma once
// UIKit-style placing of any widget: frames in points (fractions kept, the widget covers the
// pixels the frame touches), subviews, touch handling on or off, and accessibility labels.
// Shared by View and the scroll views, which cannot derive from View. Main thread.

#include <QRectF>

class QString;
class QWidget;

namespace ViewSupport {

void setFrame(QWidget *widget, const QRectF &frame);
// The frame last set, or the widget's geometry when none was set.
QRectF frame(const QWidget *widget);

void addSubview(QWidget *superview, QWidget *subview);
// Detaches the view and deletes it once control returns to the event loop: a view belongs to
// its superview, as in UIKit.
void removeFromSuperview(QWidget *view);

// Without touch handling a view and all its subviews let touches fall through to what lies
// beneath, as UIKit does for views with user interaction disabled.
void setUserInteractionEnabled(QWidget *view, bool enabled);
bool isUserInteractionEnabled(const QWidget *view);

// What assistive tools call the view, as the phone's accessibility label: it replaces the name
// the kit takes from what the view shows. An empty label gives that name back.
void setAccessibilityLabel(QWidget *view, const QString &label);

} // namespace ViewSupport
