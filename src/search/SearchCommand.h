#pragma once

#include <QDateTime>
#include <QString>

#include <variant>

class QCommandLineParser;

// What --search asks for: an FTS5 query, and the pictures' times (invalid: open).
struct SearchOptions {
    QString query;
    QDateTime from;
    QDateTime to;
};

// --search; it shares --from and --to with the time-lapse, which adds them.
void addSearchOptions(QCommandLineParser& parser);
// Nothing when --search was not given; the options, or what is wrong with them.
std::variant<std::monostate, SearchOptions, QString> readSearchOptions(const QCommandLineParser& parser);

// Prints the pictures whose text matches, newest first, one line each: time, path and the line
// of text that matched, by tabs. Reads the index beside a running instance. The exit status:
// 1 when nothing matched, 2 when the query is no query.
int runSearchCommand(int& argc, char** argv, const SearchOptions& options);
