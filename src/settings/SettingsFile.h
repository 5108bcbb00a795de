#pragma once

#include <QString>
#include <QStringList>

#include <optional>
#include <utility>
#include <vector>

// The program's settings files, tag files beside the executable.

// The first `count` lines of the named file; empty when there is none to read.
std::optional<QStringList> readSettingsFile(const QString& fileName, int count);
// Replaces the named file with one record per pair, in order. Throws NilObjectException when
// there is no place for the file or it cannot be written.
void writeSettingsFile(const QString& fileName, const std::vector<std::pair<QString, QString>>& records);
