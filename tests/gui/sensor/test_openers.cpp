// SPDX-License-Identifier: GPL-3.0-or-later
//
// Who opens the table information, and what follows: the menu, the binding of a
// channel whose range fails, a capture. The table mutex meanwhile: held while
// the dialog is open, given back behind it, and no deadlock.
#include <future>
#include <thread>

#include <QtTest>

#include "gui/frame/testwindow.h"
#include "host/operations.h"
#include "sensor/sensorrange.h"
#include "support/testmain.h"
#include "window/styles.h"

namespace
{

const QString UPDATE = QStringLiteral("Update Data");
const QString DIALOG = QStringLiteral("Transducer Calibration Configuration");
const QString CLEARING = QStringLiteral("Clearing Calibration Data");
const QString NO_CHANNEL = QStringLiteral("Please select a valid channel number and name");
const QString NONE_CHOSEN = QStringLiteral("Select A Channel");
const char *const EQUAL_LIMITS = "The Sensor Lower and Upper Range Values are the same.\n\n"
                                 "Press OK to update Table Information";

void refuse(QDialog *dialog)
{
    dialog->findChild<QPushButton *>(QStringLiteral("btnCancel"))->click();
}

void press_ok(QDialog *dialog)
{
    dialog->findChild<QPushButton *>(QStringLiteral("btnOk"))->click();
}

void type_limits(QDialog *dialog, const char *lower, const char *upper)
{
    dialog->findChild<QLineEdit *>(QStringLiteral("txtLowerRangeLimit"))->setText(lower);
    dialog->findChild<QLineEdit *>(QStringLiteral("txtUpperRangeLimit"))->setText(upper);
}

void repair(QDialog *dialog)
{
    type_limits(dialog, "0", "100");
    press_ok(dialog);
}

void set_range(TABLE_RECORD *table, double min, double max, const char *units)
{
    table->sensor_range_min = min;
    table->sensor_range_max = max;
    qstrncpy(table->sensor_units, units, sizeof table->sensor_units);
}

} // namespace

class Openers : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanupTestCase() { m_it.reset(); }
    void init() { g_first_select = 1; }
    void bad_range_at_binding_data() { bad_ranges(); }
    void bad_range_at_binding();
    void bad_range_at_a_capture_data() { bad_ranges(); }
    void bad_range_at_a_capture();
    void menu_judges_nothing();
    void rows_follow_the_states_that_the_table_brought();
    void dialog_of_a_capture_clears_nothing();
    void limits_closer_than_the_records_rule_come_back_at_the_next_selection();
    void percent_sensor_and_other_table_warn_three_times_in_a_row();
    void mutex_while_the_dialog_is_open_data();
    void mutex_while_the_dialog_is_open();
    void refused_over_and_over_data();
    void refused_over_and_over();

private:
    static void bad_ranges();
    // Another thread can take the mutex at once.
    bool mutex_is_free() const;
    // The mutex is back and the monitor thread goes on, within the deadline.
    bool goes_on() const;

    std::unique_ptr<TestWindow> m_it;
};

void Openers::initTestCase()
{
    m_it = std::make_unique<TestWindow>(TestWindow::description() + R"(
channel 10
  label "Percent Sensor"
  units kPa
  table ten
  record INTERP
  points 0:0 5000:100
  sensor PCT 0 100 MODEL10 SERIAL10
)");
}

bool Openers::mutex_is_free() const
{
    QMutex *const mutex = m_it->window->table_mutex();
    return std::async(std::launch::async,
                      [mutex] {
                          const bool taken = mutex->tryLock(DEADLINE_MS);
                          if (taken)
                              mutex->unlock();
                          return taken;
                      })
        .get();
}

bool Openers::goes_on() const
{
    return mutex_is_free() && m_it->ticks(2);
}

