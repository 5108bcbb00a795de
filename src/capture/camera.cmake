# The camera link's logic and the frame files in kv_core, where the capture run calls them; the
# frame windows and the wiring to the system's camera in kv_ui.
target_sources(kv_core PRIVATE
    ${CMAKE_CURRENT_LIST_DIR}/CameraLink.cpp
    ${CMAKE_CURRENT_LIST_DIR}/CamImgSize.cpp
    ${CMAKE_CURRENT_LIST_DIR}/CameraFrameFile.cpp
    ${CMAKE_CURRENT_LIST_DIR}/FrameWindowSize.cpp)
target_sources(kv_ui PRIVATE
    ${CMAKE_CURRENT_LIST_DIR}/CameraFrameWindow.cpp
    ${CMAKE_CURRENT_LIST_DIR}/ProductCameraServices.cpp)
