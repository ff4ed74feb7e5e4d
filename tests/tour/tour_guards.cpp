// SPDX-License-Identifier: GPL-3.0-or-later
//
// What keeps work from being lost and wrong entries out: the start, the guards
// on leaving a channel and the program, the refusals.
#include "tests/tour/stops.h"
#include "tests/tour/technician.h"

using namespace tour;

namespace
{

constexpr int COOLANT_TEMPERATURE = 1;
constexpr int BAROMETER = 6;
constexpr int BOOST_PRESSURE = 21;
constexpr int ENGINE_SPEED = 25;

void answer_leaving(Driver &driver, int channel, const char *mark, const char *button,
                    const char *picture = "")
{
    driver.answer([&] { choose_channel(driver, channel); }, QLatin1String(mark),
                  QLatin1String(button), QLatin1String(picture));
}

void answer_exit(Driver &driver, const char *mark, const char *button, const char *picture = "")
{
    driver.answer([&] { choose_exit(driver); }, QLatin1String(mark), QLatin1String(button),
                  QLatin1String(picture));
}

void refuse(Driver &driver, const char *field, const QString &text, const char *mark,
            const char *left_with, const char *picture = "")
{
    auto *line = driver.find<QLineEdit>(field);
    driver.answer([&] { driver.enter(line, text); }, QLatin1String(mark), QStringLiteral("OK"),
                  QLatin1String(picture));
    driver.check(line->text() == QLatin1String(left_with),
                 QStringLiteral("after %1 the field holds %2").arg(text, line->text()));
}

int rows_with(Driver &driver, const char *caption)
{
    int count = 0;
    for (const Row &row : visible_rows(driver)) {
        if (row.button->text() == QLatin1String(caption))
            ++count;
    }
    return count;
}

void set_count(Driver &driver, const char *count)
{
    driver.enter(driver.find<QLineEdit>("txtNumPoints"), QLatin1String(count));
}

} // namespace

void stop_start(Driver &driver)
{
    driver.await([&] { return driver.window()->isVisible(); }, QStringLiteral("the window"));
    for (const char *decision : {"btnReuseCalibration", "btnAdjustCalibration"})
        driver.check(!driver.find<QPushButton>(decision)->isEnabled(),
                     QStringLiteral("nothing can be decided yet"));
    driver.picture(QStringLiteral("start"));
    driver.answer([&] { press(driver, "btnRecordData"); }, QStringLiteral("R1"),
                  QStringLiteral("OK"), QStringLiteral("names-missing"));
    driver.enter(driver.find<QLineEdit>("txtCalibrationQIE"), QStringLiteral("Dead weight DW-12"));
    driver.enter(driver.find<QLineEdit>("txtTechnicianName"), QStringLiteral("R. Alvarez"));
}

void stop_wrong_counts(Driver &driver)
{
    pick_channel(driver, BOOST_PRESSURE);
    const int points = visible_rows(driver).size();
    refuse(driver, "txtNumPoints", QStringLiteral("65"), "point count", "", "count-refused");
    refuse(driver, "txtNumPoints", QStringLiteral("1"), "point count", "");
    refuse(driver, "txtNumPoints", QStringLiteral("10.5"), "point count", "");
    refuse(driver, "txtNumPoints", QStringLiteral("abc"), "point count", "");
    driver.check(visible_rows(driver).size() == points, QStringLiteral("the rows stay"));
    refuse(driver, "txtAveragingTime", QStringLiteral("31"), "averaging time", "10",
           "averaging-time-refused");
    refuse(driver, "txtAveragingTime", QStringLiteral("4"), "averaging time", "10");

    set_count(driver, "8");
    driver.check(visible_rows(driver).size() == 8 && rows_with(driver, "Capture New") == 2,
                 QStringLiteral("two new rows are offered"));
    driver.picture(QStringLiteral("more-points-offered"));
    answer_exit(driver, "G3", "Cancel", "exit-table-modified");
    answer_leaving(driver, BAROMETER, "L3", "Cancel", "leave-table-modified");
    driver.picture(QStringLiteral("table-read-again"));
    set_count(driver, "3");
    driver.check(visible_rows(driver).size() == 3, QStringLiteral("three rows are left"));
    driver.picture(QStringLiteral("fewer-points"));
    answer_leaving(driver, BAROMETER, "L3", "OK");
}

void stop_captured_points_guarded(Driver &driver)
{
    pick_channel(driver, ENGINE_SPEED);
    capture_points(driver, ENGINE_SPEED, 0, 2);
    answer_exit(driver, "G1", "Cancel", "exit-points-not-recorded");
    driver.check(rows_with(driver, "Undo") == 3, QStringLiteral("three points are captured"));
    answer_leaving(driver, BAROMETER, "L1", "Cancel", "leave-points-not-recorded");
    // Captions stay, values are read again from the table.
    driver.check(rows_with(driver, "Undo") == 3, QStringLiteral("the captions stay"));
    check_rows(driver, "white");
    driver.picture(QStringLiteral("returned-to-channel"));
    capture_point(driver, ENGINE_SPEED, 3);
    answer_leaving(driver, BAROMETER, "L1", "OK");
    driver.check(rows_with(driver, "Undo") == 0, QStringLiteral("a fresh channel"));
    driver.picture(QStringLiteral("left-without-recording"));
}

void stop_incomplete_guarded(Driver &driver)
{
    pick_channel(driver, COOLANT_TEMPERATURE);
    capture_points(driver, COOLANT_TEMPERATURE, 0, 3);
    driver.answer([&] { press(driver, "btnRecordData"); }, QStringLiteral("R2"),
                  QStringLiteral("No"), QStringLiteral("points-missing"));
    record(driver, "coolant_temp", AFTER_SERVICE, QStringLiteral("New thermocouple"),
           {QString(), QString(), QString(), true});
    check_boxes(driver, {"N/A red", "green", "", "", ""});
    driver.picture(QStringLiteral("after-service-without-as-found"));
    answer_exit(driver, "G2", "Cancel", "exit-incomplete");
    answer_leaving(driver, BAROMETER, "L2", "Cancel", "leave-incomplete");
    check_boxes(driver, {"N/A red", "green", "", "", ""});
    answer_leaving(driver, BAROMETER, "L2", "OK");
    check_boxes(driver, {"", "", "", "", ""});
}

void stop_leave(Driver &driver)
{
    pick_channel(driver, BAROMETER);
    capture_points(driver, BAROMETER, 0, 1);
    record(driver, "baro_pressure", AS_FOUND, QString(), {QString(), QString(), QString(), true});
    answer_exit(driver, "G2", "OK");
    driver.await([&] { return !driver.window()->isVisible(); }, QStringLiteral("the end"));
}
