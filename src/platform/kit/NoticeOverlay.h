#pragma once
// A text-only notice: a dark rounded box with white text, centred over a window, that hides
// after a delay and then deletes itself. Main thread.

#include "View.h"

class NoticeOverlay : public View
{
    Q_OBJECT
public:
    static constexpr double kDefaultDuration = 1.0;

    // A notice over `host` (normally a window), shown at once with no text yet.
    static NoticeOverlay *showHUDAddedTo(QWidget *host, bool animated = true);
    // A notice with `text` over the window that shows `view`, hiding itself after `seconds`;
    // null (nothing shown) when the view is in no window.
    static NoticeOverlay *showText(QWidget *view, const QString &text, double seconds = kDefaultDuration);

    void setLabelText(const QString &text);
    QString labelText() const { return m_text; }
    void hideAfterDelay(double seconds);
    void hide(bool animated = true);

signals:
    void hidden();

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    explicit NoticeOverlay(QWidget *host);
    void place();

    QString m_text;
    bool m_hiding = false;
};
