#include "overlay/OverlayContext.h"

#include <QPainter>

#include <algorithm>
#include <cmath>
#include <numbers>

QFont overlayFont(const QString& family, int pixelSize) {
    QFont font(family);
    font.setStyleHint(QFont::SansSerif);
    font.setPixelSize(std::max(pixelSize, 1));
    return font;
}

OverlayContext::OverlayContext(QSize size, FlushTarget flushTarget)
    : m_flushTarget(std::move(flushTarget)) {
    if (!size.isEmpty()) {
        m_picture = QImage(size, QImage::Format_ARGB32_Premultiplied);
        m_picture.fill(Qt::transparent);
    }
}

void OverlayContext::paint(bool onPage, const std::function<void(QPainter&)>& draw) {
    if (m_picture.isNull()) {
        return;
    }
    QPainter painter(&m_picture);
    painter.setRenderHints(QPainter::Antialiasing | QPainter::TextAntialiasing |
                           QPainter::SmoothPixmapTransform);
    if (onPage) {
        painter.setTransform(QTransform(1, 0, 0, -1, 0, m_picture.height()));
    }
    draw(painter);
}

void OverlayContext::strokeShape(const QPainterPath& shape) {
    paint(true, [&](QPainter& painter) {
        painter.strokePath(
            shape, QPen(m_state.stroke, m_state.lineWidth, Qt::SolidLine, Qt::FlatCap, Qt::MiterJoin));
    });
}

void OverlayContext::ClearRect(const QRectF& rect) {
    paint(true, [&](QPainter& painter) {
        painter.setCompositionMode(QPainter::CompositionMode_Clear);
        painter.fillRect(rect, Qt::transparent);
    });
}

void OverlayContext::FillRect(const QRectF& rect) {
    paint(true, [&](QPainter& painter) { painter.fillRect(rect, m_state.fill); });
}

void OverlayContext::StrokeRect(const QRectF& rect) {
    QPainterPath shape;
    shape.addRect(rect);
    strokeShape(shape);
}

void OverlayContext::BeginPath() {
    m_path = QPainterPath();
}

void OverlayContext::MoveToPoint(double x, double y) {
    m_path.moveTo(placed(x, y));
}

void OverlayContext::AddLineToPoint(double x, double y) {
    m_path.lineTo(placed(x, y));
}

void OverlayContext::AddQuadCurveToPoint(double controlX, double controlY, double x, double y) {
    m_path.quadTo(placed(controlX, controlY), placed(x, y));
}

void OverlayContext::AddArc(double x, double y, double radius, double startAngle, double endAngle) {
    // QPainterPath counts angles in degrees and clockwise on a page with y upwards.
    const double toDegrees = 180.0 / std::numbers::pi;
    QPainterPath arc;
    arc.moveTo(x + radius * std::cos(startAngle), y + radius * std::sin(startAngle));
    arc.arcTo(QRectF(x - radius, y - radius, 2 * radius, 2 * radius), -startAngle * toDegrees,
              -(endAngle - startAngle) * toDegrees);
    m_path.connectPath(m_state.ctm.map(arc));
}

void OverlayContext::ClosePath() {
    m_path.closeSubpath();
}

void OverlayContext::FillPath() {
    paint(true, [&](QPainter& painter) { painter.fillPath(m_path, m_state.fill); });
    BeginPath();
}

void OverlayContext::StrokePath() {
    strokeShape(m_path);
    BeginPath();
}

void OverlayContext::SaveGState() {
    m_saved.push_back(m_state);
}

void OverlayContext::RestoreGState() {
    if (!m_saved.empty()) {
        m_state = m_saved.back();
        m_saved.pop_back();
    }
}

void OverlayContext::TranslateCTM(double dx, double dy) {
    m_state.ctm = QTransform::fromTranslate(dx, dy) * m_state.ctm;
}

void OverlayContext::ScaleCTM(double sx, double sy) {
    m_state.ctm = QTransform::fromScale(sx, sy) * m_state.ctm;
}

void OverlayContext::SelectFont(const QString& family, int size) {
    m_font = overlayFont(family, size);
}

void OverlayContext::ShowTextAtPoint(double x, double y, const QString& text) {
    paint(false, [&](QPainter& painter) {
        painter.setFont(m_font);
        painter.setPen(m_state.fill);
        painter.drawText(QPointF(x, m_picture.height() - y), text);
    });
}

void OverlayContext::DrawPicture(const QImage& picture, const QRectF& rect) {
    paint(false, [&](QPainter& painter) {
        painter.drawImage(QRectF(rect.x(), m_picture.height() - rect.bottom(), rect.width(), rect.height()),
                          picture);
    });
}

namespace {
// Components outside 0 to 1 are taken at the nearest end, as a page would.
QColor clampedColor(double red, double green, double blue, double alpha) {
    const auto part = [](double value) { return static_cast<float>(std::clamp(value, 0.0, 1.0)); };
    return QColor::fromRgbF(part(red), part(green), part(blue), part(alpha));
}
} // namespace

void OverlayContext::SetRGBFillColor(double red, double green, double blue, double alpha) {
    m_state.fill = clampedColor(red, green, blue, alpha);
}

void OverlayContext::SetRGBStrokeColor(double red, double green, double blue, double alpha) {
    m_state.stroke = clampedColor(red, green, blue, alpha);
}

void OverlayContext::SetLineWidth(double width) {
    m_state.lineWidth = width;
}

void OverlayContext::Flush() {
    if (m_flushTarget) {
        m_flushTarget(m_picture);
    }
}
