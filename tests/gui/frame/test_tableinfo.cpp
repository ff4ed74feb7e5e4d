// SPDX-License-Identifier: GPL-3.0-or-later
//
// The table information from the menu: when it opens, under which lock, and
// what the window does when it is accepted.
#include <thread>

#include <QtTest>

#include "gui/frame/testwindow.h"
#include "support/testmain.h"
#include "window/styles.h"

namespace
{
const QString DIALOG = QStringLiteral("Transducer Calibration Configuration");
} // namespace

class TableInfo : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { m_it = std::make_unique<TestWindow>(); }
    void cleanupTestCase() { m_it.reset(); }
    void accepted();
    void rejected_changes_nothing();
    void key_alt_e_opens_it();

private:
    std::unique_ptr<TestWindow> m_it;
};

void TableInfo::accepted()
{
    m_it->bind_afresh(0);
    QVERIFY(m_it->capture(0, 12.5, 0.25));
    m_it->form->txtAsFound->setText(QStringLiteral("01/02/2024 03:04:05"));
    m_it->form->btnAdjustCalibration->setEnabled(true);
    m_it->form->cboCalType->setEnabled(false);
    const QString colour = m_it->window->row(0)->value_style();
    bool locked = false;
    BoxAnswerer answerer;
    answerer.expect_dialog(DIALOG, [&](QDialog *dialog) {
        // The monitor thread is held off while the record may change.
        QMutex *const mutex = m_it->window->table_mutex();
        std::thread([&] {
            locked = !mutex->tryLock();
            if (!locked)
                mutex->unlock();
        }).join();
        dialog->findChild<QLineEdit *>(QStringLiteral("txtSerialNumber"))->setText("NEW-7");
        dialog->findChild<QPushButton *>(QStringLiteral("btnOk"))->click();
    });
    answerer.expect_title(QStringLiteral("Clearing Calibration Data"));
    m_it->form->actionTable_Info->trigger();
    QCOMPARE(answerer.remaining(), 0);
    QVERIFY(locked);
    QCOMPARE(m_it->form->lblSerialNumber->text(), QStringLiteral("NEW-7"));
    QCOMPARE(g_captured_points, 0);
    // The panel is reset and the rows follow their states.
    QCOMPARE(m_it->form->txtAsFound->text(), QString());
    QVERIFY(!m_it->form->btnAdjustCalibration->isEnabled());
    QCOMPARE(m_it->window->row(0)->caption(), QStringLiteral("Undo"));
    QCOMPARE(m_it->window->row(0)->value_style(), colour);
    QVERIFY(m_it->form->cboCalType->isEnabled()); // the type controls follow the record
    m_it->forget_work();
}

void TableInfo::rejected_changes_nothing()
{
    m_it->bind_afresh(0);
    g_captured_points = 4;
    m_it->form->txtAsFound->setText(QStringLiteral("01/02/2024 03:04:05"));
    BoxAnswerer answerer;
    answerer.expect_dialog(DIALOG, [](QDialog *dialog) { dialog->reject(); });
    m_it->form->actionTable_Info->trigger();
    QCOMPARE(g_captured_points, 4);
    QCOMPARE(m_it->form->txtAsFound->text(), QStringLiteral("01/02/2024 03:04:05"));
    QCOMPARE(m_it->form->lblSerialNumber->text(), QStringLiteral("SERIAL0"));
    m_it->forget_work();
}

void TableInfo::key_alt_e_opens_it()
{
    m_it->bind_afresh(0);
    m_it->window->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(m_it->window));
    BoxAnswerer answerer;
    answerer.expect_dialog(DIALOG, [](QDialog *dialog) { dialog->reject(); });
    QTest::keyClick(m_it->window, Qt::Key_E, Qt::AltModifier);
    QCOMPARE(answerer.met().size(), 1);
}

WINDOW_TEST(TableInfo);
#include "test_tableinfo.moc"
