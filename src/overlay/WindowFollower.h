#pragma once

#include <QObject>
#include <QPointer>
#include <QWidget>

// Keeps one window moving with another, and with `followSize` changing its size by as much as
// the other's changes. It lives as long as the follower.
class WindowFollower final : public QObject {
public:
    WindowFollower(QWidget* follower, QWidget* target, bool followSize);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    QWidget* m_follower;
    QPointer<QWidget> m_target;
    bool m_followSize;
};