void Openers::bad_ranges()
{
    test_columns<double, double, QByteArray, QString>("min", "max", "units", "text");
    const auto row = [](const char *name, double min, double max, const char *units,
                        const char *text) {
        QTest::newRow(name) << min << max << QByteArray(units)
                            << text + QString("\n\nPress OK to update Table Information");
    };
    row("reversed", 100, 0, "kPa",
        "The Sensor Lower Range Value is greater than the Upper Range Value.");
    row("the same", 5, 5, "kPa", "The Sensor Lower and Upper Range Values are the same.");
    row("1e-7 apart", 0, 1e-7, "kPa", "The Sensor Lower and Upper Range Values are the same.");
    row("no number", qQNaN(), 100, "kPa",
        "The Sensor Lower and Upper Range Values are INVALID and need to be updated.");
    row("units missing", 0, 100, "", "The Sensor Range Units must be specified.");
    row("units none", 0, 100, "None", "The Sensor Range Units = NONE and need to be updated.");
    row("units unlike", 0, 100, "DEG_F",
        "The Sensor Range Units (DEG_F) are not compatible with the table units (kPa).");
}

void Openers::bad_range_at_binding()
{
    QFETCH(double, min);
    QFETCH(double, max);
    QFETCH(QByteArray, units);
    QFETCH(QString, text);
    m_it->bind_afresh(0);
    const auto table = std::make_unique<TABLE_RECORD>();
    QCOMPARE(read_table("/cell/tables/one.tbl", table.get()), 0);
    set_range(table.get(), min, max, units);
    QCOMPARE(create_table("/cell/tables/one.tbl", table.get()), 0);
    BoxAnswerer answerer;
    answerer.expect(UPDATE, text);
    answerer.expect_dialog(DIALOG, refuse);
    m_it->pick(1);
    QCOMPARE(answerer.remaining(), 0);
    QCOMPARE(m_it->form->cboCurrentChannel->currentText(), NONE_CHOSEN);
    QVERIFY(goes_on());
}

void Openers::bad_range_at_a_capture()
{
    QFETCH(double, min);
    QFETCH(double, max);
    QFETCH(QByteArray, units);
    QFETCH(QString, text);
    m_it->bind_afresh(0);
    QVERIFY(m_it->reading(1300.0));
    set_range(&g_cfg->table, min, max, units);
    const auto before = std::make_unique<LONG_TABLE>(g_cfg->long_current);
    BoxAnswerer answerer;
    answerer.expect(UPDATE, text);
    answerer.expect_dialog(DIALOG, refuse);
    m_it->form->lblSerialNumber->setText(QStringLiteral("as it was"));
    m_it->button(1)->click();
    QCOMPARE(answerer.remaining(), 0);
    QCOMPARE(m_it->form->lblSerialNumber->text(), QStringLiteral("as it was"));
    QCOMPARE(m_it->window->row(1)->caption(), QStringLiteral("Capture"));
    QVERIFY(std::memcmp(before.get(), &g_cfg->long_current, sizeof *before) == 0);
    QCOMPARE(m_it->form->cboCurrentChannel->currentIndex(), m_it->item_of(0));
    QVERIFY(goes_on());
}

// The menu opens it for a range that fails too, without a word.
void Openers::menu_judges_nothing()
{
    m_it->bind_afresh(0);
    set_range(&g_cfg->table, 5.0, 5.0, "");
    BoxAnswerer answerer;
    answerer.expect_dialog(DIALOG, refuse);
    m_it->form->actionTable_Info->trigger();
    QCOMPARE(answerer.met().size(), 1);
    QVERIFY(goes_on());
}

// A table that was saved after its captures brings their states along. Binding
// passes them over, OK from the menu does not.
void Openers::rows_follow_the_states_that_the_table_brought()
{
    m_it->bind_afresh(0);
    for (int i = 0; i < 5; ++i)
        QCOMPARE(g_cfg->table.point_state[i], int32_t(POINT_CAPTURED));
    g_cfg->table.point_state[1] = POINT_AS_IN_TABLE;
    g_cfg->table.point_state[2] = POINT_NEW;
    QCOMPARE(m_it->window->row(0)->caption(), QStringLiteral("Capture"));
    BoxAnswerer answerer;
    answerer.expect_dialog(DIALOG, press_ok);
    m_it->form->actionTable_Info->trigger();
    QCOMPARE(answerer.met().size(), 1);
    const char *const captions[] = {"Undo", "Capture", "Capture New", "Undo", "Undo"};
    for (int i = 0; i < 5; ++i)
        QCOMPARE(m_it->window->row(i)->caption(), QString(captions[i]));
    QCOMPARE(g_captured_points, 0);
    m_it->forget_work();
}

