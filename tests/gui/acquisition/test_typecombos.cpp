// SPDX-License-Identifier: GPL-3.0-or-later
//
// The combos of type, degree and range as a technician moves them, and when
// their signals are blocked.
#include <QtTest>

#include "frame/tablelock.h"
#include "gui/acquisition/combowatch.h"
#include "host/operations.h"
#include "support/testmain.h"

class TypeCombos : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { m_it = std::make_unique<TestWindow>(); }
    void cleanupTestCase() { m_it.reset(); }
    void init();
    void cleanup();
    void poly_of_a_table_without_a_second_range_takes_the_last_degree();
    void poly_takes_the_degree_by_the_points_of_the_second_range();
    void poly_of_two_points_moves_no_degree();
    void interp_after_poly();
    void range_table_after_poly();
    void poly_after_range_table_keeps_the_range();
    void third_type_is_off_for_interp_alone();
    void degree_of_the_range_in_work();
    void degree_of_a_point_table_sets_no_coefficients();
    void range_with_fewer_points_moves_the_degree();
    void range_with_more_points_moves_no_degree();
    void range_without_points_keeps_the_next_fit_from_running();
    void degrees_on_offer_data();
    void degrees_on_offer();
    void polynomial_without_points_offers_what_is_stored();
    void degree_not_on_the_list_is_the_last();
    void degree_beyond_what_a_range_holds_data();
    void degree_beyond_what_a_range_holds();
    void degree_without_points_is_bounded_too();
    void plot_and_rows_keep_their_place();
    void degree_alone_is_blocked_while_the_controls_follow_the_record();
    void degree_stays_blocked_behind_the_slot_of_the_type_data();
    void degree_stays_blocked_behind_the_slot_of_the_type();

private:
    void bind(int channel);
    void choose_type(int index) { m_it->form->cboCalType->setCurrentIndex(index); }
    void bind_ranges_at(int range);
    QString degree() const { return m_it->form->cboOrderOfPolynomial->currentText(); }

    std::unique_ptr<TestWindow> m_it;
    std::unique_ptr<TableLock> m_hold; // no pass, and no tick is drawn
    std::unique_ptr<BoxAnswerer> m_no_box;
    std::unique_ptr<ComboWatch> m_watch;
};

void TypeCombos::init()
{
    m_hold = std::make_unique<TableLock>(m_it->window->table_mutex());
    m_no_box = std::make_unique<BoxAnswerer>();
    m_watch = std::make_unique<ComboWatch>(m_it->form);
}

void TypeCombos::cleanup()
{
    QVERIFY(m_no_box->met().isEmpty());
    m_watch.reset();
    m_no_box.reset();
    m_hold.reset();
}

void TypeCombos::bind(int channel)
{
    m_it->bind_afresh(channel);
    m_it->window->update_plot(g_cfg);
    g_cal_type_changed = 0;
    g_cfg->table_dirty = 1;
    m_watch->forget();
}

void TypeCombos::bind_ranges_at(int range)
{
    bind(5);
    {
        const QSignalBlocker blocker(m_it->form->cboPolyRangeIndex);
        m_it->form->cboPolyRangeIndex->setCurrentIndex(0);
    }
    m_it->form->cboPolyRangeIndex->setCurrentIndex(range);
    g_cal_type_changed = 0;
    g_cfg->table_dirty = 1;
    m_watch->forget();
}

// The first drawing takes the stored coefficients, here the straight line.
void TypeCombos::poly_of_a_table_without_a_second_range_takes_the_last_degree()
{
    bind(0);
    relaxed_store(g_monitor_run, uint16_t(0));
    choose_type(1);
    QCOMPARE(relaxed_load(g_monitor_run), uint16_t(1));
    QCOMPARE(m_watch->slots_run(), QStringLiteral("degree 3, type 1"));
    QCOMPARE(m_watch->combos(),
             QStringLiteral("POLY on | 1-4: 4 on | range 0 off | third on | 5 coefficients"));
    QCOMPARE(m_watch->record(), QStringLiteral("type 1 range 0 | 5 points 5 rows | field 5 | "
                                               "fit 4 | changed 0 dirty 0 redraw 0"));
    QCOMPARE(g_cfg->table.poly[0].coeffs[1], 0.02);
}

