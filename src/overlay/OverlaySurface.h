#pragma once

#include "overlay/OverlayContext.h"

#include <QImage>
#include <QPointF>
#include <QWidget>

#include <memory>

// A borderless window that floats above the others and takes no taskbar entry. It shows what its
// drawing contexts flush: per-pixel alpha where a compositor blends windows, and everywhere a
// shape cut to the drawn pixels, so that nothing shows and no click is taken where nothing is
// drawn. Its mouse events come in screen coordinates.
class OverlaySurface : public QWidget {
public:
    OverlaySurface();

    // Makes the window, not yet shown. 0 on success; a window of no size cannot be made.
    int Create(int left, int top, int width, int height);
    // From here on the mouse events are delivered.
    void InstallEventHandler();
    // The surface moves with the target window, and with `liveResize` changes its size with it.
    void AttachToWindow(QWidget* target, bool liveResize);
    void Show();
    // A context for the window's present size, whose Flush puts it on the window.
    std::unique_ptr<OverlayContext> Context();

    int Left() const { return geometry().x(); }
    void setLeft(int left) { move(left, Top()); }
    int Top() const { return geometry().y(); }
    void setTop(int top) { move(Left(), top); }
    int Width() const { return width(); }
    void setWidth(int width) { resize(width, Height()); }
    int Height() const { return height(); }
    void setHeight(int height) { resize(Width(), height); }
    // The opacity of the whole window, 0 to 255, where 255 is opaque; shown where a compositor runs.
    int Transparency() const { return m_transparency; }
    void setTransparency(int transparency);

protected:
    // The integers pass on Qt's button, click count, buttons held and keyboard modifiers. The
    // result of a press tells whether it was taken; the drag and the release that follow come
    // either way.
    virtual bool Event_MouseDown(QPointF screenAt, int button, int clicks, int modifiers) = 0;
    virtual void Event_MouseDragged(QPointF screenAt, int buttons, double dx, double dy, int modifiers) = 0;
    virtual void Event_MouseUp(QPointF screenAt, int button, int clicks, int modifiers) = 0;
    virtual void Event_MouseMoved(QPointF screenAt, int modifiers) = 0;

    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;

private:
    void present(const QImage& picture);
    void press(QMouseEvent* event, int clicks);

    bool m_created = false;
    bool m_handlesEvents = false;
    int m_transparency = 255;
    QImage m_shown;
    QPointF m_lastAt;
    int m_clicks = 0;
};
