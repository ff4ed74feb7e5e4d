# SPDX-License-Identifier: GPL-3.0-or-later
# The figures of a linearity verification against one straight line.
add_executable(bench_linearity ${CMAKE_CURRENT_LIST_DIR}/bench_linearity.cpp)
target_link_libraries(bench_linearity PRIVATE zerl_flags zerl_core benchmark::benchmark)
target_include_directories(bench_linearity PRIVATE ${PROJECT_SOURCE_DIR})
set_target_properties(bench_linearity PROPERTIES ENABLE_EXPORTS ON)
