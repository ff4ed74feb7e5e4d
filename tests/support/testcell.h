// SPDX-License-Identifier: GPL-3.0-or-later
//
// A cell of a test's own: the real process with its real memories, in the
// private view that the test runs in.
#ifndef SUPPORT_TESTCELL_H
#define SUPPORT_TESTCELL_H

#include <QByteArray>
#include <QProcess>
#include <QString>

#include "hostsim/cell/cellclient.h"

class TestCell
{
public:
    // Takes a description as hostsim/cells/README.md tells it.
    explicit TestCell(QByteArray description) : m_description(std::move(description)) {}
    // Stops the cell; whatever is left behind fails the test.
    ~TestCell();
    TestCell(const TestCell &) = delete;
    TestCell &operator=(const TestCell &) = delete;

    // Channel 0 "Channel Zero" with 0..100 kPa on 0..5000 mV, no lag, no noise,
    // and an INTERP table "zero" of five points and a sensor range of 0..100
    // kPa; channel 1 "Channel One" the same with a table "one" of three; channel
    // 2 "Channel Two" not active; channel 3 "Channel Three" without table file.
    static QByteArray simple_description();

    // Writes /cell/cell.txt, starts the cell and returns when it is ready; the
    // table files are there then. False and error() when it is not.
    bool start();
    // Ends it as an operator does; false and error() when its status is not 0
    // or it leaves a memory or its socket behind.
    bool stop();
    // Ends it without a chance to tidy up; what it leaves stays until tidy.
    void kill();
    // Removes what a killed cell left.
    static void tidy();

    bool is_running() const { return m_process.state() == QProcess::Running; }
    QString error() const { return m_error; }
    // The client's own error text tells why an operation gave false.
    cell::CellClient &client() { return m_client; }

    // Each gives true when the cell obeyed; apply is without the sensor's lag.
    bool apply(int channel, double value) { return m_client.apply(channel, value, true); }
    bool mv(int channel, double mv) { return m_client.hold_mv(channel, mv); }
    bool release_mv(int channel) { return m_client.release_mv(channel); }
    bool condition(int channel, const char *name) { return m_client.set_condition(channel, name); }
    bool set(int channel, const char *field, const char *text)
    {
        return m_client.set(channel, field, text);
    }

private:
    bool fail(const QString &what);

    QByteArray m_description;
    QString m_error;
    QProcess m_process;
    cell::CellClient m_client;
};

#endif
