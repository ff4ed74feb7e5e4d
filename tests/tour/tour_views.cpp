// SPDX-License-Identifier: GPL-3.0-or-later
//
// The three views of the statistics menu, over a polynomial of 21 points.
#include <QDialogButtonBox>
#include <QGroupBox>
#include <QTableWidget>

#include "tests/tour/stops.h"
#include "tests/tour/technician.h"

using namespace tour;

namespace
{

constexpr int INTAKE_AIR_TEMPERATURE = 2;
constexpr int BAROMETER = 6;
constexpr int POINTS = 21;

void look_at(Driver &driver, const std::function<void()> &open, const char *title,
             const char *picture, const std::function<void(QWidget *)> &look)
{
    driver.with_dialog(open, [&](QWidget *view) {
        driver.check(view->windowTitle() == QLatin1String(title),
                     QStringLiteral("the view is ") + QLatin1String(title));
        look(view);
        driver.picture(QLatin1String(picture));
        auto *buttons = driver.find<QDialogButtonBox>("buttonBox", view);
        driver.press(buttons->button(QDialogButtonBox::Ok));
    });
}

void check_rows_of_table(Driver &driver, QWidget *view)
{
    driver.check(driver.find<QTableWidget>("tblCalInfo", view)->rowCount() == POINTS,
                 QStringLiteral("the view has a row for each point"));
}

} // namespace

void stop_statistics(Driver &driver)
{
    pick_channel(driver, INTAKE_AIR_TEMPERATURE);
    capture_all(driver, INTAKE_AIR_TEMPERATURE);
    // Its entry is not on show.
    look_at(
        driver,
        [&] { QMetaObject::invokeMethod(driver.window(), "on_actionStatistics_Chart_triggered"); },
        "Current Calibration Statistics", "calibration-statistics",
        [&](QWidget *view) {
            driver.check(view->findChildren<QWidget *>(QStringLiteral("StatInfo")).size() == POINTS,
                         QStringLiteral("the view has a row for each point"));
        });
    look_at(
        driver, [&] { driver.choose_action("menuStatistics", "actionPoint_Statistics"); },
        "Calibration Point Statistics", "point-statistics",
        [&](QWidget *view) { check_rows_of_table(driver, view); });
    look_at(
        driver, [&] { driver.choose_action("menuStatistics", "actionCal_Statistics_Chart"); },
        "Polynomial Regression Information", "polynomial-regression",
        [&](QWidget *view) {
            check_rows_of_table(driver, view);
            driver.check(driver.find<QGroupBox>("grpCoeffInfo", view)->isVisible(),
                         QStringLiteral("the coefficients are shown"));
            driver.tell(QStringLiteral("R^2 ") +
                        driver.find<QLabel>("lblRSquaredValue", view)->text());
        });
    driver.answer([&] { choose_channel(driver, BAROMETER); }, QStringLiteral("L1"),
                  QStringLiteral("OK"));
}
