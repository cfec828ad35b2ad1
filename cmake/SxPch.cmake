# Precompiled Qt headers. Parsing the Qt headers is most of the work of a source
# here; with them precompiled a test builds in little more than half the time.
# One header build of each kind serves every target that asks for it: all are
# built with the same options (sx_config, and Qt's -fPIC for libraries and
# programs alike), which a precompiled header needs.
#
# Only umbrella headers of modules every such target links: they test no macro
# that differs between targets. QtTest stays out, it tests QT_TESTCASE_SOURCEDIR,
# which differs from folder to folder.
option(SX_PCH "Precompile the Qt headers" ON)

# sx_use_pch(<target> [GUI]): <target> includes QtCore, with GUI also QtGui and
# QtWidgets, precompiled, ahead of every source. <target> must link sx_config.
function(sx_use_pch target)
    cmake_parse_arguments(P "GUI" "" "" ${ARGN})
    if(NOT SX_PCH)
        return()
    endif()
    set(pch sx_pch_core)
    set(headers <QtCore>)
    set(libs Qt6::Core)
    if(P_GUI)
        set(pch sx_pch_gui)
        list(APPEND headers <QtGui> <QtWidgets>)
        list(APPEND libs Qt6::Widgets)
    endif()
    if(NOT TARGET ${pch})
        add_library(${pch} OBJECT ${PROJECT_SOURCE_DIR}/cmake/SxPch.cpp)
        set_target_properties(${pch} PROPERTIES AUTOMOC OFF)
        target_link_libraries(${pch} PRIVATE sx_config ${libs})
        target_precompile_headers(${pch} PRIVATE ${headers})
    endif()
    target_precompile_headers(${target} REUSE_FROM ${pch})
endfunction()
