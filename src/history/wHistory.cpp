#include "history/wHistory.h"

#include "history/HistoryIndex.h"
#include "history/PictureView.h"
#include "history/RunDelegate.h"
#include "history/RunListModel.h"
#include "history/ThumbnailLoader.h"
#include "history/TimelapseBar.h"
#include "platform/filemanager/FileManager.h"

#include <QApplication>
#include <QDesktopServices>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QImageReader>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QListWidget>
#include <QPointer>
#include <QPushButton>
#include <QSlider>
#include <QStackedWidget>
#include <QThreadPool>
#include <QUrl>

namespace {
constexpr int kDaysWidth = 200;
constexpr QSize kInitialSize(1180, 720);

QString dayText(const CaptureDay& day) {
    return QStringLiteral("%1 (%2)").arg(day.date.toString(Qt::ISODate)).arg(day.pictureCount);
}
} // namespace

wHistory::wHistory(std::function<QString()> destinationSetting, std::unique_ptr<FileManager> fileManager,
                   RunSearch search, QWidget* parent)
    : QWidget(parent)
    , m_fileManager(std::move(fileManager))
    , m_search(std::move(search))
    , m_index(new HistoryIndex(std::move(destinationSetting), this))
    , m_thumbnails(new ThumbnailLoader(qsizetype{64} << 20, this))
    , m_runModel(new RunListModel(this))
    , m_days(new QListWidget)
    , m_pages(new QStackedWidget)
    , m_runs(new QListView)
    , m_scrubber(new QSlider(Qt::Horizontal))
    , m_runTime(new QLabel)
    , m_picture(new PictureView) {
    setObjectName("wHistory");
    setWindowTitle(QStringLiteral("History"));
    setAttribute(Qt::WA_DeleteOnClose);
    resize(kInitialSize);
    m_days->setObjectName("days");
    m_days->setFixedWidth(kDaysWidth);
    m_pages->addWidget(makeRunsPage());
    m_pages->addWidget(makePicturePage());
    auto* showInFolderButton = new QPushButton(QStringLiteral("Show in Folder"));
    showInFolderButton->setObjectName("showInFolder");
    auto* bottom = new QHBoxLayout;
    bottom->addWidget(new TimelapseBar([this] { return chosenRuns(); }), 1);
    bottom->addWidget(showInFolderButton);
    auto* body = new QHBoxLayout;
    body->addWidget(m_search ? makeSearchField() : m_days);
    body->addWidget(m_pages, 1);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(body, 1);
    layout->addLayout(bottom);
    connect(m_index, &HistoryIndex::changed, this, &wHistory::historyChanged);
    connect(m_days, &QListWidget::currentRowChanged, this, &wHistory::dayChosen);
    connect(showInFolderButton, &QPushButton::clicked, this, &wHistory::showInFolder);
    connect(m_thumbnails, &ThumbnailLoader::thumbnailReady, m_runs->viewport(),
            qOverload<>(&QWidget::update));
}

wHistory::~wHistory() = default;

QWidget* wHistory::makeSearchField() {
    auto* field = new QLineEdit;
    field->setObjectName("search");
    field->setPlaceholderText(QStringLiteral("Search the text on the pictures"));
    field->setClearButtonEnabled(true);
    field->setFixedWidth(kDaysWidth);
    connect(field, &QLineEdit::returnPressed, this, &wHistory::searchEntered);
    auto* column = new QWidget;
    auto* layout = new QVBoxLayout(column);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(field);
    layout->addWidget(m_days, 1);
    return column;
}

// The search runs on the pool; an empty field goes back to the chosen day.
void wHistory::searchEntered() {
    const QString query = findChild<QLineEdit*>("search")->text().trimmed();
    if (query.isEmpty()) {
        m_showingFound = false;
        historyChanged();
        return;
    }
    QThreadPool::globalInstance()->start([window = QPointer<wHistory>(this), search = m_search, query] {
        std::vector<CaptureRun> runs = search(query);
        // The window may be gone by now; only the GUI thread can tell.
        QMetaObject::invokeMethod(
            qApp,
            [window, runs = std::move(runs)] {
                if (window) {
                    window->showFound(runs);
                }
            },
            Qt::QueuedConnection);
    });
}

