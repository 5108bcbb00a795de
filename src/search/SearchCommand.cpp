#include "search/SearchCommand.h"

#include "history/TimelapseCommand.h"
#include "history/TimelapsePlan.h"
#include "search/PicturePlaces.h"
#include "search/TextIndex.h"

#include <QCommandLineParser>
#include <QCoreApplication>

#include <cstdio>

namespace {
const QCommandLineOption
    kSearch(QStringLiteral("search"),
            QStringLiteral("Print the pictures whose text has these words, newest first: "
                           "time, path and the line that matched. \"word*\" finds words "
                           "that begin so, quotes a phrase. Exit status 1 when none has."),
            QStringLiteral("words"));

constexpr int kNothingMatched = 1;
constexpr int kNoQuery = 2;

void printHits(const std::vector<SearchHit>& hits, const QString& query) {
    const QStringList terms = searchTerms(query);
    PicturePlaces places(destinationSetting());
    for (const SearchHit& hit : hits) {
        QString line = matchingLine(hit.body, terms);
        if (line.isEmpty()) {
            line = hit.body.section('\n', 0, 0);
        }
        std::printf("%s\t%s\t%s\n",
                    qPrintable(hit.picture.taken.toString(QStringLiteral("yyyy-MM-dd HH:mm:ss"))),
                    qPrintable(places.of(hit.picture)), qPrintable(line));
    }
}
} // namespace

void addSearchOptions(QCommandLineParser& parser) {
    parser.addOption(kSearch);
}

std::variant<std::monostate, SearchOptions, QString> readSearchOptions(const QCommandLineParser& parser) {
    if (!parser.isSet(kSearch)) {
        return std::monostate{};
    }
    SearchOptions options{parser.value(kSearch), {}, {}};
    if (options.query.trimmed().isEmpty()) {
        return QStringLiteral("--search takes the words to look for.");
    }
    for (auto [name, end, field] :
         {std::tuple{"from", false, &options.from}, std::tuple{"to", true, &options.to}}) {
        if (parser.isSet(QString::fromLatin1(name))) {
            const std::optional<QDateTime> when =
                parseTimelapseBound(parser.value(QString::fromLatin1(name)), end);
            if (!when) {
                return QStringLiteral("--%1 takes YYYY-MM-DD or YYYY-MM-DD-HH-MM.")
                    .arg(QString::fromLatin1(name));
            }
            *field = *when;
        }
    }
    return options;
}

int runSearchCommand(int& argc, char** argv, const SearchOptions& options) {
    const QCoreApplication app(argc, argv);
    std::optional<TextIndex> index = TextIndex::openForReading(TextIndex::defaultPath());
    if (!index) {
        std::fputs(
            "No text has been read from the pictures yet: see \"Make pictures searchable\" in More ...\n",
            stderr);
        return kNothingMatched;
    }
    const auto found = index->search(options.query, options.from, options.to);
    if (const auto* error = std::get_if<QString>(&found)) {
        std::fprintf(stderr, "Not a search: %s\n", qPrintable(*error));
        return kNoQuery;
    }
    const auto& hits = std::get<std::vector<SearchHit>>(found);
    printHits(hits, options.query);
    return hits.empty() ? kNothingMatched : 0;
}
