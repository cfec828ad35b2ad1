# The graph window: the chart, its pictures and printing.
target_sources(sxgui PRIVATE
    ${CMAKE_CURRENT_LIST_DIR}/GraphPainting.h ${CMAKE_CURRENT_LIST_DIR}/GraphPainting.cpp
    ${CMAKE_CURRENT_LIST_DIR}/GraphPrint.h ${CMAKE_CURRENT_LIST_DIR}/GraphPrint.cpp
    ${CMAKE_CURRENT_LIST_DIR}/GraphWindow.h ${CMAKE_CURRENT_LIST_DIR}/GraphWindow.cpp
)
