#pragma once

#include <QString>

// The one tag reader of the settings files and the update record: the text between the first
// "<key>" and the first "</key>", tags found without regard to letter case and each searched from
// the start on its own. Empty when the close tag does not come behind the open tag; a missing open
// tag counts from the start of the text, as the reader has always measured it.
inline QString tagValue(const QString& text, const QString& key) {
    const QString open = u'<' + key + u'>';
    const qsizetype openAt = text.indexOf(open, 0, Qt::CaseInsensitive);
    const qsizetype closeAt = text.indexOf(QStringLiteral("</") + key + u'>', 0, Qt::CaseInsensitive);
    const qsizetype start = openAt + open.size();
    const qsizetype count = closeAt - start;
    return count <= 0 ? QString() : text.mid(start, count);
}
