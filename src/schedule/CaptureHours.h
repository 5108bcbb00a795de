#pragma once

#include <QDateTime>
#include <QString>

// Whether `now` falls in the capture days ("Mon,Tue,...", empty for every day) and the daily
// window ("08:00-18:30", empty for all day). A window that ends before it starts runs over
// midnight and belongs to the day it starts on. A rule that cannot be read restricts nothing, so
// that a damaged file never stops the record.
bool withinCaptureHours(const QString& days, const QString& hours, const QDateTime& now);
