# The graph window's rules: ranges, steps, scales, scroll bars, zoom, decimation, readout.
target_sources(sxcore PRIVATE
    ${CMAKE_CURRENT_LIST_DIR}/GraphState.h
    ${CMAKE_CURRENT_LIST_DIR}/GraphRules.h
    ${CMAKE_CURRENT_LIST_DIR}/GraphRules.cpp
    ${CMAKE_CURRENT_LIST_DIR}/Decimate.h
    ${CMAKE_CURRENT_LIST_DIR}/Decimate.cpp
    ${CMAKE_CURRENT_LIST_DIR}/Readout.h
    ${CMAKE_CURRENT_LIST_DIR}/Readout.cpp
)
