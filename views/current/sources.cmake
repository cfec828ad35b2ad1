# The current-condition view; its files are listed here.
target_sources(sxgui PRIVATE
    ${CMAKE_CURRENT_LIST_DIR}/CurrentCondition.h ${CMAKE_CURRENT_LIST_DIR}/CurrentCondition.cpp
    ${CMAKE_CURRENT_LIST_DIR}/MainWindow.h ${CMAKE_CURRENT_LIST_DIR}/MainWindow.cpp
)
