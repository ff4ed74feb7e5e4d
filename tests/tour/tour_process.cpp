// SPDX-License-Identifier: GPL-3.0-or-later
//
// The roads of a calibration: each state, each decision and its question.
#include <QComboBox>

#include "tests/tour/stops.h"
#include "tests/tour/technician.h"

using namespace tour;

namespace
{

constexpr int OIL_PRESSURE = 0;     // yellow as found
constexpr int BRAKE_TORQUE = 3;     // good
constexpr int GOOD_SENSOR = 14;     // good
constexpr int DRIFTED_YELLOW = 15;  // out of adjustment
constexpr int DRIFTED_ORANGE = 16;  // out of tolerance
constexpr int DRIFTED_RED = 17;     // significantly out of tolerance
constexpr int DRIFTING_SENSOR = 20; // good so far
constexpr int ENGINE_SPEED = 25;    // a small error within the limits
constexpr char OUT_OF_TOLERANCE[] =
    "Channel is out of tolerance, perform service and capture new data";

void check_idle(Driver &driver)
{
    check_boxes(driver, {"", "", "", "", ""});
    check_decisions(driver, "off", "off");
    check_advice(driver, "");
}

void decline(Driver &driver, const char *button, const char *mark, const char *picture)
{
    driver.answer([&] { press(driver, button); }, QLatin1String(mark), QStringLiteral("No"),
                  QLatin1String(picture));
}

// The dialog that asks before a captured point is taken back.
void undo_and_capture_again(Driver &driver, int channel, int point)
{
    const Row row = visible_rows(driver).at(point);
    driver.with_dialog([&] { driver.press(row.button); },
                       [&](QWidget *dialog) {
                           driver.picture(QStringLiteral("undo-asked"));
                           driver.press(driver.find<QPushButton>("btnRevert", dialog));
                       });
    driver.check(row.button->text() == QLatin1String("Capture"),
                 QStringLiteral("the point is taken back"));
    driver.picture(QStringLiteral("point-taken-back"));
    capture_point(driver, channel, point);
}

} // namespace

void stop_straight_road(Driver &driver)
{
    pick_channel(driver, OIL_PRESSURE);
    check_idle(driver);
    driver.picture(QStringLiteral("idle"));
    capture_points(driver, OIL_PRESSURE, 0, 2);
    undo_and_capture_again(driver, OIL_PRESSURE, 2);
    driver.picture(QStringLiteral("capturing"));
    capture_points(driver, OIL_PRESSURE, 3, 4);
    check_rows(driver, "yellow");
    driver.picture(QStringLiteral("all-captured"));
    driver.with_dialog([&] { press(driver, "btnRecordData"); },
                       [&](QWidget *dialog) {
                           fill_recording(driver, dialog, AS_FOUND, QStringLiteral("Yearly"));
                           driver.picture(QStringLiteral("record-data"));
                           driver.press(driver.find<QPushButton>("btnCancel", dialog));
                       });
    check_idle(driver);
    record(driver, "oil_pressure", AS_FOUND, QStringLiteral("Yearly calibration"));
    check_boxes(driver, {"yellow", "", "", "", ""});
    check_decisions(driver, "idle", "ready");
    check_advice(driver, "");
    driver.picture(QStringLiteral("state-as-found"));
    adjust(driver, "oil_pressure");
    check_boxes(driver, {"yellow", "N/A green", "green", "", ""});
    check_decisions(driver, "idle", "idle");
    check_rows(driver, "green");
    driver.picture(QStringLiteral("state-table-updated"));
    capture_all(driver, OIL_PRESSURE);
    record(driver, "oil_pressure", VERIFICATION, QStringLiteral("After the adjustment"));
    check_boxes(driver, {"yellow", "N/A green", "green", "green", ""});
    check_decisions(driver, "idle", "idle");
    check_advice(driver, "Channel is within expected range");
    driver.picture(QStringLiteral("state-verification"));
}

void stop_good_as_found(Driver &driver)
{
    pick_channel(driver, ENGINE_SPEED);
    capture_all(driver, ENGINE_SPEED);
    record(driver, "engine_speed", AS_FOUND, QString());
    check_boxes(driver, {"green", "", "", "", ""});
    check_decisions(driver, "ready", "idle");
    driver.picture(QStringLiteral("as-found-good"));
    reuse(driver, "engine_speed");
    check_boxes(driver, {"green", "N/A green", "green", "", ""});
    driver.picture(QStringLiteral("re-used"));
}

