#include "search/TextIndex.h"

#include "base/mProgramInfo.h"

#include <QDir>
#include <QFile>
#include <QStandardPaths>

#include <limits>

namespace {
// A reader waits this long for the writer's checkpoint, the writer for a reader's.
constexpr int kBusyMs = 5000;

const char* const kSchema = R"(
PRAGMA journal_mode=WAL;
PRAGMA synchronous=NORMAL;
CREATE TABLE IF NOT EXISTS pictures(id INTEGER PRIMARY KEY, name TEXT NOT NULL UNIQUE,
    path TEXT NOT NULL, taken INTEGER NOT NULL, words TEXT NOT NULL);
CREATE INDEX IF NOT EXISTS pictures_by_time ON pictures(taken);
CREATE VIRTUAL TABLE IF NOT EXISTS picture_text USING fts5(body);
)";

const char* const kSearch = R"(
SELECT p.name, p.path, p.taken, t.body, p.words FROM picture_text t JOIN pictures p ON p.id = t.rowid
WHERE picture_text MATCH ?1 AND p.taken BETWEEN ?2 AND ?3 ORDER BY p.taken DESC, p.name DESC)";

SqlitePtr openFile(const QString& path, int flags) {
    sqlite3* db = nullptr;
    const int opened = sqlite3_open_v2(QFile::encodeName(path).constData(), &db, flags, nullptr);
    SqlitePtr held(db);
    if (opened != SQLITE_OK) {
        return nullptr;
    }
    sqlite3_busy_timeout(db, kBusyMs);
    return held;
}

std::int64_t secondsOf(const QDateTime& when, std::int64_t open) {
    return when.isValid() ? when.toSecsSinceEpoch() : open;
}

// Many changes in one transaction: a cut leaves all or none of them.
class Transaction {
public:
    explicit Transaction(sqlite3* db)
        : m_db(db)
        , m_begun(execute(db, "BEGIN IMMEDIATE")) {}
    ~Transaction() {
        if (m_begun && !m_done) {
            execute(m_db, "ROLLBACK");
        }
    }
    Transaction(const Transaction&) = delete;
    Transaction& operator=(const Transaction&) = delete;
    bool begun() const { return m_begun; }
    bool commit() { return m_done = m_begun && execute(m_db, "COMMIT"); }

private:
    sqlite3* m_db;
    bool m_begun;
    bool m_done = false;
};

bool runWithName(sqlite3* db, const char* sql, const QString& name) {
    const StatementPtr statement = prepare(db, sql);
    if (!statement) {
        return false;
    }
    bindText(statement.get(), 1, name);
    return sqlite3_step(statement.get()) == SQLITE_DONE;
}

bool forget(sqlite3* db, const QString& name) {
    return runWithName(db,
                       "DELETE FROM picture_text WHERE rowid IN (SELECT id FROM pictures WHERE name = ?1)",
                       name) &&
           runWithName(db, "DELETE FROM pictures WHERE name = ?1", name);
}
} // namespace

QString TextIndex::defaultPath() {
    return QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) + '/' +
           mProgramInfo::pProgramName + QStringLiteral("/text.sqlite");
}

std::optional<TextIndex> TextIndex::openForWriting(const QString& path) {
    QDir().mkpath(QFileInfo(path).path());
    for (int attempt = 0; attempt < 2; ++attempt) {
        SqlitePtr db = openFile(path, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE);
        if (db && execute(db.get(), kSchema)) {
            return TextIndex(std::move(db));
        }
        db.reset();
        // Not an index: kept aside for whoever wants to look, and the pictures read again.
        QFile::remove(path + QStringLiteral(".damaged"));
        if (!QFile::rename(path, path + QStringLiteral(".damaged"))) {
            return std::nullopt;
        }
        removeIndex(path);
    }
    return std::nullopt;
}

std::optional<TextIndex> TextIndex::openForReading(const QString& path) {
    if (!QFile::exists(path)) {
        return std::nullopt;
    }
    SqlitePtr db = openFile(path, SQLITE_OPEN_READONLY);
    if (!db || !prepare(db.get(), kSearch)) {
        return std::nullopt;
    }
    return TextIndex(std::move(db));
}

TextIndex::TextIndex(SqlitePtr db)
    : m_db(std::move(db)) {}

