// SPDX-License-Identifier: GPL-3.0-or-later
//
// Point count and averaging time: what is refused, what a change of the count
// does to record and rows, and what holds the table mutex meanwhile.
#include <QStandardItemModel>
#include <QtTest>

#include "frame/tablelock.h"
#include "gui/frame/testwindow.h"
#include "support/testmain.h"
#include "window/styles.h"

namespace
{
const QString INVALID_POINTS = QStringLiteral("Invalid Calibration Points");
const QString INVALID_POINTS_TEXT =
    QStringLiteral("A invalid value for Calibration Points was entered\n\n"
                   "Please reenter a Calibration Points value between 2 and 64");
const QString WRONG_VALUE = QStringLiteral("Wrong Value Entered");
const QString WRONG_VALUE_TEXT =
    QStringLiteral("The entered Averaging Time must be between 5 and 30 seconds");

// Neither a number of points nor a time.
const char *const NO_NUMBERS[] = {"",    "10.5", "abc", "1e1",
                                  "0x8", "-8",   "8 8", "99999999999999999999999999999999999999",
                                  "٨",   "\n"};
} // namespace

class CountAndTime : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { m_it = std::make_unique<TestWindow>(); }
    void cleanupTestCase() { m_it.reset(); }
    void refused_count_data();
    void refused_count();
    void count_of_2_and_64();
    void rows_raised_from_5_to_8();
    void count_raised_from_nothing();
    void count_lowered_from_8_to_5();
    void raised_again_copies_the_last_valid_point();
    void same_count_again();
    void count_holds_the_mutex_to_the_end();
    void refused_time_data();
    void refused_time();
    void time_left_unchanged_starts_afresh();
    void number_of_samples();

private:
    void bind(int channel);
    void type_count(const QString &count);
    void leave_time(const QString &text);
    PointInfo *row(int i) const { return m_it->window->row(i); }

    std::unique_ptr<TestWindow> m_it;
};

// None of the points captured: the file may say that they are, and a binding
// leaves the rows' own states.
void CountAndTime::bind(int channel)
{
    m_it->bind_afresh(channel);
    for (int i = 0; i < MAX_POINTS; ++i) {
        g_cfg->table.point_state[i] = POINT_AS_IN_TABLE;
        row(i)->state = row(i)->previous_state = POINT_AS_IN_TABLE;
    }
}

void CountAndTime::type_count(const QString &count)
{
    m_it->form->txtNumPoints->setText(count);
    QTest::keyClick(m_it->form->txtNumPoints, Qt::Key_Return);
}

void CountAndTime::leave_time(const QString &text)
{
    m_it->form->txtAveragingTime->setText(text);
    QTest::keyClick(m_it->form->txtAveragingTime, Qt::Key_Return);
}

void CountAndTime::refused_count_data()
{
    QTest::addColumn<QString>("text");
    for (const char *text : {"1", "65", "0", "128", "65538"}) // 65538 is 2 in 16 bits
        QTest::newRow(text) << text;
    for (const char *text : NO_NUMBERS)
        QTest::addRow("\"%s\"", text) << QString::fromUtf8(text);
}

void CountAndTime::refused_count()
{
    QFETCH(QString, text);
    bind(0);
    QVERIFY(m_it->capture(1, 1300.0, 26.0));
    const TableLock hold(m_it->window->table_mutex());
    const TABLE_RECORD table = g_cfg->table;
    const LONG_TABLE current = g_cfg->long_current;
    g_cfg->table_dirty = 0;
    BoxAnswerer answerer;
    answerer.expect(INVALID_POINTS, INVALID_POINTS_TEXT);
    type_count(text);
    QCOMPARE(answerer.met().size(), 1);
    QVERIFY(BoxAnswerer::has_title_bar_only(answerer.met().first()));
    QCOMPARE(answerer.met().first().buttons, QStringList{"OK"});
    QCOMPARE(m_it->form->txtNumPoints->text(), QString());
    QCOMPARE(g_num_points, int16_t(5));
    QCOMPARE(m_it->rows_shown(), 5);
    QCOMPARE(row(1)->caption(), QStringLiteral("Undo"));
    QCOMPARE(g_captured_points, 1);
    QCOMPARE(g_cfg->table_dirty, uint16_t(0));
    QVERIFY(std::memcmp(&table, &g_cfg->table, sizeof table) == 0);
    QVERIFY(std::memcmp(&current, &g_cfg->long_current, sizeof current) == 0);
}

