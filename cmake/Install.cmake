# Installing: the application folder (bin/kestrelview with Resources/ beside bin/) goes whole
# under lib/kestrelview, so that the program finds its pictures as in a copied folder; bin/ gets
# a link to it, and the desktop gets the launcher entry, the icons and the metainfo; the manual
# page, the copyright and the changelog go where Debian wants them.
include(GNUInstallDirs)
set(KV_INSTALL_APP_DIR lib/kestrelview)
set(KV_DESKTOP_ID com.kestrelview.Kestrelview)
set(kv_packaging ${PROJECT_SOURCE_DIR}/packaging)

# The files that name the version take it from the project; Debian wants the manual page and the
# changelog compressed without a time stamp.
set(kv_generated ${CMAKE_BINARY_DIR}/packaging)
configure_file(${kv_packaging}/${KV_DESKTOP_ID}.metainfo.xml.in ${kv_generated}/${KV_DESKTOP_ID}.metainfo.xml @ONLY)
set(kv_compressed)
foreach(page kestrelview.1 changelog)
    configure_file(${kv_packaging}/${page}.in ${kv_generated}/${page} @ONLY)
    add_custom_command(OUTPUT ${kv_generated}/${page}.gz
        COMMAND gzip -9nkf ${kv_generated}/${page}
        DEPENDS ${kv_generated}/${page})
    list(APPEND kv_compressed ${kv_generated}/${page}.gz)
endforeach()
add_custom_target(kv_package_pages ALL DEPENDS ${kv_compressed})

install(TARGETS kestrelview RUNTIME DESTINATION ${KV_INSTALL_APP_DIR}/bin)
install(FILES ${PROJECT_SOURCE_DIR}/resources/NewKestrelviewLogo.png
              ${PROJECT_SOURCE_DIR}/resources/NewKestrelviewLogoMask.png
              ${PROJECT_SOURCE_DIR}/resources/white.jpg
        DESTINATION ${KV_INSTALL_APP_DIR}/Resources)

file(MAKE_DIRECTORY ${CMAKE_BINARY_DIR}/install)
file(CREATE_LINK ../${KV_INSTALL_APP_DIR}/bin/kestrelview ${CMAKE_BINARY_DIR}/install/kestrelview SYMBOLIC)
install(FILES ${CMAKE_BINARY_DIR}/install/kestrelview DESTINATION ${CMAKE_INSTALL_BINDIR})

install(FILES ${kv_packaging}/${KV_DESKTOP_ID}.desktop DESTINATION ${CMAKE_INSTALL_DATADIR}/applications)
install(FILES ${kv_generated}/${KV_DESKTOP_ID}.metainfo.xml DESTINATION ${CMAKE_INSTALL_DATADIR}/metainfo)
install(FILES ${kv_generated}/kestrelview.1.gz DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
install(FILES ${kv_packaging}/copyright ${kv_generated}/changelog.gz
        DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/kestrelview)
foreach(size 16 22 24 32 48 64 128 256)
    install(FILES ${kv_packaging}/icons/${size}.png
            DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/${size}x${size}/apps
            RENAME ${KV_DESKTOP_ID}.png)
endforeach()

# The Debian package: scripts/package builds build/kestrelview_<version>_amd64.deb.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME kestrelview)
set(CPACK_PACKAGE_VENDOR Kestrelview)
set(CPACK_PACKAGE_CONTACT "Kestrelview <support@kestrelview.com>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "Timed Screen and Webcam Recorder")
# Debian wants the lines of the long description under 80 characters.
set(CPACK_PACKAGE_DESCRIPTION "Takes a picture of every screen and a webcam photograph at a fixed
interval and writes them as dated JPEG files into one folder.")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION utils)
set(CPACK_DEBIAN_PACKAGE_HOMEPAGE http://www.kestrelview.com/)
# The libraries it links come from dpkg-shlibdeps; these it loads at run time: Qt's display
# plugins, the camera's GStreamer elements, and the reader's English model.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_DEPENDS
    "qt6-qpa-plugins, qt6-wayland, gstreamer1.0-plugins-base, gstreamer1.0-plugins-good, espeak-ng-data, tesseract-ocr-eng")
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "xdg-user-dirs, ca-certificates")
set(CPACK_STRIP_FILES ON)
include(CPack)
