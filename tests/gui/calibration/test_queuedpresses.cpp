// SPDX-License-Identifier: GPL-3.0-or-later
//
// Presses that wait behind a decision: the window stands still for the rebuild,
// and what was pressed meanwhile was meant for the calibration before it. They are
// queued as the display server queues them.
#include <QtTest>

#include "gui/calibration/processpanel.h"
#include "support/testmain.h"
#include "window/termination.h"

namespace
{

int32_t (*bind_by_panel)(ZERL_CFG *) = nullptr;
std::function<void()> during_rebuild;

int32_t bind_and_press(ZERL_CFG *cfg)
{
    const std::function<void()> press = std::move(during_rebuild);
    during_rebuild = nullptr; // a decision that it brings about has no presses
    if (press)
        press();
    return bind_by_panel(cfg);
}

// What the display server sends when the loop of events next looks: the toolkit's
// way in for tests delivers at once.
void queue(const std::function<void()> &deliver)
{
    QMetaObject::invokeMethod(qApp, deliver, Qt::QueuedConnection);
}

// On the widget's middle. Clicks follow each other as those of a double click do.
void queue_mouse(const QWidget *widget, QEvent::Type type)
{
    queue([widget, type] {
        QWidget *const window = widget->window();
        const QPoint at = widget->mapTo(window, widget->rect().center());
        const bool down = type == QEvent::MouseButtonPress;
        static int clock_ms = 0;
        clock_ms += 20;
        qt_handleMouseEvent(window->windowHandle(), at, window->mapToGlobal(at),
                            down ? Qt::LeftButton : Qt::NoButton, Qt::LeftButton, type,
                            Qt::NoModifier, clock_ms);
    });
}

void queue_click(const QWidget *widget)
{
    queue_mouse(widget, QEvent::MouseButtonPress);
    queue_mouse(widget, QEvent::MouseButtonRelease);
}

// To the widget, which has the focus then.
void queue_key(QWidget *widget, int key, const QString &text)
{
    widget->setFocus();
    queue([widget, key, text] {
        QWindow *const window = widget->window()->windowHandle();
        for (const QEvent::Type type : {QEvent::KeyPress, QEvent::KeyRelease})
            qt_handleKeyEvent(window, type, key, Qt::NoModifier, text, false, 1);
    });
}

// An event as the toolkit hands it on, behind those that wait.
void post_click(QWidget *widget)
{
    const QPoint at = widget->rect().center();
    for (const QEvent::Type type : {QEvent::MouseButtonPress, QEvent::MouseButtonRelease}) {
        QCoreApplication::postEvent(
            widget,
            new QMouseEvent(type, at, Qt::LeftButton,
                            type == QEvent::MouseButtonPress ? Qt::LeftButton : Qt::NoButton,
                            Qt::NoModifier));
    }
}

void work_off()
{
    QCoreApplication::processEvents(QEventLoop::AllEvents, 1000);
    QCoreApplication::processEvents(QEventLoop::AllEvents, 1000);
}

} // namespace

class QueuedPresses : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanupTestCase() { m_it.reset(); }
    void init();
    void cleanup() { during_rebuild = nullptr; }
    void pressed_twice_decides_once_data() { ProcessPanel::add_decisions(); }
    void pressed_twice_decides_once();
    void press_during_the_rebuild_is_dropped_data();
    void press_during_the_rebuild_is_dropped();
    void press_after_the_decision_counts_data() { ProcessPanel::add_decisions(); }
    void press_after_the_decision_counts();
    void release_of_an_earlier_press_is_let_through();
    void ticks_that_waited_are_worked_off();
    void box_that_comes_up_meanwhile_can_be_answered();
    void close_during_the_rebuild_is_heeded();

private:
    QPushButton *button(bool adjust) const
    {
        return adjust ? m_it->it.form->btnAdjustCalibration : m_it->it.form->btnReuseCalibration;
    }
    static int saved() { return TestWindow::records_in(QStringLiteral("/cell/tables/one.save")); }
    static int history() { return TestWindow::records_in(QStringLiteral("/cell/tables/one.old")); }

    std::unique_ptr<ProcessPanel> m_it;
};

void QueuedPresses::initTestCase()
{
    m_it = std::make_unique<ProcessPanel>();
    bind_by_panel = g_callbacks.rebind_channel;
    g_callbacks.rebind_channel = bind_and_press;
    m_it->it.window->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(m_it->it.window));
}

void QueuedPresses::init()
{
    m_it->bind();
    m_it->ready_without_question();
    work_off();
}

void QueuedPresses::pressed_twice_decides_once()
{
    QFETCH(bool, adjust);
    const int rebuilds = ProcessPanel::rebuilds;
    const int before = saved();
    const int old = history();
    for (int click = 0; click < 3; ++click)
        queue_click(button(adjust));
    work_off();
    QCOMPARE(ProcessPanel::rebuilds - rebuilds, 1);
    QCOMPARE(saved() - before, 1);
    QCOMPARE(history() - old, adjust ? 1 : 0);
}

void QueuedPresses::press_during_the_rebuild_is_dropped_data()
{
    test_columns<bool, QString>("adjust", "what");
    for (const bool adjust : {true, false}) {
        for (const char *what :
             {"both decisions", "posted to the buttons", "capture", "record", "space on the button",
              "text", "wheel over the type", "table units"})
            QTest::addRow("%s, %s", adjust ? "Adjust" : "Re-Use", what)
                << adjust << QString::fromLatin1(what);
    }
}

