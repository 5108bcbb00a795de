#pragma once

#include <QByteArray>
#include <QByteArrayList>
#include <QByteArrayView>
#include <QHash>

#include <vector>

// The line end of a whole text: CR LF if it holds one anywhere, else LF, else CR, else CR LF.
QByteArray determineEol(QByteArrayView text);

// Named header values with repeats: the second value of a name is kept under "Name:1", the third
// under "Name:2", and so on. Names match without regard to ASCII letter case and keep the spelling
// of their first insertion. Entries enumerate in order of insertion, which is the order of the
// header lines of a request.
class InternetHeaders {
public:
    void AppendHeader(const QByteArray& name, const QByteArray& value);
    QByteArray CommaSeparatedValues(const QByteArray& name) const;
    int Count() const { return static_cast<int>(m_entries.size()); }
    void Delete(const QByteArray& name);
    void Delete(const QByteArray& name, int index);
    void DeleteAllHeaders();
    QByteArray Name(int index) const;
    int NameCount(const QByteArray& name) const;
    void SetHeader(const QByteArray& name, const QByteArray& value);
    void SetHeader(const QByteArray& name, const QByteArray& value, int index);
    QByteArray Source() const;
    QByteArray Value(int index) const;
    QByteArray Value(const QByteArray& name) const { return Value(name, 0); }
    QByteArray Value(const QByteArray& name, int index) const;

    QByteArray _FormatEmailHeaders() const;
    QByteArray _FormatHTTPHeaders() const;
    void _ParseHeaders(const QByteArray& text);

private:
    struct Entry {
        QByteArray key;
        QByteArray value;
    };

    const Entry* find(const QByteArray& key) const;
    void assign(const QByteArray& key, const QByteArray& value);
    void remove(const QByteArray& key);
    void rebuildIndex();

    std::vector<Entry> m_entries;
    QHash<QByteArray, std::size_t> m_index; // folded key -> position in m_entries
    QByteArray _rawHeaders;
};
