find_package(Qt6 6.4 REQUIRED COMPONENTS Core Gui Widgets Network DBus)
find_package(PkgConfig REQUIRED)
pkg_check_modules(XCB REQUIRED IMPORTED_TARGET xcb xcb-randr xcb-shm)
find_package(JPEG REQUIRED)
