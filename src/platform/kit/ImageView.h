#pragma once
// Shows an image scaled into its frame (fill, fit or cover), optionally with rounded corners,
// and can load it from a URL: the placeholder shows at once, and only the answer for the URL
// asked last is shown, so a reused cell never shows an earlier record's late image. Touches
// fall through unless enabled. Main thread.

#include "View.h"

#include <QImage>
#include <QPointer>
#include <QUrl>

class ImageLoader;
class QNetworkReply;

enum class ContentMode { ScaleToFill = 0, ScaleAspectFit = 1, ScaleAspectFill = 2 };

class ImageView : public View
{
    Q_OBJECT
public:
    explicit ImageView(QWidget *parent = nullptr);
    explicit ImageView(const QRectF &frame, QWidget *parent = nullptr);

    // Replaces whatever shows, and drops a load still running: its late answer is not wanted.
    void setImage(const QImage &image);
    QImage image() const { return m_image; }
    void setContentMode(ContentMode mode);
    void setCornerRadius(qreal radius);

    void setImageWithURL(const QUrl &url, const QImage &placeholder = QImage());
    QUrl imageURL() const { return m_url; }
    // Tests and tools may give a view its own loader; the shared one otherwise.
    void setImageLoader(ImageLoader *loader) { m_loader = loader; }

signals:
    void imageLoaded(const QUrl &url);

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    void cancelLoad();
    void showImage(const QImage &image);

    QImage m_image;
    ContentMode m_contentMode = ContentMode::ScaleToFill;
    qreal m_cornerRadius = 0;
    QUrl m_url;
    QPointer<QNetworkReply> m_pending;
    ImageLoader *m_loader = nullptr;
};
