// SPDX-License-Identifier: GPL-3.0-or-later
//
// The process of a calibration: from the first reading to the rewritten table.
#include <QComboBox>

#include "tests/tour/stops.h"
#include "tests/tour/technician.h"

using namespace tour;

namespace
{

constexpr int OIL_PRESSURE = 0;

void adjust(Driver &driver)
{
    driver.press(driver.find<QPushButton>("btnAdjustCalibration"));
    driver.check(!driver.find<QLineEdit>("txtAdjustCalibration")->text().isEmpty(),
                 QStringLiteral("Table Updated is stamped"));
    for (const Row &row : visible_rows(driver))
        driver.check(colour_name(row.value->styleSheet()) == QLatin1String("green"),
                     QStringLiteral("a row is not green after the adjustment: ") +
                         row.value->styleSheet());
    driver.tell(QStringLiteral("adjusted; all rows green"));
}

} // namespace

void stop_start(Driver &driver)
{
    driver.await([&] { return driver.window()->isVisible(); }, QStringLiteral("the window"));
    driver.picture(QStringLiteral("start"));
    driver.enter(driver.find<QLineEdit>("txtCalibrationQIE"), QStringLiteral("Dead weight DW-12"));
    driver.enter(driver.find<QLineEdit>("txtTechnicianName"), QStringLiteral("R. Alvarez"));
}

void stop_straight_road(Driver &driver)
{
    pick_channel(driver, OIL_PRESSURE);
    driver.picture(QStringLiteral("idle"));
    capture_all(driver, OIL_PRESSURE);
    driver.picture(QStringLiteral("all-captured"));
    record(driver, AS_FOUND, QStringLiteral("Yearly calibration"));
    driver.expect_record("oil_pressure", "As-Found");
    driver.picture(QStringLiteral("as-found"));
    adjust(driver);
    driver.expect_record("oil_pressure", "Table Updated by adjustment");
    driver.expect_rewritten("oil_pressure");
    driver.picture(QStringLiteral("table-updated"));
}

void stop_leave(Driver &driver)
{
    driver.tell(QStringLiteral("leaving through the menu"));
    driver.choose_action("menuFile", "actionExit");
    driver.await([&] { return !driver.window()->isVisible(); }, QStringLiteral("the end"));
}
