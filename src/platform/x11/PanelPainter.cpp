#include "platform/x11/PanelPainter.h"

#include <QFontMetricsF>
#include <QPainter>
#include <QPainterPath>
#include <algorithm>
#include <cmath>

#include "platform/x11/Pictures.h"
#include "platform/x11/SoftShadow.h"

namespace nevo {

namespace {

int nearest(double value) { return static_cast<int>(std::lround(std::clamp(value, -1e6, 1e6))); }

/// From the top left, on whole pixels.
QRect pixelsOf(const Rect& frame, int height) {
    int left = nearest(frame.x);
    int top = nearest(height - frame.maxY());
    return {left, top, nearest(frame.maxX()) - left, nearest(height - frame.y) - top};
}

QPainterPath rounded(const QRectF& area, double radius) {
    QPainterPath path;
    double most = std::min(area.width(), area.height()) / 2;
    double corner = std::clamp(radius, 0.0, std::max(0.0, most));
    path.addRoundedRect(area, corner, corner);
    return path;
}

QImage emptyPicture(QSize size) {
    QImage picture(size, QImage::Format_ARGB32_Premultiplied);
    picture.fill(Qt::transparent);
    return picture;
}

/// One view in its place.
class ViewPainter {
public:
    ViewPainter(const PanelView& what, const PanelTheme& colors, int height)
        : view(what),
          theme(colors),
          area(pixelsOf(what.frame, height)),
          outline(rounded(area, what.cornerRadius)) {}

    void draw(QPainter& painter) const {
        if (!(view.alpha > 0) || area.isEmpty()) return;
        if (view.alpha >= 1) return drawAll(painter);
        // Translucent as a whole: what lies within it doesn't shine through itself.
        QImage layer = emptyPicture({painter.device()->width(), painter.device()->height()});
        QPainter onLayer(&layer);
        onLayer.setRenderHints(painter.renderHints());
        drawAll(onLayer);
        onLayer.end();
        painter.setOpacity(view.alpha);
        painter.drawImage(0, 0, layer);
        painter.setOpacity(1);
    }

private:
    void drawAll(QPainter& painter) const {
        drawShadow(painter);
        if (view.material) painter.fillPath(outline, theme.tint(*view.material));
        painter.fillPath(outline, theme.resolved(view.background));
        drawBorder(painter);
        drawImage(painter);
        drawText(painter);
    }

    /// Only around the view: one that is translucent doesn't stand on its own shadow.
    void drawShadow(QPainter& painter) const {
        const LayerShadow& shadow = view.shadow;
        if (!(shadow.opacity > 0)) return;
        QImage shape = emptyPicture({painter.device()->width(), painter.device()->height()});
        QPainter onShape(&shape);
        onShape.setRenderHint(QPainter::Antialiasing);
        onShape.fillPath(outline.translated(shadow.offset.x, -shadow.offset.y), Qt::black);
        onShape.end();
        QColor color = theme.resolved(shadow.color);
        color.setAlphaF(color.alphaF() * static_cast<float>(std::min(shadow.opacity, 1.0)));
        QImage soft = softShadow(shape, shadow.radius / 2, color);
        QPainter onSoft(&soft);
        onSoft.setRenderHint(QPainter::Antialiasing);
        onSoft.setCompositionMode(QPainter::CompositionMode_DestinationOut);
        onSoft.fillPath(outline, Qt::black);
        onSoft.end();
        painter.drawImage(0, 0, soft);
    }

    void drawBorder(QPainter& painter) const {
        double width = view.borderWidth;
        if (!(width > 0)) return;
        QRectF inside = QRectF(area).adjusted(width, width, -width, -width);
        QPainterPath ring = outline;
        if (!inside.isEmpty()) ring = ring.subtracted(rounded(inside, view.cornerRadius - width));
        painter.fillPath(ring, theme.resolved(view.borderColor));
    }

    void drawImage(QPainter& painter) const {
        if (!view.image || !(view.image->size.width > 0) || !(view.image->size.height > 0)) return;
        const Size& size = view.image->size;
        double scale = std::min({1.0, area.width() / size.width, area.height() / size.height});
        QSize pixels(std::max(1, nearest(size.width * scale)),
                     std::max(1, nearest(size.height * scale)));
        QColor tint = view.contentTintColor ? theme.resolved(*view.contentTintColor) : theme.text;
        QPoint corner(area.x() + (area.width() - pixels.width()) / 2,
                      area.y() + (area.height() - pixels.height()) / 2);
        painter.drawImage(corner, rendered(*view.image, pixels, tint));
    }

    void drawText(QPainter& painter) const {
        if (view.text.empty() || !(view.fontSize > 0)) return;
        QFont font = painter.font();
        font.setPixelSize(std::max(1, nearest(view.fontSize)));
        font.setWeight(QFont::Medium);
        painter.setFont(font);
        painter.setPen(theme.resolved(view.textColor));
        QString line = QString::fromStdString(view.text).simplified();
        QString fitting =
            QFontMetricsF(font, painter.device()).elidedText(line, Qt::ElideRight, area.width());
        painter.drawText(area, Qt::AlignCenter | Qt::TextSingleLine, fitting);
    }

    const PanelView& view;
    const PanelTheme& theme;
    QRect area;
    QPainterPath outline;
};

}  // namespace

Rect scaled(const Rect& frame, double scale) {
    return {frame.x * scale, frame.y * scale, frame.width * scale, frame.height * scale};
}

std::vector<PanelView> scaled(std::vector<PanelView> views, double scale) {
    for (PanelView& view : views) {
        view.frame = scaled(view.frame, scale);
        view.cornerRadius *= scale;
        view.borderWidth *= scale;
        view.fontSize *= scale;
        view.shadow.radius *= scale;
        view.shadow.offset = {view.shadow.offset.x * scale, view.shadow.offset.y * scale};
        if (view.image) {
            view.image->size = {view.image->size.width * scale, view.image->size.height * scale};
        }
    }
    return views;
}

QImage paintedViews(const std::vector<PanelView>& views, const Color& background, QSize size,
                    const PanelTheme& theme) {
    QImage picture = emptyPicture(size);
    if (picture.isNull()) return picture;
    QPainter painter(&picture);
    painter.setRenderHints(QPainter::Antialiasing | QPainter::TextAntialiasing);
    painter.fillRect(picture.rect(), theme.resolved(background));
    for (const PanelView& view : views) ViewPainter(view, theme, size.height()).draw(painter);
    return picture;
}

QImage shapeOfViews(const std::vector<PanelView>& views, const Color& background, QSize size) {
    QImage shape = emptyPicture(size);
    if (shape.isNull()) return shape;
    if (background.alpha > 0) shape.fill(Qt::black);
    QPainter painter(&shape);
    painter.setRenderHint(QPainter::Antialiasing);
    for (const PanelView& view : views) {
        if (!view.material && !(view.background.alpha > 0)) continue;
        painter.setOpacity(std::clamp(view.alpha, 0.0, 1.0));
        painter.fillPath(rounded(pixelsOf(view.frame, size.height()), view.cornerRadius),
                         Qt::black);
    }
    return shape;
}

}  // namespace nevo
