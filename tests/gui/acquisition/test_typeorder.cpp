// SPDX-License-Identifier: GPL-3.0-or-later
//
// Tables of each type bound after each other. A binding moves the combo of the
// type, whose slot then runs in the midst of it, on the record just published;
// for POLY_RANGE that puts range 0 in work, whichever the table began with.
#include <iterator>

#include <QtTest>

#include "frame/tablelock.h"
#include "gui/acquisition/combowatch.h"
#include "host/operations.h"
#include "hostsim/runtime/tablefile.h"
#include "support/testmain.h"

namespace
{

enum { INTERP = 0, POLY = 4, RANGES_2_AND_5 = 5, RANGES_0_AND_3 = 10, UNKNOWN = 11 };

QByteArray description()
{
    return TestWindow::description() + R"(
channel 10
  label "Channel Ten"
  units kPa
  table ten
  record POLY_RANGE
  range 0
  points 0:0 1000:20 2000:40 3000:60
  fit 1
  range 3
  points 2000:40 3000:60 4000:80
  fit 2
  sensor kPa 0 100 MODEL10 SERIAL10
channel 11
  label "Channel Eleven"
  units kPa
  table eleven
  record INTERP
  points 0:0 2500:50 5000:100
  sensor kPa 0 100 MODEL11 SERIAL11
)";
}

// As an archive leaves it whose record has no type and whose .tbl is gone.
void make_type_unknown()
{
    const QString tbl = TestWindow::table_path("eleven", ".tbl");
    static TABLE_RECORD table;
    std::memset(&table, 0, sizeof table);
    if (!QFile::exists(tbl))
        return;
    if (read_table("/cell/tables/eleven.tbl", &table) != 0)
        qFatal("no table of channel 11");
    table.table_type = TABLE_TYPE_UNKNOWN;
    hostsim::BlockInfo info;
    info.who = "J. Doe";
    info.when = "2026-03-01T09:30:00Z";
    info.program = "1.0.0";
    info.save_type = table.last_save_type = SAVE_ADJUSTED;
    write_file(TestWindow::table_path("eleven", ".save"),
               QByteArray::fromStdString(hostsim::write_block(table, info)));
    QFile::remove(tbl);
}

// The channels bound one after the other, and then: the slots that ran, the
// combos, the record.
struct Row {
    int first;
    int second;
    const char *slots_run;
    const char *combos;
    const char *record;
};

constexpr char INTERP_OF_5[] =
    "INTERP on | 1-4: 1 off | range 0 off | third off | 0 coefficients in a hidden frame";
constexpr char POLY_OF_6[] = "POLY on | 1-5: 2 on | range 0 off | third on | 3 coefficients";
constexpr char RANGE_OF_4[] = "POLY_RANGE on | 1-3: 3 on | range 0 on | third on | 2 coefficients";
constexpr char RANGE_OF_3[] = "POLY_RANGE on | 1-2: 2 on | range 0 on | third on | 2 coefficients";
// A type that is none of these empties the degrees and moves nothing else.
constexpr char NO_DEGREES_INTERP[] =
    "INTERP on | none off | range 0 off | third off | 0 coefficients in a hidden frame";
constexpr char NO_DEGREES_POLY[] = "POLY on | none on | range 0 off | third on | 3 coefficients";
constexpr char NO_DEGREES_RANGE[] =
    "POLY_RANGE on | none on | range 0 on | third on | 2 coefficients";

