# SPDX-License-Identifier: GPL-3.0-or-later
# A room of src/ is a library that links only the rooms below it. Rooms with
# windows split in two: computation, which cannot link Widgets or Qwt, and the
# windows above it.

# zerl_room(NAME ON LIBRARIES... SOURCES FILES...): the computation of a room.
function(zerl_room name)
    cmake_parse_arguments(PARSE_ARGV 1 room "" "" "ON;SOURCES")
    add_library(zerl_${name} STATIC ${room_SOURCES})
    target_link_libraries(zerl_${name} PUBLIC Qt5::Core ${room_ON} PRIVATE zerl_flags)
    target_include_directories(zerl_${name} PUBLIC ${PROJECT_SOURCE_DIR}/src)
    set_target_properties(zerl_${name} PROPERTIES AUTOMOC ON)
    set_property(GLOBAL APPEND PROPERTY ZERL_ROOMS zerl_${name})
endfunction()

# zerl_windows(NAME ON LIBRARIES... SOURCES FILES...): the windows of a room,
# with their forms. Tests read the forms' widgets.
function(zerl_windows name)
    cmake_parse_arguments(PARSE_ARGV 1 room "" "" "ON;SOURCES")
    add_library(zerl_${name} STATIC ${room_SOURCES})
    target_link_libraries(zerl_${name} PUBLIC Qt5::Widgets ${room_ON} PRIVATE zerl_flags)
    target_include_directories(zerl_${name} PUBLIC ${PROJECT_SOURCE_DIR}/src INTERFACE
        ${CMAKE_CURRENT_BINARY_DIR}/zerl_${name}_autogen/include)
    set_target_properties(zerl_${name} PROPERTIES AUTOMOC ON AUTOUIC ON)
    set_property(GLOBAL APPEND PROPERTY ZERL_WINDOW_ROOMS zerl_${name})
endfunction()
