#pragma once
// Paints the forum's pictures (board icons, board header backgrounds, banner images) as PNG
// and keeps each one once made. Text is drawn only inside a QGuiApplication (fonts need
// one); elsewhere the pictures carry shapes only. Lives on one thread.

#include <QByteArray>
#include <QHash>
#include <QString>

#include <functional>

class ImageFactory
{
public:
    // `caption` is drawn on the picture: the board name's first character on an icon, the
    // item title on a banner; headers carry none. The id picks colours and shapes.
    QByteArray sectionIcon(qint64 sectionid, const QString &caption);
    QByteArray sectionHeader(qint64 sectionid);
    QByteArray banner(qint64 bid, const QString &caption);

private:
    QByteArray cached(const QString &key, const std::function<QByteArray()> &paint);

    QHash<QString, QByteArray> m_cache;
};
