#include "slideshow/MovieAssembly.h"

#include "base/Messages.h"
#include "base/NilObjectException.h"
#include "platform/Clock.h"
#include "platform/FolderItem.h"
#include "platform/movie/MovieWriter.h"
#include "slideshow/MakeCopy.h"
#include "slideshow/TemporaryFiles.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace {
constexpr int kTimeScale = 600;
constexpr int kStillDuration = 1200;
constexpr int kEffectDuration = 600;

const QString kPatience = QStringLiteral("Please Be Patient ...");

// A file of that name already in the folder keeps its place, and so does the one moved.
void moveFileTo(const QString& file, const QString& folder) {
    QFile::rename(file, QDir(folder).filePath(QFileInfo(file).fileName()));
}

// The copy is a new file, with the permissions of one rather than the temporary file's private
// ones; a copy cut short is not left behind.
void copyFileTo(const QString& from, const QString& to) {
    QFile in(from);
    QFile out(to);
    if (!in.open(QIODevice::ReadOnly) || !out.open(QIODevice::WriteOnly)) {
        return;
    }
    constexpr qint64 kChunkBytes = 1 << 20;
    bool written = true;
    while (written && !in.atEnd()) {
        const QByteArray chunk = in.read(kChunkBytes);
        written = !chunk.isEmpty() && out.write(chunk) == chunk.size();
    }
    if (!written || !out.flush()) {
        out.remove();
    }
}
} // namespace

MovieAssembly::MovieAssembly(MovieWriter& writer, const Clock& clock, QObject* parent)
    : QObject(parent)
    , m_writer(writer)
    , m_clock(clock) {}

void MovieAssembly::sCreateMovie(const MovieAssemblyInput& input) {
    emit workingMessage(QStringLiteral("Creating Movie File ..."), kPatience);
    TemporaryFiles temporaries;
    const QString stamp = m_clock.now().toString(QStringLiteral("yyyy-MM-dd-HH-mm"));
    const QString archiveName = "Archive_" + stamp;
    std::optional<QString> target;
    if (const std::optional<QString> destination = GetFolderItem(input.destination, FolderPlace::Pictures)) {
        CreateAsFolder(*destination);
        target = QDir(*destination).filePath(stamp + ".mov");
        makeMovie(input.files, *target, temporaries);
    }
    temporaries.deleteAll();
    emit movieStageDone();
    emit workingWindowDone();

    emit workingMessage(QStringLiteral("Archiving ..."), kPatience);
    // Joined as text: a destination without a trailing separator gets its archive beside it.
    const std::optional<QString> archive =
        GetFolderItem(input.destination + archiveName, FolderPlace::Pictures);
    if (!archive) {
        throw NilObjectException("no archive folder");
    }
    CreateAsFolder(*archive);
    for (const QString& file : input.files) {
        moveFileTo(file, *archive);
    }
    if (!target) {
        throw NilObjectException("no movie file");
    }
    moveFileTo(*target, *archive);
    emit workingWindowDone();
}

void MovieAssembly::makeMovie(const std::vector<QString>& files, const QString& target,
                              TemporaryFiles& temporaries) {
    MovieRequest request;
    request.timeScale = kTimeScale;
    request.effectDuration = kEffectDuration;
    request.stillDuration = kStillDuration;
    for (const QString& file : files) {
        if (const std::optional<QString> copy = sMakeCopy(file)) {
            temporaries.add(*copy);
            request.mediaFiles.push_back(*copy);
        }
    }
    request.target = temporaries.make();
    const int lastError =
        m_writer.Run(request, [this](int current, int total) { emit nextFile(current, total); });
    if (lastError != 0) {
        mCodeBaseStd::sDisplayWarningMessage("Error: \n" + QString::number(lastError));
        return;
    }
    if (!m_writer.OpenAsMovie(request.target)) {
        mCodeBaseStd::sDisplayWarningMessage(QStringLiteral("Failed to Create Movie File ..."));
        return;
    }
    const QString flattened = temporaries.make();
    if (m_writer.Flatten(request.target, flattened) != 0) {
        mCodeBaseStd::sDisplayWarningMessage(QStringLiteral("Failed to Flatten Movie ..."));
        return;
    }
    if (QFileInfo::exists(target)) {
        QFile::remove(target);
    }
    copyFileTo(flattened, target);
}
