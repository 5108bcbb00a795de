#pragma once

#include "history/CaptureHistory.h"

#include <QString>

#include <vector>

// The capture runs with screen pictures whose text the FTS5 query matches, newest first, each
// picture with the words found marked; none where there is no index or the query is no query.
// Reads files: not on the GUI thread.
std::vector<CaptureRun> searchRuns(const QString& indexPath, const QString& destinationSetting,
                                   const QString& query);
