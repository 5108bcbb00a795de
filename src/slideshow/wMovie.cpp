#include "slideshow/wMovie.h"

#include "base/Controls.h"
#include "base/NilObjectException.h"
#include "base/UnhandledException.h"
#include "base/mCodeBaseGlv.h"
#include "feedback/WindowTransition.h"
#include "feedback/wWorking.h"
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

// Whether it is open or not.
void closeWorkingWindow() {
    for (QWidget* window : QApplication::topLevelWidgets()) {
        if (auto* working = dynamic_cast<wWorking*>(window); working != nullptr && working->isVisible()) {
            working->close();
        }
    }
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
    connect(m_assembly, &MovieAssembly::workingWindowDone, this, &closeWorkingWindow, Qt::QueuedConnection);
    connect(m_assembly, &MovieAssembly::nextFile, this, &wMovie::Event_NextFile, Qt::QueuedConnection);
}

// Waits only at quit: otherwise the window closes after the work has ended.
wMovie::~wMovie() {
    if (m_worker.joinable()) {
        m_worker.join();
    }
}

void wMovie::Event_Open() {
    runGuarded([this] {
        m_hold = m_suspension.hold();
        move(static_cast<int>((mCodeBaseGlv::pMainScreenWidth - width()) / 2.0),
             static_cast<int>((mCodeBaseGlv::pMainScreenHeight - height()) / 2.0));
        sPopulateList();
    });
}

void wMovie::sPopulateList() {
    m_List->clear();
    const std::optional<QString> folder =
        GetFolderItem(mGeneralSettings::current().pDestination, FolderPlace::Pictures);
    if (!folder) {
        throw NilObjectException("no destination folder");
    }
    for (const PictureRow& row : fPictureRows(*folder)) {
        auto* item = new QListWidgetItem(row.displayName, m_List);
        item->setData(Qt::UserRole, row.path);
    }
}

void wMovie::pb1_Action() {
    runGuarded([this] { sCreateMovie(); });
}

void wMovie::sCreateMovie() {
    if (m_working || m_worker.joinable()) {
        return;
    }
    m_pb1->setEnabled(false);
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

// After a failure the window stays, with the working window, until the user closes it.
void wMovie::assemblyEnded(bool completed) {
    m_worker.join();
    m_working = false;
    if (completed || m_closeWhenDone) {
        close();
    }
}

void wMovie::closeEvent(QCloseEvent* event) {
    if (m_transitionDone) {
        DialogWindow::closeEvent(event);
        return;
    }
    event->ignore();
    if (m_leaving) {
        return;
    }
    if (m_working) {
        m_closeWhenDone = true;
        return;
    }
    runGuarded([this] { Event_Close(); });
}

void wMovie::Event_Close() {
    m_leaving = true;
    closeWorkingWindow();
    m_hold.release();
    fxWindowTransition(this, "Flip", "Up", 1, 0, [window = QPointer<wMovie>(this)] {
        if (window) {
            window->afterCloseTransition();
        }
    });
}

// Closing from inside a close event does nothing, so the real close comes next.
void wMovie::afterCloseTransition() {
    m_transitionDone = true;
    QMetaObject::invokeMethod(this, &QWidget::close, Qt::QueuedConnection);
}

void waitForMovieAssembly() {
    for (QWidget* window : QApplication::topLevelWidgets()) {
        delete qobject_cast<wMovie*>(window);
    }
}
