// SPDX-License-Identifier: GPL-3.0-or-later
//
// The change of the table's units from the window: values, limits, rows, and
// the monitor thread meanwhile.
#include <condition_variable>
#include <mutex>
#include <thread>

#include <QListWidget>
#include <QtTest>

#include <qwt_plot.h>

#include "gui/frame/testwindow.h"
#include "sensor/tablevalueunitsdialog.h"
#include "sensor/tolerances.h"
#include "sensor/unitcatalogue.h"
#include "support/testmain.h"
#include "support/unitmemory.h"

namespace
{

const QString DIALOG = QStringLiteral("Table Value Units");
const QString TABLE_INFORMATION = QStringLiteral("Transducer Calibration Configuration");
const QString W2 =
    QStringLiteral("Defaulting to the NONE MUA Instance Name and Tolerance values.\n\n"
                   "The tolerance units are not compatible with the calibration table units.");
constexpr double KPA_PER_PSI = 6.894757293168361;

bool memory_missing = false;

// Ends the program when what is awaited has not come about by the deadline.
class Watchdog
{
public:
    explicit Watchdog(const char *what)
        : m_thread([this, what] {
              std::unique_lock<std::mutex> lock(m_mutex);
              if (!m_over.wait_for(lock, std::chrono::milliseconds(DEADLINE_MS),
                                   [this] { return m_done; }))
                  qFatal("deadline passed: %s", what);
          })
    {
    }
    ~Watchdog()
    {
        {
            const std::lock_guard<std::mutex> lock(m_mutex);
            m_done = true;
        }
        m_over.notify_all();
        m_thread.join();
    }
    Watchdog(const Watchdog &) = delete;
    Watchdog &operator=(const Watchdog &) = delete;

private:
    std::mutex m_mutex;
    std::condition_variable m_over;
    bool m_done = false;
    std::thread m_thread;
};

// True when another thread gets the mutex within the time.
bool mutex_is_free(QMutex *mutex, int milliseconds)
{
    bool got = false;
    std::thread([&] {
        got = mutex->tryLock(milliseconds);
        if (got)
            mutex->unlock();
    }).join();
    return got;
}

void press(QDialog *dialog, const char *button)
{
    dialog->findChild<QPushButton *>(QLatin1String(button))->click();
}

// Picks as a user does: the list, then the unit in it.
void pick(QDialog *dialog, const QString &unit)
{
    auto *const categories = dialog->findChild<QListWidget *>(QStringLiteral("lstUnitCategory"));
    auto *const units = dialog->findChild<QListWidget *>(QStringLiteral("lstUnitType"));
    for (int category = 0; category < categories->count(); ++category) {
        categories->setCurrentRow(category);
        const QList<QListWidgetItem *> hits = units->findItems(unit, Qt::MatchCaseSensitive);
        if (hits.isEmpty())
            continue;
        units->setCurrentItem(hits.first());
        return;
    }
    qFatal("no unit %s", qPrintable(unit));
}

void set_units(const char *table, const char *sensor)
{
    qstrcpy(g_cfg->table.eng_units, table);
    qstrcpy(g_cfg->table_units, table);
    qstrcpy(g_cfg->table.sensor_units, sensor);
}

void spoil_limits()
{
    TABLE_RECORD &table = g_cfg->table;
    table.ooa_bias = table.ooa_tol = table.oot_bias = -1.0;
    table.oot_tol = table.soot_bias = table.soot_tol = -1.0;
}

} // namespace

extern "C" int32_t link_to_memory(int32_t id, void **address)
{
    return memory_missing ? 0 : link_in_front(id, address);
}

class TableUnitsSlot : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { m_it = std::make_unique<TestWindow>(); }
    void cleanupTestCase() { m_it.reset(); }
    void cleanup();
    void without_a_channel();
    void cancelled();
    void three_points_and_what_stands_behind_them();
    void limits_follow_the_new_units_data();
    void limits_follow_the_new_units();
    void rows_and_panel();
    void accepted_without_a_pick();
    void there_and_back();
    void three_warnings_in_a_row();
    void unlike_units_keep_the_values();
    void memory_that_is_missing();
    void sampling_goes_on_while_dialog_and_warnings_are_open();
    void in_the_table_information_with_the_mutex_held();
    void menu_entry_has_no_handler();

