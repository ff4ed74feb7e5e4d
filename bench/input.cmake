# SPDX-License-Identifier: GPL-3.0-or-later
add_executable(bench_input bench_input.cpp)
target_link_libraries(bench_input PRIVATE zerl_flags zerl_gui benchmark::benchmark)
target_include_directories(bench_input PRIVATE ${PROJECT_SOURCE_DIR})
set_target_properties(bench_input PROPERTIES ENABLE_EXPORTS ON)
