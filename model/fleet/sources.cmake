# The whole fleet in one read, and what changed between two reads; no widgets.
target_sources(sxcore PRIVATE
    ${CMAKE_CURRENT_LIST_DIR}/FleetSummary.h ${CMAKE_CURRENT_LIST_DIR}/FleetSummary.cpp
    ${CMAKE_CURRENT_LIST_DIR}/FleetChanges.h ${CMAKE_CURRENT_LIST_DIR}/FleetChanges.cpp
)
