# Tests of the camera link and its frame windows.
kv_add_test(NAME CameraRulesTest SOURCES ${CMAKE_CURRENT_LIST_DIR}/CameraRulesTest.cpp LIBS kv_core)
# Not in the ThreadSanitizer run: GLib's and GStreamer's own locking is invisible to it, and it
# reports their internals.
kv_add_test(NAME CameraLinkTest SOURCES ${CMAKE_CURRENT_LIST_DIR}/CameraLinkTest.cpp LIBS kv_platform)
kv_add_test(NAME CameraOutputTest GUI SOURCES ${CMAKE_CURRENT_LIST_DIR}/CameraOutputTest.cpp
    LIBS kv_ui Qt6::Test XVFB_ARGS --size 1024x768)
