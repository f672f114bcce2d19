#include "WebView.h"

#include "KitLog.h"
#include "ViewSupport.h"
#include "WebPage.h"

namespace {

const QUrl kBlankPage(QStringLiteral("about:blank"));

} // namespace

WebView::WebView(const QRectF &frame, QWidget *parent) : QWebEngineView(parent)
{
    setPage(new WebPage(this));
    setFrame(frame);
}

void WebView::setFrame(const QRectF &frame)
{
    ViewSupport::setFrame(this, frame);
}

QRectF WebView::frame() const
{
    return ViewSupport::frame(this);
}

void WebView::loadRequest(const QUrl &url)
{
    if (WebPage::isWebAddress(url)) {
        load(url);
        return;
    }
    KitLog::warning("WebView", QStringLiteral("refused to load %1: only http and https pages are shown")
                                   .arg(WebPage::describe(url)));
    load(kBlankPage);
}