void QueuedPresses::press_during_the_rebuild_is_dropped()
{
    QFETCH(bool, adjust);
    QFETCH(QString, what);
    Ui::MainWindow *const form = m_it->it.form;
    during_rebuild = [&] {
        if (what == QLatin1String("both decisions")) {
            queue_click(button(true));
            queue_click(button(false));
        } else if (what == QLatin1String("posted to the buttons")) {
            post_click(button(true));
            post_click(button(false));
        } else if (what == QLatin1String("capture")) {
            queue_click(m_it->it.button(0));
        } else if (what == QLatin1String("record")) {
            queue_click(form->btnRecordData);
        } else if (what == QLatin1String("space on the button")) {
            queue_key(button(adjust), Qt::Key_Space, QStringLiteral(" "));
        } else if (what == QLatin1String("text")) {
            queue_key(form->txtTechnicianName, Qt::Key_X, QStringLiteral("x"));
        } else if (what == QLatin1String("wheel over the type")) {
            const QPoint at = form->cboCalType->rect().center();
            QCoreApplication::postEvent(form->cboCalType,
                                        new QWheelEvent(at, form->cboCalType->mapToGlobal(at),
                                                        QPoint(), QPoint(0, -120), Qt::NoButton,
                                                        Qt::NoModifier, Qt::NoScrollPhase, false));
        } else {
            queue_click(form->btnUnits);
        }
    };
    BoxAnswerer answerer; // fails for every box and dialog
    const int rebuilds = ProcessPanel::rebuilds;
    const int before = saved();
    queue_click(button(adjust));
    work_off();
    QCOMPARE(answerer.said(), QStringList());
    QCOMPARE(ProcessPanel::rebuilds - rebuilds, 1);
    QCOMPARE(saved() - before, 1);
    QCOMPARE(g_captured_points, 0);
    QCOMPARE(m_it->it.window->row(0)->caption(), QStringLiteral("Capture"));
    QVERIFY(m_it->it.window->isVisible());
    QCOMPARE(form->txtTechnicianName->text(), QStringLiteral("J. Doe"));
    QCOMPARE(form->cboCalType->currentIndex(), 0);
    QCOMPARE(g_cfg->table.table_type, uint16_t(TABLE_INTERP));
}

void QueuedPresses::press_after_the_decision_counts()
{
    QFETCH(bool, adjust);
    const int before = saved();
    queue_click(button(adjust));
    work_off();
    g_cfg->table.last_save_type = SAVE_NEW_CORRELATION;
    queue_click(button(adjust));
    work_off();
    QCOMPARE(saved() - before, 2);
}

// Else the toolkit would go on holding what was pressed.
void QueuedPresses::release_of_an_earlier_press_is_let_through()
{
    QPushButton *const held = m_it->it.form->btnRecordData;
    queue_mouse(held, QEvent::MouseButtonPress);
    work_off();
    QVERIFY(held->isDown());
    held->blockSignals(true);
    during_rebuild = [&] { queue_mouse(held, QEvent::MouseButtonRelease); };
    button(true)->click();
    work_off();
    held->blockSignals(false);
    QVERIFY(!held->isDown());
}

void QueuedPresses::ticks_that_waited_are_worked_off()
{
    int ticks = 0;
    QObject counter;
    connect(m_it->it.window->monitor(), &monitorThread::plotInfo, &counter,
            [&ticks](ZERL_CFG *) { ++ticks; });
    during_rebuild = [&] {
        queue_click(button(true));
        emit m_it->it.window->monitor()->plotInfo(g_cfg);
    };
    g_cfg->redraw_all = 1;
    const int before = saved();
    queue_click(button(true));
    work_off();
    QVERIFY(ticks > 0);
    QCOMPARE(saved() - before, 1);
    QTRY_COMPARE_WITH_TIMEOUT(g_cfg->redraw_all, uint16_t(0), DEADLINE_MS);
}

// A box that what waited brings up. Without an answer it would stand for good.
void QueuedPresses::box_that_comes_up_meanwhile_can_be_answered()
{
    bool pressed = false;
    during_rebuild = [&pressed] {
        queue([&pressed] {
            QMessageBox box(QMessageBox::Information, QString(), QStringLiteral("text"),
                            QMessageBox::Ok);
            QTimer::singleShot(0, &box, [&box] { queue_click(box.button(QMessageBox::Ok)); });
            QTimer::singleShot(5000, &box, &QDialog::reject); // a click that was dropped
            box.exec();
            pressed = box.clickedButton() != nullptr && box.result() == QMessageBox::Ok;
        });
    };
    const int before = saved();
    queue_click(button(true));
    work_off();
    QVERIFY(pressed);
    QCOMPARE(saved() - before, 1);
}

// The last: its window is closed.
void QueuedPresses::close_during_the_rebuild_is_heeded()
{
    during_rebuild = [this] {
        queue_click(button(true));
        QCoreApplication::postEvent(m_it->it.window->windowHandle(), new QCloseEvent);
    };
    const int before = saved();
    queue_click(button(true));
    work_off();
    QVERIFY(!m_it->it.window->isVisible());
    QVERIFY(end_decided());
    QCOMPARE(saved() - before, 1);
}

WINDOW_TEST(QueuedPresses);
#include "test_queuedpresses.moc"