// Whichever range is in work.
void TypeCombos::poly_takes_the_degree_by_the_points_of_the_second_range()
{
    bind(0);
    g_cfg->table.poly[1].num_points = 3;
    choose_type(1);
    QCOMPARE(m_watch->slots_run(), QStringLiteral("degree 1, type 1"));
    QCOMPARE(m_watch->combos(),
             QStringLiteral("POLY on | 1-4: 2 on | range 0 off | third on | 3 coefficients"));
    QCOMPARE(m_watch->record(), QStringLiteral("type 1 range 0 | 5 points 5 rows | field 5 | "
                                               "fit 2 | changed 0 dirty 0 redraw 0"));
    QCOMPARE(g_cfg->table.poly[0].num_coeffs, int16_t(3));
}

void TypeCombos::poly_of_two_points_moves_no_degree()
{
    bind(0);
    m_it->form->txtNumPoints->setText(QStringLiteral("2"));
    QTest::keyClick(m_it->form->txtNumPoints, Qt::Key_Return);
    g_cfg->redraw_all = 0;
    choose_type(1);
    QCOMPARE(m_watch->slots_run(), QStringLiteral("type 1"));
    QCOMPARE(m_watch->record(), QStringLiteral("type 1 range 0 | 2 points 2 rows | field 2 | "
                                               "fit 1 | changed 1 dirty 0 redraw 1"));
}

void TypeCombos::interp_after_poly()
{
    bind(4);
    choose_type(0);
    QCOMPARE(m_watch->slots_run(), QStringLiteral("degree 0, type 0"));
    QCOMPARE(m_watch->combos(), QStringLiteral("INTERP on | 1-5: 1 off | range 0 off | third off | "
                                               "0 coefficients in a hidden frame"));
    QCOMPARE(m_watch->record(), QStringLiteral("type 0 range 0 | 6 points 6 rows | field 6 | "
                                               "fit 1 | changed 1 dirty 0 redraw 0"));
    QCOMPARE(g_cfg->table.poly[0].num_coeffs, int16_t(3)); // the polynomial's own
}

void TypeCombos::range_table_after_poly()
{
    bind(4);
    g_cfg->table.poly_range_index = 3;
    choose_type(2);
    QCOMPARE(m_watch->slots_run(), QStringLiteral("degree 4, type 2"));
    QCOMPARE(m_watch->combos(),
             QStringLiteral("POLY_RANGE on | 1-5: 5 on | range 0 on | third on | 6 coefficients"));
    QCOMPARE(m_watch->record(), QStringLiteral("type 7 range 0 | 6 points 6 rows | field 6 | "
                                               "fit 5 | changed 0 dirty 0 redraw 0"));
}

void TypeCombos::poly_after_range_table_keeps_the_range()
{
    bind_ranges_at(5);
    choose_type(1);
    QCOMPARE(m_watch->slots_run(), QStringLiteral("type 1"));
    QCOMPARE(m_watch->combos(),
             QStringLiteral("POLY on | 1-3: 3 on | range 5 off | third on | 4 coefficients"));
    QCOMPARE(m_watch->record(), QStringLiteral("type 1 range 5 | 4 points 4 rows | field 4 | "
                                               "fit 3 | changed 1 dirty 0 redraw 1"));
}

void TypeCombos::third_type_is_off_for_interp_alone()
{
    QComboBox *type = m_it->form->cboCalType;
    bind(0);
    type->setFocus();
    QVERIFY(!m_watch->third_type_can_be_picked());
    QTest::keyClick(type, Qt::Key_End); // the last that can be picked
    QCOMPARE(type->currentText(), QStringLiteral("POLY"));
    QVERIFY(m_watch->third_type_can_be_picked());
    QTest::keyClick(type, Qt::Key_End);
    QCOMPARE(type->currentText(), QStringLiteral("POLY_RANGE"));
    choose_type(0);
    QVERIFY(!m_watch->third_type_can_be_picked());
    QVERIFY(type->model()->flags(type->model()->index(1, 0)).testFlag(Qt::ItemIsEnabled));
}

