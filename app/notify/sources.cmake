# Alarm notifications on the desktop: which changes to tell, and the D-Bus client.
target_sources(sxgui PRIVATE
    ${CMAKE_CURRENT_LIST_DIR}/AlarmNotifier.h ${CMAKE_CURRENT_LIST_DIR}/AlarmNotifier.cpp
    ${CMAKE_CURRENT_LIST_DIR}/DesktopNotifications.h ${CMAKE_CURRENT_LIST_DIR}/DesktopNotifications.cpp
)
