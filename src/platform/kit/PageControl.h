#pragma once
// A row of page dots, the current one in its own colour; tapping left or right of the current
// dot moves one page that way and emits valueChanged(). Main thread.

#include "View.h"

class PageControl : public View
{
    Q_OBJECT
public:
    explicit PageControl(QWidget *parent = nullptr);
    explicit PageControl(const QRectF &frame, QWidget *parent = nullptr);

    void setNumberOfPages(int pages);
    int numberOfPages() const { return m_numberOfPages; }
    void setCurrentPage(int page);
    int currentPage() const { return m_currentPage; }
    void setPageIndicatorTintColor(const QColor &color);
    void setCurrentPageIndicatorTintColor(const QColor &color);
    void setHidesForSinglePage(bool hides);

signals:
    void valueChanged();

protected:
    void paintEvent(QPaintEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;

private:
    int m_numberOfPages = 0;
    int m_currentPage = 0;
    QColor m_dotColor = QColor(255, 255, 255, 90);
    QColor m_currentDotColor = Qt::white;
    bool m_hidesForSinglePage = false;
};