void TypeCombos::degree_of_the_range_in_work()
{
    bind_ranges_at(5);
    const int16_t first = g_cfg->table.poly[0].num_coeffs;
    m_it->form->cboOrderOfPolynomial->setCurrentIndex(0);
    QCOMPARE(m_watch->slots_run(), QStringLiteral("degree 0"));
    QCOMPARE(g_cfg->table.poly[5].num_coeffs, int16_t(2));
    QCOMPARE(g_cfg->table.poly[0].num_coeffs, first);
    QCOMPARE(m_watch->record(), QStringLiteral("type 7 range 5 | 4 points 4 rows | field 4 | "
                                               "fit 1 | changed 0 dirty 0 redraw 0"));
    QVERIFY(m_watch->combos().endsWith(QStringLiteral("2 coefficients")));
}

void TypeCombos::degree_of_a_point_table_sets_no_coefficients()
{
    bind(0);
    m_it->form->cboOrderOfPolynomial->setCurrentIndex(2);
    QCOMPARE(g_cfg->table.poly[0].num_coeffs, int16_t(5)); // as many as points
    QCOMPARE(g_poly_order_text, QStringLiteral("3"));
    QCOMPARE(g_cfg->table_dirty, uint16_t(0));
}

// The degree's slot runs with the new range and the long table of the old one.
void TypeCombos::range_with_fewer_points_moves_the_degree()
{
    bind_ranges_at(5);
    m_it->form->cboPolyRangeIndex->setCurrentIndex(2);
    QCOMPARE(m_watch->slots_run(), QStringLiteral("degree 1, range 2"));
    QCOMPARE(m_watch->combos(),
             QStringLiteral("POLY_RANGE on | 1-2: 2 on | range 2 on | third on | 3 coefficients"));
    QCOMPARE(m_watch->record(), QStringLiteral("type 7 range 2 | 3 points 3 rows | field 3 | "
                                               "fit 2 | changed 0 dirty 0 redraw 0"));
    QVERIFY(qAbs(g_cfg->table.poly[2].coeffs[1] - 0.02) < 1e-9);
}

void TypeCombos::range_with_more_points_moves_no_degree()
{
    bind_ranges_at(2);
    m_it->form->cboPolyRangeIndex->setCurrentIndex(5);
    QCOMPARE(m_watch->slots_run(), QStringLiteral("range 5"));
    QCOMPARE(m_watch->combos(),
             QStringLiteral("POLY_RANGE on | 1-3: 3 on | range 5 on | third on | 4 coefficients"));
    QCOMPARE(m_watch->record(), QStringLiteral("type 7 range 5 | 4 points 4 rows | field 4 | "
                                               "fit 3 | changed 0 dirty 0 redraw 0"));
}

// There is nothing to fit, so the change of range is still to be drawn: the next
// fit takes what is stored.
void TypeCombos::range_without_points_keeps_the_next_fit_from_running()
{
    bind_ranges_at(5);
    m_it->form->cboPolyRangeIndex->setCurrentIndex(1);
    QCOMPARE(g_cfg->table.poly[1].num_points, int16_t(0));
    QCOMPARE(g_cal_type_changed, int16_t(1));
}

