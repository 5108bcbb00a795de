#pragma once

#include "support/XWindows.h"

#include <QProcess>
#include <QProcessEnvironment>
#include <QStringList>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <functional>
#include <optional>

QString readAll(const QString& path);
void writeText(const QString& path, const QString& text);
bool waitFor(const std::function<bool()>& condition, int timeoutMs);

// The real program, started from a copy of its application folder as a user would, in a session
// of its own: its own runtime folder, and no session bus unless a test gives it one.
class RealProgramTest : public ::testing::Test {
protected:
    void SetUp() override;
    void TearDown() override;

    // What every start of the program in this test gets.
    QProcessEnvironment& environment() { return m_environment; }
    // Starts the first instance, `program` unless it is given.
    void start(const QStringList& arguments = {}, const QString& program = {});
    // A later start that ends by itself: its exit code, and its error output in `errors`.
    int runOnce(const QStringList& arguments, QString* errors = nullptr);
    std::optional<xtest::Window> mainWindow();
    // As a window manager does when the user clicks the close box.
    void closeAndWait(const xtest::Window& window);
    void expectCleanExit();
    static QStringList pictures(const QString& folder);

    QTemporaryDir m_temp;
    QString m_appFolder;
    QString m_bin;
    QProcess m_process;
    xtest::Display m_x;

private:
    QProcessEnvironment m_environment;
};