void CountAndTime::count_of_2_and_64()
{
    const BoxAnswerer answerer;
    bind(0);
    type_count(QStringLiteral("2"));
    QCOMPARE(m_it->rows_shown(), 2);
    QCOMPARE(g_cfg->long_current.num_points, int16_t(2));
    type_count(QStringLiteral("64"));
    QCOMPARE(m_it->rows_shown(), 64);
    QCOMPARE(g_cfg->long_current.num_points, int16_t(2));
    QCOMPARE(g_cfg->long_current.x[63], 1250.0);
}

void CountAndTime::rows_raised_from_5_to_8()
{
    const BoxAnswerer answerer;
    bind(0);
    g_cfg->table_dirty = 0;
    row(5)->set_value_style(QStringLiteral("background-color: red"));
    row(5)->status = 3;
    const TableLock hold(m_it->window->table_mutex());
    g_cfg->redraw_all = 0;
    type_count(QStringLiteral("8"));
    QCOMPARE(g_cfg->redraw_all, uint16_t(1));
    QCOMPARE(g_cfg->table_dirty, uint16_t(1));
    QCOMPARE(g_num_points, int16_t(8));
    QCOMPARE(g_cfg->long_current.num_points, int16_t(5));
    QCOMPARE(g_cfg->table.poly[0].num_points, int16_t(5));
    for (int i = 5; i < 8; ++i) {
        QCOMPARE(row(i)->caption(), QStringLiteral("Capture New"));
        QCOMPARE(row(i)->caption_style(), QLatin1String(STYLE_READY));
        QCOMPARE(row(i)->value_style(), QLatin1String(STYLE_WHITE));
        QCOMPARE(row(i)->value_field()->text(), row(4)->value_field()->text());
        QCOMPARE(row(i)->mv_label()->text(), row(4)->mv_label()->text());
        QCOMPARE(row(i)->state, int32_t(POINT_NEW));
        QCOMPARE(row(i)->status, uint16_t(0));
        QCOMPARE(g_cfg->table.point_state[i], int32_t(POINT_NEW));
        QCOMPARE(g_cfg->long_current.x[i], 5000.0);
        QCOMPARE(g_cfg->table.poly[0].x[i], 5000.0);
        QCOMPARE(g_cfg->long_current.y[i], 100.0);
        QCOMPARE(g_cfg->table.poly[0].y[i], 100.0);
    }
    QCOMPARE(g_cfg->long_current.x[8], 0.0);
    QCOMPARE(g_cfg->table.point_state[8], int32_t(POINT_AS_IN_TABLE));
}

// There is no last point to copy: the new rows hold zero, and what lies before
// the first element is not read.
void CountAndTime::count_raised_from_nothing()
{
    {
        BoxAnswerer answerer;
        answerer.expect_title(QStringLiteral("Update Data"));
        answerer.expect_dialog(QStringLiteral("Transducer Calibration Configuration"),
                               [](QDialog *dialog) { dialog->done(QDialog::Accepted); });
        bind(3);
    }
    const BoxAnswerer answerer;
    QCOMPARE(g_cfg->long_current.num_points, int16_t(0));
    const TableLock hold(m_it->window->table_mutex());
    // Before x lies the former calibration, before y the last x.
    std::memset(static_cast<void *>(g_cfg->long_previous.reserved_7184), 0x44,
                sizeof g_cfg->long_previous.reserved_7184);
    g_cfg->long_current.x[63] = 777.0;
    g_cfg->table.poly[0].coeffs[17] = 777.0;
    g_cfg->table.poly[0].x[63] = 777.0;
    type_count(QStringLiteral("4"));
    QCOMPARE(m_it->rows_shown(), 4);
    QCOMPARE(g_num_points, int16_t(4));
    QCOMPARE(g_cfg->long_current.num_points, int16_t(0));
    for (int i = 0; i < 4; ++i) {
        QCOMPARE(g_cfg->long_current.x[i], 0.0);
        QCOMPARE(g_cfg->long_current.y[i], 0.0);
        QCOMPARE(g_cfg->table.poly[0].x[i], 0.0);
        QCOMPARE(g_cfg->table.poly[0].y[i], 0.0);
        QCOMPARE(row(i)->state, int32_t(POINT_NEW));
        QCOMPARE(g_cfg->table.point_state[i], int32_t(POINT_NEW));
        QCOMPARE(row(i)->caption(), QStringLiteral("Capture New"));
        QCOMPARE(row(i)->value_field()->text(), QStringLiteral("  0.0000"));
        QCOMPARE(row(i)->mv_label()->text(), QStringLiteral("  0.0000"));
    }
    QCOMPARE(g_cfg->table_dirty, uint16_t(1));
    m_it->forget_work();
}

