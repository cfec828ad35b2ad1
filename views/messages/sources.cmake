# The messages view and its report.
target_sources(sxgui PRIVATE
    ${CMAKE_CURRENT_LIST_DIR}/MessagesBuilder.h ${CMAKE_CURRENT_LIST_DIR}/MessagesBuilder.cpp
    ${CMAKE_CURRENT_LIST_DIR}/MessagesReport.h ${CMAKE_CURRENT_LIST_DIR}/MessagesReport.cpp
    ${CMAKE_CURRENT_LIST_DIR}/MessagesWindow.h ${CMAKE_CURRENT_LIST_DIR}/MessagesWindow.cpp
)
