#pragma once

#include <QString>

#include <sqlite3.h>

#include <memory>
#include <optional>

struct SqliteClose {
    void operator()(sqlite3* db) const { sqlite3_close_v2(db); }
};
struct SqliteFinalize {
    void operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
};
using SqlitePtr = std::unique_ptr<sqlite3, SqliteClose>;
using StatementPtr = std::unique_ptr<sqlite3_stmt, SqliteFinalize>;

// A statement ready to run, or none when SQLite refused it.
StatementPtr prepare(sqlite3* db, const char* sql);
// Runs statements that give no rows; false at the first that fails.
bool execute(sqlite3* db, const char* sql);

void bindText(sqlite3_stmt* statement, int index, const QString& text);
QString columnText(sqlite3_stmt* statement, int column);
