# The fleet overview window, the tray icon and what ties them to the refresh.
target_sources(sxgui PRIVATE
    ${CMAKE_CURRENT_LIST_DIR}/FleetModel.h ${CMAKE_CURRENT_LIST_DIR}/FleetModel.cpp
    ${CMAKE_CURRENT_LIST_DIR}/OverviewWindow.h ${CMAKE_CURRENT_LIST_DIR}/OverviewWindow.cpp
    ${CMAKE_CURRENT_LIST_DIR}/FleetTrayIcon.h ${CMAKE_CURRENT_LIST_DIR}/FleetTrayIcon.cpp
    ${CMAKE_CURRENT_LIST_DIR}/FleetWatch.h ${CMAKE_CURRENT_LIST_DIR}/FleetWatch.cpp
)