private:
    void change_units(const QString &unit);

    std::unique_ptr<TestWindow> m_it;
};

void TableUnitsSlot::cleanup()
{
    m_it->forget_work();
    memory_missing = false;
}

void TableUnitsSlot::change_units(const QString &unit)
{
    units_for_table = 7;
    units_for_sensor = 7;
    BoxAnswerer answerer;
    int for_table = -1;
    int for_sensor = -1;
    answerer.expect_dialog(DIALOG, [&](QDialog *dialog) {
        for_table = units_for_table;
        for_sensor = units_for_sensor;
        pick(dialog, unit);
        press(dialog, "btnOK");
    });
    m_it->form->btnUnits->click();
    QCOMPARE(for_table, 1);
    QCOMPARE(for_sensor, 0);
}

// Before anything is bound the record has no points; its units are set all the
// same, until a binding brings the table's.
void TableUnitsSlot::without_a_channel()
{
    change_units(QStringLiteral("PSI"));
    QCOMPARE(m_it->form->btnUnits->text(), QString("PSI"));
    QCOMPARE(g_cfg->table.eng_units, "PSI");
    QCOMPARE(m_it->rows_shown(), 0);
    m_it->bind_afresh(1);
    QCOMPARE(m_it->form->btnUnits->text(), QString("kPa"));
    QCOMPARE(g_cfg->table_units, "kPa");
}

void TableUnitsSlot::cancelled()
{
    m_it->bind_afresh(1);
    g_captured_points = 2;
    spoil_limits();
    m_it->form->txtAsFound->setText(QStringLiteral("01/02/2024 03:04:05"));
    BoxAnswerer answerer;
    answerer.expect_dialog(DIALOG, [](QDialog *dialog) {
        pick(dialog, QStringLiteral("PSI"));
        press(dialog, "btnCancel");
    });
    m_it->form->btnUnits->click();
    QCOMPARE(g_cfg->table.eng_units, "kPa");
    QCOMPARE(g_cfg->table_units, "kPa");
    QCOMPARE(g_cfg->long_current.y[1], 50.0);
    QCOMPARE(g_cfg->table.ooa_tol, -1.0);
    QCOMPARE(g_captured_points, 2);
    QCOMPARE(m_it->form->txtAsFound->text(), QString("01/02/2024 03:04:05"));
    QCOMPARE(m_it->form->btnUnits->text(), QString("kPa"));
}

void TableUnitsSlot::three_points_and_what_stands_behind_them()
{
    m_it->bind_afresh(1);
    LONG_TABLE &current = g_cfg->long_current;
    QCOMPARE(int(current.num_points), 3);
    current.y[3] = 77.0;
    current.x[3] = 7777.0;
    QTRY_COMPARE_WITH_TIMEOUT(g_cfg->redraw_all, uint16_t(0), DEADLINE_MS);
    QCOMPARE(m_it->form->dataPlot->axisTitle(QwtPlot::yLeft).text(), QString("kPa"));
    const auto before = std::make_unique<ZERL_CFG>(*g_cfg);
    change_units(QStringLiteral("PSI"));
    QCOMPARE(g_cfg->redraw_all, uint16_t(1));
    QCOMPARE(current.y[0], 0.0);
    QCOMPARE(current.y[1], 50.0 / KPA_PER_PSI);
    QCOMPARE(current.y[2], 100.0 / KPA_PER_PSI);
    QCOMPARE(current.y[3], 77.0);
    QCOMPARE(std::memcmp(current.x, before->long_current.x, sizeof current.x), 0);
    QCOMPARE(int(current.num_points), 3);
    QCOMPARE(g_cfg->table.eng_units, "PSI");
    QCOMPARE(g_cfg->table_units, "PSI");
    // Of the record nothing but its units and limits: neither its own points, nor
    // the former calibration, nor the sensor, and it does not count as unsaved.
    QCOMPARE(std::memcmp(g_cfg->table.poly, before->table.poly, sizeof before->table.poly), 0);
    QCOMPARE(std::memcmp(&g_cfg->long_previous, &before->long_previous, sizeof(LONG_TABLE)), 0);
    QCOMPARE(g_cfg->table.sensor_units, "kPa");
    QCOMPARE(g_cfg->table.sensor_range_max, 100.0);
    QCOMPARE(g_cfg->table_dirty, uint16_t(0));
    QTRY_COMPARE_WITH_TIMEOUT(m_it->form->dataPlot->axisTitle(QwtPlot::yLeft).text(),
                              QString("PSI"), DEADLINE_MS);
}

