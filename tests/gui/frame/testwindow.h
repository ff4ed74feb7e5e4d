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
#include "acquisition/pointinfo.h"
#include "calibration/tablestore.h"
#include "frame/mainwindow.h"
#include "frame/relaxed.h"
#include "support/boxanswerer.h"
#include "support/cellfiles.h"
#include "support/hostlog.h"
#include "support/testcell.h"
#include "support/windowform.h"

// Long enough for a busy machine under a sanitizer; nothing waits it out.
constexpr int DEADLINE_MS = 60000;

class TestWindow
{
public:
    // Channels 0 to 3 of TestCell::simple_description, then 4 POLY of degree 2,
    // 5 POLY_RANGE with ranges 2 and 5, 6 with equal range limits, 7 whose
    // active is 2, 8 with 64 points, 9 with 4 points whose states came with it.
    static QByteArray description();

    explicit TestWindow(
        const QByteArray &cell_description = description(),
        const std::function<MainWindow *()> &make = [] { return new MainWindow; });
    // As the program ends: the window goes, the monitor thread does not.
    ~TestWindow();
    TestWindow(const TestWindow &) = delete;
    TestWindow &operator=(const TestWindow &) = delete;

    int item_of(int channel) const;
    void pick(int channel) { form->cboCurrentChannel->setCurrentIndex(item_of(channel)); }
    void pick_none() { form->cboCurrentChannel->setCurrentIndex(0); }

    // Binds the channel with its first table and nothing left of earlier work.
    void bind_afresh(int channel);

    // Nothing is left to ask about.
    void forget_work();

    // The bound channel reads exactly that many millivolts, and the window of
    // the statistics holds nothing else.
    bool reading(double mv);

    // Whether another thread could take the table mutex now; a pass of the
    // monitor is waited for.
    bool mutex_is_free() const;

    QPushButton *button(int i) const;
    // Types the reference and presses the row's button at those millivolts.
    bool capture(int i, double mv, const QString &value);
    bool capture(int i, double mv, double value);

    // Waits until that many further ticks have been worked off.
    bool ticks(int count) const;

    QLabel *number_label(int i) const;

    // Rows whose children are shown, counted from the first; -1 when they are
    // not the first of the 64.
    int rows_shown() const;

    static QString table_path(const QString &name, const char *extension);
    // Records in an archive or history file.
    static int records_in(const QString &path) { return read_file(path).count("VORNAX-TABLE "); }

    // The table files as the cell made them.
    void restore_tables();

    TestCell cell;
    MainWindow *window = nullptr;
    Ui::MainWindow *form = nullptr;

private:
    void keep_tables();

    QMap<QString, QByteArray> m_tables;
};

#endif
