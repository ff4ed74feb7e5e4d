// SPDX-License-Identifier: GPL-3.0-or-later
//
// Point count, averaging time and the combos of type, degree and range, as far
// as one calibration needs them.
#include <QStandardItemModel>
#include <QtTest>

#include "frame/tablelock.h"
#include "gui/frame/testwindow.h"
#include "support/testmain.h"
#include "window/styles.h"

class TypeControls : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanupTestCase();
    void controls_of_a_bound_table_data();
    void controls_of_a_bound_table();
    void count_accepted_data();
    void count_accepted();
    void count_refused_empties_the_field();
    void more_points_are_offered_as_copies_of_the_last();
    void fewer_points_count_at_once();
    void same_count_again_forgets_the_captures();
    void averaging_time_data();
    void averaging_time();
    void desktop_fields_wait_for_the_return_key();
    void change_of_type_is_no_unsaved_work();
    void degree_sets_the_number_of_coefficients();

private:
    void type_count(const QString &count);
    QStringList degrees() const;

    std::unique_ptr<TestWindow> m_it;
};

void TypeControls::initTestCase()
{
    m_it = std::make_unique<TestWindow>();
}

void TypeControls::cleanupTestCase()
{
    m_it.reset();
}

void TypeControls::type_count(const QString &count)
{
    m_it->form->txtNumPoints->setText(count);
    QTest::keyClick(m_it->form->txtNumPoints, Qt::Key_Return);
}

QStringList TypeControls::degrees() const
{
    QStringList items;
    for (int i = 0; i < m_it->form->cboOrderOfPolynomial->count(); ++i)
        items += m_it->form->cboOrderOfPolynomial->itemText(i);
    return items;
}

void TypeControls::controls_of_a_bound_table_data()
{
    QTest::addColumn<int>("channel");
    QTest::addColumn<QString>("type");
    QTest::addColumn<QStringList>("items");
    QTest::addColumn<QString>("degree");
    QTest::addColumn<bool>("degree_enabled");
    QTest::addColumn<bool>("range_item_enabled");
    QTest::addColumn<bool>("coefficients_shown");
    QTest::newRow("INTERP of 5 points")
        << 0 << "INTERP" << QStringList{"1", "2", "3", "4"} << "1" << false << false << false;
    QTest::newRow("INTERP of 64 points")
        << 8 << "INTERP" << QStringList{"1", "2", "3", "4", "5", "6", "7"} << "1" << false << false
        << false;
    QTest::newRow("POLY of degree 2 through 6 points")
        << 4 << "POLY" << QStringList{"1", "2", "3", "4", "5"} << "2" << true << true << true;
}

void TypeControls::controls_of_a_bound_table()
{
    QFETCH(int, channel);
    QFETCH(QString, type);
    QFETCH(QStringList, items);
    QFETCH(QString, degree);
    QFETCH(bool, degree_enabled);
    QFETCH(bool, range_item_enabled);
    QFETCH(bool, coefficients_shown);
    m_it->bind_afresh(channel);
    QVERIFY(m_it->form->cboCalType->isEnabled());
    QCOMPARE(m_it->form->cboCalType->currentText(), type);
    QCOMPARE(degrees(), items);
    QCOMPARE(m_it->form->cboOrderOfPolynomial->currentText(), degree);
    QCOMPARE(m_it->form->cboOrderOfPolynomial->isEnabled(), degree_enabled);
    QVERIFY(!m_it->form->cboPolyRangeIndex->isEnabled());
    const auto *model = qobject_cast<QStandardItemModel *>(m_it->form->cboCalType->model());
    QCOMPARE(model->item(2)->isEnabled(), range_item_enabled);
    QCOMPARE(!m_it->form->coeffFrame->isHidden(), coefficients_shown);
    if (coefficients_shown)
        QCOMPARE(g_poly_order_text, degree);
}

void TypeControls::count_accepted_data()
{
    QTest::addColumn<bool>("accepted");
    for (const char *text : {"2", "5", "64"})
        QTest::newRow(text) << true;
    for (const char *text : {"1", "65", "10.5", "0", "-3", "abc", ""})
        QTest::newRow(text) << false;
}

void TypeControls::count_accepted()
{
    QFETCH(bool, accepted);
    m_it->bind_afresh(0);
    m_it->form->txtNumPoints->setText(QString::fromLatin1(QTest::currentDataTag()));
    QCOMPARE(m_it->window->check_num_points(), accepted);
}

void TypeControls::count_refused_empties_the_field()
{
    m_it->bind_afresh(0);
    BoxAnswerer answerer;
    answerer.expect(QStringLiteral("Invalid Calibration Points"),
                    QStringLiteral("A invalid value for Calibration Points was entered\n\nPlease "
                                   "reenter a Calibration Points value between 2 and 64"));
    type_count(QStringLiteral("65"));
    QCOMPARE(answerer.met().size(), 1);
    QVERIFY(BoxAnswerer::has_title_bar_only(answerer.met().first()));
    QCOMPARE(m_it->form->txtNumPoints->text(), QString());
    QCOMPARE(g_num_points, int16_t(5));
    QCOMPARE(m_it->rows_shown(), 5);
}

void TypeControls::more_points_are_offered_as_copies_of_the_last()
{
    const BoxAnswerer answerer;
    m_it->bind_afresh(0);
    type_count(QStringLiteral("8"));
    QCOMPARE(m_it->rows_shown(), 8);
    QCOMPARE(g_num_points, int16_t(8));
    QCOMPARE(g_cfg->long_current.num_points, int16_t(5));
    QCOMPARE(g_cfg->table_dirty, uint16_t(1));
    for (int i = 5; i < 8; ++i) {
        QCOMPARE(m_it->window->row(i)->caption(), QStringLiteral("Capture New"));
        QCOMPARE(m_it->window->row(i)->value_field()->text(), QStringLiteral("100.0000"));
        QCOMPARE(m_it->window->row(i)->mv_label()->text(), QStringLiteral("5000.0000"));
        QCOMPARE(g_cfg->table.point_state[i], int32_t(POINT_NEW));
    }
    m_it->forget_work();
}

