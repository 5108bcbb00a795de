#pragma once

#include "support/Printers.h"
#include "base/mProgramInfo.h"
#include "platform/FolderItem.h"

#include <QByteArray>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

// Points the program at a fresh temporary folder in place of the executable's.
class AppFolderTest : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(m_dir.isValid());
        platform::setApplicationFolder(m_dir.path());
        mProgramInfo::SetConstants();
    }
    void TearDown() override { platform::setApplicationFolder(QString()); }

    QString path(const QString& name) const { return m_dir.filePath(name); }

    void writeFile(const QString& name, const QByteArray& bytes) const {
        QFile file(path(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        ASSERT_EQ(file.write(bytes), bytes.size());
    }

    QByteArray readFile(const QString& name) const {
        QFile file(path(name));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

    // Everything in the folder, to see that a failed write left nothing behind.
    QStringList entries() const {
        return QDir(m_dir.path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden);
    }

    QTemporaryDir m_dir;
};
