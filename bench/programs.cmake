# SPDX-License-Identifier: GPL-3.0-or-later
add_executable(bench_monitorpass bench_monitorpass.cpp)
target_link_libraries(bench_monitorpass PRIVATE zerl_flags zerl_core benchmark::benchmark)
add_executable(bench_bind bench_bind.cpp)
target_link_libraries(bench_bind PRIVATE zerl_flags zerl_core benchmark::benchmark)
add_executable(bench_window bench_window.cpp)
target_link_libraries(bench_window PRIVATE zerl_flags zerl_gui benchmark::benchmark)
add_executable(bench_views bench_views.cpp)
target_link_libraries(bench_views PRIVATE zerl_flags zerl_gui benchmark::benchmark)
add_executable(bench_typeswitch bench_typeswitch.cpp)
target_link_libraries(bench_typeswitch PRIVATE zerl_flags zerl_gui benchmark::benchmark)
foreach(program bench_monitorpass bench_bind bench_window bench_views bench_typeswitch
        bench_polynomialfit)
    target_include_directories(${program} PRIVATE ${PROJECT_SOURCE_DIR})
    set_target_properties(${program} PROPERTIES ENABLE_EXPORTS ON)
endforeach()

# Start to first paint.
add_library(firstpaint SHARED firstpaint.cpp)
target_link_libraries(firstpaint PRIVATE zerl_flags Qt5::Widgets)
add_executable(minimalwindow minimalwindow.cpp)
set_target_properties(minimalwindow PROPERTIES
    RUNTIME_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/bench/support)
target_link_libraries(minimalwindow PRIVATE zerl_flags Qt5::Widgets)
configure_file(bench_start.sh ${PROJECT_BINARY_DIR}/bench/bench_start COPYONLY)
