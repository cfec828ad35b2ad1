target_sources(sxgui PRIVATE ${CMAKE_CURRENT_LIST_DIR}/CommandHost.h ${CMAKE_CURRENT_LIST_DIR}/UnitCommands.h ${CMAKE_CURRENT_LIST_DIR}/CurrentReport.h)
# The unit commands and the current-condition report.
target_sources(sxgui PRIVATE
    ${CMAKE_CURRENT_LIST_DIR}/UnitCommands.cpp
    ${CMAKE_CURRENT_LIST_DIR}/CommandRules.h ${CMAKE_CURRENT_LIST_DIR}/CommandRules.cpp
    ${CMAKE_CURRENT_LIST_DIR}/RequestExchange.h ${CMAKE_CURRENT_LIST_DIR}/RequestExchange.cpp
    ${CMAKE_CURRENT_LIST_DIR}/CurrentReport.cpp
    ${CMAKE_CURRENT_LIST_DIR}/CurrentReportLayout.h ${CMAKE_CURRENT_LIST_DIR}/CurrentReportLayout.cpp
)
