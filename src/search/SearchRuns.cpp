#include "search/SearchRuns.h"

#include "history/CaptureName.h"
#include "search/PicturePlaces.h"
#include "search/TextIndex.h"

#include <QImageReader>

#include <algorithm>

namespace {
std::vector<QRectF> marksOn(const QString& path, const SearchHit& hit, const QStringList& terms) {
    const QSize size = QImageReader(path).size();
    std::vector<QRectF> marks;
    if (size.isEmpty()) {
        return marks;
    }
    for (const QRect& box : foundBoxes(wordsOf(hit.words), terms)) {
        marks.emplace_back(double(box.x()) / size.width(), double(box.y()) / size.height(),
                           double(box.width()) / size.width(), double(box.height()) / size.height());
    }
    return marks;
}

bool sameRun(const CaptureRun& run, const CaptureName& name) {
    return run.date == name.date && run.time == name.time && run.copy == name.copy;
}
} // namespace

std::vector<CaptureRun> searchRuns(const QString& indexPath, const QString& destinationSetting,
                                   const QString& query) {
    std::optional<TextIndex> index = TextIndex::openForReading(indexPath);
    const auto found = index ? index->search(query, {}, {}) : std::vector<SearchHit>();
    const auto* hits = std::get_if<std::vector<SearchHit>>(&found);
    std::vector<CaptureRun> runs;
    PicturePlaces places(destinationSetting);
    const QStringList terms = searchTerms(query);
    for (const SearchHit& hit : hits ? *hits : std::vector<SearchHit>()) {
        const std::optional<CaptureName> name = parseCaptureName(hit.picture.name);
        if (!name) {
            continue;
        }
        if (runs.empty() || !sameRun(runs.back(), *name)) {
            runs.push_back({name->date, name->time, name->copy, {}});
        }
        const QString path = places.of(hit.picture);
        runs.back().pictures.push_back({path, name->source, marksOn(path, hit, terms)});
    }
    for (CaptureRun& run : runs) {
        std::sort(run.pictures.begin(), run.pictures.end(),
                  [](const CapturePicture& a, const CapturePicture& b) { return a.source < b.source; });
    }
    return runs;
}
