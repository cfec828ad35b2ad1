# The console is built in floors: model, reports, ui, views, shell. A floor's
# headers are reachable as "<folder>/Name.h" only by targets that link it, so
# an include that runs up or sideways fails to compile. Each library's include
# root is a folder of the build tree holding one link to its sources.
function(sx_include_root target folder)
    set(_root ${PROJECT_BINARY_DIR}/include/${target})
    get_filename_component(_parent ${_root}/${folder} DIRECTORY)
    file(MAKE_DIRECTORY ${_parent})
    file(CREATE_LINK ${PROJECT_SOURCE_DIR}/${folder} ${_root}/${folder} SYMBOLIC)
    target_include_directories(${target} PUBLIC ${_root})
endfunction()

# sx_view(NAME SOURCES ... [LIBS ...]): one window's folder views/NAME as a
# library on top of views/common. Views never link each other.
function(sx_view name)
    cmake_parse_arguments(V "" "" "SOURCES;LIBS" ${ARGN})
    add_library(sxview_${name} STATIC ${V_SOURCES})
    target_link_libraries(sxview_${name} PUBLIC sxviews_common PRIVATE sx_config ${V_LIBS})
    sx_include_root(sxview_${name} views/${name})
    sx_use_pch(sxview_${name} GUI)
endfunction()
