#pragma once

#include <QString>

// What the program knows about itself. The file names are set once by SetConstants, on the GUI
// thread, before any other thread exists.
namespace mProgramInfo {
inline const QString pProgramName = QStringLiteral("Kestrelview");
extern const QString pProgramVersion; // the project's version, given by the build
inline const QString pProgramBuild = QStringLiteral("15072010_1800");
inline const QString pSubName = QStringLiteral("Timed Screen and Webcam Recorder");

inline QString pScreenSettingsFileName;
inline QString pGeneralSettingsFileName;
inline QString pDeveloperSettingsFileName;

// The name that the desktop knows the program by: its launcher entry, its icon, its autostart
// entry and its name on the session bus.
inline const QString kDesktopId = QStringLiteral("com.kestrelview.Kestrelview");

// The two web pages that the Help menu opens.
inline const QString kSupportForumUrl = QStringLiteral("http://www.kestrelview.com/forum/");
inline const QString kWebSiteUrl = QStringLiteral("http://www.kestrelview.com/");

inline bool pDeveloperFileStatus = false;
inline QString pDevFTPUploadStatus = QStringLiteral("FALSE");

void SetConstants();
} // namespace mProgramInfo
