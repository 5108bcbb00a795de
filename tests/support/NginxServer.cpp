#include "support/NginxServer.h"

#include <QDeadlineTimer>
#include <QDir>
#include <QFile>
#include <QStandardPaths>
#include <QTcpServer>
#include <QTcpSocket>

NginxServer::NginxServer() {
    m_process.setProcessChannelMode(QProcess::MergedChannels);
}

NginxServer::~NginxServer() {
    if (m_process.state() != QProcess::NotRunning) {
        m_process.terminate();
        if (!m_process.waitForFinished(5000)) {
            m_process.kill();
        }
        m_process.waitForFinished(5000);
    }
}

QString NginxServer::binary() {
    return QStandardPaths::findExecutable("nginx", {"/usr/sbin", "/usr/local/sbin", "/usr/bin"});
}

int NginxServer::freePort() {
    QTcpServer probe;
    probe.listen(QHostAddress::LocalHost, 0);
    return probe.serverPort();
}

bool NginxServer::start(const QByteArray& serverBlocks, int port) {
    const QByteArray dir = m_dir.path().toUtf8();
    QByteArray config = R"(daemon off;
master_process off;
worker_processes 1;
pid @DIR@/nginx.pid;
error_log @DIR@/error.log;
events { worker_connections 64; }
http {
    client_body_temp_path @DIR@/body;
    proxy_temp_path @DIR@/proxy;
    fastcgi_temp_path @DIR@/fastcgi;
    uwsgi_temp_path @DIR@/uwsgi;
    scgi_temp_path @DIR@/scgi;
    default_type application/octet-stream;
    log_format line '$request|$http_host|$status';
    access_log @DIR@/access.log line;
)" + serverBlocks + "}\n";
    config.replace("@DIR@", dir);
    QFile file(m_dir.filePath("nginx.conf"));
    if (!file.open(QIODevice::WriteOnly) || file.write(config) != config.size()) {
        m_error = "cannot write the configuration";
        return false;
    }
    file.close();

    m_process.start(binary(), {"-p", m_dir.path(), "-c", file.fileName(), "-e", m_dir.filePath("error.log")});
    const QDeadlineTimer deadline(10000);
    while (!deadline.hasExpired()) {
        if (m_process.state() == QProcess::NotRunning) {
            m_error = m_process.readAll() + readFile("error.log");
            return false;
        }
        QTcpSocket probe;
        probe.connectToHost(QHostAddress::LocalHost, static_cast<quint16>(port));
        if (probe.waitForConnected(200)) {
            return true;
        }
        m_process.waitForFinished(50);
    }
    m_error = "nginx did not answer on its port: " + readFile("error.log");
    return false;
}

QByteArray NginxServer::readFile(const QString& name) const {
    QFile file(m_dir.filePath(name));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}
