// Remote images: placeholder first, late answers for earlier URLs dropped, memory and disk
// caches, against a small HTTP server on a loopback port.
#include "EventLoop.h"
#include "ImageLoader.h"
#include "ImageView.h"

#include <gtest/gtest.h>

#include <QBuffer>
#include <QNetworkReply>
#include <QPointer>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTemporaryDir>

#include <map>

namespace {

QByteArray pngOfColor(const QColor &color)
{
    QImage image(8, 8, QImage::Format_RGB32);
    image.fill(color);
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, "PNG");
    return bytes;
}

// Serves "/<name>.png" as a picture of the colour registered under that name; answers for
// held names wait until released. Counts the requests it gets. Answers carry freshness
// headers unless told otherwise.
class PictureServer : public QObject
{
public:
    PictureServer()
    {
        connect(&m_server, &QTcpServer::newConnection, this, [this] {
            while (QTcpSocket *socket = m_server.nextPendingConnection())
                connect(socket, &QTcpSocket::readyRead, this, [this, socket] { serve(socket); });
        });
        m_server.listen(QHostAddress::LocalHost);
    }

    QUrl url(const QString &name) const
    {
        return QUrl(QStringLiteral("http://127.0.0.1:%1/%2.png").arg(m_server.serverPort()).arg(name));
    }
    void add(const QString &name, const QColor &color) { m_pictures[name] = pngOfColor(color); }
    void hold(const QString &name) { m_held[name]; }
    void release(const QString &name)
    {
        const std::vector<QPointer<QTcpSocket>> sockets = m_held[name];
        m_held.erase(name);
        for (const QPointer<QTcpSocket> &socket : sockets) {
            if (socket && socket->state() == QAbstractSocket::ConnectedState)
                answer(socket, name);
        }
    }
    int requests = 0;
    bool sendsCacheHeaders = true;

private:
    void serve(QTcpSocket *socket)
    {
        const QByteArray request = socket->readAll();
        const QByteArray path = request.split(' ').value(1);
        const QString name = QString::fromUtf8(path.mid(1)).chopped(4);
        ++requests;
        if (m_held.count(name)) {
            m_held[name].push_back(socket);
            return;
        }
        answer(socket, name);
    }
    void answer(QTcpSocket *socket, const QString &name)
    {
        const auto found = m_pictures.find(name);
        const QByteArray body = found == m_pictures.end() ? QByteArray("no such picture") : found->second;
        const QByteArray status = found == m_pictures.end() ? "404 Not Found" : "200 OK";
        const QByteArray freshness = sendsCacheHeaders ? "Cache-Control: max-age=3600\r\n" : "";
        socket->write("HTTP/1.1 " + status + "\r\nContent-Type: image/png\r\n" + freshness +
                      "Content-Length: " + QByteArray::number(body.size()) + "\r\nConnection: close\r\n\r\n" + body);
        socket->disconnectFromHost();
    }

    QTcpServer m_server;
    std::map<QString, QByteArray> m_pictures;
    std::map<QString, std::vector<QPointer<QTcpSocket>>> m_held;
};

QColor centreOf(const ImageView &view)
{
    return view.image().isNull() ? QColor() : view.image().pixelColor(4, 4);
}

class ImageViewTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        server.add("red", Qt::red);
        server.add("blue", Qt::blue);
        loader = std::make_unique<ImageLoader>(cacheDir.filePath("images"));
        view.setImageLoader(loader.get());
    }

    PictureServer server;
    QTemporaryDir cacheDir;
    std::unique_ptr<ImageLoader> loader;
    ImageView view{QRectF(0, 0, 64, 64)};
};

TEST_F(ImageViewTest, placeholderShowsUntilTheImageArrives)
{
    QImage placeholder(8, 8, QImage::Format_RGB32);
    placeholder.fill(Qt::green);
    view.setImageWithURL(server.url("red"), placeholder);
    EXPECT_EQ(centreOf(view), QColor(Qt::green));
    EXPECT_TRUE(testsupport::waitUntil([&] { return centreOf(view) == QColor(Qt::red); }));
}

