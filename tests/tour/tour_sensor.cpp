// SPDX-License-Identifier: GPL-3.0-or-later
//
// Sensor data and units: ranges that bring the table information up when their
// channel is picked, and a change of the table's units.
#include <cmath>

#include <QComboBox>
#include <QFile>
#include <QLabel>
#include <QListWidget>
#include <QMessageBox>
#include <QTest>

#include "tests/tour/stops.h"
#include "tests/tour/technician.h"

using namespace tour;

namespace
{

constexpr int BOOST_PRESSURE = 21;
constexpr int EQUAL_LIMITS = 22;
constexpr int UNLIKE_UNITS = 23;

// A number of the file's last record, by its name there.
double recorded_number(Driver &driver, const char *table_file, const QByteArray &name)
{
    QFile file(QStringLiteral("/cell/tables/") + QLatin1String(table_file));
    driver.check(file.open(QIODevice::ReadOnly), file.fileName());
    QByteArray found;
    for (const QByteArray &line : file.readAll().split('\n')) {
        if (line.startsWith(name + ' '))
            found = line.mid(name.size() + 1);
    }
    driver.check(!found.isEmpty(), QString::fromUtf8(name) + QStringLiteral(" was recorded"));
    return found.toDouble();
}

// The three limits of the file's last record are 0.25, 1 and 2 percent of the
// span.
void check_limits(Driver &driver, const char *table_file, double span)
{
    const struct {
        const char *name;
        double percent;
    } limits[] = {{"ooa_tol", 0.25}, {"oot_tol", 1.0}, {"soot_tol", 2.0}};
    for (const auto &limit : limits) {
        const double found = recorded_number(driver, table_file, limit.name);
        driver.check(std::fabs(found - span * limit.percent / 100.0) < 1e-9 * span,
                     QStringLiteral("%1 of %2 is %3")
                         .arg(QLatin1String(limit.name), QLatin1String(table_file))
                         .arg(found));
        driver.tell(QStringLiteral("%1 %2 in %3")
                        .arg(QLatin1String(limit.name))
                        .arg(found)
                        .arg(QLatin1String(table_file)));
    }
}

void type(Driver &driver, QWidget *dialog, const char *field, const QString &text)
{
    auto *line = driver.find<QLineEdit>(field, dialog);
    line->setFocus();
    line->selectAll();
    QTest::keyClicks(line, text);
}

void click_item(Driver &driver, QListWidget *list, const QString &text)
{
    const auto found = list->findItems(text, Qt::MatchExactly);
    driver.check(found.size() == 1, text + QStringLiteral(" stands in the list"));
    list->scrollToItem(found.first());
    driver.settle();
    QTest::mouseClick(list->viewport(), Qt::LeftButton, Qt::NoModifier,
                      list->visualItemRect(found.first()).center());
    driver.check(list->currentItem() == found.first(), text + QStringLiteral(" is picked"));
}

// In the open units dialog: picks category and unit, presses OK.
void pick_units(Driver &driver, QWidget *dialog, const QString &category, const QString &units,
                const QString &picture)
{
    click_item(driver, driver.find<QListWidget>("lstUnitCategory", dialog), category);
    click_item(driver, driver.find<QListWidget>("lstUnitType", dialog), units);
    driver.picture(picture);
    driver.press(driver.find<QPushButton>("btnOK", dialog));
}

// Picks a channel whose range fails: the reason is told, then the table
// information opens for `repair`, which ends with its OK.
void repair_channel(Driver &driver, int channel, const QString &picture,
                    const std::function<void(QWidget *)> &repair)
{
    driver.with_dialog(
        [&] {
            driver.answer([&] { choose_channel(driver, channel); }, QStringLiteral("-"),
                          QStringLiteral("OK"), picture + QStringLiteral("-told"));
        },
        [&](QWidget *dialog) {
            driver.picture(picture + QStringLiteral("-table-information"));
            repair(dialog);
            driver.picture(picture + QStringLiteral("-repaired"));
            driver.answer([&] { driver.press(driver.find<QPushButton>("btnOk", dialog)); },
                          QStringLiteral("-"), QStringLiteral("OK"),
                          picture + QStringLiteral("-clearing"));
        });
    const QString kept = driver.find<QComboBox>("cboCurrentChannel")->currentText();
    driver.check(kept.section(QLatin1Char('-'), 0, 0).toInt() == channel,
                 QStringLiteral("the channel is kept"));
    driver.tell(QStringLiteral("repaired: channel") + kept);
}

// Captures all points, records and adjusts; the table information goes into the
// file with that. The points were good, so Adjust asks.
void calibrate(Driver &driver, int channel, const char *table)
{
    capture_all(driver, channel);
    record(driver, table, AS_FOUND, QStringLiteral("After a change of the table information"));
    adjust(driver, table, QStringLiteral("Q1"));
}

// The channel can be left and picked again, and nothing is asked.
void pick_again(Driver &driver, int channel)
{
    choose_channel(driver, 0);
    pick_channel(driver, channel);
}

} // namespace

void stop_equal_limits(Driver &driver)
{
    repair_channel(driver, EQUAL_LIMITS, QStringLiteral("equal-limits"), [&](QWidget *dialog) {
        type(driver, dialog, "txtLowerRangeLimit", QStringLiteral("0"));
        type(driver, dialog, "txtUpperRangeLimit", QStringLiteral("100"));
    });
    calibrate(driver, EQUAL_LIMITS, "equal_limits");
    check_limits(driver, "equal_limits.tbl", 100.0);
    pick_again(driver, EQUAL_LIMITS);
}

