// SPDX-License-Identifier: GPL-3.0-or-later
//
// The built program as a process in the test's private cell, worked through the
// hook that is loaded into it.
#ifndef SYSTEM_PROGRAM_TESTPROGRAM_H
#define SYSTEM_PROGRAM_TESTPROGRAM_H

#include <QJsonObject>
#include <QProcess>
#include <QStringList>

constexpr int DEADLINE_MS = 120000; // under a sanitizer on a busy machine

class TestProgram
{
public:
    TestProgram();
    // Kills what still runs.
    ~TestProgram();
    TestProgram(const TestProgram &) = delete;
    TestProgram &operator=(const TestProgram &) = delete;

    // Before start: the environment, which has no display but the one without a
    // screen.
    void set(const QString &name, const QString &value) { m_environment.insert(name, value); }
    void unset(const QString &name) { m_environment.remove(name); }
    // Starts the program itself, without eyes and hands in it.
    void without_hook() { m_hooked = false; }

    // Another program with the hook in it.
    void run_instead(const QString &program) { m_program = program; }
    bool start(const QStringList &arguments = {});
    // Waits for the main window; a box that comes instead fails.
    bool wait_for_window();
    // Waits for the next box or dialog: "title|text".
    QString next_box();
    bool press(const QString &button) { return send({"press", button}); }
    bool send(const QStringList &words);
    // Sends and waits for the answer.
    QString ask(const QStringList &words);
    QString get(const QString &object, const QString &property = QStringLiteral("text"))
    {
        return ask({"get", object, property});
    }

    bool is_running() const { return m_process.state() == QProcess::Running; }
    void terminate() { m_process.terminate(); }
    // Exit status, or -1 when it was killed or does not end.
    int wait_for_end(int deadline_ms = DEADLINE_MS);
    qint64 pid() const { return m_process.processId(); }

    bool window_seen() const { return m_window_seen; }
    // Whether a box came up that next_box has not taken, asked at the end.
    bool box_seen() const { return m_box_seen || !m_waiting.isEmpty(); }
    // What it wrote beside the hook's lines, among it the calls that the hook
    // tells of.
    QByteArray said() const { return m_said; }
    QByteArray complaints() { return m_complaints += m_process.readAllStandardError(); }

private:
    bool next_event(QJsonObject *event);

    QString m_program = QStringLiteral(PROGRAM_PATH);
    QProcess m_process;
    QProcessEnvironment m_environment;
    bool m_hooked = true;
    bool m_window_seen = false;
    bool m_box_seen = false; // while waiting for the end
    QByteArray m_said;
    QByteArray m_complaints;
    QList<QJsonObject> m_waiting;
};

#endif
