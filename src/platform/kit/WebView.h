#pragma once
// The kit's web view: a QWebEngineView placed by its frame in points, which loads only http
// and https addresses. Anything else it is asked to load leaves a blank page and one line in
// the kit's log. Programs that show one call WebEngineSetup::prepareProcess() first.
// Main thread.

#include <QRectF>
#include <QUrl>
#include <QWebEngineView>

class WebView : public QWebEngineView
{
    Q_OBJECT
public:
    explicit WebView(const QRectF &frame, QWidget *parent = nullptr);

    void setFrame(const QRectF &frame);
    QRectF frame() const;

    // The phone's loadRequest: starts loading the page at `url`, or shows a blank page when
    // the URL is not an http or https address.
    void loadRequest(const QUrl &url);
};
