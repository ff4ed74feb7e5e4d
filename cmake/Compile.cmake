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
