# SPDX-License-Identifier: GPL-3.0-or-later
# What the project links, all of it from Debian 12.
find_package(Qt5 5.15 REQUIRED COMPONENTS Core Gui Widgets Network Test)
find_package(GSL 2.7 REQUIRED)
find_package(ZLIB REQUIRED)
find_package(Threads REQUIRED)

find_path(QWT_INCLUDE_DIR qwt_plot.h PATH_SUFFIXES qwt qwt-qt5 qt5/qwt REQUIRED)
find_library(QWT_LIBRARY NAMES qwt-qt5 REQUIRED)
add_library(qwt INTERFACE)
target_include_directories(qwt SYSTEM INTERFACE ${QWT_INCLUDE_DIR})
target_link_libraries(qwt INTERFACE ${QWT_LIBRARY} Qt5::Widgets)

find_path(UDUNITS2_INCLUDE_DIR udunits2.h REQUIRED)
find_library(UDUNITS2_LIBRARY NAMES udunits2 REQUIRED)
add_library(udunits2 INTERFACE)
target_include_directories(udunits2 SYSTEM INTERFACE ${UDUNITS2_INCLUDE_DIR})
target_link_libraries(udunits2 INTERFACE ${UDUNITS2_LIBRARY})

if(NOT VORNAX_RUNTIME)
    # Its pkg-config file names an unset variable.
    find_path(QD_INCLUDE_DIR qd/qd_real.h REQUIRED)
    find_library(QD_LIBRARY NAMES qd REQUIRED)
    add_library(qd INTERFACE)
    target_include_directories(qd SYSTEM INTERFACE ${QD_INCLUDE_DIR})
    target_link_libraries(qd INTERFACE ${QD_LIBRARY})

    find_package(rapidcheck REQUIRED) # property tests

    find_path(GMP_INCLUDE_DIR gmpxx.h REQUIRED) # tests
    find_library(GMP_LIBRARY NAMES gmp REQUIRED)
    find_library(GMPXX_LIBRARY NAMES gmpxx REQUIRED)
    add_library(gmp INTERFACE)
    target_include_directories(gmp SYSTEM INTERFACE ${GMP_INCLUDE_DIR})
    target_link_libraries(gmp INTERFACE ${GMPXX_LIBRARY} ${GMP_LIBRARY})
endif()
