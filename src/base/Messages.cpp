#include "base/Messages.h"

#include <atomic>
#include <cstdio>

namespace {
std::atomic<MessagePresenter*> g_presenter{nullptr};

void show(MessageKind kind, const QString& heading, const QString& text) {
    if (MessagePresenter* presenter = g_presenter.load()) {
        presenter->present(kind, heading, text);
        return;
    }
    std::fprintf(stderr, "%s %s\n", qPrintable(heading), qPrintable(text));
}
} // namespace

void installMessagePresenter(MessagePresenter* presenter) {
    g_presenter.store(presenter);
}

namespace mCodeBaseStd {
void sDisplayWarningMessage(const QString& message) {
    show(MessageKind::Warning, "WARNING:", message);
}

void sDisplayInformationMessage(const QString& message) {
    show(MessageKind::Information, "INFORMATION:", message);
}
} // namespace mCodeBaseStd
