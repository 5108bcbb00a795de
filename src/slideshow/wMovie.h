#pragma once

#include "base/DialogWindow.h"
#include "base/ScheduleSuspension.h"
#include "base/SingleWindow.h"
#include "feedback/CloseAfterEffect.h"
#include "slideshow/PictureList.h"

#include <memory>
#include <thread>
#include <vector>

class MovieAssembly;
class MovieWriter;
class QListWidget;
class QProgressBar;
class QPushButton;

// The window that lists the destination's pictures and makes a slideshow movie of them on a
// worker thread, then closes itself. The capture schedule rests while it is open, and a close
// asked for during the work waits for the work to end.
class wMovie final : public DialogWindow {
    Q_OBJECT

public:
    // Holds `suspension` from its opening until its close.
    explicit wMovie(ScheduleSuspension& suspension);
    ~wMovie() override;

    // Also while the closing effect plays, so that the accessor makes a fresh window.
    bool isClosed() const { return m_closing.started() || DialogWindow::isClosed(); }

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    friend class SingleWindow<wMovie>;
    void Event_Open();
    void Event_Close();
    void sPopulateList();
    void showRows(const std::vector<PictureRow>& rows);
    void sCreateMovie();
    void pb1_Action();
    void Event_NextFile(int current, int total);
    void assemblyEnded(bool completed);

    QProgressBar* m_barProgress1;
    QListWidget* m_List;
    QPushButton* m_pb1;
    std::unique_ptr<MovieWriter> m_writer;
    MovieAssembly* m_assembly;
    ScheduleSuspension& m_suspension;
    ScheduleSuspension::Token m_hold;
    std::thread m_lister;
    std::thread m_worker;
    bool m_pressedWhileListing = false;
    bool m_working = false;
    bool m_closeWhenDone = false;
    CloseAfterEffect m_closing{*this, TransitionEffect::Flip, TransitionSide::Up};
};

// At quit, once nobody waits for dialogs any more: lets an assembly under way finish its archive,
// so that no batch is left half moved, and lets the window go.
void waitForMovieAssembly();
