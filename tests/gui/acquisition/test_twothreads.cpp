// SPDX-License-Identifier: GPL-3.0-or-later
//
// The monitor thread samples a hundred times as often as it does in the cell
// while the technician changes all that a pass reads. Under the thread sanitizer
// every access that is neither whole nor under the table mutex is reported.
#include <QRadioButton>
#include <QtTest>

#include "calibration/tablestore.h"
#include "gui/frame/testwindow.h"
#include "support/testmain.h"

namespace
{
constexpr int ROUNDS = 5;
} // namespace

class TwoThreads : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanupTestCase() { m_it.reset(); }
    void init() { m_it->bind_afresh(0); }
    void cleanup() { QVERIFY(m_it->ticks(3)); }
    void channels_change();
    void rows_are_edited_captured_and_reverted();
    void counts_and_averaging_time_change();
    void types_degrees_and_ranges_change();
    void dialogs_change_the_record();
    void table_units_change();
    void recordings_and_decisions_rebuild_the_tables();
    void channel_is_given_up();

private:
    void pass_by() { QVERIFY(m_it->ticks(2)); }

    std::unique_ptr<TestWindow> m_it;
};

void TwoThreads::initTestCase()
{
    m_it = std::make_unique<TestWindow>();
    m_it->window->monitor()->set_sleep_ms(1);
}

void TwoThreads::channels_change()
{
    for (int round = 0; round < ROUNDS; ++round) {
        for (const int channel : {1, 4, 5, 8, 9, 0}) {
            m_it->forget_work();
            m_it->pick(channel);
            pass_by();
        }
    }
}

void TwoThreads::rows_are_edited_captured_and_reverted()
{
    for (int round = 0; round < ROUNDS; ++round) {
        QLineEdit *const field = m_it->window->row(1)->value_field();
        field->setText(QString::number(20.0 + round));
        QVERIFY(
            QMetaObject::invokeMethod(m_it->window->row(1), "on_txtCurrentValue_editingFinished"));
        pass_by();
        QVERIFY(m_it->capture(1, 1200.0 + round, 25.0 + round));
        pass_by();
        BoxAnswerer answerer;
        answerer.expect_dialog(QStringLiteral("Undo Action"), [this](QDialog *dialog) {
            pass_by();
            dialog->accept();
        });
        m_it->button(1)->click();
        pass_by();
    }
}

// A row that the count has added grows the table, and its undo shrinks it.
void TwoThreads::counts_and_averaging_time_change()
{
    Ui::MainWindow *const form = m_it->form;
    for (int round = 0; round < ROUNDS; ++round) {
        for (const char *count : {"7", "64", "5"}) {
            form->txtNumPoints->setText(QString::fromLatin1(count));
            QVERIFY(QMetaObject::invokeMethod(m_it->window, "on_txtNumPoints_returnPressed"));
            pass_by();
        }
        form->txtNumPoints->setText(QStringLiteral("6"));
        QVERIFY(QMetaObject::invokeMethod(m_it->window, "on_txtNumPoints_returnPressed"));
        QVERIFY(m_it->capture(5, 4900.0 - round, 98.0));
        BoxAnswerer answerer;
        answerer.expect_dialog(QStringLiteral("Undo Action"),
                               [](QDialog *dialog) { dialog->accept(); });
        m_it->button(5)->click();
        form->txtNumPoints->setText(QStringLiteral("5"));
        QVERIFY(QMetaObject::invokeMethod(m_it->window, "on_txtNumPoints_returnPressed"));
        for (const char *seconds : {"5", "30", "10"}) {
            form->txtAveragingTime->setText(QString::fromLatin1(seconds));
            QVERIFY(QMetaObject::invokeMethod(m_it->window, "on_txtAveragingTime_editingFinished"));
        }
        pass_by();
    }
}

void TwoThreads::types_degrees_and_ranges_change()
{
    Ui::MainWindow *const form = m_it->form;
    for (const int channel : {0, 4, 5}) {
        m_it->bind_afresh(channel);
        for (const int type : {1, 2, 1, 0}) {
            form->cboCalType->setCurrentIndex(type);
            pass_by();
            for (int degree = 0; degree < form->cboOrderOfPolynomial->count(); ++degree) {
                form->cboOrderOfPolynomial->setCurrentIndex(degree);
                pass_by();
            }
            for (int range = 0; type == 2 && range < 8; ++range) {
                form->cboPolyRangeIndex->setCurrentIndex(range);
                pass_by();
            }
        }
    }
}

void TwoThreads::dialogs_change_the_record()
{
    for (int round = 0; round < ROUNDS; ++round) {
        BoxAnswerer answerer;
        answerer.expect_dialog(
            QStringLiteral("Transducer Calibration Configuration"), [round](QDialog *dialog) {
                dialog->findChild<QLineEdit *>(QStringLiteral("txtSerialNumber"))
                    ->setText(QString::number(round));
                dialog->findChild<QPushButton *>(QStringLiteral("btnOk"))->click();
            });
        answerer.expect_title(QStringLiteral("Clearing Calibration Data"));
        m_it->form->actionTable_Info->trigger();
        pass_by();
    }
}

void TwoThreads::table_units_change()
{
    for (const char *unit : {"PSI", "kPa"}) {
        std::snprintf(g_cfg->value_units, sizeof g_cfg->value_units, "%s", unit);
        BoxAnswerer answerer;
        answerer.expect_dialog(QStringLiteral("Table Value Units"), [this](QDialog *dialog) {
            pass_by();
            dialog->done(QDialog::Accepted);
        });
        m_it->form->btnUnits->click();
        pass_by();
    }
}

// Both decisions, each behind a recording of two points of three or more.
void TwoThreads::recordings_and_decisions_rebuild_the_tables()
{
    Ui::MainWindow *const form = m_it->form;
    form->txtTechnicianName->setText(QStringLiteral("J. Doe"));
    form->txtCalibrationQIE->setText(QStringLiteral("DWT-12"));
    for (const int channel : {0, 4, 1}) {
        m_it->bind_afresh(channel);
        for (QPushButton *decision : {form->btnAdjustCalibration, form->btnReuseCalibration}) {
            QVERIFY(m_it->capture(0, 3.0 + channel, 0.5));
            BoxAnswerer answerer;
            answerer.expect_title(QStringLiteral("Warning"), QStringLiteral("Yes"));
            answerer.expect_dialog(
                QStringLiteral("Record Calibration Data"), [this](QDialog *dialog) {
                    pass_by();
                    dialog->findChild<QRadioButton *>(QStringLiteral("rbNewCorrelation"))
                        ->setChecked(true);
                    dialog->findChild<QPushButton *>(QStringLiteral("btnRecord"))->click();
                });
            form->btnRecordData->click();
            pass_by();
            decision->setEnabled(true);
            g_cfg->table.last_save_type = SAVE_NEW_CORRELATION; // no question
            decision->click();
            pass_by();
        }
    }
}

void TwoThreads::channel_is_given_up()
{
    BoxAnswerer answerer;
    answerer.expect_title(QStringLiteral("Update Data"));
    answerer.expect_dialog(QStringLiteral("Transducer Calibration Configuration"),
                           [](QDialog *dialog) { dialog->reject(); });
    m_it->pick(6);
    pass_by();
    m_it->pick(0);
    pass_by();
}

WINDOW_TEST(TwoThreads);
#include "test_twothreads.moc"
