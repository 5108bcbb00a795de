#include "update/InternetHeaders.h"

namespace {

QByteArray fold(const QByteArray& key) {
    return key.toLower();
}

// The name part of a key: repeats are stored as "Name:n".
QByteArray baseName(const QByteArray& key) {
    const qsizetype colon = key.indexOf(':');
    return colon < 0 ? key : key.left(colon);
}

QByteArray repeatKey(const QByteArray& name, int index) {
    return index == 0 ? name : name + ':' + QByteArray::number(index);
}

QByteArray leftTrimmed(const QByteArray& text) {
    qsizetype start = 0;
    while (start < text.size() && QChar::isSpace(static_cast<uchar>(text[start]))) {
        ++start;
    }
    return text.mid(start);
}

QByteArrayList splitAt(const QByteArray& text, const QByteArray& separator) {
    QByteArrayList fields;
    qsizetype start = 0;
    for (qsizetype at; (at = text.indexOf(separator, start)) >= 0; start = at + separator.size()) {
        fields.append(text.mid(start, at - start));
    }
    fields.append(text.mid(start));
    return fields;
}

} // namespace

QByteArray determineEol(QByteArrayView text) {
    if (text.contains("\r\n")) {
        return "\r\n";
    }
    if (text.contains('\n')) {
        return "\n";
    }
    if (text.contains('\r')) {
        return "\r";
    }
    return "\r\n";
}

const InternetHeaders::Entry* InternetHeaders::find(const QByteArray& key) const {
    const auto it = m_index.constFind(fold(key));
    return it == m_index.cend() ? nullptr : &m_entries[*it];
}

void InternetHeaders::assign(const QByteArray& key, const QByteArray& value) {
    const auto it = m_index.constFind(fold(key));
    if (it != m_index.cend()) {
        m_entries[*it].value = value;
        return;
    }
    m_index.insert(fold(key), m_entries.size());
    m_entries.push_back({key, value});
}

void InternetHeaders::remove(const QByteArray& key) {
    const auto it = m_index.constFind(fold(key));
    if (it == m_index.cend()) {
        return;
    }
    m_entries.erase(m_entries.begin() + static_cast<std::ptrdiff_t>(*it));
    rebuildIndex();
}

void InternetHeaders::rebuildIndex() {
    m_index.clear();
    for (std::size_t i = 0; i < m_entries.size(); ++i) {
        m_index.insert(fold(m_entries[i].key), i);
    }
}

void InternetHeaders::AppendHeader(const QByteArray& name, const QByteArray& value) {
    QByteArray key = name;
    for (int n = 1; find(key); ++n) {
        key = baseName(key) + ':' + QByteArray::number(n);
    }
    assign(key, value);
}

QByteArray InternetHeaders::CommaSeparatedValues(const QByteArray& name) const {
    QByteArrayList values;
    const int count = NameCount(name);
    for (int i = 0; i < count; ++i) {
        values.append(Value(name, i));
    }
    return values.join(", ");
}

void InternetHeaders::Delete(const QByteArray& name) {
    const int count = NameCount(name);
    for (int i = 0; i < count; ++i) {
        remove(repeatKey(name, i));
    }
}

void InternetHeaders::Delete(const QByteArray& name, int index) {
    if (!find(repeatKey(name, index))) {
        return;
    }
    remove(repeatKey(name, index));
    for (int i = index + 1; const Entry* next = find(repeatKey(name, i)); ++i) {
        const QByteArray value = next->value;
        assign(repeatKey(name, i - 1), value);
        remove(repeatKey(name, i));
    }
}

void InternetHeaders::DeleteAllHeaders() {
    m_entries.clear();
    m_index.clear();
}

QByteArray InternetHeaders::Name(int index) const {
    if (index < 0 || index >= Count()) {
        return {};
    }
    return baseName(m_entries[static_cast<std::size_t>(index)].key);
}

int InternetHeaders::NameCount(const QByteArray& name) const {
    int count = 0;
    while (find(repeatKey(name, count))) {
        ++count;
    }
    return count;
}

void InternetHeaders::SetHeader(const QByteArray& name, const QByteArray& value) {
    if (NameCount(name) >= 2) {
        Delete(name);
    }
    assign(name, value);
}

void InternetHeaders::SetHeader(const QByteArray& name, const QByteArray& value, int index) {
    const QByteArray key = repeatKey(name, index);
    if (find(key)) {
        assign(key, value);
    } else {
        AppendHeader(key, value);
    }
}

QByteArray InternetHeaders::Source() const {
    return _rawHeaders.isEmpty() ? _FormatHTTPHeaders() : _rawHeaders;
}

QByteArray InternetHeaders::Value(int index) const {
    if (index < 0 || index >= Count()) {
        return {};
    }
    return m_entries[static_cast<std::size_t>(index)].value;
}

QByteArray InternetHeaders::Value(const QByteArray& name, int index) const {
    const Entry* entry = find(repeatKey(name, std::max(index, 0)));
    return entry ? entry->value : QByteArray();
}

QByteArray InternetHeaders::_FormatEmailHeaders() const {
    QByteArrayList lines;
    if (find("Return-Path")) {
        lines.append("Return-Path: " + Value("Return-Path"));
    }
    const int received = NameCount("Received");
    for (int i = 0; i < received; ++i) {
        lines.append("Received: " + Value("Received", i));
    }
    for (const char* name : {"Date", "Subject", "From"}) {
        if (find(name)) {
            lines.append(QByteArray(name) + ": " + Value(name));
        }
    }
    for (const char* name : {"To", "CC"}) {
        if (find(name)) {
            lines.append(QByteArray(name) + ": " + CommaSeparatedValues(name));
        }
    }
    // BCC is among the names with a place of their own, and has none: blind copies stay blind.
    static const QByteArray placed = ":date:subject:from:to:cc:bcc:received:return-path:";
    for (const Entry& entry : m_entries) {
        const QByteArray name = baseName(entry.key);
        if (!placed.contains(':' + fold(name) + ':')) {
            lines.append(name + ": " + entry.value);
        }
    }
    return lines.join("\r\n");
}

QByteArray InternetHeaders::_FormatHTTPHeaders() const {
    QByteArrayList lines;
    lines.reserve(Count());
    for (const Entry& entry : m_entries) {
        lines.append(baseName(entry.key) + ": " + entry.value);
    }
    return lines.join("\r\n");
}

void InternetHeaders::_ParseHeaders(const QByteArray& text) {
    _rawHeaders = text;
    const QByteArray eol = determineEol(text);
    DeleteAllHeaders();
    QByteArray unfolded = text;
    unfolded.replace(eol + ' ', " ").replace(eol + '\t', " ");

    // Parsed names hold no colon, so the n-th value of a name lands on "Name:n" as AppendHeader
    // would put it; counting here spares a hostile block of thousands of repeats a quadratic probe.
    QHash<QByteArray, int> seen;
    for (const QByteArray& line : splitAt(unfolded, eol)) {
        const qsizetype colon = line.indexOf(':');
        if (colon < 0) {
            continue;
        }
        const QByteArray name = line.left(colon);
        int& repeats = seen[fold(name)];
        const QByteArray key = repeatKey(name, repeats++);
        m_index.insert(fold(key), m_entries.size());
        m_entries.push_back({key, leftTrimmed(line.mid(colon + 1))});
    }
}
