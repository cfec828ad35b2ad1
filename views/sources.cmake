target_sources(sxgui PRIVATE
    ${CMAKE_CURRENT_LIST_DIR}/SecondaryViews.h ${CMAKE_CURRENT_LIST_DIR}/SecondaryViews.cpp
)
