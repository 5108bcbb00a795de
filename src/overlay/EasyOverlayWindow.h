#pragma once

#include "overlay/OverlayContext.h"
#include "overlay/OverlaySurface.h"

#include <QImage>
#include <QRectF>
#include <QRgb>
#include <QString>

#include <memory>

// A surface that floats over other windows, with the drawing calls of an ordinary window: origin
// at the top left, y growing downwards, a current colour, line width and font. Its context counts
// y upwards; the calls turn one into the other. An owner derives from it and draws in Paint.
// Drawing before Init raises NilObjectException. GUI thread only.
class EasyOverlayWindow : public OverlaySurface {
public:
    // The user may drag the surface around.
    bool Moveable = false;

    // Makes and shows the surface, attached to `parent` if there is one. A surface that cannot
    // be made gives a beep.
    void Init(int left, int top, int width, int height, QWidget* parent = nullptr);
    // A new context for the present size, cleared and painted afresh.
    void Update();
    // Has the owner paint, then puts it on the screen.
    void Refresh();
    void Clear();
    void DrawWindow();

    // Colours are 0xRRGGBB.
    QRgb ForeColor() const { return myForeColor; }
    void setForeColor(QRgb color);
    // The alpha of the colour: 0 draws nothing, 255 is opaque.
    int ForeColorTransparency() const { return myTransparency; }
    void setForeColorTransparency(int transparency);
    int LineWidth() const { return myLineWidth; }
    void setLineWidth(int width);
    QString TextFont() const { return myTextFont; }
    void setTextFont(const QString& font) { myTextFont = font; }
    int TextSize() const { return myTextSize; }
    void setTextSize(int size) { myTextSize = size; }

    void FillRect(int x, int y, int w, int h);
    // The frame lies inside the rectangle, shrunk by the line width.
    void DrawRect(int x, int y, int w, int h);
    void DrawLine(int x1, int y1, int x2, int y2);
    // Moved in by half a line, but as wide and high as asked.
    void DrawOval(int x, int y, int w, int h);
    void FillOval(int x, int y, int w, int h);
    // The text's top lies at y: its baseline is a text size below.
    void DrawString(const QString& text, int x, int y);
    // Leaves the whole window at `transparency`.
    void DrawStringWithShadow(const QString& text, int x, int y, int offset, int transparency,
                              QRgb shadowColor);
    void DrawPicture(const QImage& picture, int x, int y);
    // A frame as thick as the line width, light on the top and left, dark on the bottom and right.
    void DrawBevelFrame(int x, int y, int w, int h, QRgb topLeftColor, QRgb bottomRightColor);
    // Corners `ow` across and `oh` high.
    void FillRoundRect(int x, int y, int w, int h, int ow, int oh);
    void DrawRoundRect(int x, int y, int w, int h, int ow, int oh);
    int StringWidth(const QString& text) const;

protected:
    // The owner's events; an owner that leaves one alone has none. Positions are relative to the
    // surface; the integers come as the surface's mouse events give them.
    virtual void Paint() {}
    // True when the owner wants the rest of this press: its drags and its release.
    virtual bool MouseDown(int /*x*/, int /*y*/, int /*button*/, int /*clicks*/, int /*modifiers*/) {
        return false;
    }
    virtual void MouseDrag(int /*x*/, int /*y*/, int /*buttons*/, int /*modifiers*/) {}
    virtual void MouseUp(int /*x*/, int /*y*/, int /*button*/, int /*clicks*/, int /*modifiers*/) {}
    virtual void MouseMove(int /*x*/, int /*y*/, int /*modifiers*/) {}
    // The user dragged the surface to a new place.
    virtual void WindowDragAction(int /*left*/, int /*top*/) {}

    bool Event_MouseDown(QPointF screenAt, int button, int clicks, int modifiers) override;
    void Event_MouseDragged(QPointF screenAt, int buttons, double dx, double dy, int modifiers) override;
    void Event_MouseUp(QPointF screenAt, int button, int clicks, int modifiers) override;
    void Event_MouseMoved(QPointF screenAt, int modifiers) override;

private:
    OverlayContext& context() const;
    QPoint onSurface(QPointF screenAt) const;
    void setContextColor(QRgb color, int transparency);
    void AddOval(QPointF centre, double rx, double ry);
    void doDrawRoundRect(int x, int y, int w, int h, int ow, int oh, bool fill);

    QRectF myRect;
    std::unique_ptr<OverlayContext> myContext;
    int myTransparency = 255;
    QRgb myForeColor = 0;
    int myLineWidth = 1;
    QString myTextFont;
    int myTextSize = 0;
    // The owner took the last press.
    bool MouseClicked = false;
};
