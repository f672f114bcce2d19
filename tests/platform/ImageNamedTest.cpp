// Pictures by name: the app's pictures at their sizes in points and at any pixel ratio, the
// log line for a name the app has no picture for, and named pictures in image views, as the
// image and as the placeholder while a URL loads.
#include "EventLoop.h"
#include "ImageLoader.h"
#include "ImageNamed.h"
#include "ImageView.h"
#include "LogCapture.h"
#include "RecordingHttpServer.h"

#include <gtest/gtest.h>

#include <QBuffer>
#include <QTemporaryDir>

#include <cmath>
#include <limits>

namespace {

const QByteArray kKitLog = "quorvel.kit";

struct Picture
{
    QString name;
    QSizeF points;
    QPoint plainPoint;  // a point (at ratio 1) inside the picture's flat background
    QColor plainColor;
};

// The pictures the screens name, with their sizes in points.
const Picture kPictures[] = {
    {QStringLiteral("置顶"), QSizeF(32, 17), QPoint(2, 8), QColor(0xf0, 0x54, 0x4c)},
    {QStringLiteral("攻略"), QSizeF(32, 17), QPoint(2, 8), QColor(0x3f, 0x8b, 0xe0)},
    {QStringLiteral("1"), QSizeF(375, 195), QPoint(5, 5), QColor(0xee, 0xef, 0xf1)},
    {QStringLiteral("回帖"), QSizeF(20, 20), QPoint(10, 2), QColor(0x81, 0x87, 0x8f)},
};

// Where a picture is (nearly) white: the badges' words.
QList<QPoint> lightPixels(const QImage &image)
{
    constexpr int kLight = 0xe0;
    QList<QPoint> found;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            const QColor c = image.pixelColor(x, y);
            if (c.alpha() == 255 && qMin(c.red(), qMin(c.green(), c.blue())) >= kLight)
                found << QPoint(x, y);
        }
    }
    return found;
}

TEST(ImageNamedTest, everyPictureTheScreensNameHasItsSizeInPointsAtEachPixelRatio)
{
    LogCapture log(kKitLog);
    for (const Picture &picture : kPictures) {
        SCOPED_TRACE(picture.name.toStdString());
        for (const qreal ratio : {1.0, 2.0, 3.0}) {
            const QImage image = ImageNamed::image(picture.name, ratio);
            ASSERT_FALSE(image.isNull());
            EXPECT_EQ(image.deviceIndependentSize(), picture.points);
            EXPECT_EQ(image.size(), (picture.points * ratio).toSize());
            EXPECT_EQ(image.devicePixelRatio(), ratio);
            EXPECT_EQ(image.pixelColor(picture.plainPoint * ratio), picture.plainColor);
        }
    }
    EXPECT_TRUE(log.lines().isEmpty());
}

TEST(ImageNamedTest, picturesAreDrawnAsDesigned)
{
    // The badges' words are white on their colour, the two words differ, and the corners are
    // rounded off.
    const QImage pinned = ImageNamed::image(QStringLiteral("置顶"), 2);
    const QImage guide = ImageNamed::image(QStringLiteral("攻略"), 2);
    EXPECT_GT(lightPixels(pinned).size(), 40);
    EXPECT_GT(lightPixels(guide).size(), 40);
    EXPECT_NE(lightPixels(pinned), lightPixels(guide));
    EXPECT_LT(pinned.pixelColor(0, 0).alpha(), 32);
    EXPECT_LT(guide.pixelColor(63, 33).alpha(), 32);
    // The banner placeholder's mark sits in its middle.
    const QImage banner = ImageNamed::image(QStringLiteral("1"), 1);
    EXPECT_EQ(banner.pixelColor(187, 110), QColor(0xc9, 0xcc, 0xd1));
    // The reply icon is a clear bubble: its inside between the lines and its corners show through.
    const QImage reply = ImageNamed::image(QStringLiteral("回帖"), 1);
    EXPECT_EQ(reply.pixelColor(10, 12).alpha(), 0);
    EXPECT_EQ(reply.pixelColor(0, 0).alpha(), 0);
    EXPECT_EQ(reply.pixelColor(19, 19).alpha(), 0);
}

TEST(ImageNamedTest, aPictureIsDrawnOncePerPixelRatio)
{
    const QImage first = ImageNamed::image(QStringLiteral("置顶"), 2);
    EXPECT_EQ(ImageNamed::image(QStringLiteral("置顶"), 2).cacheKey(), first.cacheKey());
    EXPECT_NE(ImageNamed::image(QStringLiteral("置顶"), 1).cacheKey(), first.cacheKey());
}

TEST(ImageNamedTest, pixelRatiosOutsideOneToFourAreBroughtIn)
{
    const QString name = QStringLiteral("回帖");
    EXPECT_EQ(ImageNamed::image(name, 0).size(), QSize(20, 20));
    EXPECT_EQ(ImageNamed::image(name, -2).size(), QSize(20, 20));
    EXPECT_EQ(ImageNamed::image(name, std::numeric_limits<qreal>::quiet_NaN()).size(), QSize(20, 20));
    EXPECT_EQ(ImageNamed::image(name, 1000).size(), QSize(80, 80));
    EXPECT_EQ(ImageNamed::image(name, std::numeric_limits<qreal>::infinity()).devicePixelRatio(), 4);
    // Without a ratio, the application's (1 on the headless platform).
    EXPECT_EQ(ImageNamed::image(name).size(), QSize(20, 20));
}

