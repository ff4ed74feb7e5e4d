// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/testcell.h"

#include <QDeadlineTimer>
#include <QFile>
#include <QTest>

#include "support/cellfiles.h"

namespace
{

constexpr int DEADLINE_MS = 60000; // under a sanitizer on a busy machine

QString socket_path()
{
    return QString::fromLatin1(cell::CELL_SOCKET);
}

} // namespace

QByteArray TestCell::simple_description()
{
    return R"(cell "Test Cell"
host testhost
variable CELL_TEMP 72.5 DEG_F
channel 0
  label "Channel Zero"
  units kPa
  table zero
  sample_rate 100
  filter 0.5
  input kPa 0 100
  response linear 50
  record INTERP
  points 0:0 1250:25 2500:50 3750:75 5000:100
  sensor kPa 0 100 MODEL0 SERIAL0
  description "Table zero"
  mua none
channel 1
  label "Channel One"
  units kPa
  table one
  input kPa 0 100
  response linear 50
  record INTERP
  points 0:0 2500:50 5000:100
  sensor kPa 0 100 MODEL1 SERIAL1
  description "Table one"
  mua none
channel 2
  label "Channel Two"
  units kPa
  table two
  active inactive
channel 3
  label "Channel Three"
  units kPa
  table three
)";
}

TestCell::~TestCell()
{
    if (m_process.state() != QProcess::NotRunning && !stop())
        QTest::qFail(qPrintable(m_error), __FILE__, __LINE__);
}

bool TestCell::fail(const QString &what)
{
    m_error = what + QString::fromUtf8(m_process.readAllStandardError());
    return false;
}

bool TestCell::start()
{
    require_private_cell();
    write_file(QStringLiteral("/cell/cell.txt"), m_description);
    m_process.setProgram(QStringLiteral(PROJECT_BINARY_DIR "/bin/trainingcell"));
    m_process.setArguments({QStringLiteral("--ready-fd"), QStringLiteral("1")});
    m_process.start();
    if (!m_process.waitForStarted(DEADLINE_MS))
        return fail(QStringLiteral("the cell cannot be started: ") + m_process.errorString());
    QDeadlineTimer deadline(DEADLINE_MS);
    QByteArray ready;
    while (ready.isEmpty() && m_process.state() == QProcess::Running && !deadline.hasExpired()) {
        m_process.waitForReadyRead(static_cast<int>(deadline.remainingTime()));
        ready = m_process.readAllStandardOutput();
    }
    if (!ready.isEmpty())
        return true;
    kill();
    return fail(QStringLiteral("the cell does not get ready: "));
}

bool TestCell::stop()
{
    m_process.terminate();
    if (!m_process.waitForFinished(DEADLINE_MS)) {
        kill();
        return fail(QStringLiteral("the cell does not end: "));
    }
    if (m_process.exitStatus() != QProcess::NormalExit || m_process.exitCode() != 0)
        return fail(QStringLiteral("the cell ended with status %1: ").arg(m_process.exitCode()));
    const QStringList left = published_memories();
    if (!left.isEmpty())
        return fail(QStringLiteral("the cell left ") + left.join(QLatin1Char(' ')));
    if (QFile::exists(socket_path()))
        return fail(QStringLiteral("the cell left its socket"));
    return true;
}

void TestCell::kill()
{
    m_process.kill();
    m_process.waitForFinished(DEADLINE_MS);
}

void TestCell::tidy()
{
    require_private_cell();
    for (const QString &path : published_memories())
        QFile::remove(path);
    QFile::remove(socket_path());
}
