#pragma once

#include <QImage>
#include <QScrollArea>

class QLabel;

// One picture at full size: zoomed to fit the view, or pixel for pixel with scroll bars. The
// keys that lead elsewhere are passed on as signals: Left and Right for the neighbouring runs,
// Up and Down for the other pictures of the run, Escape or Enter back to the list.
class PictureView final : public QScrollArea {
    Q_OBJECT

public:
    explicit PictureView(QWidget* parent = nullptr);

    void showPicture(const QImage& picture);
    void setFit(bool fit);
    bool fits() const { return m_fit; }
    const QImage& picture() const { return m_picture; }

signals:
    void stepRun(int delta);
    void stepPicture(int delta);
    void leave();

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    void render();

    QLabel* m_canvas;
    QImage m_picture;
    bool m_fit = true;
};