void TableUnitsSlot::limits_follow_the_new_units_data()
{
    const auto row = test_columns<int, QString, double>("channel", "unit", "span");
    row("PSI", 1, "PSI", 100.0 / KPA_PER_PSI);
    row("Pa", 1, "Pa", 100000.0);
    row("the same", 1, "kPa", 100.0);
    // The span of 300 is converted as a reading of 300 is, zero point and all.
    row("temperature", 9, "DEG_F", 572.0);
}

void TableUnitsSlot::limits_follow_the_new_units()
{
    QFETCH(int, channel);
    QFETCH(QString, unit);
    QFETCH(double, span);
    m_it->bind_afresh(channel);
    spoil_limits();
    change_units(unit);
    const TABLE_RECORD &table = g_cfg->table;
    QCOMPARE(table.ooa_tol, 0.0025 * span);
    QCOMPARE(table.oot_tol, 0.01 * span);
    QCOMPARE(table.soot_tol, 0.02 * span);
    QCOMPARE(table.ooa_bias, 0.0);
    QCOMPARE(table.oot_bias, 0.0);
    QCOMPARE(table.soot_bias, 0.0);
}

void TableUnitsSlot::rows_and_panel()
{
    m_it->bind_afresh(1);
    QVERIFY(m_it->capture(0, 12.5, 0.25));
    const QString colour = m_it->window->row(0)->value_style();
    m_it->form->txtAsFound->setText(QStringLiteral("01/02/2024 03:04:05"));
    m_it->form->btnAdjustCalibration->setEnabled(true);
    g_cfg->table.worst_status = 2;
    g_cfg->table.point_state[1] = POINT_AS_IN_TABLE;
    g_cfg->table.point_state[2] = POINT_NEW;
    qstrcpy(g_cfg->table.sensor_serial_no, "NEW-7");
    g_cfg->long_current.y[63] = 8.5;
    g_cfg->long_current.x[63] = 9.25;
    change_units(QStringLiteral("Pa"));
    const auto value = [this](int i) { return m_it->window->row(i)->value_field()->text(); };
    const auto mv = [this](int i) { return m_it->window->row(i)->mv_label()->text(); };
    QCOMPARE(value(0), QString("250.0000"));
    QCOMPARE(value(1), QString("50000.0000"));
    QCOMPARE(value(2), QString("100000.0000"));
    QCOMPARE(mv(0), QString(" 12.5000"));
    QCOMPARE(mv(1), QString("2500.0000"));
    QCOMPARE(value(63), QString("  8.5000")); // of all rows, those that are hidden too
    QCOMPARE(mv(63), QString("  9.2500"));
    QCOMPARE(m_it->form->btnUnits->text(), QString("Pa"));
    QCOMPARE(m_it->form->lblSerialNumber->text(), QString("NEW-7"));
    // Rows follow their states and are not reset.
    QCOMPARE(m_it->window->row(0)->caption(), QString("Undo"));
    QCOMPARE(m_it->window->row(0)->value_style(), colour);
    QCOMPARE(m_it->window->row(1)->caption(), QString("Capture"));
    QCOMPARE(m_it->window->row(2)->caption(), QString("Capture New"));
    QCOMPARE(m_it->rows_shown(), 3);
    QCOMPARE(m_it->form->txtAsFound->text(), QString());
    QVERIFY(!m_it->form->btnAdjustCalibration->isEnabled());
    QCOMPARE(g_cfg->table.worst_status, uint16_t(0));
    QCOMPARE(g_captured_points, 0);
}

