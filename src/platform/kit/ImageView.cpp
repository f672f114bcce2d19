#include "ImageView.h"

#include "ImageLoader.h"

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
    cancelLoad();
    m_url = QUrl();
    showImage(image);
}

void ImageView::showImage(const QImage &image)
{
    m_image = image;
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
    cancelLoad();
    m_url = url;
    showImage(placeholder);
    if (!url.isValid() || url.isEmpty())
        return;
    ImageLoader &loader = m_loader ? *m_loader : ImageLoader::shared();
    m_pending = loader.loadImage(url, this, [this, url](const QImage &image) {
        if (url != m_url)
            return;
        m_pending = nullptr;
        if (!image.isNull())
            showImage(image);
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
