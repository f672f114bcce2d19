#pragma once
// Shows an image scaled into its frame (fill, fit or cover), optionally with rounded corners,
// and can load it from a URL: the placeholder shows at once, and only the answer for the URL
// asked last is shown, so a reused cell never shows an earlier record's late image. Pictures
// shipped with the app can be given by name (ImageNamed), and the view keeps the name of the
// one it shows so it can be described. Touches fall through unless enabled. Main thread.

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
    // The app's picture of that name (a null image, which clears the view, when there is none).
    void setImageNamed(const QString &name);
    // The name of the app's picture on show; empty for any other image, or none.
    QString imageName() const { return m_imageName; }
    void setContentMode(ContentMode mode);
    void setCornerRadius(qreal radius);

    void setImageWithURL(const QUrl &url, const QImage &placeholder = QImage());
    // The placeholder is the app's picture of that name.
    void setImageWithURL(const QUrl &url, const QString &placeholderName);
    QUrl imageURL() const { return m_url; }
    // Tests and tools may give a view its own loader; the shared one otherwise.
    void setImageLoader(ImageLoader *loader) { m_loader = loader; }

signals:
    void imageLoaded(const QUrl &url);

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    void cancelLoad();
    void replaceImage(const QImage &image, const QString &name);
    void load(const QUrl &url, const QImage &placeholder, const QString &placeholderName);
    void showImage(const QImage &image, const QString &name);

    QImage m_image;
    QString m_imageName;
    ContentMode m_contentMode = ContentMode::ScaleToFill;
    qreal m_cornerRadius = 0;
    QUrl m_url;
    QPointer<QNetworkReply> m_pending;
    ImageLoader *m_loader = nullptr;
};