void TypeCombos::degrees_on_offer_data()
{
    test_columns<int, int, int>("type", "points", "highest");
    const struct {
        const char *name;
        int type;
        QVector<QPair<int, int>> highest;
    } types[] = {
        {"INTERP", TABLE_INTERP, {{0, 0}, {1, 0}, {2, 1}, {7, 6}, {8, 7}, {9, 7}, {64, 7}}},
        {"POLY", TABLE_POLY, {{1, 0}, {2, 1}, {7, 6}, {8, 7}, {9, 7}, {64, 7}}},
        {"POLY_RANGE", TABLE_POLY_RANGE, {{0, 0}, {2, 1}, {8, 7}, {9, 8}, {64, 63}}},
    };
    for (const auto &type : types) {
        for (const auto &pair : type.highest)
            QTest::addRow("%s of %d points", type.name, pair.first)
                << type.type << pair.first << pair.second;
    }
}

void TypeCombos::degrees_on_offer()
{
    QFETCH(int, type);
    QFETCH(int, points);
    QFETCH(int, highest);
    bind(0);
    g_cfg->table.table_type = static_cast<uint16_t>(type);
    g_cfg->table.poly[0].num_points = static_cast<int16_t>(points);
    m_it->window->sync_type_controls(g_cfg);
    QStringList expected;
    for (int i = 1; i <= highest; ++i)
        expected += QString::number(i);
    QCOMPARE(m_watch->degrees(), expected);
    const QString chosen[] = {QStringLiteral("1"), // INTERP
                              expected.contains(QStringLiteral("4")) ? QStringLiteral("4")
                              : expected.isEmpty()                   ? QString()
                                                                     : expected.last(),
                              expected.isEmpty() ? QString() : expected.last()};
    if (!expected.isEmpty())
        QCOMPARE(degree(), chosen[type == TABLE_POLY_RANGE ? 2 : type]);
    if (type != TABLE_INTERP)
        QCOMPARE(g_poly_order_text, degree());
}

void TypeCombos::polynomial_without_points_offers_what_is_stored()
{
    bind(4);
    g_cfg->table.poly[0].num_points = 0;
    g_cfg->table.poly[0].num_coeffs = 10; // beyond 7 here
    m_it->window->sync_type_controls(g_cfg);
    QCOMPARE(m_watch->degrees().size(), 9);
    QCOMPARE(degree(), QStringLiteral("9"));
}

void TypeCombos::degree_not_on_the_list_is_the_last()
{
    bind(4);
    g_cfg->table.poly[0].num_coeffs = 12;
    m_it->window->sync_type_controls(g_cfg);
    QCOMPARE(degree(), QStringLiteral("5"));
    g_cfg->table.poly[0].num_coeffs = 0;
    m_it->window->sync_type_controls(g_cfg);
    QCOMPARE(degree(), QStringLiteral("5"));
}

void TypeCombos::degree_beyond_what_a_range_holds_data()
{
    const auto row = test_columns<int, int>("wanted", "coeffs");
    row("16", 16, 17);
    row("17", 17, 18);
    row("18", 18, 18);
    row("62", 62, 18);
}

// 18 coefficients are fitted and stored, and nothing behind them is touched.
void TypeCombos::degree_beyond_what_a_range_holds()
{
    QFETCH(int, wanted);
    QFETCH(int, coeffs);
    bind(8);
    choose_type(1);
    choose_type(2);
    QCOMPARE(m_watch->degrees().size(), 63);
    QCOMPARE(degree(), QStringLiteral("63"));
    for (int i = 0; i < 64; ++i) { // the load of so many points has zeroed most of them
        g_cfg->table.poly[0].x[i] = 100.0 * i;
        g_cfg->table.poly[0].y[i] = 2.0 * i;
    }
    g_cal_type_changed = 0;
    const POLY_RANGE_RECORD before = g_cfg->table.poly[0];
    m_it->form->cboOrderOfPolynomial->setCurrentIndex(wanted - 1);
    const POLY_RANGE_RECORD &range = g_cfg->table.poly[0];
    QCOMPARE(range.num_coeffs, static_cast<int16_t>(coeffs));
    QVERIFY(std::memcmp(range.x, before.x, sizeof range.x) == 0);
    QVERIFY(std::memcmp(range.y, before.y, sizeof range.y) == 0);
    QCOMPARE(range.num_points, int16_t(64));
    for (int i = 0; i < 64; ++i)
        QVERIFY(qAbs(poly(range.coeffs, range.num_coeffs, range.x[i]) - range.y[i]) < 1e-6);
    QVERIFY(m_watch->combos().endsWith(QStringLiteral("| 8 coefficients")));
}

