# The records view: browser, workbook export and report.
target_sources(sxgui PRIVATE
    ${PROJECT_SOURCE_DIR}/model/LoadedRecords.h
    ${CMAKE_CURRENT_LIST_DIR}/RecordsQuery.h ${CMAKE_CURRENT_LIST_DIR}/RecordsQuery.cpp
    ${CMAKE_CURRENT_LIST_DIR}/RecordsModel.h ${CMAKE_CURRENT_LIST_DIR}/RecordsModel.cpp
    ${CMAKE_CURRENT_LIST_DIR}/RecordsReport.h ${CMAKE_CURRENT_LIST_DIR}/RecordsReport.cpp
    ${CMAKE_CURRENT_LIST_DIR}/XlsxSheetMerge.h ${CMAKE_CURRENT_LIST_DIR}/XlsxSheetMerge.cpp
    ${CMAKE_CURRENT_LIST_DIR}/XlsxPackage.h ${CMAKE_CURRENT_LIST_DIR}/XlsxPackage.cpp
    ${CMAKE_CURRENT_LIST_DIR}/XlsxExport.h ${CMAKE_CURRENT_LIST_DIR}/XlsxExport.cpp
    ${CMAKE_CURRENT_LIST_DIR}/RecordsWindow.h ${CMAKE_CURRENT_LIST_DIR}/RecordsWindow.cpp
)
# The monthly summary of a zone: its data, pages and workbook.
target_sources(sxgui PRIVATE
    ${CMAKE_CURRENT_LIST_DIR}/summary/SummaryData.h ${CMAKE_CURRENT_LIST_DIR}/summary/SummaryData.cpp
    ${CMAKE_CURRENT_LIST_DIR}/summary/SummaryReport.h ${CMAKE_CURRENT_LIST_DIR}/summary/SummaryReport.cpp
    ${CMAKE_CURRENT_LIST_DIR}/summary/SummaryXlsx.h ${CMAKE_CURRENT_LIST_DIR}/summary/SummaryXlsx.cpp
)
# A year of records is read straight from the driver's own handle.
target_link_libraries(sxgui PRIVATE PkgConfig::SQLITE3 PkgConfig::LIBPQ)

# An installed console finds its template in the data folder, reached from bin/.
file(RELATIVE_PATH _sx_data_from_bin ${CMAKE_INSTALL_FULL_BINDIR}
     ${CMAKE_INSTALL_FULL_DATADIR}/sentorax-monitor)
set_property(SOURCE ${CMAKE_CURRENT_LIST_DIR}/XlsxExport.cpp APPEND PROPERTY
             COMPILE_DEFINITIONS SX_TEMPLATE_DIR_FROM_BIN="${_sx_data_from_bin}")
unset(_sx_data_from_bin)

# The export writes the workbook through QuaZip (Debian: libquazip1-qt6-dev).
# Without it the project still builds; the export then says it is unavailable.
find_package(QuaZip-Qt6 QUIET)
if(QuaZip-Qt6_FOUND)
    target_link_libraries(sxgui PUBLIC QuaZip::QuaZip)
    set_property(SOURCE ${CMAKE_CURRENT_LIST_DIR}/XlsxPackage.cpp
                        ${CMAKE_CURRENT_LIST_DIR}/summary/SummaryXlsx.cpp APPEND PROPERTY
                 COMPILE_DEFINITIONS SX_HAVE_QUAZIP=1)

    # TEMPLATEv2.xlsx is made by the build and put beside the program.
    add_executable(sx-records-template ${CMAKE_CURRENT_LIST_DIR}/MakeXlsxTemplate.cpp)
    target_link_libraries(sx-records-template PRIVATE sx_config Qt6::Core QuaZip::QuaZip)
    set(_sx_template ${CMAKE_CURRENT_BINARY_DIR}/TEMPLATEv2.xlsx)
    add_custom_command(OUTPUT ${_sx_template}
        COMMAND sx-records-template ${_sx_template}
        DEPENDS sx-records-template
        COMMENT "Making TEMPLATEv2.xlsx")
    add_custom_target(sx_records_template ALL DEPENDS ${_sx_template})
    add_dependencies(sxgui sx_records_template)
    set_property(GLOBAL PROPERTY SX_RECORDS_TEMPLATE ${_sx_template})
    install(FILES ${_sx_template} DESTINATION ${CMAKE_INSTALL_DATADIR}/sentorax-monitor
            COMPONENT monitor)
    unset(_sx_template)
else()
    message(WARNING "QuaZip-Qt6 not found: the records export to Excel is left out")
endif()