void TypeControls::fewer_points_count_at_once()
{
    const BoxAnswerer answerer;
    m_it->bind_afresh(0);
    type_count(QStringLiteral("3"));
    QCOMPARE(m_it->rows_shown(), 3);
    QCOMPARE(g_cfg->long_current.num_points, int16_t(3));
    QCOMPARE(g_cfg->table.poly[0].num_points, int16_t(3));
    QCOMPARE(g_cfg->table_dirty, uint16_t(1));
    QCOMPARE(g_cfg->long_current.x[4], 5000.0); // the values stay in the arrays
    m_it->forget_work();
}

// The rows are drawn anew from their states, and nothing counts as changed.
void TypeControls::same_count_again_forgets_the_captures()
{
    const BoxAnswerer answerer;
    m_it->bind_afresh(0);
    QVERIFY(m_it->capture(0, 3.0, 0.06));
    QCOMPARE(g_captured_points, 1);
    for (const uint16_t dirty : {uint16_t(0), uint16_t(1)}) {
        g_cfg->table_dirty = dirty;
        type_count(QStringLiteral("5"));
        QCOMPARE(g_captured_points, 0);
        QCOMPARE(g_cfg->table_dirty, dirty);
        QCOMPARE(m_it->window->row(0)->caption(), QStringLiteral("Undo"));
        QCOMPARE(m_it->rows_shown(), 5);
    }
    m_it->forget_work();
}

void TypeControls::averaging_time_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("shown");
    QTest::addColumn<int>("samples");
    QTest::newRow("5 seconds") << "5"
                               << "5" << 50;
    QTest::newRow("30 seconds") << "30"
                                << "30" << 300;
    QTest::newRow("4 is refused") << "4"
                                  << "10" << 100;
    QTest::newRow("31 is refused") << "31"
                                   << "10" << 100;
    QTest::newRow("no number is refused") << "soon"
                                          << "10" << 100;
}

void TypeControls::averaging_time()
{
    QFETCH(QString, text);
    QFETCH(QString, shown);
    QFETCH(int, samples);
    m_it->bind_afresh(0);
    QVERIFY(m_it->ticks(2)); // the binding's own fresh start is over
    BoxAnswerer answerer;
    if (text != shown)
        answerer.expect(
            QStringLiteral("Wrong Value Entered"),
            QStringLiteral("The entered Averaging Time must be between 5 and 30 seconds"));
    {
        TableLock hold(m_it->window->table_mutex()); // no pass meanwhile
        QCOMPARE(relaxed_load(g_monitor_enabled), uint8_t(1));
        m_it->form->txtAveragingTime->setText(text);
        QTest::keyClick(m_it->form->txtAveragingTime, Qt::Key_Return);
        QCOMPARE(relaxed_load(g_monitor_enabled), uint8_t(0));
    }
    QCOMPARE(m_it->form->txtAveragingTime->text(), shown);
    QCOMPARE(relaxed_load(g_fifo_size), static_cast<uint32_t>(samples));
    QCOMPARE(answerer.met().size(), text != shown ? 1 : 0);
}

void TypeControls::desktop_fields_wait_for_the_return_key()
{
    m_it->bind_afresh(0);
    m_it->form->txtNumPoints->setText(QStringLiteral("3"));
    m_it->form->txtAveragingTime->setText(QStringLiteral("7"));
    QCOMPARE(g_num_points, int16_t(5));
    QVERIFY(relaxed_load(g_fifo_size) != 70);
    m_it->form->txtAveragingTime->setText(QStringLiteral("10"));
}

void TypeControls::change_of_type_is_no_unsaved_work()
{
    m_it->bind_afresh(0);
    g_cfg->table_dirty = 1;
    g_cal_type_changed = 0;
    TableLock hold(m_it->window->table_mutex());
    m_it->form->cboCalType->setCurrentIndex(1);
    QCOMPARE(g_cfg->table.table_type, uint16_t(TABLE_POLY));
    QCOMPARE(g_cfg->table_dirty, uint16_t(0));
    // From POLY the third type can be picked, from INTERP it could not.
    const auto *model = qobject_cast<QStandardItemModel *>(m_it->form->cboCalType->model());
    QVERIFY(model->item(2)->isEnabled());
    QCOMPARE(m_it->form->cboOrderOfPolynomial->currentText(), QStringLiteral("4")); // the last
}

void TypeControls::degree_sets_the_number_of_coefficients()
{
    m_it->bind_afresh(4);
    QVERIFY(m_it->ticks(2));
    g_cfg->table_dirty = 1;
    m_it->form->cboOrderOfPolynomial->setCurrentIndex(0);
    QCOMPARE(g_cfg->table.poly[0].num_coeffs, int16_t(2));
    QCOMPARE(g_poly_order_text, QStringLiteral("1"));
    QCOMPARE(g_cfg->table_dirty, uint16_t(0));
    QVERIFY(!m_it->form->lblCoeff1->isHidden());
    QVERIFY(m_it->form->lblCoeff2->isHidden());
    QCOMPARE(m_it->form->lblCoeff0Value->text(),
             QString::number(g_cfg->table.poly[0].coeffs[0], 'g', 6));
}

WINDOW_TEST(TypeControls);
#include "test_typecontrols.moc"
