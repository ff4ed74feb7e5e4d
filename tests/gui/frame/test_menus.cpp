// SPDX-License-Identifier: GPL-3.0-or-later
//
// Menus, actions and their keys, the slots of the window in their order, and
// the keys that do nothing.
#include <QMenu>
#include <QMenuBar>
#include <QMetaMethod>
#include <QtTest>

#include "gui/frame/testwindow.h"
#include "support/testmain.h"

class Menus : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { m_it = std::make_unique<TestWindow>(); }
    void cleanupTestCase() { m_it.reset(); }
    void menus_in_their_order();
    void entries_data();
    void entries();
    void actions_data();
    void actions();
    void actions_in_no_menu_data();
    void actions_in_no_menu();
    void slots_in_the_order_of_the_meta_object();
    void slots_are_connected_by_name_data();
    void slots_are_connected_by_name();
    void keys_that_do_nothing_data();
    void keys_that_do_nothing();
    void actions_without_slot_do_nothing_data();
    void actions_without_slot_do_nothing();
    void table_info_before_a_channel_is_chosen_does_nothing();

private:
    QMenu *menu(const QString &title) const;
    QAction *action(const QString &name) const { return m_it->window->findChild<QAction *>(name); }
    QStringList everything_on_show() const;

    std::unique_ptr<TestWindow> m_it;
};

QMenu *Menus::menu(const QString &title) const
{
    for (QAction *entry : m_it->window->menuBar()->actions()) {
        if (entry->text() == title)
            return entry->menu();
    }
    return nullptr;
}

// State of every widget, so that a change anywhere is seen.
QStringList Menus::everything_on_show() const
{
    QStringList state;
    const auto widgets = m_it->window->findChildren<QWidget *>();
    for (const QWidget *widget : widgets) {
        state += QStringLiteral("%1 %2 %3 %4 %5 %6")
                     .arg(widget->objectName(), widget->property("text").toString(),
                          widget->property("currentText").toString(), widget->styleSheet())
                     .arg(widget->isHidden())
                     .arg(widget->isEnabled());
    }
    state += m_it->window->windowTitle();
    state += QString::number(QApplication::topLevelWidgets().size());
    return state;
}

void Menus::menus_in_their_order()
{
    QStringList titles;
    for (const QAction *entry : m_it->window->menuBar()->actions())
        titles += entry->text();
    QCOMPARE(titles, (QStringList{"&File", "&Table Information", "&Statistics", "&Help"}));
    QCOMPARE(m_it->form->menuStatistics->title(), QStringLiteral("&Statistics"));
}

// Object names in their order; "-" is a separator.
void Menus::entries_data()
{
    QTest::addColumn<QStringList>("names");
    QTest::newRow("&File") << QStringList{"-", "-", "actionExit"};
    QTest::newRow("&Table Information") << QStringList{"actionTable_Info",
                                                       "-",
                                                       "-",
                                                       "actionTable_Value_Units",
                                                       "actionEnvironment_Variables",
                                                       "-",
                                                       "actionWorking_Standard_Info",
                                                       "actionView_Previous_Calibration_Report"};
    QTest::newRow("&Statistics") << QStringList{"actionStatistics_Chart", "actionPoint_Statistics",
                                                "actionCal_Statistics_Chart"};
    QTest::newRow("&Help") << QStringList{"actionInstructions", "actionAbout_Zerl"};
}

void Menus::entries()
{
    const QMenu *found = menu(QString::fromLatin1(QTest::currentDataTag()));
    QVERIFY(found != nullptr);
    QStringList entries;
    for (const QAction *entry : found->actions())
        entries += entry->isSeparator() ? QStringLiteral("-") : entry->objectName();
    QTEST(entries, "names");
}

void Menus::actions_data()
{
    const auto row =
        test_columns<QString, QString, bool, bool>("text", "key", "enabled", "visible");
    row("actionExit", "Exit", "F10", true, true);
    row("actionTable_Info", "Table Info ...", "Alt+E", true, true);
    row("actionTable_Value_Units", "Table Value Units ...", "Alt+U", false, false);
    row("actionEnvironment_Variables", "Environment Variables", "", false, false);
    row("actionWorking_Standard_Info", "Working Standard Info ...", "", false, false);
    row("actionView_Previous_Calibration_Report", "&View Previous Calibration Report", "", false,
        false);
    row("actionStatistics_Chart", "Statistics Chart ...", "Alt+S", false, false);
    row("actionPoint_Statistics", "&Point Statistics", "", true, true);
    row("actionCal_Statistics_Chart", "Polynomial &Regression Info", "", true, true);
    row("actionInstructions", "Instructions", "F1", true, true);
    row("actionAbout_Zerl", "About Zerl", "", true, true);
    row("actionReload_from_File", "Reload from File", "F3", true, true);
    row("actionSave_to_File", "Save to File", "F4", true, true);
    row("actionSave_to_File_and_Rebuild_Tables", "Save to File and Rebuild Tables", "F2", true,
        true);
    row("actionRebuild_Tables", "Rebuild Tables", "F5", true, true);
}

void Menus::actions()
{
    QFETCH(QString, text);
    QFETCH(QString, key);
    const QAction *found = action(QString::fromLatin1(QTest::currentDataTag()));
    QVERIFY(found != nullptr);
    QCOMPARE(found->text(), text);
    QCOMPARE(found->shortcut(), QKeySequence(key));
    // Actions of a menu are grey with it; their own flag is what counts here.
    QTEST(found->isEnabled(), "enabled");
    QTEST(found->isVisible(), "visible");
}

void Menus::actions_in_no_menu_data()
{
    QTest::addColumn<int>("unused");
    for (const char *name : {"actionReload_from_File", "actionSave_to_File",
                             "actionSave_to_File_and_Rebuild_Tables", "actionRebuild_Tables"})
        QTest::newRow(name) << 0;
}

