#pragma once

#include "history/CaptureHistory.h"

#include <QWidget>

#include <functional>
#include <memory>
#include <vector>

class FileManager;
class HistoryIndex;
class PictureView;
class QLabel;
class QLineEdit;
class QListView;
class QListWidget;
class QSlider;
class QStackedWidget;
class RunListModel;
class ThumbnailLoader;

// The window "History": the days that have pictures, newest first, with their counts; the
// chosen day's capture runs as rows of thumbnails with a scrubber over them; a picture at full
// size on Enter or a double click. It follows the folders while it is open and leaves the
// capture schedule alone.
class wHistory final : public QWidget {
    Q_OBJECT

public:
    // The runs whose pictures' text a query finds, newest first, the words marked; called on a
    // thread of the pool.
    using RunSearch = std::function<std::vector<CaptureRun>(const QString& query)>;

    // `destinationSetting` gives the destination folder as the settings name it. With `search`,
    // a search field above the days shows the runs found in place of a day's.
    wHistory(std::function<QString()> destinationSetting, std::unique_ptr<FileManager> fileManager,
             RunSearch search = {}, QWidget* parent = nullptr);
    ~wHistory() override;

private:
    QWidget* makeRunsPage();
    QWidget* makePicturePage();
    QWidget* makeSearchField();
    void searchEntered();
    void showFound(const std::vector<CaptureRun>& runs);
    void historyChanged();
    void fillDays();
    void dayChosen();
    void currentRunChanged();
    void openPicture();
    void stepRun(int delta);
    void stepPicture(int delta);
    void showCurrentPicture();
    void leavePicture();
    void showInFolder();
    const CaptureRun* currentRun() const;
    std::vector<CaptureRun> chosenRuns() const;

    std::unique_ptr<FileManager> m_fileManager;
    RunSearch m_search;
    bool m_showingFound = false;
    HistoryIndex* m_index;
    ThumbnailLoader* m_thumbnails;
    RunListModel* m_runModel;
    QListWidget* m_days;
    QStackedWidget* m_pages;
    QListView* m_runs;
    QSlider* m_scrubber;
    QLabel* m_runTime;
    PictureView* m_picture;
    int m_pictureIndex = 0;
};
