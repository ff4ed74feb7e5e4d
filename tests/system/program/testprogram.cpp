// SPDX-License-Identifier: GPL-3.0-or-later
#include "system/program/testprogram.h"

#include <QDeadlineTimer>
#include <QJsonArray>
#include <QJsonDocument>

TestProgram::TestProgram() : m_environment(QProcessEnvironment::systemEnvironment())
{
    m_environment.remove(QStringLiteral("DISPLAY"));
    m_environment.remove(QStringLiteral("WAYLAND_DISPLAY"));
    m_environment.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
}

TestProgram::~TestProgram()
{
    if (m_process.state() == QProcess::NotRunning)
        return;
    m_process.kill();
    m_process.waitForFinished(DEADLINE_MS);
}

bool TestProgram::start(const QStringList &arguments)
{
    if (m_hooked) {
        m_environment.insert(QStringLiteral("LD_PRELOAD"), QStringLiteral(HOOK_PATH));
        // A sanitizer that is linked as a library stands behind the hook.
        m_environment.insert(QStringLiteral("ASAN_OPTIONS"),
                             m_environment.value(QStringLiteral("ASAN_OPTIONS")) +
                                 QStringLiteral(":verify_asan_link_order=0"));
    }
    m_process.setProcessEnvironment(m_environment);
    m_process.start(m_program, arguments);
    return m_process.waitForStarted(DEADLINE_MS);
}

bool TestProgram::next_event(QJsonObject *event)
{
    QDeadlineTimer deadline(DEADLINE_MS);
    for (;;) {
        while (m_process.canReadLine()) {
            const QByteArray line = m_process.readLine();
            *event = QJsonDocument::fromJson(line).object();
            if (!event->isEmpty())
                return true;
            m_said += line;
        }
        if (m_process.state() == QProcess::NotRunning || deadline.hasExpired())
            return false;
        m_process.waitForReadyRead(static_cast<int>(deadline.remainingTime()));
    }
}

bool TestProgram::wait_for_window()
{
    QJsonObject event;
    while (!m_window_seen) {
        if (!next_event(&event))
            return false;
        if (event.value(QLatin1String("event")) != QLatin1String("window"))
            return false;
        m_window_seen = true;
    }
    return true;
}

QString TestProgram::next_box()
{
    QJsonObject event;
    for (;;) {
        if (!m_waiting.isEmpty())
            event = m_waiting.takeFirst();
        else if (!next_event(&event))
            return QStringLiteral("no box");
        const QString kind = event.value(QLatin1String("event")).toString();
        if (kind == QLatin1String("window"))
            m_window_seen = true;
        else if (kind == QLatin1String("box"))
            return event.value(QLatin1String("title")).toString() + QLatin1Char('|') +
                   event.value(QLatin1String("text")).toString();
        else
            return QStringLiteral("an answer: ") + event.value(QLatin1String("value")).toString();
    }
}

bool TestProgram::send(const QStringList &words)
{
    const QByteArray line =
        QJsonDocument(QJsonArray::fromStringList(words)).toJson(QJsonDocument::Compact) + '\n';
    return m_process.write(line) == line.size() && m_process.waitForBytesWritten(DEADLINE_MS);
}

QString TestProgram::ask(const QStringList &words)
{
    QJsonObject event;
    if (!send(words))
        return QStringLiteral("not sent");
    while (next_event(&event)) {
        const QString kind = event.value(QLatin1String("event")).toString();
        if (kind == QLatin1String("answer"))
            return event.value(QLatin1String("value")).toString();
        if (kind == QLatin1String("window"))
            m_window_seen = true;
        else
            m_waiting.append(event);
    }
    return QStringLiteral("no answer");
}

int TestProgram::wait_for_end(int deadline_ms)
{
    QJsonObject event;
    QDeadlineTimer deadline(deadline_ms);
    while (m_process.state() != QProcess::NotRunning && !deadline.hasExpired())
        m_process.waitForFinished(static_cast<int>(deadline.remainingTime()));
    if (m_process.state() != QProcess::NotRunning)
        return -1;
    while (next_event(&event)) {
        const QString kind = event.value(QLatin1String("event")).toString();
        m_window_seen = m_window_seen || kind == QLatin1String("window");
        m_box_seen = m_box_seen || kind == QLatin1String("box");
    }
    if (m_process.exitStatus() != QProcess::NormalExit)
        return -1;
    return m_process.exitCode();
}