void CountAndTime::count_lowered_from_8_to_5()
{
    const BoxAnswerer answerer;
    bind(0);
    type_count(QStringLiteral("8"));
    for (int i = 5; i < 8; ++i)
        QVERIFY(m_it->capture(i, 5000.0 + 100.0 * i, 100.0 + i));
    QCOMPARE(g_cfg->long_current.num_points, int16_t(8));
    g_cfg->table_dirty = 0;
    const TableLock hold(m_it->window->table_mutex());
    type_count(QStringLiteral("5"));
    QCOMPARE(g_cfg->long_current.num_points, int16_t(5));
    QCOMPARE(g_cfg->table.poly[0].num_points, int16_t(5));
    QCOMPARE(g_num_points, int16_t(5));
    QCOMPARE(g_cfg->table_dirty, uint16_t(1));
    QCOMPARE(g_cfg->redraw_all, uint16_t(1));
    QCOMPARE(m_it->rows_shown(), 5);
    for (int i = 0; i < MAX_POINTS; ++i) {
        QCOMPARE(g_cfg->table.point_state[i], int32_t(i < 5 ? POINT_AS_IN_TABLE : POINT_NEW));
        QCOMPARE(row(i)->state == POINT_NEW, i >= 5);
    }
    QCOMPARE(g_cfg->long_current.x[6], 5600.0); // the values stay in the arrays
    QCOMPARE(g_cfg->table.poly[0].y[7], 107.0);
}

void CountAndTime::raised_again_copies_the_last_valid_point()
{
    const BoxAnswerer answerer;
    bind(0);
    type_count(QStringLiteral("3"));
    QCOMPARE(g_cfg->long_current.x[3], 3750.0);
    type_count(QStringLiteral("5"));
    for (int i = 3; i < 5; ++i) {
        QCOMPARE(g_cfg->long_current.x[i], 2500.0);
        QCOMPARE(g_cfg->long_current.y[i], 50.0);
        QCOMPARE(g_cfg->table.poly[0].x[i], 2500.0);
        QCOMPARE(row(i)->caption(), QStringLiteral("Capture New"));
    }
    QCOMPARE(g_cfg->long_current.num_points, int16_t(3));
}

// Rows are drawn anew from their states, and nothing counts as changed.
void CountAndTime::same_count_again()
{
    const BoxAnswerer answerer;
    bind(0);
    QVERIFY(m_it->capture(0, 3.0, 0.06));
    row(0)->set_caption(QStringLiteral("Capture"));
    row(1)->set_caption(QStringLiteral("Undo"));
    g_cfg->table_dirty = 0;
    const TableLock hold(m_it->window->table_mutex());
    g_cfg->redraw_all = 0;
    type_count(QStringLiteral("5"));
    QCOMPARE(g_captured_points, 0);
    QCOMPARE(g_cfg->table_dirty, uint16_t(0));
    QCOMPARE(g_cfg->redraw_all, uint16_t(0));
    QCOMPARE(row(0)->caption(), QStringLiteral("Undo"));
    QCOMPARE(row(1)->caption(), QStringLiteral("Capture"));
    g_cfg->table_dirty = 1;
    type_count(QStringLiteral("5"));
    QCOMPARE(g_cfg->table_dirty, uint16_t(1));
}

