# Every target of the project links sx_config: warnings, Qt safety macros, sanitizers.
add_library(sx_config INTERFACE)
target_compile_options(sx_config INTERFACE -Wall -Wextra -Wpedantic -Wshadow)
if(SX_WERROR)
    target_compile_options(sx_config INTERFACE -Werror)
endif()
target_compile_definitions(sx_config INTERFACE
    QT_NO_CAST_FROM_ASCII
    QT_NO_NARROWING_CONVERSIONS_IN_CONNECT
    QT_NO_URL_CAST_FROM_STRING
    SX_VERSION="${PROJECT_VERSION}")
if(SX_SANITIZE)
    list(JOIN SX_SANITIZE "," _sx_san)
    # -O1 -g1 after the build type's own flags: the checks stay, code and debug info
    # shrink, so the tree builds and its tests run faster than at -O0 -g.
    target_compile_options(sx_config INTERFACE -fsanitize=${_sx_san} -fno-omit-frame-pointer
                           -fno-sanitize-recover=all -O1 -g1)
    target_link_options(sx_config INTERFACE -fsanitize=${_sx_san})
endif()

# lld links a test program in under half the time of ld.bfd; scripts/deps.sh installs it.
option(SX_LLD "Link with lld where the compiler can" ON)
if(SX_LLD)
    include(CheckLinkerFlag)
    check_linker_flag(CXX -fuse-ld=lld SX_HAVE_LLD)
    if(SX_HAVE_LLD)
        target_link_options(sx_config INTERFACE -fuse-ld=lld)
    endif()
endif()