// The points of range 2 stay in the long table where the slot has put range 0 in
// work; a table of no type keeps the points of the one before.
// clang-format off
constexpr Row ROWS[] = {
    {INTERP, INTERP, "", INTERP_OF_5, "type 0 range 0 | 5 points 5 rows | field 5 | fit -"},
    {INTERP, POLY, "type 1", POLY_OF_6, "type 1 range 0 | 6 points 6 rows | field 6 | fit 2"},
    {INTERP, RANGES_0_AND_3, "type 2", RANGE_OF_4, "type 7 range 0 | 4 points 4 rows | field 4 | fit 3"},
    {INTERP, RANGES_2_AND_5, "type 2", RANGE_OF_3, "type 7 range 0 | 3 points 3 rows | field 0 | fit 2"},
    {INTERP, UNKNOWN, "", NO_DEGREES_INTERP, "type 65535 range 0 | 5 points 5 rows | field 3 | fit -"},
    {POLY, INTERP, "type 0", INTERP_OF_5, "type 0 range 0 | 5 points 5 rows | field 5 | fit 2"},
    {POLY, POLY, "", POLY_OF_6, "type 1 range 0 | 6 points 6 rows | field 6 | fit 2"},
    {POLY, RANGES_0_AND_3, "type 2", RANGE_OF_4, "type 7 range 0 | 4 points 4 rows | field 4 | fit 3"},
    {POLY, RANGES_2_AND_5, "type 2", RANGE_OF_3, "type 7 range 0 | 3 points 3 rows | field 0 | fit 2"},
    {POLY, UNKNOWN, "", NO_DEGREES_POLY, "type 65535 range 0 | 6 points 6 rows | field 3 | fit 2"},
    {RANGES_0_AND_3, INTERP, "type 0", INTERP_OF_5, "type 0 range 0 | 5 points 5 rows | field 5 | fit 3"},
    {RANGES_0_AND_3, POLY, "type 1", POLY_OF_6, "type 1 range 0 | 6 points 6 rows | field 6 | fit 2"},
    {RANGES_0_AND_3, RANGES_0_AND_3, "", RANGE_OF_4, "type 7 range 0 | 4 points 4 rows | field 4 | fit 3"},
    {RANGES_0_AND_3, RANGES_2_AND_5, "", RANGE_OF_3, "type 7 range 2 | 3 points 3 rows | field 3 | fit 2"},
    {RANGES_0_AND_3, UNKNOWN, "", NO_DEGREES_RANGE, "type 65535 range 0 | 4 points 4 rows | field 3 | fit 3"},
    {RANGES_2_AND_5, INTERP, "type 0", INTERP_OF_5, "type 0 range 0 | 5 points 5 rows | field 5 | fit 2"},
    {RANGES_2_AND_5, POLY, "type 1", POLY_OF_6, "type 1 range 0 | 6 points 6 rows | field 6 | fit 2"},
    {RANGES_2_AND_5, RANGES_0_AND_3, "", RANGE_OF_4, "type 7 range 0 | 4 points 4 rows | field 4 | fit 3"},
    {RANGES_2_AND_5, RANGES_2_AND_5, "", RANGE_OF_3, "type 7 range 2 | 3 points 3 rows | field 3 | fit 2"},
    {RANGES_2_AND_5, UNKNOWN, "", NO_DEGREES_RANGE, "type 65535 range 0 | 3 points 3 rows | field 3 | fit 2"},
    {UNKNOWN, INTERP, "", INTERP_OF_5, "type 0 range 0 | 5 points 5 rows | field 5 | fit -"},
    {UNKNOWN, POLY, "type 1", POLY_OF_6, "type 1 range 0 | 6 points 6 rows | field 6 | fit 2"},
    {UNKNOWN, RANGES_0_AND_3, "type 2", RANGE_OF_4, "type 7 range 0 | 4 points 4 rows | field 4 | fit 3"},
    {UNKNOWN, RANGES_2_AND_5, "type 2", RANGE_OF_3, "type 7 range 0 | 3 points 3 rows | field 0 | fit 2"},
    {UNKNOWN, UNKNOWN, "", NO_DEGREES_INTERP, "type 65535 range 0 | 0 points 0 rows | field 3 | fit -"},
};
// clang-format on

} // namespace

class TypeOrder : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanupTestCase() { m_it.reset(); }
    void each_type_after_each_other_data();
    void each_type_after_each_other();
    void range_combo_left_at_another_range();

private:
    void start_from_interp();
    void bind(int channel);

    std::unique_ptr<TestWindow> m_it;
};

