#include "overlay/EasyOverlayWindow.h"

#include "base/NilObjectException.h"

#include <QApplication>
#include <QFontMetricsF>

#include <cmath>

void EasyOverlayWindow::Init(int left, int top, int width, int height, QWidget* parent) {
    // A surface that cannot be made still goes through the steps, drawing on nothing.
    if (Create(left, top, width, height) != 0) {
        QApplication::beep();
    }
    InstallEventHandler();
    if (parent != nullptr) {
        AttachToWindow(parent, true);
    }
    Show();
    myRect = QRectF(0, 0, Width(), Height());
    myContext = Context();
    myContext->ClearRect(myRect);
    setForeColor(0x000000);
    setForeColorTransparency(255);
    setLineWidth(1);
    setTextFont(QStringLiteral("Helvetica"));
    setTextSize(36);
    setWidth(width);
    setHeight(height);
}

void EasyOverlayWindow::Update() {
    myRect = QRectF(0, 0, Width(), Height());
    myContext = Context();
    Clear();
    Refresh();
}

void EasyOverlayWindow::Refresh() {
    if (myContext) {
        Paint();
        myContext->Flush();
    }
}

void EasyOverlayWindow::Clear() {
    context().ClearRect(myRect);
}

void EasyOverlayWindow::DrawWindow() {
    context().Flush();
}

OverlayContext& EasyOverlayWindow::context() const {
    if (!myContext) {
        throw NilObjectException("the overlay surface has no drawing context before Init");
    }
    return *myContext;
}

void EasyOverlayWindow::setContextColor(QRgb color, int transparency) {
    OverlayContext& target = context();
    const double red = ((color >> 16) & 255) / 255.0;
    const double green = ((color >> 8) & 255) / 255.0;
    const double blue = (color & 255) / 255.0;
    const double alpha = transparency / 255.0;
    target.SetRGBFillColor(red, green, blue, alpha);
    target.SetRGBStrokeColor(red, green, blue, alpha);
}

void EasyOverlayWindow::setForeColor(QRgb color) {
    setContextColor(color, myTransparency);
    myForeColor = color;
}

void EasyOverlayWindow::setForeColorTransparency(int transparency) {
    setContextColor(myForeColor, transparency);
    myTransparency = transparency;
}

void EasyOverlayWindow::setLineWidth(int width) {
    context().SetLineWidth(width);
    myLineWidth = width;
}

QPoint EasyOverlayWindow::onSurface(QPointF screenAt) const {
    return QPoint(static_cast<int>(screenAt.x() - Left()), static_cast<int>(screenAt.y() - Top()));
}

void EasyOverlayWindow::FillRect(int x, int y, int w, int h) {
    context().FillRect(QRectF(x, Height() - h - y, w, h));
}

void EasyOverlayWindow::DrawRect(int x, int y, int w, int h) {
    const int c = static_cast<int>(std::ceil(myLineWidth / 2.0));
    context().StrokeRect(QRectF(x + c, Height() - h - y + c, w - myLineWidth, h - myLineWidth));
}

void EasyOverlayWindow::DrawLine(int x1, int y1, int x2, int y2) {
    OverlayContext& target = context();
    target.BeginPath();
    target.MoveToPoint(x1, Height() - y1);
    target.AddLineToPoint(x2, Height() - y2);
    target.StrokePath();
}

void EasyOverlayWindow::AddOval(QPointF centre, double rx, double ry) {
    OverlayContext& target = context();
    const double pi = 2 * std::acos(0.0);
    target.SaveGState();
    target.TranslateCTM(centre.x(), centre.y());
    target.ScaleCTM(rx, ry);
    target.MoveToPoint(1, 0);
    target.AddArc(0, 0, 1, 0, 2 * pi);
    target.ClosePath();
    // The path keeps its shape; the line drawn along it later is not scaled.
    target.RestoreGState();
}

void EasyOverlayWindow::DrawOval(int x, int y, int w, int h) {
    const int c = myLineWidth / 2;
    context().BeginPath();
    AddOval(QPointF(x + c + w / 2.0, Height() - y - c - h / 2.0), w / 2.0, h / 2.0);
    context().StrokePath();
}

void EasyOverlayWindow::FillOval(int x, int y, int w, int h) {
    context().BeginPath();
    AddOval(QPointF(x + w / 2.0, Height() - y - h / 2.0), w / 2.0, h / 2.0);
    context().FillPath();
}