// The new row's field is written in its midst, the third type goes off at its end.
void CountAndTime::count_holds_the_mutex_to_the_end()
{
    const BoxAnswerer answerer;
    bind(0);
    auto *model = qobject_cast<QStandardItemModel *>(m_it->form->cboCalType->model());
    m_it->window->set_range_item_enabled(true);
    QStringList seams;
    int free = 0;
    QObject probe;
    connect(row(5)->value_field(), &QLineEdit::textChanged, &probe, [&] {
        seams += QStringLiteral("row");
        free += m_it->mutex_is_free() ? 1 : 0;
    });
    connect(model, &QStandardItemModel::itemChanged, &probe, [&] {
        seams += QStringLiteral("type");
        free += m_it->mutex_is_free() ? 1 : 0;
    });
    type_count(QStringLiteral("6"));
    QCOMPARE(seams, (QStringList{"row", "type"}));
    QCOMPARE(free, 0);
    QVERIFY(m_it->mutex_is_free());
}

void CountAndTime::refused_time_data()
{
    QTest::addColumn<QString>("text");
    for (const char *text : {"4", "31", "0", "100"})
        QTest::newRow(text) << text;
    for (const char *text : NO_NUMBERS)
        QTest::addRow("\"%s\"", text) << QString::fromUtf8(text);
}

// The field's signals are blocked, so the box that takes the focus from it
// brings no second one.
void CountAndTime::refused_time()
{
    QFETCH(QString, text);
    bind(0);
    relaxed_store(g_fifo_size, uint32_t(70));
    m_it->form->txtAveragingTime->setFocus();
    BoxAnswerer answerer;
    bool blocked = false;
    answerer.expect_dialog(WRONG_VALUE, [&](QDialog *dialog) {
        blocked = m_it->form->txtAveragingTime->signalsBlocked();
        QCOMPARE(qobject_cast<QMessageBox *>(dialog)->text(), WRONG_VALUE_TEXT);
        dialog->accept();
    });
    leave_time(text);
    QCOMPARE(answerer.met().size(), 1);
    QVERIFY(BoxAnswerer::has_title_bar_only(answerer.met().first()));
    QVERIFY(blocked);
    QVERIFY(!m_it->form->txtAveragingTime->signalsBlocked());
    QCOMPARE(m_it->form->txtAveragingTime->text(), QStringLiteral("10"));
    QCOMPARE(relaxed_load(g_fifo_size), uint32_t(100));
}

void CountAndTime::time_left_unchanged_starts_afresh()
{
    const BoxAnswerer answerer;
    bind(0);
    QVERIFY(m_it->ticks(2)); // the binding's own fresh start is over
    const TableLock hold(m_it->window->table_mutex());
    QCOMPARE(relaxed_load(g_monitor_enabled), uint8_t(1));
    leave_time(QStringLiteral("10"));
    QCOMPARE(relaxed_load(g_monitor_enabled), uint8_t(0));
    QCOMPARE(relaxed_load(g_fifo_size), uint32_t(100));
}

// The window of the statistics is as long as the time, as soon as a pass has run.
void CountAndTime::number_of_samples()
{
    const BoxAnswerer answerer;
    bind(0);
    for (const int seconds : {5, 30, 10}) {
        leave_time(QString::number(seconds));
        QCOMPARE(m_it->form->txtAveragingTime->text(), QString::number(seconds));
        QVERIFY(m_it->ticks(2));
        const TableLock hold(m_it->window->table_mutex());
        QCOMPARE(relaxed_load(g_fifo_size), static_cast<uint32_t>(10 * seconds));
        QCOMPARE(g_fifo_y.size, static_cast<uint32_t>(10 * seconds));
        QCOMPARE(g_fifo_y.count, g_fifo_y.size);
    }
}

WINDOW_TEST(CountAndTime);
#include "test_countandtime.moc"
