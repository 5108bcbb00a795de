#pragma once

#include <QSize>
#include <QString>

#include <array>
#include <optional>

// A word that pCamImgSize takes, with the camera frame size it selects.
struct CamImgSizeWord {
    const char* word;
    QSize size;
};
// In the order of the settings window's buttons.
inline constexpr std::array kCamImgSizes{
    CamImgSizeWord{"SMALL", QSize(200, 150)},
    CamImgSizeWord{"MEDIUM", QSize(400, 300)},
    CamImgSizeWord{"LARGE", QSize(800, 600)},
};

// Where in kCamImgSizes a word stands, without regard to case; none for a word it does not know.
// An empty word, a lost setting, counts as MEDIUM.
std::optional<int> camImgSizeIndex(const QString& word);

// The camera frame size that a word selects; none for a word it does not know.
std::optional<QSize> camImgSize(const QString& word);

// Whether the word selects the small frame window.
bool isSmallCamImgSize(const QString& word);