void stop_unlike_units(Driver &driver)
{
    repair_channel(driver, UNLIKE_UNITS, QStringLiteral("unlike-units"), [&](QWidget *dialog) {
        driver.with_dialog(
            [&] { driver.press(driver.find<QPushButton>("btnSensorUnits", dialog)); },
            [&](QWidget *units) {
                pick_units(driver, units, QStringLiteral("Pressure"), QStringLiteral("kPa"),
                           QStringLiteral("unlike-units-sensor-units"));
            });
    });
    calibrate(driver, UNLIKE_UNITS, "incompatible_units");
    check_limits(driver, "incompatible_units.tbl", 100.0);
    pick_again(driver, UNLIKE_UNITS);
}

// The table goes from kPa to the sensor's PSI: references and limits follow, the
// former calibration on the plot does not. Recorded as it stands: the rows follow
// the table's states, which count as captured, and the archive shows the limits.
void stop_table_units(Driver &driver)
{
    driver.check(driver.cell.apply(BOOST_PRESSURE, 25.0, true) &&
                     driver.cell.wait_settled(BOOST_PRESSURE),
                 QStringLiteral("the cell takes the reference"));
    pick_channel(driver, BOOST_PRESSURE);
    auto *button = driver.find<QPushButton>("btnUnits");
    driver.check(button->text() == QLatin1String("kPa"), QStringLiteral("the table is in kPa"));
    driver.picture(QStringLiteral("table-in-kpa"));
    driver.with_dialog([&] { driver.press(button); },
                       [&](QWidget *units) {
                           pick_units(driver, units, QStringLiteral("Pressure"),
                                      QStringLiteral("PSI"), QStringLiteral("table-units"));
                       });
    driver.check(button->text() == QLatin1String("PSI"), QStringLiteral("the table is in PSI"));
    const QList<Row> rows = visible_rows(driver);
    for (int i = 0; i < rows.size(); ++i)
        driver.check(std::fabs(rows[i].value->text().toDouble() - 10.0 * i) < 1e-3,
                     QStringLiteral("reference %1 has followed").arg(i + 1));
    driver.picture(QStringLiteral("table-in-psi"));
    record(driver, "boost_pressure", AS_FOUND, QStringLiteral("Now in PSI"));
    check_limits(driver, "boost_pressure.save", 50.0);
    driver.answer([&] { choose_channel(driver, 0); }, QStringLiteral("L2"), QStringLiteral("OK"));
}

namespace
{

constexpr int NEW_CHANNEL = 9;

// The channel has no table file: its range is empty, so the table information
// opens, and neither sensor nor table has units yet.
void describe_sensor(Driver &driver)
{
    repair_channel(driver, NEW_CHANNEL, QStringLiteral("new-channel"), [&](QWidget *dialog) {
        type(driver, dialog, "txtDescription", QStringLiteral("New pressure"));
        type(driver, dialog, "txtLowerRangeLimit", QStringLiteral("0"));
        type(driver, dialog, "txtUpperRangeLimit", QStringLiteral("100"));
        driver.with_dialog(
            [&] { driver.press(driver.find<QPushButton>("btnSensorUnits", dialog)); },
            [&](QWidget *units) {
                pick_units(driver, units, QStringLiteral("Pressure"), QStringLiteral("kPa"),
                           QStringLiteral("new-channel-sensor-units"));
            });
    });
}

void choose_table_units(Driver &driver)
{
    auto *button = driver.find<QPushButton>("btnUnits");
    driver.with_dialog([&] { driver.press(button); },
                       [&](QWidget *units) {
                           pick_units(driver, units, QStringLiteral("Pressure"),
                                      QStringLiteral("kPa"),
                                      QStringLiteral("new-channel-table-units"));
                       });
    driver.check(button->text() == QLatin1String("kPa"), QStringLiteral("the table is in kPa"));
}

} // namespace

// A channel without a table, from nothing to a table in force.
void stop_channel_without_a_table(Driver &driver)
{
    driver.check(!QFile::exists(QStringLiteral("/cell/tables/new_channel.tbl")),
                 QStringLiteral("the channel has no table yet"));
    describe_sensor(driver);
    choose_table_units(driver);
    driver.enter(driver.find<QLineEdit>("txtNumPoints"), QStringLiteral("3"));
    const QList<Row> rows = visible_rows(driver);
    driver.check(rows.size() == 3, QStringLiteral("three rows are offered"));
    driver.picture(QStringLiteral("new-channel-rows"));
    for (int i = 0; i < rows.size(); ++i) {
        driver.enter(rows[i].value, QString::number(50 * i));
        capture_point(driver, NEW_CHANNEL, i);
    }
    record(driver, "new_channel", NEW_CORRELATION, QStringLiteral("First table"));
    driver.expect_rewritten("new_channel");
    check_limits(driver, "new_channel.tbl", 100.0);
    driver.picture(QStringLiteral("new-channel-correlation"));
    // Left and picked again, the channel is judged by its first table.
    choose_channel(driver, 0);
    choose_channel(driver, NEW_CHANNEL);
    driver.check(visible_rows(driver).size() == 3, QStringLiteral("the first table is read"));
    capture_all(driver, NEW_CHANNEL);
    check_rows(driver, "green");
    record(driver, "new_channel", AS_FOUND, QStringLiteral("By the first table"));
    adjust(driver, "new_channel", QStringLiteral("Q1"));
    check_boxes(driver, {"green", "N/A green", "green", "", ""});
    check_limits(driver, "new_channel.tbl", 100.0);
    driver.picture(QStringLiteral("new-channel-adjusted"));
}