void TypeOrder::initTestCase()
{
    m_it = std::make_unique<TestWindow>(description());
    make_type_unknown();
}

// An INTERP table on show and nothing in the long table, whatever ran before.
void TypeOrder::start_from_interp()
{
    Ui::MainWindow *form = m_it->form;
    for (QComboBox *combo : {form->cboCalType, form->cboOrderOfPolynomial, form->cboPolyRangeIndex})
        combo->blockSignals(true);
    form->cboCalType->setCurrentIndex(0);
    form->cboOrderOfPolynomial->clear();
    form->cboPolyRangeIndex->setCurrentIndex(0);
    for (QComboBox *combo : {form->cboCalType, form->cboOrderOfPolynomial, form->cboPolyRangeIndex})
        combo->blockSignals(false);
    bind(INTERP);
    g_poly_order_text.clear();
    std::memset(static_cast<void *>(&g_cfg->long_current), 0, sizeof g_cfg->long_current);
}

// Also a channel that is bound already.
void TypeOrder::bind(int channel)
{
    m_it->forget_work();
    {
        const QSignalBlocker blocker(m_it->form->cboCurrentChannel);
        m_it->form->cboCurrentChannel->setCurrentIndex(0);
    }
    m_it->pick(channel);
}

void TypeOrder::each_type_after_each_other_data()
{
    const QMap<int, QString> names = {{INTERP, "INTERP"},
                                      {POLY, "POLY"},
                                      {RANGES_0_AND_3, "POLY_RANGE 0 and 3"},
                                      {RANGES_2_AND_5, "POLY_RANGE 2 and 5"},
                                      {UNKNOWN, "65535"}};
    const auto row = test_columns<int>("row");
    for (int i = 0; i < int(std::size(ROWS)); ++i)
        row(qPrintable(names[ROWS[i].second] + QStringLiteral(" after ") + names[ROWS[i].first]),
            i);
}

void TypeOrder::each_type_after_each_other()
{
    QFETCH(int, row);
    const BoxAnswerer answerer;
    const TableLock hold(m_it->window->table_mutex()); // no pass, and no tick is drawn
    start_from_interp();
    bind(ROWS[row].first);
    const ComboWatch watch(m_it->form);
    g_cal_type_changed = 0;
    bind(ROWS[row].second);
    QCOMPARE(watch.slots_run(), QString::fromLatin1(ROWS[row].slots_run));
    QCOMPARE(watch.combos(), QString::fromLatin1(ROWS[row].combos));
    QCOMPARE(watch.record(), QString::fromLatin1(ROWS[row].record) +
                                 QStringLiteral(" | changed 1 dirty 0 redraw 1"));
    QCOMPARE(m_it->rows_shown(), int(g_num_points));
}

// Range 5 was in work when the channel was left, so its combo moves too, and its
// slot builds the long table from range 0, which holds nothing.
void TypeOrder::range_combo_left_at_another_range()
{
    const BoxAnswerer answerer;
    const TableLock hold(m_it->window->table_mutex());
    start_from_interp();
    bind(RANGES_2_AND_5);
    m_it->form->cboPolyRangeIndex->setCurrentIndex(5);
    QCOMPARE(g_cfg->table.poly_range_index, int16_t(5));
    bind(INTERP);
    const ComboWatch watch(m_it->form);
    QCOMPARE(watch.combos(), QStringLiteral("INTERP on | 1-4: 1 off | range 5 off | third off | "
                                            "0 coefficients in a hidden frame"));
    bind(RANGES_2_AND_5);
    QCOMPARE(watch.slots_run(), QStringLiteral("range 0, type 2"));
    QCOMPARE(watch.combos(), QString::fromLatin1(RANGE_OF_3));
    QCOMPARE(watch.record(), QStringLiteral("type 7 range 0 | 0 points 0 rows | field 0 | fit 2 | "
                                            "changed 1 dirty 0 redraw 0"));
    QCOMPARE(m_it->rows_shown(), 0);
}

WINDOW_TEST(TypeOrder);
#include "test_typeorder.moc"
