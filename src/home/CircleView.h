#pragma once
// An endless banner carousel: n pictures on a paging strip of n + 2 pages (page 0 repeats the
// last picture, page n + 1 the first), so the strip wraps both ways without a visible jump. A
// timer advances it every 3 seconds; swipes page it; a dot row shows the picture (hidden for a
// single one); a tap reports the picture's index to the delegate. Vertical drags over it go to
// the scroll view that holds it. Main thread (the timer runs on the main event loop).

#include "CircleViewDelegate.h"
#include "ScrollViewDelegate.h"
#include "View.h"

#include <QList>
#include <QPointer>
#include <QStringList>

class ImageView;
class PageControl;
class QTimer;
class ScrollView;

class CircleView : public View, public ScrollViewDelegate
{
    Q_OBJECT

public:
    static constexpr int kAdvanceMs = 3000;
    // The page index at which the timer is restarted besides 0; fixed whatever n is.
    static constexpr int kTimerRestartIndex = 8;
    static inline const char *const kPlaceholderName = "1";

    CircleView(const QRectF &frame, int count, QWidget *parent = nullptr);
    ~CircleView() override;

    int count() const { return m_count; }
    int imageIndex() const { return m_imageIndex; }
    // Setting it notifies the carousel's own observer, as every assignment does.
    void setImageIndex(int imageIndex);

    ScrollView *scrollV() const { return m_scrollV; }
    PageControl *pageC() const { return m_pageC; }
    const QList<ImageView *> &photoArray() const { return m_photoArray; }
    QTimer *timer() const { return m_timer; }

    void setDelegate(CircleViewDelegate *delegate) { m_delegate = delegate; }

    // Loads the n pictures (URL texts) into the strip's pages, "1" showing until each arrives.
    void getDataFromArray(const QStringList &array);

    // The picture shown by the strip's page nearest to the current offset.
    int currentItemIndex() const;

    void changeAction();
    void exchangePages();
    void scrollViewDidEndDecelerating(ScrollView *scrollView) override;

private:
    void observeImageIndex(int value);
    void restartTimer();
    // A new repeating timer, and its first tick at once.
    void startTimerFiredAtOnce();
    void tapPage(int page);
    int itemIndexOfPage(int page) const;
    qreal pageWidth() const;

    int m_count = 0;
    int m_imageIndex = 0;
    bool m_observing = false;
    ScrollView *m_scrollV = nullptr;
    PageControl *m_pageC = nullptr;
    QList<ImageView *> m_photoArray;
    QTimer *m_timer = nullptr;
    CircleViewDelegate *m_delegate = nullptr;
};
