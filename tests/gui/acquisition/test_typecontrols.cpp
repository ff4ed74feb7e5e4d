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
    void initTestCase() { m_it = std::make_unique<TestWindow>(); }
    void cleanupTestCase() { m_it.reset(); }
    void count_refused_empties_the_field();
    void more_points_are_offered_as_copies_of_the_last();
    void desktop_fields_wait_for_the_return_key();
    void change_of_type_is_no_unsaved_work();
    void degree_sets_the_number_of_coefficients();

private:
    void type_count(const QString &count);

    std::unique_ptr<TestWindow> m_it;
};

void TypeControls::type_count(const QString &count)
{
    m_it->form->txtNumPoints->setText(count);
    QTest::keyClick(m_it->form->txtNumPoints, Qt::Key_Return);
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