TEST(ImageNamedTest, aNameWithoutAPictureGivesANullImageAndOneLogLineEachTime)
{
    LogCapture log(kKitLog);
    for (const QString &name : {QStringLiteral("没有这张图"), QString(), QStringLiteral("../images/回帖"),
                               QStringLiteral("置顶.svg")}) {
        SCOPED_TRACE(name.toStdString());
        log.clear();
        EXPECT_TRUE(ImageNamed::image(name).isNull());
        ASSERT_EQ(log.lines().size(), 1);
        EXPECT_EQ(log.lines().first(),
                  QStringLiteral("ImageNamed: the app ships no picture named \"%1\" (:/images/%1.svg)").arg(name));
    }
    log.clear();
    EXPECT_TRUE(ImageNamed::image(QStringLiteral("没有这张图")).isNull());
    EXPECT_EQ(log.lines().size(), 1);

    // A file that is there but is no picture (this test's own resource).
    log.clear();
    EXPECT_TRUE(ImageNamed::image(QStringLiteral("unreadable")).isNull());
    EXPECT_EQ(log.lines(), QStringList{QStringLiteral("ImageNamed: the picture :/images/unreadable.svg cannot be drawn")});
}

TEST(ImageNamedTest, anImageViewShowsANamedPictureAndKnowsItsName)
{
    LogCapture log(kKitLog);
    ImageView view(QRectF(0, 0, 32, 17));
    view.setImageNamed(QStringLiteral("置顶"));
    EXPECT_EQ(view.image(), ImageNamed::image(QStringLiteral("置顶")));
    EXPECT_EQ(view.imageName(), QStringLiteral("置顶"));

    QImage own(4, 4, QImage::Format_RGB32);
    own.fill(Qt::green);
    view.setImage(own);
    EXPECT_EQ(view.imageName(), QString());

    view.setImageNamed(QStringLiteral("攻略"));
    EXPECT_EQ(view.imageName(), QStringLiteral("攻略"));
    view.setImageNamed(QStringLiteral("没有这张图"));
    EXPECT_TRUE(view.image().isNull());
    EXPECT_EQ(view.imageName(), QString());
    EXPECT_EQ(log.lines().size(), 1);
}

QByteArray redPng()
{
    QImage image(8, 8, QImage::Format_RGB32);
    image.fill(Qt::red);
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, "PNG");
    return bytes;
}

class NamedPlaceholderTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(server.listen());
        server.setResponder([](const RecordingHttpServer::Request &) {
            return RecordingHttpServer::Response{200, "image/png", redPng()};
        });
        view.setImageLoader(&loader);
        QObject::connect(&view, &ImageView::imageLoaded, [this] { ++loaded; });
    }

    QUrl pictureUrl(const QString &name) const { return QUrl(server.baseUrl() + name + QStringLiteral(".png")); }

    RecordingHttpServer server;
    QTemporaryDir cacheDir;
    ImageLoader loader{cacheDir.filePath(QStringLiteral("images"))};
    ImageView view{QRectF(0, 0, 375, 195)};
    int loaded = 0;
};

TEST_F(NamedPlaceholderTest, theNamedPlaceholderShowsWhileTheUrlLoads)
{
    server.hold();
    view.setImageWithURL(pictureUrl(QStringLiteral("banner")), QStringLiteral("1"));
    EXPECT_EQ(view.image(), ImageNamed::image(QStringLiteral("1")));
    EXPECT_EQ(view.imageName(), QStringLiteral("1"));
    ASSERT_TRUE(testsupport::waitUntil([&] { return server.requests().size() == 1; }));
    testsupport::spinFor(50);
    EXPECT_EQ(view.imageName(), QStringLiteral("1"));

    server.release();
    ASSERT_TRUE(testsupport::waitUntil([&] { return loaded == 1; }));
    EXPECT_EQ(view.image().pixelColor(4, 4), QColor(Qt::red));
    EXPECT_EQ(view.imageName(), QString());
}

TEST_F(NamedPlaceholderTest, anUnknownPlaceholderNameLeavesTheViewEmptyUntilTheUrlLoads)
{
    LogCapture log(kKitLog);
    view.setImageNamed(QStringLiteral("回帖"));
    server.hold();
    view.setImageWithURL(pictureUrl(QStringLiteral("other")), QStringLiteral("没有这张图"));
    EXPECT_TRUE(view.image().isNull());
    EXPECT_EQ(view.imageName(), QString());
    EXPECT_EQ(log.lines().size(), 1);
    server.release();
    ASSERT_TRUE(testsupport::waitUntil([&] { return loaded == 1; }));
    EXPECT_EQ(view.image().pixelColor(4, 4), QColor(Qt::red));
}

} // namespace