void TableUnitsSlot::accepted_without_a_pick()
{
    m_it->bind_afresh(1);
    g_captured_points = 2;
    spoil_limits();
    m_it->form->txtAsFound->setText(QStringLiteral("01/02/2024 03:04:05"));
    g_cfg->long_current.y[1] = 51.0; // not shown by a row
    g_cfg->redraw_all = 0;
    const HostLog log;
    BoxAnswerer answerer;
    answerer.expect_dialog(DIALOG, [](QDialog *dialog) {
        dialog->findChild<QListWidget *>(QStringLiteral("lstUnitCategory"))->setCurrentRow(2);
        press(dialog, "btnOK");
    });
    m_it->form->btnUnits->click();
    QCOMPARE(log.count("Error: No units selected for table."), 1);
    QCOMPARE(g_cfg->table.eng_units, "kPa");
    QCOMPARE(g_cfg->table_units, ""); // the dialog has taken the empty pick
    QCOMPARE(g_cfg->long_current.y[1], 51.0);
    QCOMPARE(g_cfg->long_current.y[2], 100.0);
    QCOMPARE(m_it->window->row(1)->value_field()->text(), QString(" 50.0000"));
    QCOMPARE(m_it->form->btnUnits->text(), QString("kPa"));
    // Limits, panel and count are refreshed all the same.
    QCOMPARE(g_cfg->table.ooa_tol, 0.25);
    QCOMPARE(g_cfg->table.soot_tol, 2.0);
    QCOMPARE(m_it->form->txtAsFound->text(), QString());
    QCOMPARE(g_captured_points, 0);
}

void TableUnitsSlot::there_and_back()
{
    m_it->bind_afresh(0);
    const auto before = std::make_unique<LONG_TABLE>(g_cfg->long_current);
    for (const char *unit : {"IN_HG", "kPa", "PSI", "kPa", "BAR", "kPa"})
        change_units(QLatin1String(unit));
    for (int i = 0; i < 5; ++i)
        QCOMPARE(g_cfg->long_current.y[i], before->y[i]);
    QCOMPARE(std::memcmp(g_cfg->long_current.x, before->x, sizeof before->x), 0);
    QCOMPARE(g_cfg->table.oot_tol, 1.0);
}

// A sensor in percent and a table that is not: each class warns before its
// value is stored, and behind what was stored before it.
void TableUnitsSlot::three_warnings_in_a_row()
{
    m_it->bind_afresh(1);
    set_units("PCT", "PCT");
    spoil_limits();
    mua_instance_index = 7;
    QVector<QVector<double>> limits;
    BoxAnswerer answerer;
    answerer.expect_dialog(DIALOG, [](QDialog *dialog) {
        pick(dialog, QStringLiteral("kPa"));
        press(dialog, "btnOK");
    });
    for (int i = 0; i < 3; ++i) {
        answerer.expect_dialog(QStringLiteral("Warning"), [&limits](QDialog *box) {
            const TABLE_RECORD &table = g_cfg->table;
            limits.append({table.ooa_bias, table.ooa_tol, table.oot_bias, table.oot_tol,
                           table.soot_bias, table.soot_tol});
            static_cast<QMessageBox *>(box)->button(QMessageBox::Ok)->click();
        });
    }
    m_it->form->btnUnits->click();
    QCOMPARE(answerer.remaining(), 0);
    QCOMPARE(answerer.met().size(), 4);
    for (int i = 1; i < 4; ++i) {
        QCOMPARE(answerer.met()[i].text, W2);
        QCOMPARE(answerer.met()[i].buttons, QStringList("OK"));
        QVERIFY(BoxAnswerer::has_title_bar_only(answerer.met()[i]));
    }
    QCOMPARE(limits, QVector<QVector<double>>({{0.0, -1.0, -1.0, -1.0, -1.0, -1.0},
                                               {0.0, 0.25, 0.0, -1.0, -1.0, -1.0},
                                               {0.0, 0.25, 0.0, 1.0, 0.0, -1.0}}));
    QCOMPARE(g_cfg->table.soot_tol, 2.0);
    QCOMPARE(mua_instance_index, uint16_t(0));
}

