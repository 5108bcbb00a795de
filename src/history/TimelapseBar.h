#pragma once

#include "history/CaptureHistory.h"

#include <QPointer>
#include <QWidget>

#include <functional>

class QLabel;
class QProgressBar;
class QPushButton;
class TimelapseJob;

// The history window's time-lapse: a button that asks where the movie goes, then a progress bar
// and Cancel while it is made, and a line that tells how it ended. One movie for each screen.
class TimelapseBar final : public QWidget {
    Q_OBJECT

public:
    // `chosenRuns` gives the runs to make it of when the place is chosen.
    explicit TimelapseBar(std::function<std::vector<CaptureRun>()> chosenRuns, QWidget* parent = nullptr);
    ~TimelapseBar() override;

    // Makes the time-lapse of the chosen runs into `target` ("OUT.mp4" gives OUT-screenN.mp4).
    void start(const QString& target);

signals:
    void ended(int result);

private:
    void askForPlace();
    void showProgress(int done, int total);
    void jobEnded(int result);
    void setWorking(bool working);

    std::function<std::vector<CaptureRun>()> m_chosenRuns;
    QPushButton* m_make;
    QProgressBar* m_progress;
    QPushButton* m_cancel;
    QLabel* m_status;
    QPointer<TimelapseJob> m_job;
};
