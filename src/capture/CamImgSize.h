#pragma once

#include <QSize>
#include <QString>

#include <optional>

// The camera frame size that a pCamImgSize word selects; none for a word it does not know.
// An empty word counts as MEDIUM.
std::optional<QSize> camImgSize(const QString& word);

// Whether the word selects the small frame window.
bool isSmallCamImgSize(const QString& word);
