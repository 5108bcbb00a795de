#pragma once

#include <QApplication>

// The application object: the first thing that runs and the last.
class Kestrelview final : public QApplication {
public:
    Kestrelview(int& argc, char** argv);

    // Reads the main screen's size, the file names and the developer file. False when that
    // failed; the user has been told and the program ends.
    bool Event_Open();

    // Any exception that escapes an event ends up here instead of in the event loop.
    bool notify(QObject* receiver, QEvent* event) override;
};

namespace mCodeBaseStd {
void sGetMainScreenResolution();
} // namespace mCodeBaseStd
