#include "WebPage.h"

#include "KitLog.h"

#include <QWebEngineSettings>

namespace {

// Enough to recognise an address in the log; data: and javascript: URLs can be long.
constexpr qsizetype kLoggedUrlLength = 200;

} // namespace

WebPage::WebPage(QObject *parent) : QWebEnginePage(parent)
{
    settings()->setAttribute(QWebEngineSettings::JavascriptCanOpenWindows, false);
}

bool WebPage::isWebAddress(const QUrl &url)
{
    const QString scheme = url.scheme();
    return url.isValid() && (scheme == u"http" || scheme == u"https") && !url.host().isEmpty();
}

QString WebPage::describe(const QUrl &url)
{
    if (url.isEmpty())
        return QStringLiteral("an empty URL");
    if (!url.isValid())
        return QStringLiteral("a malformed URL (%1)").arg(url.errorString());
    const QString text = url.toString();
    if (text.size() <= kLoggedUrlLength)
        return u'"' + text + u'"';
    return u'"' + text.left(kLoggedUrlLength) + QStringLiteral("…\"");
}

bool WebPage::acceptNavigationRequest(const QUrl &url, NavigationType, bool isMainFrame)
{
    if (isWebAddress(url))
        return true;
    KitLog::warning("WebView", QStringLiteral("refused to go to %1 from a page's %2: only http and https are shown")
                                   .arg(describe(url), isMainFrame ? QStringLiteral("main frame") : QStringLiteral("frame")));
    return false;
}