// The box speaks of clearing; the window's own work at a capture stays.
void Openers::dialog_of_a_capture_clears_nothing()
{
    m_it->bind_afresh(0);
    QVERIFY(m_it->capture(0, 12.5, 0.25));
    m_it->form->txtAsFound->setText(QStringLiteral("01/02/2024 03:04:05"));
    const QString colour = m_it->window->row(0)->value_style();
    QVERIFY(m_it->reading(1300.0));
    set_range(&g_cfg->table, 100.0, 0.0, "kPa");
    BoxAnswerer answerer;
    answerer.expect_title(UPDATE);
    answerer.expect_dialog(DIALOG, [](QDialog *dialog) {
        dialog->findChild<QLineEdit *>(QStringLiteral("txtSerialNumber"))->setText("NEW-9");
        repair(dialog);
    });
    answerer.expect(CLEARING, "Changes may affect the calibration.\n\n"
                              "Calibration data will be cleared.");
    m_it->button(1)->click();
    QCOMPARE(answerer.remaining(), 0);
    QCOMPARE(m_it->form->lblSerialNumber->text(), QStringLiteral("NEW-9"));
    QCOMPARE(g_captured_points, 1);
    QCOMPARE(m_it->form->txtAsFound->text(), QStringLiteral("01/02/2024 03:04:05"));
    QCOMPARE(m_it->window->row(0)->caption(), QStringLiteral("Undo"));
    QCOMPARE(m_it->window->row(0)->value_style(), colour);
    QCOMPARE(m_it->window->row(1)->caption(), QStringLiteral("Capture")); // to be pressed again
    m_it->button(1)->click();
    QCOMPARE(m_it->window->row(1)->caption(), QStringLiteral("Undo"));
    m_it->forget_work();
}

void Openers::limits_closer_than_the_records_rule_come_back_at_the_next_selection()
{
    m_it->bind_afresh(0);
    BoxAnswerer answerer;
    answerer.expect_dialog(DIALOG, [](QDialog *dialog) {
        type_limits(dialog, "0", "0.0000005");
        press_ok(dialog);
    });
    answerer.expect_title(CLEARING);
    m_it->form->actionTable_Info->trigger();
    QCOMPARE(answerer.remaining(), 0);
    QCOMPARE(g_cfg->table.sensor_range_max, 0.0000005);
    QCOMPARE(save_calibration(g_cfg, SAVE_ADJUSTED), 0);
    m_it->pick(1);
    QCOMPARE(answerer.met().size(), 2);
    answerer.expect(UPDATE, EQUAL_LIMITS);
    answerer.expect_dialog(DIALOG, repair);
    answerer.expect_title(CLEARING);
    m_it->pick(0);
    QCOMPARE(answerer.remaining(), 0);
    QCOMPARE(m_it->form->cboCurrentChannel->currentIndex(), m_it->item_of(0));
    m_it->forget_work();
}

void Openers::percent_sensor_and_other_table_warn_three_times_in_a_row()
{
    const QString w2 = "Defaulting to the NONE MUA Instance Name and Tolerance values.\n\n"
                       "The tolerance units are not compatible with the calibration table units.";
    m_it->bind_afresh(0);
    BoxAnswerer answerer;
    for (int i = 0; i < 3; ++i)
        answerer.expect("Warning", w2);
    answerer.expect(UPDATE, "The Sensor Range Units (PCT) are not compatible with the table units "
                            "(kPa).\n\nPress OK to update Table Information");
    answerer.expect_dialog(DIALOG, refuse);
    m_it->pick(10);
    QCOMPARE(answerer.remaining(), 0);
    for (int i = 0; i < 3; ++i) {
        QCOMPARE(answerer.met().at(i).buttons, QStringList("OK"));
        QVERIFY(BoxAnswerer::has_title_bar_only(answerer.met().at(i)));
    }
    // A fraction of the span, which no conversion to kPa changes.
    QCOMPARE(g_cfg->table.ooa_tol, 0.25);
    QCOMPARE(g_cfg->table.oot_tol, 1.0);
    QCOMPARE(g_cfg->table.soot_tol, 2.0);
    QVERIFY(goes_on());
}

void Openers::mutex_while_the_dialog_is_open_data()
{
    QTest::addColumn<int>("opener");
    QTest::newRow("menu") << 0;
    QTest::newRow("binding") << 1;
    QTest::newRow("capture") << 2;
}