void TypeCombos::degree_without_points_is_bounded_too()
{
    bind(8);
    choose_type(1);
    choose_type(2);
    g_cfg->table.poly[0].num_points = 0; // nothing to fit
    m_it->form->cboOrderOfPolynomial->setCurrentIndex(40);
    QCOMPARE(g_cfg->table.poly[0].num_coeffs, int16_t(18));
}

// Whether coefficients are shown or not, and however many.
void TypeCombos::plot_and_rows_keep_their_place()
{
    const auto places = [this] {
        QCoreApplication::sendPostedEvents(nullptr, QEvent::LayoutRequest);
        return QVector<QRect>{m_it->form->dataPlot->geometry(), m_it->form->scrollArea->geometry(),
                              m_it->form->coeffFrame->geometry()};
    };
    bind(8);
    const QVector<QRect> before = places();
    choose_type(1);
    QCOMPARE(places(), before);
    m_it->form->cboOrderOfPolynomial->setCurrentIndex(0);
    QCOMPARE(places(), before);
    choose_type(0);
    QCOMPARE(places(), before);
}

void TypeCombos::degree_alone_is_blocked_while_the_controls_follow_the_record()
{
    bind(0);
    g_cfg->table.table_type = TABLE_POLY;
    m_it->window->sync_type_controls(g_cfg);
    QCOMPARE(m_watch->slots_run(), QStringLiteral("type 1"));
    m_watch->forget();
    g_cfg->table.poly[0].num_coeffs = 2;
    m_it->window->sync_type_controls(g_cfg);
    QCOMPARE(m_watch->slots_run(), QString());
    QCOMPARE(degree(), QStringLiteral("1"));
    for (const int type : {int(TABLE_INTERP), int(TABLE_POLY), int(TABLE_POLY_RANGE), 65535}) {
        g_cfg->table.table_type = static_cast<uint16_t>(type);
        m_it->window->sync_type_controls(g_cfg);
        for (const QComboBox *combo : {m_it->form->cboCalType, m_it->form->cboOrderOfPolynomial,
                                       m_it->form->cboPolyRangeIndex})
            QVERIFY(!combo->signalsBlocked());
    }
}

void TypeCombos::degree_stays_blocked_behind_the_slot_of_the_type_data()
{
    const auto row = test_columns<int, int>("from", "to");
    row("to INTERP", int(TABLE_POLY), int(TABLE_INTERP));
    row("to POLY", int(TABLE_INTERP), int(TABLE_POLY));
    row("to POLY_RANGE", int(TABLE_INTERP), int(TABLE_POLY_RANGE));
}

// The slot has followed the record itself by then; the routine that moved the
// combo of the type has yet to fill the degrees.
void TypeCombos::degree_stays_blocked_behind_the_slot_of_the_type()
{
    QFETCH(int, from);
    QFETCH(int, to);
    bind(0);
    g_cfg->table.table_type = static_cast<uint16_t>(from);
    m_it->window->sync_type_controls(g_cfg);
    QVector<bool> blocked;
    const QObject here; // called behind the window's own slot
    connect(m_it->form->cboCalType, QOverload<int>::of(&QComboBox::currentIndexChanged), &here,
            [&] { blocked += m_it->form->cboOrderOfPolynomial->signalsBlocked(); });
    m_it->window->sync_type_controls(g_cfg);
    QVERIFY(blocked.isEmpty());
    g_cfg->table.table_type = static_cast<uint16_t>(to);
    m_it->window->sync_type_controls(g_cfg);
    QCOMPARE(blocked, QVector<bool>{true});
    QVERIFY(!m_it->form->cboOrderOfPolynomial->signalsBlocked());
}

WINDOW_TEST(TypeCombos);
#include "test_typecombos.moc"
