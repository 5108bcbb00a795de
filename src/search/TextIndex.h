#pragma once

#include "search/PictureText.h"
#include "search/Sqlite.h"

#include <QDateTime>
#include <QString>

#include <map>
#include <optional>
#include <set>
#include <variant>
#include <vector>

// A picture on the disk, by its capture name, which stays when the slideshow moves the file.
struct IndexedPicture {
    QString name;
    QString path;
    QDateTime taken;
};

// A picture whose text a search found, with the words' boxes.
struct SearchHit {
    IndexedPicture picture;
    QString body;
    QString words;
};

// The text of the pictures, in one SQLite file with a full-text index. Written by one thread of
// the running program, one transaction a picture, in WAL mode, so that other processes read it
// while it is written and a picture whose write was cut short is simply not in it.
class TextIndex {
public:
    // $XDG_DATA_HOME/Kestrelview/text.sqlite
    static QString defaultPath();
    // For writing, made where missing; a file that is no index is put aside and begun anew.
    static std::optional<TextIndex> openForWriting(const QString& path);
    // For searching beside the writer; none where there is no index that can be read.
    static std::optional<TextIndex> openForReading(const QString& path);

    bool contains(const QString& name);
    bool add(const IndexedPicture& picture, const PictureText& text);
    // The pictures newest first whose text matches the FTS5 query, taken between the bounds
    // (invalid: open); the error text where the query is no query.
    std::variant<std::vector<SearchHit>, QString> search(const QString& query, const QDateTime& from,
                                                         const QDateTime& to);
    // Brings the index to the pictures that are on the disk, by name: the others leave it, and
    // those that moved are found at their new place. The names it holds then.
    std::set<QString> sweep(const std::map<QString, QString>& pathsByName);
    int pictureCount();

private:
    explicit TextIndex(SqlitePtr db);
    SqlitePtr m_db;
};

// Deletes the index and the files SQLite keeps beside it.
bool removeIndex(const QString& path);
