#include "WebViewController.h"

#include "MainScreen.h"
#include "View.h"

#include <QUrl>

void WebViewController::viewDidLoad()
{
    ViewController::viewDidLoad();
    m_webV = new WebView(QRectF(0, 0, MainScreen::width(), MainScreen::height()));
    // A text that is no well-formed URL makes an empty one, which the web view leaves blank.
    m_webV->loadRequest(QUrl(url, QUrl::StrictMode));
    view()->addSubview(m_webV);
}
