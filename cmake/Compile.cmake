# SPDX-License-Identifier: GPL-3.0-or-later
# Flags of every target. Arithmetic is exactly what the source says: no
# contraction into fused operations, no fast-math.
add_library(zerl_flags INTERFACE)
target_compile_options(zerl_flags INTERFACE
    -Wall -Wextra -Wpedantic -Wconversion -Werror -ffp-contract=off)
target_include_directories(zerl_flags INTERFACE ${PROJECT_SOURCE_DIR}/src)
target_compile_definitions(zerl_flags INTERFACE
    QT_NO_CAST_TO_ASCII QT_NO_FOREACH QT_DEPRECATED_WARNINGS)

if(ZERL_TSAN)
    add_compile_options(-fsanitize=thread -fno-omit-frame-pointer -O1)
    add_link_options(-fsanitize=thread)
endif()
if(ZERL_SANITIZE)
    add_compile_options(-fsanitize=address,undefined -fno-sanitize-recover=all
                        -fno-omit-frame-pointer -O1)
    add_link_options(-fsanitize=address,undefined)
endif()

# What makes a build quicker, where it is installed: results that were compiled
# before, and a linker that takes a fraction of the time.
option(ZERL_CCACHE "Compile through ccache where it is installed" ON)
option(ZERL_LLD "Link with lld where it is installed" ON)

# A cache that cannot be written would fail every compilation. ccache keeps what
# includes a precompiled header only when it may ignore __TIME__ and the like,
# which nothing here uses.
if(ZERL_CCACHE AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
    find_program(CCACHE_PROGRAM ccache)
    mark_as_advanced(CCACHE_PROGRAM)
    if(CCACHE_PROGRAM)
        set(probe ${PROJECT_BINARY_DIR}/CMakeFiles/ccache_probe)
        file(WRITE ${probe}.cpp "int main() {}\n")
        execute_process(COMMAND ${CCACHE_PROGRAM} ${CMAKE_CXX_COMPILER} -c ${probe}.cpp -o ${probe}.o
            RESULT_VARIABLE refused OUTPUT_QUIET ERROR_QUIET)
        if(refused STREQUAL 0)
            set(CMAKE_CXX_COMPILER_LAUNCHER
                env CCACHE_SLOPPINESS=pch_defines,time_macros ${CCACHE_PROGRAM})
            set(CMAKE_C_COMPILER_LAUNCHER ${CMAKE_CXX_COMPILER_LAUNCHER})
        endif()
    endif()
endif()

if(ZERL_LLD)
    find_program(LLD_PROGRAM ld.lld)
    mark_as_advanced(LLD_PROGRAM)
    if(LLD_PROGRAM)
        include(CheckLinkerFlag)
        check_linker_flag(CXX -fuse-ld=lld ZERL_LINKS_WITH_LLD)
        if(ZERL_LINKS_WITH_LLD)
            add_link_options(-fuse-ld=lld)
        endif()
    endif()
endif()