void stop_needless_adjustment(Driver &driver)
{
    pick_channel(driver, GOOD_SENSOR);
    capture_all(driver, GOOD_SENSOR);
    record(driver, "good_sensor", AS_FOUND, QString());
    decline(driver, "btnAdjustCalibration", "Q1", "adjust-not-required");
    check_boxes(driver, {"green", "", "", "", ""});
    check_decisions(driver, "ready", "idle");
    adjust(driver, "good_sensor", QStringLiteral("Q1"));
    check_boxes(driver, {"green", "N/A green", "green", "", ""});
    driver.picture(QStringLiteral("adjusted-anyway"));
}

void stop_reuse_against_the_data(Driver &driver)
{
    pick_channel(driver, DRIFTED_YELLOW);
    capture_all(driver, DRIFTED_YELLOW);
    record(driver, "drifted_yellow", AS_FOUND, QString());
    decline(driver, "btnReuseCalibration", "Q3", "re-use-needs-adjustment");
    check_boxes(driver, {"yellow", "", "", "", ""});
    reuse(driver, "drifted_yellow", QStringLiteral("Q3"));
    check_boxes(driver, {"yellow", "N/A yellow", "yellow", "", ""});
    driver.picture(QStringLiteral("re-used-anyway"));
    // N/A counts as a service: a second As-Found is asked about.
    capture_all(driver, DRIFTED_YELLOW);
    const QString why = QStringLiteral("Reference was warming up");
    record(driver, "drifted_yellow", AS_FOUND, why, {"D1", "No", "already-serviced"});
    check_boxes(driver, {"yellow", "N/A yellow", "yellow", "", ""});
    record(driver, "drifted_yellow", AS_FOUND, why, {"D1", "Yes", QString()});
    check_boxes(driver, {"yellow", "", "", "", ""});
    driver.picture(QStringLiteral("as-found-again"));
    adjust(driver, "drifted_yellow");
    check_boxes(driver, {"yellow", "N/A green", "green", "", ""});
}

void stop_adjust_out_of_tolerance(Driver &driver)
{
    pick_channel(driver, DRIFTED_ORANGE);
    capture_all(driver, DRIFTED_ORANGE);
    check_rows(driver, "orange");
    record(driver, "drifted_orange", AS_FOUND, QString());
    check_boxes(driver, {"orange", "", "", "", ""});
    check_decisions(driver, "idle", "idle");
    check_advice(driver, OUT_OF_TOLERANCE);
    driver.picture(QStringLiteral("as-found-out-of-tolerance"));
    decline(driver, "btnAdjustCalibration", "Q2", "adjust-needs-service");
    check_boxes(driver, {"orange", "", "", "", ""});
    // The service does not help: adjusting is then an option.
    capture_all(driver, DRIFTED_ORANGE);
    record(driver, "drifted_orange", AFTER_SERVICE, QStringLiteral("Cleaned the connector"));
    check_boxes(driver, {"orange", "orange", "", "", ""});
    check_decisions(driver, "idle", "caution");
    check_advice(
        driver, "If shift in calibration is expected due to service performed, adjust calibration");
    driver.picture(QStringLiteral("after-service-out-of-tolerance"));
    record(driver, "drifted_orange", AS_FOUND, QStringLiteral("As it came in"),
           {QString(), QString(), QString(), true});
    adjust(driver, "drifted_orange", QStringLiteral("Q2"));
    check_boxes(driver, {"orange", "N/A green", "red", "", ""});
    driver.picture(QStringLiteral("adjusted-out-of-tolerance"));
}

