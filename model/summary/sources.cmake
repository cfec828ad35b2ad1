# The monthly summary's arithmetic: day table, excursions, totals.
target_sources(sxcore PRIVATE
    ${CMAKE_CURRENT_LIST_DIR}/ZoneSummary.h ${CMAKE_CURRENT_LIST_DIR}/ZoneSummary.cpp
)
