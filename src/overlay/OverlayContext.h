#pragma once

#include <QColor>
#include <QFont>
#include <QImage>
#include <QPainterPath>
#include <QRectF>
#include <QTransform>

#include <functional>
#include <vector>

class QPainter;

// The font that drawing and measuring share: the named family at a height in pixels, or the
// desktop's sans font where the family is not installed.
QFont overlayFont(const QString& family, int pixelSize);

// A drawing context in the manner of a printed page: the origin at the bottom left, y growing
// upwards, lengths in pixels. It paints into a picture of its own, which Flush hands to the
// window it belongs to. The transformation places path points only; rectangles, text and pictures
// are in page coordinates.
class OverlayContext {
public:
    using FlushTarget = std::function<void(const QImage&)>;

    // An empty size gives a context that draws nothing.
    OverlayContext(QSize size, FlushTarget flushTarget);

    void ClearRect(const QRectF& rect);
    void FillRect(const QRectF& rect);
    void StrokeRect(const QRectF& rect);

    void BeginPath();
    void MoveToPoint(double x, double y);
    void AddLineToPoint(double x, double y);
    void AddQuadCurveToPoint(double controlX, double controlY, double x, double y);
    // An arc about x, y from one angle to another, in radians, counter-clockwise: the only way
    // this program turns. A line joins it to the path's last point.
    void AddArc(double x, double y, double radius, double startAngle, double endAngle);
    void ClosePath();
    // Both end the path.
    void FillPath();
    void StrokePath();

    void SaveGState();
    void RestoreGState();
    void TranslateCTM(double dx, double dy);
    void ScaleCTM(double sx, double sy);

    void SelectFont(const QString& family, int size);
    // The text's baseline starts at the point; text takes the fill colour.
    void ShowTextAtPoint(double x, double y, const QString& text);
    // The picture stands upright in the rectangle; its alpha channel is its mask.
    void DrawPicture(const QImage& picture, const QRectF& rect);

    void SetRGBFillColor(double red, double green, double blue, double alpha);
    void SetRGBStrokeColor(double red, double green, double blue, double alpha);
    void SetLineWidth(double width);

    void Flush();

private:
    struct GState {
        QTransform ctm;
        QColor fill = Qt::black;
        QColor stroke = Qt::black;
        double lineWidth = 1.0;
    };

    // Runs `draw` with a painter on the picture, in page coordinates when `onPage`, else in the
    // picture's own (y downwards).
    void paint(bool onPage, const std::function<void(QPainter&)>& draw);
    void strokeShape(const QPainterPath& shape);
    QPointF placed(double x, double y) const { return m_state.ctm.map(QPointF(x, y)); }

    QImage m_picture;
    FlushTarget m_flushTarget;
    GState m_state;
    std::vector<GState> m_saved;
    // In page coordinates: each point was placed by the transformation of its time.
    QPainterPath m_path;
    QFont m_font;
};
