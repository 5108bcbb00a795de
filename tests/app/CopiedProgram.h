#pragma once

#include <QProcess>
#include <QStringList>
#include <QTemporaryDir>

#include <functional>

// The real program, started from a copy of its application folder as a user would start it.
class CopiedProgram {
public:
    CopiedProgram();
    ~CopiedProgram(); // kills a program still running

    bool copied() const { return m_copied; }
    // The first-start settings with a two-second interval and no update check at start.
    void writeQuickPrefs(const QString& primaryOnly = QStringLiteral("FALSE"));
    bool start();
    // The pictures in the destination folder, oldest first.
    QStringList pictures() const;
    QString picturePath(const QString& name) const;

    QString binPath(const QString& name) const { return m_bin + '/' + name; }
    QProcess& process() { return m_process; }

private:
    QTemporaryDir m_temp;
    QString m_bin;
    bool m_copied = false;
    QProcess m_process;
};

QString readAll(const QString& path);
bool writeText(const QString& path, const QString& text);
// Polls `condition` until it holds; false when `timeoutMs` went by first.
bool waitFor(const std::function<bool()>& condition, int timeoutMs);
