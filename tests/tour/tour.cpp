// SPDX-License-Identifier: GPL-3.0-or-later
//
// The tour: every road of a calibration, walked in the real program beside a
// running training cell. This file holds the order of its stops.
#include <cstdio>
#include <cstdlib>

#include <QApplication>
#include <QFile>
#include <QTimer>

#include "tests/tour/driver.h"
#include "tests/tour/stops.h"

namespace
{

struct Stop {
    const char *name;
    void (*walk)(tour::Driver &);
};

constexpr Stop STOPS[] = {
    {"start", stop_start},
    {"the straight road of a calibration", stop_straight_road},
    {"the supporting records", stop_supporting_records},
    {"the linearity report", stop_linearity_report},
    {"good as found, and kept", stop_good_as_found},
    {"an adjustment that is not needed", stop_needless_adjustment},
    {"a re-use against the data, and As-Found again", stop_reuse_against_the_data},
    {"an adjustment out of tolerance", stop_adjust_out_of_tolerance},
    {"service, re-use, verification", stop_service},
    {"a verification by itself", stop_verification_alone},
    {"a new correlation", stop_new_correlation},
    {"the statistics views", stop_statistics},
    {"wrong counts and a changed count", stop_wrong_counts},
    {"captured points are guarded", stop_captured_points_guarded},
    {"an incomplete calibration is guarded", stop_incomplete_guarded},
    {"a sensor range with equal limits is repaired", stop_equal_limits},
    {"a sensor range in units unlike the table's is repaired", stop_unlike_units},
    {"the table's units are changed", stop_table_units},
    {"a channel without a table is given one", stop_channel_without_a_table},
    {"leave", stop_leave},
};

constexpr Stop TOUCH_STOPS[] = {
    {"names by touch", stop_touch_names},
    {"a calibration by touch", stop_touch_calibration},
    {"leave by the close button", stop_touch_leave},
};

// What the script checks once the program has ended.
void note_the_end(tour::Driver &driver)
{
    std::FILE *done = std::fopen(qgetenv("ZERL_TOUR_DONE").constData(), "w");
    driver.check(done != nullptr, QStringLiteral("the end can be noted"));
    for (const QString &line : driver.expected_files())
        std::fprintf(done, "%s\n", qUtf8Printable(line));
    driver.check(std::fclose(done) == 0, QStringLiteral("the end is noted"));
}

template <std::size_t Count> void walk(tour::Driver &driver, const Stop (&stops)[Count])
{
    for (const Stop &stop : stops) {
        driver.tell(QStringLiteral("== ") + QLatin1String(stop.name));
        stop.walk(driver);
    }
}

void run()
{
    tour::Driver driver(QString::fromLocal8Bit(qgetenv("ZERL_TOUR_FOLDER")));
    if (QFile::exists(QStringLiteral("/cell/vornax_ts.ini")))
        walk(driver, TOUCH_STOPS);
    else
        walk(driver, STOPS);
    driver.tell_questions();
    note_the_end(driver);
}

// Only the program itself is driven, not what it starts.
void begin()
{
    unsetenv("LD_PRELOAD");
    QTimer::singleShot(0, qApp, run);
}

} // namespace

Q_COREAPP_STARTUP_FUNCTION(begin)
