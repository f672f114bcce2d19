#include "ReplyIcon.h"

#include <QPainter>
#include <QPainterPath>

namespace ReplyIcon {

QImage image()
{
    static const QImage icon = [] {
        constexpr int kPixels = 40;
        QImage canvas(kPixels, kPixels, QImage::Format_ARGB32_Premultiplied);
        canvas.fill(Qt::transparent);
        QPainter painter(&canvas);
        painter.setRenderHint(QPainter::Antialiasing);
        const QColor ink(0x81, 0x87, 0x8f);
        painter.setPen(QPen(ink, 3, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
        QPainterPath bubble;
        bubble.addRoundedRect(QRectF(4, 5, 32, 24), 7, 7);
        bubble.moveTo(12, 29);
        bubble.lineTo(9, 36);
        bubble.lineTo(19, 29);
        painter.drawPath(bubble);
        painter.drawLine(QPointF(12, 14), QPointF(28, 14));
        painter.drawLine(QPointF(12, 21), QPointF(23, 21));
        return canvas;
    }();
    return icon;
}

} // namespace ReplyIcon