void wHistory::showFound(const std::vector<CaptureRun>& runs) {
    m_showingFound = true;
    m_days->setCurrentRow(-1);
    m_thumbnails->forgetQueued();
    m_runModel->setRuns(runs);
    const QSignalBlocker quiet(m_scrubber);
    m_scrubber->setRange(0, std::max(0, m_runModel->rowCount() - 1));
    m_runs->setCurrentIndex(m_runModel->index(0));
    leavePicture();
    currentRunChanged();
}

QWidget* wHistory::makeRunsPage() {
    m_runs->setObjectName("runs");
    m_runs->setModel(m_runModel);
    m_runs->setItemDelegate(new RunDelegate(*m_runModel, *m_thumbnails, m_runs));
    m_runs->setUniformItemSizes(true);
    m_runs->setSelectionMode(QAbstractItemView::ExtendedSelection);
    m_runs->setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    m_scrubber->setObjectName("scrubber");
    m_runTime->setObjectName("runTime");
    connect(m_runs->selectionModel(), &QItemSelectionModel::currentChanged, this,
            &wHistory::currentRunChanged);
    connect(m_runs, &QListView::activated, this, &wHistory::openPicture);
    connect(m_scrubber, &QSlider::valueChanged, this,
            [this](int row) { m_runs->setCurrentIndex(m_runModel->index(row)); });
    auto* scrub = new QHBoxLayout;
    scrub->addWidget(m_scrubber, 1);
    scrub->addWidget(m_runTime);
    auto* page = new QWidget;
    auto* layout = new QVBoxLayout(page);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_runs, 1);
    layout->addLayout(scrub);
    return page;
}

QWidget* wHistory::makePicturePage() {
    auto* back = new QPushButton(QStringLiteral("Back"));
    auto* fit = new QPushButton(QStringLiteral("Zoom to Fit"));
    auto* actual = new QPushButton(QStringLiteral("1:1"));
    for (QPushButton* button : {back, fit, actual}) {
        button->setFocusPolicy(Qt::NoFocus);
    }
    connect(back, &QPushButton::clicked, this, &wHistory::leavePicture);
    connect(fit, &QPushButton::clicked, m_picture, [this] { m_picture->setFit(true); });
    connect(actual, &QPushButton::clicked, m_picture, [this] { m_picture->setFit(false); });
    connect(m_picture, &PictureView::stepRun, this, &wHistory::stepRun);
    connect(m_picture, &PictureView::stepPicture, this, &wHistory::stepPicture);
    connect(m_picture, &PictureView::leave, this, &wHistory::leavePicture);
    auto* bar = new QHBoxLayout;
    bar->addWidget(back);
    bar->addStretch();
    bar->addWidget(fit);
    bar->addWidget(actual);
    auto* page = new QWidget;
    auto* layout = new QVBoxLayout(page);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addLayout(bar);
    layout->addWidget(m_picture, 1);
    return page;
}

// A new reading keeps the chosen day and run where they are still there.
void wHistory::historyChanged() {
    if (m_showingFound) {
        fillDays(); // the results stay until the search is left
        return;
    }
    const QDate chosen =
        m_days->currentItem() != nullptr ? m_days->currentItem()->data(Qt::UserRole).toDate() : QDate();
    const CaptureRun* run = currentRun();
    const std::optional<CaptureRun> keep = run != nullptr ? std::optional(*run) : std::nullopt;
    fillDays();
    const CaptureHistory& history = m_index->history();
    int dayRow = 0;
    for (int row = 0; row < int(history.size()); ++row) {
        if (history[std::size_t(row)].date == chosen) {
            dayRow = row;
        }
    }
    {
        const QSignalBlocker quiet(m_days);
        m_days->setCurrentRow(history.empty() ? -1 : dayRow);
    }
    dayChosen();
    if (const std::optional<int> row = keep ? m_runModel->rowOf(*keep) : std::nullopt) {
        m_runs->setCurrentIndex(m_runModel->index(*row));
    }
}

