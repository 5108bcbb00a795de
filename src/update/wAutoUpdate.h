#pragma once

#include "base/DialogWindow.h"
#include "base/SingleWindow.h"

#include <QPointer>

class QLabel;
class QProgressBar;
class QPushButton;
class cAutoUpdate;

// The progress of a download: the release's name or the error, a bar and the figures in
// megabytes. The capture schedule goes on meanwhile.
class wAutoUpdate final : public DialogWindow {
    Q_OBJECT

public:
    // The download that this window shows; Cancel closes it.
    void Associate(cAutoUpdate* updater);
    void setTitle(const QString& text);
    void showProgress(qint64 bytesReceived, qint64 totalBytes);

private:
    friend class SingleWindow<wAutoUpdate>;
    wAutoUpdate();
    ~wAutoUpdate() override;
    void Event_Open();
    void btnCancel_Action();

    QProgressBar* pbDownload;
    QLabel* stTitle;
    QLabel* stProgress;
    QPushButton* btnCancel;
    QPointer<cAutoUpdate> Updater;
};
