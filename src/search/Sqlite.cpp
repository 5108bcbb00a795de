#include "search/Sqlite.h"

StatementPtr prepare(sqlite3* db, const char* sql) {
    sqlite3_stmt* statement = nullptr;
    if (sqlite3_prepare_v2(db, sql, -1, &statement, nullptr) != SQLITE_OK) {
        sqlite3_finalize(statement);
        return nullptr;
    }
    return StatementPtr(statement);
}

bool execute(sqlite3* db, const char* sql) {
    return sqlite3_exec(db, sql, nullptr, nullptr, nullptr) == SQLITE_OK;
}

void bindText(sqlite3_stmt* statement, int index, const QString& text) {
    const QByteArray utf8 = text.toUtf8();
    sqlite3_bind_text(statement, index, utf8.constData(), int(utf8.size()), SQLITE_TRANSIENT);
}

QString columnText(sqlite3_stmt* statement, int column) {
    const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(statement, column));
    return QString::fromUtf8(text, sqlite3_column_bytes(statement, column));
}