void wHistory::fillDays() {
    const QSignalBlocker quiet(m_days);
    m_days->clear();
    for (const CaptureDay& day : m_index->history()) {
        auto* item = new QListWidgetItem(dayText(day), m_days);
        item->setData(Qt::UserRole, day.date);
    }
}

// The newest run of the day comes first into view.
void wHistory::dayChosen() {
    const int row = m_days->currentRow();
    if (m_showingFound && row < 0) {
        return;
    }
    m_showingFound = false;
    const CaptureHistory& history = m_index->history();
    m_thumbnails->forgetQueued();
    m_runModel->setRuns(row >= 0 && row < int(history.size()) ? history[std::size_t(row)].runs
                                                              : std::vector<CaptureRun>{});
    const QSignalBlocker quiet(m_scrubber);
    m_scrubber->setRange(0, std::max(0, m_runModel->rowCount() - 1));
    if (m_runModel->rowCount() > 0) {
        m_runs->setCurrentIndex(m_runModel->index(m_runModel->rowCount() - 1));
    }
    currentRunChanged();
}

void wHistory::currentRunChanged() {
    const int row = m_runs->currentIndex().row();
    const QSignalBlocker quiet(m_scrubber);
    m_scrubber->setValue(std::max(0, row));
    m_runTime->setText(m_runs->currentIndex().data().toString());
    m_runs->scrollTo(m_runs->currentIndex());
}

const CaptureRun* wHistory::currentRun() const {
    return m_runModel->runAt(m_runs->currentIndex().row());
}

void wHistory::openPicture() {
    if (currentRun() == nullptr) {
        return;
    }
    m_pictureIndex = 0;
    m_pages->setCurrentIndex(1);
    m_picture->setFocus();
    showCurrentPicture();
}

// To the picture at the same place in the neighbouring run, or the nearest the run has.
void wHistory::stepRun(int delta) {
    const int row =
        std::clamp(m_runs->currentIndex().row() + delta, 0, std::max(0, m_runModel->rowCount() - 1));
    m_runs->setCurrentIndex(m_runModel->index(row));
    showCurrentPicture();
}

void wHistory::stepPicture(int delta) {
    m_pictureIndex += delta;
    showCurrentPicture();
}

void wHistory::showCurrentPicture() {
    const CaptureRun* run = currentRun();
    if (run == nullptr || run->pictures.empty()) {
        return;
    }
    m_pictureIndex = std::clamp(m_pictureIndex, 0, int(run->pictures.size()) - 1);
    m_picture->showPicture(QImageReader(run->pictures[std::size_t(m_pictureIndex)].path).read());
}

void wHistory::leavePicture() {
    m_pages->setCurrentIndex(0);
    m_runs->setFocus();
}

// The runs selected, when more than one is; otherwise the whole day.
std::vector<CaptureRun> wHistory::chosenRuns() const {
    QModelIndexList rows = m_runs->selectionModel()->selectedRows();
    if (rows.size() < 2) {
        return m_runModel->runs();
    }
    std::sort(rows.begin(), rows.end());
    std::vector<CaptureRun> runs;
    for (const QModelIndex& row : rows) {
        runs.push_back(*m_runModel->runAt(row.row()));
    }
    return runs;
}

void wHistory::showInFolder() {
    const CaptureRun* run = currentRun();
    if (run == nullptr || run->pictures.empty()) {
        return;
    }
    const bool full = m_pages->currentIndex() == 1;
    const QString path =
        run->pictures[std::size_t(full ? std::clamp(m_pictureIndex, 0, int(run->pictures.size()) - 1) : 0)]
            .path;
    if (!m_fileManager->showItem(path)) {
        QDesktopServices::openUrl(QUrl::fromLocalFile(QFileInfo(path).path()));
    }
}
