#pragma once

#include <QByteArray>
#include <QProcess>
#include <QString>
#include <QTemporaryDir>

// A private nginx on loopback: its own configuration, logs, pid and temp files in a temporary
// folder, in the foreground as a single process, stopped with the object.
class NginxServer {
public:
    NginxServer();
    ~NginxServer();
    NginxServer(const NginxServer&) = delete;
    NginxServer& operator=(const NginxServer&) = delete;

    // Where the binary is; empty when nginx is not installed.
    static QString binary();
    // A port on 127.0.0.1 that nothing listens on right now.
    static int freePort();

    QString dir() const { return m_dir.path(); }
    // Starts nginx with these server blocks inside its http block; "@DIR@" stands for dir().
    // False, with the reason in error(), when it does not answer on `port` within a few seconds.
    bool start(const QByteArray& serverBlocks, int port);
    QByteArray error() const { return m_error; }
    QByteArray readFile(const QString& name) const;

private:
    QTemporaryDir m_dir;
    QProcess m_process;
    QByteArray m_error;
};
