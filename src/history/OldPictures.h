#pragma once

#include "settings/mPolicies.h"

#include <QDateTime>
#include <QString>
#include <QStringList>

// Lets the oldest capture files of the picture folder go as the policies say: those older than
// pKeepDays before `now`, then the oldest while all of them together take more than pKeepGB. Only
// names that the program writes count; the folders within (the slideshow's archives) and every
// other file stay, and so does the newest picture of each screen and of the camera. They go to
// the desktop's trash, or are deleted. Gives the names that went. Slow: a worker's thread.
QStringList letOldPicturesGo(const QString& folder, const mPolicies::Policies& policies,
                             const QDateTime& now);
