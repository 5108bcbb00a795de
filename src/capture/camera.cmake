target_sources(kv_core PRIVATE ${CMAKE_CURRENT_LIST_DIR}/CameraLink.cpp)
