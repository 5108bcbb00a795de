#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

// Reading and writing whole files, as the tests need them; nothing here trusts the program's code.
QByteArray readFile(const QString& path); // empty when it cannot be read
// Makes the folders on the way; false when the file could not be written whole.
bool writeFile(const QString& path, const QByteArray& bytes);
// Every entry in the folder, hidden ones too, sorted by name: what a failed write left behind.
QStringList entriesIn(const QString& folder);