void Menus::actions_in_no_menu()
{
    const QAction *found = action(QString::fromLatin1(QTest::currentDataTag()));
    QVERIFY(found != nullptr);
    QVERIFY(found->associatedWidgets().isEmpty());
}

void Menus::slots_in_the_order_of_the_meta_object()
{
    const QMetaObject *meta = m_it->window->metaObject();
    QCOMPARE(QString::fromLatin1(meta->className()), QStringLiteral("MainWindow"));
    QStringList found;
    for (int i = meta->methodOffset(); i < meta->methodCount(); ++i)
        found += QString::fromLatin1(meta->method(i).methodSignature());
    const QStringList expected{
        "timeout()",
        "on_btnReuseCalibration_clicked()",
        "on_cboCurrentChannel_currentIndexChanged(QString)",
        "on_btnRecordData_clicked()",
        "on_btnUnits_clicked()",
        "on_actionExit_triggered()",
        "on_actionStatistics_Chart_triggered()",
        "on_actionTable_Info_triggered()",
        "draw_plots_info(ZERL_CFG*)",
        "on_btnAdjustCalibration_clicked()",
        "on_cboCalType_currentIndexChanged(int)",
        "on_cboOrderOfPolynomial_currentIndexChanged(int)",
        "on_txtNumPoints_returnPressed()",
        "on_actionCal_Statistics_Chart_triggered()",
        "on_actionPoint_Statistics_triggered()",
        "on_cboPolyRangeIndex_currentIndexChanged(int)",
        "on_actionView_Previous_Calibration_Report_triggered()",
        "on_txtAveragingTime_editingFinished()",
        "on_txtNumPoints_textChanged(QString)",
        "on_txtAveragingTime_textChanged(QString)",
    };
    QCOMPARE(found, expected);
    QCOMPARE(meta->method(meta->methodOffset()).methodType(), QMetaMethod::Signal);
    for (int i = meta->methodOffset() + 1; i < meta->methodCount(); ++i)
        QCOMPARE(meta->method(i).methodType(), QMetaMethod::Slot);
}

// A connection by name needs a sender of that name with that signal.
void Menus::slots_are_connected_by_name_data()
{
    const auto row = test_columns<QString, QByteArray>("sender", "signature");
    const QMetaObject *meta = m_it->window->metaObject();
    for (int i = meta->methodOffset() + 1; i < meta->methodCount(); ++i) {
        const QByteArray slot = meta->method(i).methodSignature();
        if (!slot.startsWith("on_"))
            continue;
        const int end = slot.lastIndexOf('_', slot.indexOf('('));
        row(slot.constData(), QString::fromLatin1(slot.mid(3, end - 3)), slot.mid(end + 1));
    }
}

void Menus::slots_are_connected_by_name()
{
    QFETCH(QString, sender);
    QFETCH(QByteArray, signature);
    const QObject *found = m_it->window->findChild<QObject *>(sender);
    QVERIFY2(found != nullptr, qPrintable(sender));
    QVERIFY(found->metaObject()->indexOfSignal(signature.constData()) >= 0);
}

void Menus::keys_that_do_nothing_data()
{
    QTest::addColumn<int>("key");
    QTest::newRow("F1 does nothing") << static_cast<int>(Qt::Key_F1);
    QTest::newRow("F2 does nothing") << static_cast<int>(Qt::Key_F2);
    QTest::newRow("F3 does nothing") << static_cast<int>(Qt::Key_F3);
    QTest::newRow("F4 does nothing") << static_cast<int>(Qt::Key_F4);
    QTest::newRow("F5 does nothing") << static_cast<int>(Qt::Key_F5);
}

void Menus::keys_that_do_nothing()
{
    QFETCH(int, key);
    const BoxAnswerer answerer;
    m_it->window->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(m_it->window));
    const QStringList before = everything_on_show();
    const ZERL_CFG kept = *g_cfg;
    QTest::keyClick(m_it->window, static_cast<Qt::Key>(key));
    QApplication::processEvents();
    QCOMPARE(everything_on_show(), before);
    QVERIFY(std::memcmp(&kept, g_cfg, sizeof kept) == 0);
    QVERIFY(m_it->window->isVisible());
    QVERIFY(answerer.met().isEmpty());
}

void Menus::actions_without_slot_do_nothing_data()
{
    QTest::addColumn<int>("unused");
    for (const char *name :
         {"actionInstructions", "actionAbout_Zerl", "actionReload_from_File", "actionSave_to_File",
          "actionSave_to_File_and_Rebuild_Tables", "actionRebuild_Tables"})
        QTest::newRow(name) << 0;
}

void Menus::actions_without_slot_do_nothing()
{
    const BoxAnswerer answerer;
    const QStringList before = everything_on_show();
    action(QString::fromLatin1(QTest::currentDataTag()))->trigger();
    QApplication::processEvents();
    QCOMPARE(everything_on_show(), before);
    QVERIFY(answerer.met().isEmpty());
}

void Menus::table_info_before_a_channel_is_chosen_does_nothing()
{
    const BoxAnswerer answerer;
    QCOMPARE(m_it->form->cboCurrentChannel->currentIndex(), 0);
    const QStringList before = everything_on_show();
    g_captured_points = 3; // an accepted dialog would clear it
    action(QStringLiteral("actionTable_Info"))->trigger();
    QApplication::processEvents();
    QCOMPARE(everything_on_show(), before);
    QVERIFY(answerer.met().isEmpty());
    QCOMPARE(g_captured_points, 3);
    g_captured_points = 0;
}

WINDOW_TEST(Menus);
#include "test_menus.moc"
