#pragma once
// The page behind the kit's web view: it goes only to http and https addresses, whoever asks
// (the app, a link, a script, a redirect, a frame), and opens no windows. Pages get no bridge
// into the app: no web channel, no app resources (qrc:), no local files, no other programs
// through their URL schemes. Main thread.

#include <QWebEnginePage>

class WebPage : public QWebEnginePage
{
    Q_OBJECT
public:
    explicit WebPage(QObject *parent = nullptr);

    // An http or https URL naming a host: the only kind a page may show.
    static bool isWebAddress(const QUrl &url);
    // The URL for a log line: its text, or why it is no URL at all; long ones are cut short.
    static QString describe(const QUrl &url);

protected:
    bool acceptNavigationRequest(const QUrl &url, NavigationType type, bool isMainFrame) override;
};
