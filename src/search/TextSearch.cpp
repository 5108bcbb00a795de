#include "search/TextSearch.h"

#include "search/IndexDeletion.h"
#include "settings/mGeneralSettings.h"
#include "settings/mPolicies.h"

TextSearch::TextSearch(QString indexPath)
    : m_indexPath(std::move(indexPath)) {
    connect(&mPolicies::changes(), &mPolicies::Changes::changed, this, &TextSearch::applyPolicies);
}

TextSearch::~TextSearch() = default;

void TextSearch::pictureWritten(const QString& path, const Picture& picture) {
    std::lock_guard lock(m_mutex);
    if (m_reader) {
        m_reader->add(path, picture);
    }
}

int TextSearch::picturesRead() {
    std::lock_guard lock(m_mutex);
    return m_reader ? m_reader->picturesRead() : 0;
}

void TextSearch::applyPolicies() {
    const mPolicies::Policies policies = mPolicies::current();
    const bool running = !m_languages.isEmpty();
    if (!policies.pSearchable) {
        m_languages.clear();
        replaceReader(nullptr);
        if (running) {
            offerToDeleteIndex(m_indexPath);
        }
        return;
    }
    if (running && m_languages == policies.pSearchLanguages) {
        return;
    }
    m_languages = policies.pSearchLanguages;
    replaceReader(std::make_unique<TextReader>(TextReader::Setup{
        m_indexPath, m_languages, [] { return mGeneralSettings::current().pDestination; }}));
}

void TextSearch::replaceReader(std::unique_ptr<TextReader> reader) {
    std::lock_guard lock(m_mutex);
    std::swap(m_reader, reader);
    if (reader) {
        reader->stop();
        m_stopped.push_back(std::move(reader));
    }
}