bool TextIndex::contains(const QString& name) {
    const StatementPtr statement = prepare(m_db.get(), "SELECT 1 FROM pictures WHERE name = ?1");
    if (!statement) {
        return false;
    }
    bindText(statement.get(), 1, name);
    return sqlite3_step(statement.get()) == SQLITE_ROW;
}

bool TextIndex::add(const IndexedPicture& picture, const PictureText& text) {
    Transaction transaction(m_db.get());
    const StatementPtr row =
        prepare(m_db.get(), "INSERT INTO pictures(name, path, taken, words) VALUES(?1, ?2, ?3, ?4)");
    const StatementPtr body = prepare(m_db.get(), "INSERT INTO picture_text(rowid, body) VALUES(?1, ?2)");
    if (!transaction.begun() || !row || !body || !forget(m_db.get(), picture.name)) {
        return false;
    }
    bindText(row.get(), 1, picture.name);
    bindText(row.get(), 2, picture.path);
    sqlite3_bind_int64(row.get(), 3, secondsOf(picture.taken, 0));
    bindText(row.get(), 4, text.words);
    if (sqlite3_step(row.get()) != SQLITE_DONE) {
        return false;
    }
    sqlite3_bind_int64(body.get(), 1, sqlite3_last_insert_rowid(m_db.get()));
    bindText(body.get(), 2, text.body);
    return sqlite3_step(body.get()) == SQLITE_DONE && transaction.commit();
}

std::variant<std::vector<SearchHit>, QString> TextIndex::search(const QString& query, const QDateTime& from,
                                                                const QDateTime& to) {
    const StatementPtr statement = prepare(m_db.get(), kSearch);
    if (!statement) {
        return QString::fromUtf8(sqlite3_errmsg(m_db.get()));
    }
    bindText(statement.get(), 1, query);
    sqlite3_bind_int64(statement.get(), 2, secondsOf(from, std::numeric_limits<std::int64_t>::min()));
    sqlite3_bind_int64(statement.get(), 3, secondsOf(to, std::numeric_limits<std::int64_t>::max()));
    std::vector<SearchHit> hits;
    int step = SQLITE_ROW;
    while ((step = sqlite3_step(statement.get())) == SQLITE_ROW) {
        sqlite3_stmt* row = statement.get();
        hits.push_back({{columnText(row, 0), columnText(row, 1),
                         QDateTime::fromSecsSinceEpoch(sqlite3_column_int64(row, 2))},
                        columnText(row, 3),
                        columnText(row, 4)});
    }
    if (step != SQLITE_DONE) {
        return QString::fromUtf8(sqlite3_errmsg(m_db.get()));
    }
    return hits;
}

std::set<QString> TextIndex::sweep(const std::map<QString, QString>& pathsByName) {
    std::vector<std::pair<QString, QString>> indexed;
    if (const StatementPtr all = prepare(m_db.get(), "SELECT name, path FROM pictures")) {
        while (sqlite3_step(all.get()) == SQLITE_ROW) {
            indexed.emplace_back(columnText(all.get(), 0), columnText(all.get(), 1));
        }
    }
    Transaction transaction(m_db.get());
    const StatementPtr move = prepare(m_db.get(), "UPDATE pictures SET path = ?2 WHERE name = ?1");
    std::set<QString> kept;
    if (!transaction.begun() || !move) {
        for (const auto& [name, path] : indexed) {
            kept.insert(name);
        }
        return kept;
    }
    for (const auto& [name, path] : indexed) {
        const auto found = pathsByName.find(name);
        if (found == pathsByName.end()) {
            forget(m_db.get(), name);
            continue;
        }
        kept.insert(name);
        if (found->second != path) {
            sqlite3_reset(move.get());
            bindText(move.get(), 1, name);
            bindText(move.get(), 2, found->second);
            sqlite3_step(move.get());
        }
    }
    transaction.commit();
    return kept;
}

int TextIndex::pictureCount() {
    const StatementPtr count = prepare(m_db.get(), "SELECT count(*) FROM pictures");
    return count && sqlite3_step(count.get()) == SQLITE_ROW ? sqlite3_column_int(count.get(), 0) : 0;
}

bool removeIndex(const QString& path) {
    bool removed = true;
    for (const char* suffix : {"", "-wal", "-shm"}) {
        const QString file = path + QString::fromLatin1(suffix);
        removed = (!QFile::exists(file) || QFile::remove(file)) && removed;
    }
    return removed;
}
