// SPDX-License-Identifier: GPL-3.0-or-later
//
// The stops of the tour. Each is one function in a file of its subject
// (tour_SUBJECT.cpp) and one row of the table in tour.cpp. A stop finds and
// leaves the window at rest: working standard and technician typed, no dialog
// open, and nothing unfinished, so that picking another channel asks nothing.
// So a stop picks its own channel first and needs to know of no other stop.
#ifndef TOUR_STOPS_H
#define TOUR_STOPS_H

#include "tests/tour/driver.h"

// tour_guards.cpp
void stop_start(tour::Driver &driver); // comes first: brings the window to rest
void stop_wrong_counts(tour::Driver &driver);
void stop_captured_points_guarded(tour::Driver &driver);
void stop_incomplete_guarded(tour::Driver &driver);
void stop_leave(tour::Driver &driver); // comes last: the window is closed

// tour_process.cpp
void stop_straight_road(tour::Driver &driver);
void stop_good_as_found(tour::Driver &driver);
void stop_needless_adjustment(tour::Driver &driver);
void stop_reuse_against_the_data(tour::Driver &driver);
void stop_adjust_out_of_tolerance(tour::Driver &driver);
void stop_service(tour::Driver &driver);
void stop_verification_alone(tour::Driver &driver);
void stop_new_correlation(tour::Driver &driver);

// tour_records.cpp, right behind the straight road: the table of its channel is
// what the last two dialogs start from, its calibration is what is reported.
void stop_supporting_records(tour::Driver &driver);
void stop_linearity_report(tour::Driver &driver);

// tour_sensor.cpp
void stop_equal_limits(tour::Driver &driver);
void stop_unlike_units(tour::Driver &driver);
void stop_table_units(tour::Driver &driver);
void stop_channel_without_a_table(tour::Driver &driver);

// tour_views.cpp
void stop_statistics(tour::Driver &driver);

// tour_touch.cpp: the second run, on a touch screen cell
void stop_touch_names(tour::Driver &driver);
void stop_touch_calibration(tour::Driver &driver);
void stop_touch_leave(tour::Driver &driver);

#endif
