// SPDX-License-Identifier: GPL-3.0-or-later
//
// The main window as the program makes it, over a cell of the test's own, and
// the steps that a technician takes in it. One in a process: the monitor thread
// that a binding starts never ends, and a second window's would share its FIFOs.
#ifndef GUI_FRAME_TESTWINDOW_H
#define GUI_FRAME_TESTWINDOW_H

#include <cstring>
#include <functional>
#include <memory>
#include <thread>

#include <QApplication>
#include <QDir>
#include <QLineEdit>
#include <QMap>
#include <QPushButton>
#include <QSignalBlocker>
#include <QTest>
#include <QVector>

#include "acquisition/channelbinding.h"
#include "acquisition/monitorthread.h"
#include "calibration/tablestore.h"
#include "frame/mainwindow.h"
#include "frame/relaxed.h"
#include "support/boxanswerer.h"
#include "support/cellfiles.h"
#include "support/hostlog.h"
#include "support/testcell.h"
#include "ui_mainwindow.h"

// Long enough for a busy machine under a sanitizer; nothing waits it out.
constexpr int DEADLINE_MS = 60000;

class TestWindow
{
public:
    // Channels 0 to 3 of TestCell::simple_description, then 4 POLY of degree 2,
    // 5 POLY_RANGE with ranges 2 and 5, 6 with equal range limits, 7 whose
    // active is 2, 8 with 64 points, 9 with 4 points whose states came with it.
    static QByteArray description()
    {
        return TestCell::simple_description() + R"(
channel 4
  label "Channel Four"
  units kPa
  table four
  record POLY
  points 0:0 1000:11 2000:24 3000:39 4000:56 5000:75
  fit 2
  sensor kPa 0 100 MODEL4 SERIAL4
channel 5
  label "Channel Five"
  units kPa
  table five
  record POLY_RANGE
  range 2
  points 0:0 1000:20 2000:40
  fit 1
  range 5
  points 2000:40 3000:60 4000:80 5000:100
  fit 1
  sensor kPa 0 100 MODEL5 SERIAL5
channel 6
  label "Channel Six"
  units kPa
  table six
  record INTERP
  points 0:0 5000:100
  sensor kPa 100 100 MODEL6 SERIAL6
channel 7
  label "Channel Seven"
  units kPa
  table seven
  active 2
  record INTERP
  points 0:0 5000:100
  sensor kPa 0 100 MODEL7 SERIAL7
channel 8
  label "Channel Eight"
  units kPa
  table eight
  input kPa 0 126
  response linear 50
  record INTERP
  sample 64
  sensor kPa 0 126 MODEL8 SERIAL8
channel 9
  label "Channel Nine"
  units DEG_C
  table nine
  record INTERP
  points 0:0 10:100 20:200 30:300
  sensor DEG_C 0 300 MODEL9 SERIAL9
)";
    }

    explicit TestWindow(
        const QByteArray &cell_description = description(),
        const std::function<MainWindow *()> &make = [] { return new MainWindow; })
        : cell(cell_description)
    {
        clear_cell();
        if (!cell.start())
            qFatal("%s", qPrintable(cell.error()));
        keep_tables();
        // The test's own loop must not end with the window.
        QApplication::setQuitOnLastWindowClosed(false);
        g_rebuild_wait_ms = 0;
        window = make();
        g_main_window = window;
        form = window->form();
        // Never deleted by the window: they live as long as the process.
        static auto *const kept = new QVector<void *>;
        kept->append(window->monitor());
        kept->append(window->table_mutex());
        window->show();
    }
    // As the program ends: the window goes, the monitor thread does not.
    ~TestWindow()
    {
        delete window;
        g_main_window = nullptr;
    }
    TestWindow(const TestWindow &) = delete;
    TestWindow &operator=(const TestWindow &) = delete;

    int item_of(int channel) const
    {
        return form->cboCurrentChannel->findText(channel_item_prefix(channel), Qt::MatchContains);
    }
    void pick(int channel) { form->cboCurrentChannel->setCurrentIndex(item_of(channel)); }
    void pick_none() { form->cboCurrentChannel->setCurrentIndex(0); }

    // Binds the channel with its first table and nothing left of earlier work.
    void bind_afresh(int channel)
    {
        forget_work();
        restore_tables();
        {
            const QSignalBlocker blocker(form->cboCurrentChannel);
            form->cboCurrentChannel->setCurrentIndex(0);
        }
        pick(channel);
    }

    // Nothing is left to ask about.
    void forget_work()
    {
        g_captured_points = 0;
        g_cfg->table_dirty = 0;
        for (QLineEdit *box : {form->txtAsFound, form->txtAfterService, form->txtAdjustCalibration,
                               form->txtVerificationData, form->txtNewCorrelation})
            box->clear();
    }

    // The bound channel reads exactly that many millivolts, and the window of
    // the statistics holds nothing else.
    bool reading(double mv)
    {
        if (!cell.mv(g_cfg->channel, mv))
            return false;
        relaxed_store(g_monitor_enabled, static_cast<uint8_t>(0));
        return QTest::qWaitFor(
            [mv] {
                return relaxed_load(g_monitor_enabled) == 1 &&
                       relaxed_load(g_sample.mv_std) == 0.0 &&
                       relaxed_load(g_sample.mv_mean) == mv && relaxed_load(g_cfg->live_mv) == mv &&
                       relaxed_load(g_sample.mv_min) == mv && relaxed_load(g_sample.mv_max) == mv;
            },
            DEADLINE_MS);
    }

    // Whether another thread could take the table mutex now; a pass of the
    // monitor is waited for.
    bool mutex_is_free() const
    {
        bool taken = false;
        std::thread([&] {
            taken = window->table_mutex()->tryLock(1000);
            if (taken)
                window->table_mutex()->unlock();
        }).join();
        return taken;
    }

    QPushButton *button(int i) const
    {
        return window->row(i)->findChild<QPushButton *>(QStringLiteral("btnCapture"));
    }
    // Types the reference and presses the row's button at those millivolts.
    bool capture(int i, double mv, const QString &value)
    {
        if (!reading(mv))
            return false;
        window->row(i)->value_field()->setText(value);
        button(i)->click();
        return true;
    }
    bool capture(int i, double mv, double value)
    {
        return capture(i, mv, QString::number(value, 'g', 17));
    }

    // Waits until that many further ticks have been worked off.
    bool ticks(int count) const
    {
        int seen = 0;
        QObject counter;
        QObject::connect(window->monitor(), &monitorThread::plotInfo, &counter,
                         [&seen](ZERL_CFG *) { ++seen; });
        return QTest::qWaitFor([&] { return seen >= count; }, DEADLINE_MS);
    }

    QLabel *number_label(int i) const
    {
        return window->row(i)->findChild<QLabel *>(QStringLiteral("lblIndexNum"));
    }

    // Rows whose children are shown, counted from the first; -1 when they are
    // not the first of the 64.
    int rows_shown() const
    {
        int shown = 0;
        while (shown < MAX_POINTS && window->row(shown)->children_visible())
            ++shown;
        for (int i = shown; i < MAX_POINTS; ++i) {
            if (window->row(i)->children_visible())
                return -1;
        }
        return shown;
    }

    static QString table_path(const QString &name, const char *extension)
    {
        return QStringLiteral("/cell/tables/") + name + QLatin1String(extension);
    }
    // Records in an archive or history file.
    static int records_in(const QString &path) { return read_file(path).count("VORNAX-TABLE "); }

    // The table files as the cell made them.
    void restore_tables()
    {
        verify_tables();
        const QDir folder(QStringLiteral("/cell/tables"));
        for (const QString &name : folder.entryList(QDir::Files)) {
            if (!m_tables.contains(name))
                QFile::remove(folder.filePath(name));
        }
        for (auto table = m_tables.cbegin(); table != m_tables.cend(); ++table) {
            if (read_file(folder.filePath(table.key())) != table.value())
                write_file(folder.filePath(table.key()), table.value());
        }
    }

    TestCell cell;
    MainWindow *window = nullptr;
    Ui::MainWindow *form = nullptr;

private:
    void keep_tables()
    {
        const QDir folder(QStringLiteral("/cell/tables"));
        for (const QString &name : folder.entryList(QDir::Files))
            m_tables.insert(name, read_file(folder.filePath(name)));
    }

    QMap<QString, QByteArray> m_tables;
};

#endif
