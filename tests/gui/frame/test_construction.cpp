// SPDX-License-Identifier: GPL-3.0-or-later
//
// The window right after its construction, before any channel was chosen.
#include <QScrollBar>
#include <QtTest>

#include <qwt_plot.h>

#include "gui/frame/testwindow.h"
#include "sensor/tolerances.h"
#include "support/testmain.h"

class Construction : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanupTestCase() { m_it.reset(); }
    void session_blocks_are_zero();
    void tolerance_tokens();
    void process_wide_values();
    void no_channel_bound_yet();
    void channel_list();
    void rows_are_made_and_hidden();
    void visibility_data();
    void visibility();
    void enabled_data();
    void enabled();
    void texts_data();
    void texts();
    void averaging_time_says_10();
    void first_focus_is_the_working_standard();
    void style_of_the_channel_list();
    void desktop_fields_are_plain();
    void mutex_is_recursive();
    void plot_frame_has_no_shape();
    void init_returns_1();

private:
    std::unique_ptr<TestWindow> m_it;
};

void Construction::initTestCase()
{
    QCOMPARE(get_cfg_pointer(), nullptr); // null before initialisation has run
    g_first_select = 0;
    g_monitor_enabled = 0;
    m_it = std::make_unique<TestWindow>();
}

void Construction::session_blocks_are_zero()
{
    const auto all_zero = [](const void *block, std::size_t size) {
        return QByteArray(static_cast<const char *>(block), static_cast<int>(size)) ==
               QByteArray(static_cast<int>(size), '\0');
    };
    QVERIFY(all_zero(g_cfg, sizeof *g_cfg));
    QVERIFY(all_zero(g_ws_block, sizeof *g_ws_block));
    QVERIFY(all_zero(g_specs, sizeof *g_specs));
    QVERIFY(all_zero(g_env, sizeof *g_env));
    QCOMPARE(get_cfg_pointer(), g_cfg);
}

void Construction::tolerance_tokens()
{
    QCOMPARE(none_instance_name, QStringLiteral("none"));
    QCOMPARE(ooa_bias_token, QStringLiteral("0[PCT]"));
    QCOMPARE(ooa_tolerance_token, QStringLiteral(".25[PCT]"));
    QCOMPARE(oot_bias_token, QStringLiteral("0[PCT]"));
    QCOMPARE(oot_tolerance_token, QStringLiteral("1[PCT]"));
    QCOMPARE(soot_bias_token, QStringLiteral("0[PCT]"));
    QCOMPARE(soot_tolerance_token, QStringLiteral("2[PCT]"));
}

void Construction::process_wide_values()
{
    QCOMPARE(g_first_select, int16_t(1));
    QCOMPARE(g_monitor_enabled, uint8_t(1));
    QCOMPARE(g_fifo_size, uint32_t(100));
    QCOMPARE(g_input_device, nullptr);
    QVERIFY(!m_it->window->curves_are_removed());
}

void Construction::no_channel_bound_yet()
{
    QCOMPARE(g_cfg->channel, int16_t(0));
    QCOMPARE(g_num_points, int16_t(0));
    QCOMPARE(g_captured_points, 0);
    QCOMPARE(g_cfg->long_current.num_points, int16_t(0));
    QVERIFY(!m_it->window->monitor()->isRunning());
    QCOMPARE(g_cfg->monitor_pass_done, uint16_t(0));
}

void Construction::channel_list()
{
    QCOMPARE(m_it->form->cboCurrentChannel->currentIndex(), 0);
    QCOMPARE(m_it->form->cboCurrentChannel->currentText(), QStringLiteral("Select A Channel"));
    QCOMPARE(m_it->form->cboCurrentChannel->itemText(1), QStringLiteral("    0  -  Channel Zero"));
    // Filling it ran no slot: that would have set the flag.
    QCOMPARE(g_cal_type_changed, int16_t(0));
}

void Construction::rows_are_made_and_hidden()
{
    QCOMPARE(m_it->form->verticalLayout_4->count(), 64);
    QCOMPARE(m_it->form->scrollAreaWidgetContents->findChildren<PointInfo *>().size(), 64);
    QCOMPARE(m_it->rows_shown(), 0);
    QCOMPARE(m_it->form->verticalLayout_4->itemAt(63)->widget(), m_it->window->row(63));
}