void EasyOverlayWindow::DrawString(const QString& text, int x, int y) {
    OverlayContext& target = context();
    target.SelectFont(myTextFont, myTextSize);
    target.ShowTextAtPoint(x, Height() - y - myTextSize, text);
}

void EasyOverlayWindow::DrawStringWithShadow(const QString& text, int x, int y, int offset, int transparency,
                                             QRgb shadowColor) {
    const QRgb color = myForeColor;
    const int colorTransparency = myTransparency;
    setForeColor(shadowColor);
    setTransparency(transparency);
    DrawString(text, x + offset, y + offset);
    setForeColor(color);
    setForeColorTransparency(colorTransparency);
    DrawString(text, x, y);
}

void EasyOverlayWindow::DrawPicture(const QImage& picture, int x, int y) {
    context().DrawPicture(picture,
                          QRectF(x, Height() - picture.height() - y, picture.width(), picture.height()));
}

void EasyOverlayWindow::DrawBevelFrame(int x, int y, int w, int h, QRgb topLeftColor, QRgb bottomRightColor) {
    const QRgb color = myForeColor;
    const int n = myLineWidth;
    setLineWidth(1);
    for (int i = 1; i <= n; ++i) {
        setForeColor(bottomRightColor);
        DrawLine(x + w - i, y + i, x + w - i, y + h);
        DrawLine(x + i, y + h - i, x + w - i, y + h - i);
        setForeColor(topLeftColor);
        DrawLine(x, y + i, x + w - i, y + i);
        DrawLine(x + i, y, x + i, y + h - i);
    }
    setForeColor(color);
    setLineWidth(n);
}

void EasyOverlayWindow::doDrawRoundRect(int x, int y, int w, int h, int ow, int oh, bool fill) {
    OverlayContext& target = context();
    const int yb = Height() - h - y;
    const int yt = Height() - y;
    const int xr = x + w;
    target.BeginPath();
    target.MoveToPoint(x + ow, yb);
    target.AddLineToPoint(xr - ow, yb);
    target.AddQuadCurveToPoint(xr, yb, xr, yb + oh);
    target.AddLineToPoint(xr, yt - oh);
    target.AddQuadCurveToPoint(xr, yt, xr - ow, yt);
    target.AddLineToPoint(x + ow, yt);
    target.AddQuadCurveToPoint(x, yt, x, yt - oh);
    target.AddLineToPoint(x, yb + oh);
    target.AddQuadCurveToPoint(x, yb, x + ow, yb);
    if (fill) {
        target.FillPath();
    } else {
        target.StrokePath();
    }
}

void EasyOverlayWindow::FillRoundRect(int x, int y, int w, int h, int ow, int oh) {
    doDrawRoundRect(x, y, w, h, ow, oh, true);
}

void EasyOverlayWindow::DrawRoundRect(int x, int y, int w, int h, int ow, int oh) {
    doDrawRoundRect(static_cast<int>(x + myLineWidth / 2.0), static_cast<int>(y + myLineWidth / 2.0),
                    w - myLineWidth, h - myLineWidth, ow, oh, false);
}

int EasyOverlayWindow::StringWidth(const QString& text) const {
    return static_cast<int>(QFontMetricsF(overlayFont(myTextFont, myTextSize)).horizontalAdvance(text));
}

bool EasyOverlayWindow::Event_MouseDown(QPointF screenAt, int button, int clicks, int modifiers) {
    const QPoint at = onSurface(screenAt);
    MouseClicked = MouseDown(at.x(), at.y(), button, clicks, modifiers);
    return Moveable;
}

void EasyOverlayWindow::Event_MouseDragged(QPointF screenAt, int buttons, double dx, double dy,
                                           int modifiers) {
    if (Moveable) {
        setTop(static_cast<int>(Top() + dy));
        setLeft(static_cast<int>(Left() + dx));
        if (dx != 0 || dy != 0) {
            WindowDragAction(Left(), Top());
        }
    }
    if (MouseClicked) {
        const QPoint at = onSurface(screenAt);
        MouseDrag(at.x(), at.y(), buttons, modifiers);
    }
}

void EasyOverlayWindow::Event_MouseUp(QPointF screenAt, int button, int clicks, int modifiers) {
    if (MouseClicked) {
        const QPoint at = onSurface(screenAt);
        MouseUp(at.x(), at.y(), button, clicks, modifiers);
    }
}

void EasyOverlayWindow::Event_MouseMoved(QPointF screenAt, int modifiers) {
    const QPoint at = onSurface(screenAt);
    MouseMove(at.x(), at.y(), modifiers);
}