TEST_F(ImageViewTest, aReusedViewNeverShowsTheEarlierRecordsLateImage)
{
    server.hold("red");
    view.setImageWithURL(server.url("red"));
    ASSERT_TRUE(testsupport::waitUntil([&] { return server.requests == 1; }));
    QPointer<QNetworkReply> late = view.findChild<QNetworkReply *>();
    ASSERT_TRUE(late);
    view.setImageWithURL(server.url("blue"));
    ASSERT_TRUE(testsupport::waitUntil([&] { return centreOf(view) == QColor(Qt::blue); }));
    server.release("red");
    ASSERT_TRUE(testsupport::waitUntil([&] { return !late || late->isFinished(); }));
    EXPECT_EQ(centreOf(view), QColor(Qt::blue));
    EXPECT_EQ(view.imageURL(), server.url("blue"));

    // A record without a picture: the image set directly stays.
    server.hold("red");
    view.setImageWithURL(server.url("red"));
    ASSERT_TRUE(testsupport::waitUntil([&] { return server.requests == 3; }));
    late = view.findChild<QNetworkReply *>();
    ASSERT_TRUE(late);
    QImage own(8, 8, QImage::Format_RGB32);
    own.fill(Qt::green);
    view.setImage(own);
    EXPECT_TRUE(view.imageURL().isEmpty());
    server.release("red");
    ASSERT_TRUE(testsupport::waitUntil([&] { return !late || late->isFinished(); }));
    EXPECT_EQ(centreOf(view), QColor(Qt::green));
}

TEST_F(ImageViewTest, cachedImagesAreNotFetchedAgain)
{
    view.setImageWithURL(server.url("red"));
    ASSERT_TRUE(testsupport::waitUntil([&] { return centreOf(view) == QColor(Qt::red); }));
    // From memory: shown before the call returns.
    ImageView second(QRectF(0, 0, 64, 64));
    second.setImageLoader(loader.get());
    second.setImageWithURL(server.url("red"));
    EXPECT_EQ(centreOf(second), QColor(Qt::red));
    EXPECT_EQ(server.requests, 1);

    // From disk, before the call returns: a loader with an empty memory but the same folder.
    ImageLoader fresh(cacheDir.filePath("images"));
    ImageView third(QRectF(0, 0, 64, 64));
    third.setImageLoader(&fresh);
    third.setImageWithURL(server.url("red"));
    EXPECT_EQ(centreOf(third), QColor(Qt::red));
    EXPECT_EQ(server.requests, 1);

    // Also when the answer said nothing about how long it stays fresh.
    server.sendsCacheHeaders = false;
    view.setImageWithURL(server.url("blue"));
    ASSERT_TRUE(testsupport::waitUntil([&] { return centreOf(view) == QColor(Qt::blue); }));
    ImageLoader another(cacheDir.filePath("images"));
    ImageView fourth(QRectF(0, 0, 64, 64));
    fourth.setImageLoader(&another);
    fourth.setImageWithURL(server.url("blue"));
    EXPECT_EQ(centreOf(fourth), QColor(Qt::blue));
    EXPECT_EQ(server.requests, 2);
}

TEST_F(ImageViewTest, failedLoadKeepsThePlaceholderAndAViewGoneEarlyIsSafe)
{
    QImage placeholder(8, 8, QImage::Format_RGB32);
    placeholder.fill(Qt::green);
    bool answered = false;
    QObject::connect(&view, &ImageView::imageLoaded, [&] { answered = true; });
    view.setImageWithURL(server.url("missing"), placeholder);
    ASSERT_TRUE(testsupport::waitUntil([&] { return answered; }));
    EXPECT_EQ(centreOf(view), QColor(Qt::green));

    // The answers for a view gone early and for one still there arrive together.
    server.hold("blue");
    auto early = std::make_unique<ImageView>(QRectF(0, 0, 64, 64));
    early->setImageLoader(loader.get());
    early->setImageWithURL(server.url("blue"));
    ImageView staying(QRectF(0, 0, 64, 64));
    staying.setImageLoader(loader.get());
    staying.setImageWithURL(server.url("blue"));
    ASSERT_TRUE(testsupport::waitUntil([&] { return server.requests == 3; }));
    early.reset();
    server.release("blue");
    EXPECT_TRUE(testsupport::waitUntil([&] { return centreOf(staying) == QColor(Qt::blue); }));
}

} // namespace
