# Events archive: queries and row descriptions, no widgets.
target_sources(sxcore PRIVATE
    ${CMAKE_CURRENT_LIST_DIR}/EventQuery.h ${CMAKE_CURRENT_LIST_DIR}/EventQuery.cpp
    ${CMAKE_CURRENT_LIST_DIR}/EventDescription.h ${CMAKE_CURRENT_LIST_DIR}/EventDescription.cpp
)
