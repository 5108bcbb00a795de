#include "history/TimelapseBar.h"

#include "history/TimelapseJob.h"

#include <QFileDialog>
#include <QHBoxLayout>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>

#include <cerrno>

TimelapseBar::TimelapseBar(std::function<std::vector<CaptureRun>()> chosenRuns, QWidget* parent)
    : QWidget(parent)
    , m_chosenRuns(std::move(chosenRuns))
    , m_make(new QPushButton(QStringLiteral("Make Time-Lapse ...")))
    , m_progress(new QProgressBar)
    , m_cancel(new QPushButton(QStringLiteral("Cancel")))
    , m_status(new QLabel) {
    m_make->setObjectName("makeTimelapse");
    m_progress->setObjectName("timelapseProgress");
    m_cancel->setObjectName("cancelTimelapse");
    m_status->setObjectName("timelapseStatus");
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_make);
    layout->addWidget(m_progress, 1);
    layout->addWidget(m_cancel);
    layout->addWidget(m_status, 1);
    connect(m_make, &QPushButton::clicked, this, &TimelapseBar::askForPlace);
    connect(m_cancel, &QPushButton::clicked, this, [this] {
        if (m_job) {
            m_job->cancel();
        }
    });
    setWorking(false);
}

TimelapseBar::~TimelapseBar() = default;

// The dialog answers through its signal: no event loop of its own.
void TimelapseBar::askForPlace() {
    auto* dialog = new QFileDialog(window(), QStringLiteral("Make Time-Lapse"), QString(),
                                   QStringLiteral("Movies (*.mp4 *.mov)"));
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setAcceptMode(QFileDialog::AcceptSave);
    dialog->setDefaultSuffix(QStringLiteral("mp4"));
    connect(dialog, &QFileDialog::fileSelected, this, &TimelapseBar::start);
    dialog->open();
}

void TimelapseBar::start(const QString& target) {
    if (m_job) {
        return;
    }
    TimelapseOptions options;
    options.target = target;
    std::vector<TimelapseMovie> movies = planTimelapse(m_chosenRuns(), options);
    if (movies.empty()) {
        m_status->setText(QStringLiteral("No screen pictures to make a time-lapse of."));
        return;
    }
    m_job = new TimelapseJob(std::move(movies), options.framesPerSecond, this);
    connect(m_job, &TimelapseJob::progress, this, &TimelapseBar::showProgress);
    connect(m_job, &TimelapseJob::finished, this, &TimelapseBar::jobEnded);
    setWorking(true);
}

void TimelapseBar::showProgress(int done, int total) {
    m_progress->setMaximum(total);
    m_progress->setValue(done);
}

void TimelapseBar::jobEnded(int result) {
    if (m_job) {
        m_job->deleteLater();
        m_job.clear();
    }
    setWorking(false);
    if (result == 0) {
        m_status->setText(QStringLiteral("The time-lapse is made."));
    } else if (result == -ECANCELED) {
        m_status->setText(QStringLiteral("The time-lapse was cancelled."));
    } else {
        m_status->setText(QStringLiteral("The time-lapse could not be made (error %1).").arg(result));
    }
    emit ended(result);
}

void TimelapseBar::setWorking(bool working) {
    m_make->setEnabled(!working);
    m_progress->setVisible(working);
    m_cancel->setVisible(working);
    m_status->setVisible(!working);
    m_progress->setValue(0);
}
