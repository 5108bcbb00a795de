find_package(Qt6 6.4 REQUIRED COMPONENTS Core Gui Widgets Network)
find_package(PkgConfig REQUIRED)
pkg_check_modules(XCB REQUIRED IMPORTED_TARGET xcb xcb-randr xcb-shm)
find_package(JPEG REQUIRED)
