#include "ImageView.h"

#include "ImageLoader.h"
#include "ImageNamed.h"

#include <QNetworkReply>
#include <QPainter>
#include <QPainterPath>

ImageView::ImageView(QWidget *parent) : View(parent)
{
    setUserInteractionEnabled(false);
}

ImageView::ImageView(const QRectF &frame, QWidget *parent) : ImageView(parent)
{
    setFrame(frame);
}

void ImageView::setImage(const QImage &image)
{
    replaceImage(image, QString());
}

void ImageView::setImageNamed(const QString &name)
{
    const QImage image = ImageNamed::image(name);
    replaceImage(image, image.isNull() ? QString() : name);
}

void ImageView::replaceImage(const QImage &image, const QString &name)
{
    cancelLoad();
    m_url = QUrl();
    showImage(image, name);
}

void ImageView::showImage(const QImage &image, const QString &name)
{
    m_image = image;
    m_imageName = name;
    update();
}

void ImageView::cancelLoad()
{
    if (!m_pending)
        return;
    // Its answer is not wanted any more: it must not reach this view even if already on its way.
    disconnect(m_pending, nullptr, this, nullptr);
    m_pending->abort();
    m_pending->deleteLater();
    m_pending = nullptr;
}

void ImageView::setContentMode(ContentMode mode)
{
    m_contentMode = mode;
    update();
}

void ImageView::setCornerRadius(qreal radius)
{
    m_cornerRadius = radius;
    update();
}

void ImageView::setImageWithURL(const QUrl &url, const QImage &placeholder)
{
    load(url, placeholder, QString());
}

void ImageView::setImageWithURL(const QUrl &url, const QString &placeholderName)
{
    const QImage placeholder = ImageNamed::image(placeholderName);
    load(url, placeholder, placeholder.isNull() ? QString() : placeholderName);
}

void ImageView::load(const QUrl &url, const QImage &placeholder, const QString &placeholderName)
{
    cancelLoad();
    m_url = url;
    showImage(placeholder, placeholderName);
    if (!url.isValid() || url.isEmpty())
        return;
    ImageLoader &loader = m_loader ? *m_loader : ImageLoader::shared();
    m_pending = loader.loadImage(url, this, [this, url](const QImage &image) {
        if (url != m_url)
            return;
        m_pending = nullptr;
        if (!image.isNull())
            showImage(image, QString());
        emit imageLoaded(url);
    });
}

void ImageView::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    if (m_cornerRadius > 0) {
        QPainterPath clip;
        clip.addRoundedRect(QRectF(rect()), m_cornerRadius, m_cornerRadius);
        painter.setClipPath(clip);
    }
    if (backgroundColor().isValid())
        painter.fillRect(rect(), backgroundColor());
    if (m_image.isNull())
        return;
    QSizeF size = m_image.size();
    QRectF target = rect();
    if (m_contentMode != ContentMode::ScaleToFill) {
        size.scale(target.size(), m_contentMode == ContentMode::ScaleAspectFit ? Qt::KeepAspectRatio
                                                                               : Qt::KeepAspectRatioByExpanding);
        target = QRectF(QPointF((width() - size.width()) / 2, (height() - size.height()) / 2), size);
    }
    painter.drawImage(target, m_image);
}
