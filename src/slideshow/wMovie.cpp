#include "slideshow/wMovie.h"

#include "base/Controls.h"
#include "base/NilObjectException.h"
#include "base/UnhandledException.h"
#include "base/mCodeBaseGlv.h"
#include "feedback/WorkingMessages.h"
#include "platform/Clock.h"
#include "platform/FolderItem.h"
#include "platform/movie/MovieWriter.h"
#include "settings/mGeneralSettings.h"
#include "slideshow/MovieAssembly.h"
#include "slideshow/PictureList.h"

#include <QApplication>
#include <QCloseEvent>
#include <QListWidget>
#include <QPointer>
#include <QProgressBar>
#include <QPushButton>

#include <utility>

namespace {
QListWidget* makeList(QWidget* parent) {
    auto* list = placeControl<QListWidget>(parent, "List", {20, 14, 302, 342});
    list->setFont(smallSystemFont());
    list->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    list->setVerticalScrollBarPolicy(Qt::ScrollBarAsNeeded);
    return list;
}

QProgressBar* makeProgressBar(QWidget* parent) {
    auto* bar = placeControl<QProgressBar>(parent, "barProgress1", {20, 368, 302, 20});
    bar->setRange(0, 100);
    bar->setValue(0);
    bar->setTextVisible(false);
    return bar;
}
} // namespace

wMovie::wMovie(ScheduleSuspension& suspension)
    : DialogWindow("Create QuickTime Movie / Slideshow", QSize(342, 440))
    , m_barProgress1(makeProgressBar(this))
    , m_List(makeList(this))
    , m_pb1(makeButton(this, "pb1", "Create Movie", {217, 400, 105, 20}))
    , m_writer(makeMovieWriter())
    , m_assembly(new MovieAssembly(*m_writer, systemClock(), this))
    , m_suspension(suspension) {
    setDefaultButton(m_pb1);
    connect(m_pb1, &QPushButton::clicked, this, &wMovie::pb1_Action);
    // The assembly speaks from its worker thread; the window hears it in order, on its own.
    connect(
        m_assembly, &MovieAssembly::workingMessage, this,
        [](const QString& text1, const QString& text2) {
            mCodeBaseStd::sDisplayWorkingMessage(text1, text2);
        },
        Qt::QueuedConnection);
    connect(
        m_assembly, &MovieAssembly::workingWindowDone, this, [] { closeWorkingWindow(); },
        Qt::QueuedConnection);
    connect(
        m_assembly, &MovieAssembly::movieStageDone, m_pb1, [button = m_pb1] { button->setEnabled(false); },
        Qt::QueuedConnection);
    connect(m_assembly, &MovieAssembly::nextFile, this, &wMovie::Event_NextFile, Qt::QueuedConnection);
}

// Waits for the work only at quit, since otherwise the window closes after it has ended; a listing
// that a close cut short is finished first.
wMovie::~wMovie() {
    for (std::thread* worker : {&m_lister, &m_worker}) {
        if (worker->joinable()) {
            worker->join();
        }
    }
}

void wMovie::Event_Open() {
    runGuarded([this] {
        m_hold = m_suspension.hold();
        // The content's place, as a window manager's frame goes around it.
        setGeometry(static_cast<int>((mCodeBaseGlv::pMainScreenWidth - width()) / 2.0),
                    static_cast<int>((mCodeBaseGlv::pMainScreenHeight - height()) / 2.0), width(), height());
        sPopulateList();
    });
}

// A folder of months of pictures takes a while to read, so a worker reads it.
void wMovie::sPopulateList() {
    m_List->clear();
    const std::optional<QString> folder =
        GetFolderItem(mGeneralSettings::current().pDestination, FolderPlace::Pictures);
    if (!folder) {
        throw NilObjectException("no destination folder");
    }
    m_lister = std::thread([this, folder = *folder] {
        std::vector<PictureRow> rows = fPictureRows(folder);
        QMetaObject::invokeMethod(
            this, [this, rows = std::move(rows)] { showRows(rows); }, Qt::QueuedConnection);
    });
}

// A press that came before the rows counts now.
void wMovie::showRows(const std::vector<PictureRow>& rows) {
    m_lister.join();
    for (const PictureRow& row : rows) {
        auto* item = new QListWidgetItem(row.displayName, m_List);
        item->setData(Qt::UserRole, row.path);
    }
    if (std::exchange(m_pressedWhileListing, false) && !isClosed()) {
        pb1_Action();
    }
}

void wMovie::pb1_Action() {
    runGuarded([this] { sCreateMovie(); });
}

void wMovie::sCreateMovie() {
    if (m_lister.joinable()) {
        m_pressedWhileListing = true;
        return;
    }
    if (m_working || m_worker.joinable()) {
        return;
    }
    MovieAssemblyInput input{{}, mGeneralSettings::current().pDestination};
    for (int row = 0; row < m_List->count(); ++row) {
        input.files.push_back(m_List->item(row)->data(Qt::UserRole).toString());
    }
    m_working = true;
    m_worker = std::thread([this, input = std::move(input)] {
        bool completed = false;
        runGuarded([&] {
            m_assembly->sCreateMovie(input);
            completed = true;
        });
        QMetaObject::invokeMethod(
            this, [this, completed] { assemblyEnded(completed); }, Qt::QueuedConnection);
    });
}

// Qt drops a value above the maximum, so the maximum goes first.
void wMovie::Event_NextFile(int current, int total) {
    m_barProgress1->setMaximum(total);
    m_barProgress1->setValue(current);
}

// After a failure the window stays, with the working window, until the user closes it. Otherwise
// it closes once the last working message has gone.
void wMovie::assemblyEnded(bool completed) {
    m_worker.join();
    m_working = false;
    if (completed || m_closeWhenDone) {
        closeWorkingWindow([window = QPointer<wMovie>(this)] {
            if (window) {
                window->close();
            }
        });
    }
}

void wMovie::closeEvent(QCloseEvent* event) {
    if (m_working && !m_closing.started()) {
        m_closeWhenDone = true;
        event->ignore();
        return;
    }
    m_closing.handle(event, [this] { runGuarded([this] { Event_Close(); }); });
    if (event->isAccepted()) {
        DialogWindow::closeEvent(event);
    }
}

void wMovie::Event_Close() {
    closeWorkingWindow();
    m_hold.release();
}

void waitForMovieAssembly() {
    for (QWidget* window : QApplication::topLevelWidgets()) {
        delete qobject_cast<wMovie*>(window);
    }
}