void TableUnitsSlot::unlike_units_keep_the_values()
{
    m_it->bind_afresh(1);
    change_units(QStringLiteral("LB-FT"));
    QCOMPARE(g_cfg->long_current.y[1], 50.0);
    QCOMPARE(g_cfg->long_current.y[2], 100.0);
    QCOMPARE(g_cfg->table.eng_units, "LB-FT");
    QCOMPARE(g_cfg->table.oot_tol, 1.0); // of a span that no unit fits
}

void TableUnitsSlot::memory_that_is_missing()
{
    m_it->bind_afresh(1);
    g_cfg->units_loaded = 0;
    memory_missing = true;
    change_units(QStringLiteral(" <empty>"));
    QCOMPARE(g_cfg->table.eng_units, " <empty>");
    QCOMPARE(m_it->form->btnUnits->text(), QString(" <empty>"));
    QCOMPARE(g_cfg->long_current.y[1], 50.0);
    QCOMPARE(g_cfg->table.oot_tol, 1.0);
    g_cfg->units_loaded = 0;
}

void TableUnitsSlot::sampling_goes_on_while_dialog_and_warnings_are_open()
{
    m_it->bind_afresh(1);
    set_units("PCT", "PCT");
    const Watchdog watchdog("change of units while the monitor thread samples");
    QMutex *const mutex = m_it->window->table_mutex();
    int sampled = 0;
    const auto look = [&] {
        sampled += mutex_is_free(mutex, DEADLINE_MS) && m_it->ticks(3) ? 1 : 0;
    };
    BoxAnswerer answerer;
    answerer.expect_dialog(DIALOG, [&](QDialog *dialog) {
        look();
        pick(dialog, QStringLiteral("kPa"));
        press(dialog, "btnOK");
    });
    for (int i = 0; i < 3; ++i) {
        answerer.expect_dialog(QStringLiteral("Warning"), [&](QDialog *box) {
            look();
            static_cast<QMessageBox *>(box)->button(QMessageBox::Ok)->click();
        });
    }
    m_it->form->btnUnits->click();
    QCOMPARE(sampled, 4);
    QVERIFY(m_it->ticks(3));
}

// The dialog over the table information, which holds the mutex throughout: the
// monitor thread waits, queued ticks are worked off, and all goes on after it.
void TableUnitsSlot::in_the_table_information_with_the_mutex_held()
{
    m_it->bind_afresh(1);
    const Watchdog watchdog("units picked while the table information holds the mutex");
    QMutex *const mutex = m_it->window->table_mutex();
    bool held = false;
    QByteArray picked;
    BoxAnswerer answerer;
    answerer.expect_dialog(TABLE_INFORMATION, [&](QDialog *information) {
        units_for_table = 0;
        units_for_sensor = 1;
        TableValueUnitsDialog dialog(information);
        if (dialog.exec() == QDialog::Accepted)
            picked = g_cfg->value_units;
        information->reject();
    });
    answerer.expect_dialog(DIALOG, [&](QDialog *dialog) {
        held = !mutex_is_free(mutex, 0);
        g_cfg->redraw_all = 1;
        m_it->window->update_plot(g_cfg); // as a queued tick does
        pick(dialog, QStringLiteral("PSI"));
        press(dialog, "btnOK");
    });
    m_it->form->actionTable_Info->trigger();
    QVERIFY(held);
    QCOMPARE(picked, QByteArray("PSI"));
    QCOMPARE(g_cfg->table.eng_units, "kPa");
    QVERIFY(mutex_is_free(mutex, DEADLINE_MS));
    QVERIFY(m_it->ticks(3));
}

void TableUnitsSlot::menu_entry_has_no_handler()
{
    m_it->bind_afresh(1);
    QCOMPARE(m_it->form->actionTable_Value_Units->text(), QString("Table Value Units ..."));
    BoxAnswerer answerer;
    m_it->form->actionTable_Value_Units->trigger();
    QVERIFY(QApplication::activeModalWidget() == nullptr);
    QCOMPARE(answerer.met().size(), 0);
    QCOMPARE(g_cfg->table.eng_units, "kPa");
}

WINDOW_TEST(TableUnitsSlot);
#include "test_tableunits.moc"
