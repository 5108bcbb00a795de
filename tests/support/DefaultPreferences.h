#pragma once

#include <QByteArray>

// KestrelviewPreferences.ini as a first start writes it, byte for byte.
inline const QByteArray kDefaultPreferencesFile = "<pInterval>300</pInterval>\n"
                                                  "<pDestination>Screen Images</pDestination>\n"
                                                  "<pQuality>75</pQuality>\n"
                                                  "<pUpdateAtStartup>TRUE</pUpdateAtStartup>\n"
                                                  "<pShowCountdown>TRUE</pShowCountdown>\n"
                                                  "<pUseSpeech>TRUE</pUseSpeech>\n"
                                                  "<pTextToSpeak>Say Cheese</pTextToSpeak>\n"
                                                  "<pUseCamera>FALSE</pUseCamera>\n"
                                                  "<pUseScreen>TRUE</pUseScreen>\n"
                                                  "<pThreeSecondWarning>TRUE</pThreeSecondWarning>\n"
                                                  "<pCamImgSize>MEDIUM</pCamImgSize>\n"
                                                  "<pPrimaryOnly>FALSE</pPrimaryOnly>\n"
                                                  "<pHideWindow>FALSE</pHideWindow>\n";