void Construction::visibility_data()
{
    QTest::addColumn<bool>("hidden");
    QTest::newRow("btnGenerateLineRpt") << true;
    QTest::newRow("chk1065Verification") << true;
    QTest::newRow("label_22") << true;
    QTest::newRow("coeffFrame") << true;
    QTest::newRow("dataPlot") << false;
    QTest::newRow("btnRecordData") << false;
    QTest::newRow("btnAdjustCalibration") << false;
    QTest::newRow("btnReuseCalibration") << false;
}

void Construction::visibility()
{
    const QString name = QString::fromLatin1(QTest::currentDataTag());
    QTEST(m_it->window->findChild<QWidget *>(name)->isHidden(), "hidden");
}

void Construction::enabled_data()
{
    QTest::addColumn<bool>("enabled");
    QTest::newRow("menuStatistics") << false;
    QTest::newRow("cboCalType") << false;
    QTest::newRow("cboOrderOfPolynomial") << false;
    QTest::newRow("cboPolyRangeIndex") << false;
    QTest::newRow("btnAdjustCalibration") << false;
    QTest::newRow("btnReuseCalibration") << false;
    QTest::newRow("btnGenerateLineRpt") << false;
    QTest::newRow("btnRecordData") << true;
    QTest::newRow("cboCurrentChannel") << true;
    QTest::newRow("txtNumPoints") << true;
    QTest::newRow("txtAveragingTime") << true;
    QTest::newRow("txtCalibrationQIE") << true;
    QTest::newRow("txtTechnicianName") << true;
}

void Construction::enabled()
{
    QFETCH(bool, enabled);
    const QString name = QString::fromLatin1(QTest::currentDataTag());
    QCOMPARE(m_it->window->findChild<QWidget *>(name)->isEnabled(), enabled);
}

void Construction::texts_data()
{
    QTest::addColumn<QString>("text");
    for (const char *name :
         {"lblTableName", "lblSerialNumber", "btnUnits", "txtNumPoints", "txtCalibrationQIE",
          "txtTechnicianName", "txtAsFound", "txtAfterService", "txtAdjustCalibration",
          "txtVerificationData", "txtNewCorrelation", "lblNextStep"})
        QTest::newRow(name) << "";
}

void Construction::texts()
{
    QFETCH(QString, text);
    const QString name = QString::fromLatin1(QTest::currentDataTag());
    QCOMPARE(m_it->window->findChild<QWidget *>(name)->property("text").toString(), text);
}

void Construction::averaging_time_says_10()
{
    QCOMPARE(m_it->form->txtAveragingTime->text(), QStringLiteral("10"));
}

void Construction::first_focus_is_the_working_standard()
{
    QCOMPARE(m_it->window->focusWidget(), m_it->form->txtCalibrationQIE);
}

void Construction::style_of_the_channel_list()
{
    QCOMPARE(m_it->form->cboCurrentChannel->styleSheet(), QStringLiteral("combobox-popup: 0;"));
}

void Construction::desktop_fields_are_plain()
{
    for (const QLineEdit *field : {m_it->form->txtCalibrationQIE, m_it->form->txtTechnicianName,
                                   m_it->form->txtNumPoints, m_it->form->txtAveragingTime}) {
        QVERIFY(!field->property("keyboard").isValid());
        QCOMPARE(field->validator(), nullptr);
    }
    QCOMPARE(m_it->window->row(0)->value_field()->validator(), nullptr);
    QVERIFY(!m_it->window->row(0)->value_field()->property("keyboard").isValid());
}

void Construction::mutex_is_recursive()
{
    QVERIFY(m_it->window->table_mutex()->isRecursive());
    QVERIFY(m_it->window->table_mutex()->tryLock());
    m_it->window->table_mutex()->unlock();
}

void Construction::plot_frame_has_no_shape()
{
    QCOMPARE(m_it->form->frame->frameShape(), QFrame::NoFrame);
}

// Last of all, since it makes a session anew.
void Construction::init_returns_1()
{
    ZERL_CFG *const former = g_cfg;
    void *const former_blocks[] = {g_cfg, g_ws_block, g_specs, g_env};
    g_cfg->units_loaded = 1;
    QCOMPARE(m_it->window->init(), 1);
    QVERIFY(g_cfg != former);
    QCOMPARE(get_cfg_pointer(), g_cfg);
    QCOMPARE(g_cfg->units_loaded, uint16_t(0));
    QCOMPARE(g_cfg->value_units_override, uint16_t(0));
    for (void *block : former_blocks)
        std::free(block);
}

WINDOW_TEST(Construction);
#include "test_construction.moc"
