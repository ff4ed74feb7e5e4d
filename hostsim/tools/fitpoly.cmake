# SPDX-License-Identifier: GPL-3.0-or-later
# The polynomial fit from the shell.
add_executable(fitpoly ${CMAKE_CURRENT_LIST_DIR}/fitpoly.cpp)
target_link_libraries(fitpoly PRIVATE zerl_flags vornax)
