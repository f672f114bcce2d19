#pragma once
// One web page inside the navigation stack, opened from a home banner item whose page address
// the opener sets in `url` before showing it. The page covers the whole screen, under the
// navigation bar too; the screen has no title and no bar buttons of its own, and is left by
// the bar's back button. An address that is not an http or https page leaves it blank.
// Main thread.

#include "ViewController.h"
#include "WebView.h"

#include <QPointer>
#include <QString>

class WebViewController : public ViewController
{
    Q_OBJECT

public:
    // Set by the opener before the screen is shown.
    QString url;

    // The page view, made when the view loads.
    WebView *webV() const { return m_webV; }

    void viewDidLoad() override;

private:
    // The view, with the page in it, may go before this object.
    QPointer<WebView> m_webV;
};
