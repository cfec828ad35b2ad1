# The events archive and its report.
target_sources(sxgui PRIVATE
    ${CMAKE_CURRENT_LIST_DIR}/EventsData.h ${CMAKE_CURRENT_LIST_DIR}/EventsData.cpp
    ${CMAKE_CURRENT_LIST_DIR}/EventsModel.h ${CMAKE_CURRENT_LIST_DIR}/EventsModel.cpp
    ${CMAKE_CURRENT_LIST_DIR}/EventsReport.h ${CMAKE_CURRENT_LIST_DIR}/EventsReport.cpp
    ${CMAKE_CURRENT_LIST_DIR}/EventsWindow.h ${CMAKE_CURRENT_LIST_DIR}/EventsWindow.cpp
)
