target_sources(sxgui PRIVATE
    ${CMAKE_CURRENT_LIST_DIR}/PlaceholderView.h ${CMAKE_CURRENT_LIST_DIR}/PlaceholderView.cpp
)