void Openers::mutex_while_the_dialog_is_open()
{
    QFETCH(int, opener);
    m_it->bind_afresh(0);
    QVERIFY(m_it->ticks(1));
    BoxAnswerer answerer;
    bool held = false;
    bool tick_worked_off = false;
    bool passed_meanwhile = true;
    if (opener != 0)
        answerer.expect_title(UPDATE);
    answerer.expect_dialog(DIALOG, [&](QDialog *dialog) {
        QMutex *const mutex = m_it->window->table_mutex();
        std::thread([&] {
            held = !mutex->tryLock();
            if (!held)
                mutex->unlock();
        }).join();
        // A pass waits for the mutex; a tick on the window's own thread does not.
        relaxed_store(g_cfg->monitor_pass_done, uint16_t(0));
        g_cfg->redraw_all = 1;
        QMetaObject::invokeMethod(m_it->window, "draw_plots_info", Qt::QueuedConnection,
                                  Q_ARG(ZERL_CFG *, g_cfg));
        tick_worked_off = QTest::qWaitFor([] { return g_cfg->redraw_all == 0; }, DEADLINE_MS);
        passed_meanwhile = relaxed_load(g_cfg->monitor_pass_done) != 0;
        refuse(dialog);
    });
    switch (opener) {
    case 0:
        m_it->form->actionTable_Info->trigger();
        break;
    case 1:
        m_it->pick(6);
        break;
    default:
        set_range(&g_cfg->table, 5.0, 5.0, "kPa");
        m_it->button(0)->click();
        break;
    }
    QCOMPARE(answerer.remaining(), 0);
    QVERIFY(held);
    QVERIFY(tick_worked_off);
    QVERIFY(!passed_meanwhile);
    QVERIFY(goes_on());
}

void Openers::refused_over_and_over_data()
{
    const auto row = test_columns<int, int>("first_select", "refusals");
    row("first_select 1: quiet, at the first refusal", 1, 1);
    row("first_select 0: message and dialog, refused once", 0, 1);
    row("first_select 0: message and dialog, refused three times", 0, 3);
}

// With the flag at 0 a refusal is answered by the message and the dialog, until
// the range is repaired. Then every refusal still gives the channel up.
void Openers::refused_over_and_over()
{
    QFETCH(int, first_select);
    QFETCH(int, refusals);
    m_it->bind_afresh(0);
    g_first_select = static_cast<int16_t>(first_select);
    const int rows = m_it->form->verticalLayout_4->count();
    BoxAnswerer answerer;
    for (int i = 0; i < refusals; ++i) {
        answerer.expect(UPDATE, EQUAL_LIMITS);
        answerer.expect_dialog(DIALOG, refuse);
        if (first_select == 0)
            answerer.expect(QString(), NO_CHANNEL);
    }
    if (first_select == 0) {
        answerer.expect(UPDATE, EQUAL_LIMITS);
        answerer.expect_dialog(DIALOG, repair);
        answerer.expect_title(CLEARING);
    }
    m_it->pick(6);
    QCOMPARE(answerer.remaining(), 0);
    // What is chosen: nothing, or the channel that was repaired; given up it is.
    QCOMPARE(m_it->form->cboCurrentChannel->currentIndex(),
             first_select == 0 ? m_it->item_of(6) : 0);
    QCOMPARE(g_cfg->table.sensor_range_min, first_select == 0 ? 0.0 : 100.0);
    QCOMPARE(g_first_select, int16_t(1));
    QCOMPARE(m_it->form->verticalLayout_4->count(), rows + 64 * refusals);
    QCOMPARE(m_it->rows_shown(), 0);
    QVERIFY(m_it->window->curves_are_removed());
    QVERIFY(!m_it->form->cboCalType->isEnabled());
    QCOMPARE(m_it->form->lblTableName->text(), QString());
    QCOMPARE(m_it->form->btnUnits->text(), QString());
    // However deep it went, the mutex is back and the channel sampled on.
    QVERIFY(goes_on());
    QCOMPARE(g_cfg->channel, int16_t(6));
    QVERIFY(m_it->reading(777.0));
    // And another channel can be chosen, with its curves.
    m_it->forget_work();
    m_it->pick(0);
    QCOMPARE(answerer.remaining(), 0);
    QVERIFY(!m_it->window->curves_are_removed());
    QCOMPARE(m_it->rows_shown(), 5);
}

WINDOW_TEST(Openers);
#include "test_openers.moc"