namespace
{

// A second As-Found and a service without a description, then with one.
void describe_late(Driver &driver, const Kind &kind, const char *mark, const char *picture,
                   const QString &description)
{
    const auto open = [&] { press(driver, "btnRecordData"); };
    const auto work = [&](QWidget *dialog) {
        auto *confirm = driver.find<QPushButton>("btnRecord", dialog);
        fill_recording(driver, dialog, kind, QString());
        driver.answer([&] { driver.press(confirm); }, QLatin1String(mark), QStringLiteral("OK"),
                      QLatin1String(picture));
        driver.check(dialog->isVisible() &&
                         dialog->focusWidget() == driver.find<QLineEdit>("txtComment", dialog),
                     QStringLiteral("the dialog waits for the description"));
        fill_recording(driver, dialog, kind, description);
        driver.press(confirm);
    };
    driver.with_dialog(open, work);
    driver.expect_record("drifted_red", kind.step);
}

void find_it_red(Driver &driver)
{
    capture_all(driver, DRIFTED_RED);
    check_rows(driver, "red");
    record(driver, "drifted_red", AS_FOUND, QString());
    check_boxes(driver, {"red", "", "", "", ""});
    check_advice(driver, OUT_OF_TOLERANCE);
    driver.picture(QStringLiteral("as-found-significantly-out"));
    decline(driver, "btnReuseCalibration", "Q4", "re-use-needs-service");
    capture_all(driver, DRIFTED_RED);
    describe_late(driver, AS_FOUND, "R3", "as-found-wants-a-description",
                  QStringLiteral("First run was too short"));
    check_boxes(driver, {"red", "", "", "", ""});
}

void service_it(Driver &driver)
{
    driver.check(driver.cell.set_condition(DRIFTED_RED, "good"), QStringLiteral("the service"));
    driver.tell(QStringLiteral("the sensor is repaired"));
    capture_all(driver, DRIFTED_RED);
    check_rows(driver, "green");
    describe_late(driver, AFTER_SERVICE, "R4", "service-wants-a-description",
                  QStringLiteral("Replaced the sensor"));
    check_boxes(driver, {"red", "green", "", "", ""});
    check_decisions(driver, "ready", "caution");
    check_advice(
        driver,
        "If channel or sensor hardware was changed, adjust calibration rather than re-use.");
    driver.picture(QStringLiteral("state-after-service"));
}

} // namespace

void stop_service(Driver &driver)
{
    pick_channel(driver, DRIFTED_RED);
    find_it_red(driver);
    service_it(driver);
    reuse(driver, "drifted_red");
    check_boxes(driver, {"red", "green", "green", "", ""});
    capture_all(driver, DRIFTED_RED);
    record(driver, "drifted_red", AFTER_SERVICE, QStringLiteral("Serviced once more"),
           {"D2", "Cancel", "already-adjusted"});
    check_boxes(driver, {"red", "green", "green", "", ""});
    record(driver, "drifted_red", VERIFICATION, QString());
    check_boxes(driver, {"red", "green", "green", "green", ""});
    decline(driver, "btnAdjustCalibration", "Q5", "adjust-verification-data");
    decline(driver, "btnReuseCalibration", "Q6", "re-use-verification-data");
    check_boxes(driver, {"red", "green", "green", "green", ""});
}

void stop_verification_alone(Driver &driver)
{
    driver.check(driver.cell.set_condition(BRAKE_TORQUE, "drifted1"), QStringLiteral("the drift"));
    pick_channel(driver, BRAKE_TORQUE);
    capture_all(driver, BRAKE_TORQUE);
    record(driver, "brake_torque", VERIFICATION, QString(), {"D3", "No", "no-adjustment-made"});
    check_idle(driver);
    record(driver, "brake_torque", VERIFICATION, QString(), {"D3", "Yes", QString()});
    check_boxes(driver, {"", "", "", "yellow", ""});
    check_decisions(driver, "idle", "idle");
    check_advice(driver, "Channel is outside of expected range");
    driver.picture(QStringLiteral("verification-without-adjustment"));
}

void stop_new_correlation(Driver &driver)
{
    pick_channel(driver, DRIFTING_SENSOR);
    driver.choose(driver.find<QComboBox>("cboCalType"), 1);
    driver.choose(driver.find<QComboBox>("cboOrderOfPolynomial"), 1);
    driver.picture(QStringLiteral("polynomial-chosen"));
    capture_all(driver, DRIFTING_SENSOR);
    record(driver, "drifting_sensor", NEW_CORRELATION, QStringLiteral("Polynomial of degree 2"));
    driver.expect_rewritten("drifting_sensor");
    check_boxes(driver, {"", "", "", "", "plain"});
    check_decisions(driver, "off", "off");
    check_advice(driver, "");
    driver.picture(QStringLiteral("state-new-correlation"));
}
