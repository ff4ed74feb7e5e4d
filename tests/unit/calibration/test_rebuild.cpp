// SPDX-License-Identifier: GPL-3.0-or-later
//
// The host's rebuild of its run-time tables: what is started, how long is
// waited, and what follows. A script stands at the place of the host's program.
#include <dlfcn.h>
#include <memory>

#include <QElapsedTimer>
#include <QtTest>

#include "calibration/tablestore.h"
#include "frame/hostlink.h"
#include "frame/zerl_callbacks.h"
#include "hostsim/runtime/memoryheader.h"
#include "support/cellfiles.h"
#include "support/hostlog.h"
#include "support/recorder.h"
#include "support/testmain.h"

namespace
{

constexpr char PROGRAM[] = "/vornax/bin/bld_tables";
constexpr char STARTED[] = "/cell/started";

const int32_t MEMORIES[] = {MEMORY_AI_REAL,     MEMORY_MILLIVOLTS, MEMORY_SYS_ATTR,
                            MEMORY_AI_TRANSFER, MEMORY_SCHEDULER,  MEMORY_DISPLAY_STRINGS,
                            MEMORY_CAL_TABLES};

QVector<int> units_modes;
int32_t units_result = 0;

QVector<ZERL_CFG *> bound;
int32_t bind_result = 0;

int32_t bind(ZERL_CFG *cfg)
{
    bound.append(cfg);
    return bind_result;
}

} // namespace

// Stands before the runtime's own.
extern "C" int32_t units_init_access(int32_t mode)
{
    units_modes.append(mode);
    return units_result;
}

class Rebuild : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { require_private_cell(); }
    void init();
    void cleanupTestCase();
    void waits_two_seconds_by_default();
    void host_program_is_started_without_arguments();
    void channel_is_bound_again();
    void binding_that_fails_keeps_the_flag();
    void nothing_to_bind_with();
    void missing_program_is_not_detected();
    void failing_program_is_not_detected();
    void program_is_not_waited_for();
    void memories_lost_data();
    void memories_lost();
    void units_lost_data();
    void units_lost();

private:
    void install_program(const QByteArray &script);

    std::unique_ptr<ZERL_CFG> m_cfg;
};

void Rebuild::install_program(const QByteArray &script)
{
    QFile::remove(PROGRAM);
    if (script.isEmpty())
        return;
    write_file(PROGRAM, "#!/bin/sh\n" + script);
    QVERIFY(QFile::setPermissions(PROGRAM, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
}

void Rebuild::init()
{
    clear_cell();
    clear_recorded();
    for (const int32_t id : MEMORIES)
        QVERIFY(hostsim::publish_memory(id, 4096, nullptr, nullptr) != nullptr);
    install_program("exit 0\n");
    units_modes.clear();
    units_result = 0;
    bound.clear();
    bind_result = 0;
    g_callbacks.rebind_channel = bind;
    m_cfg = std::make_unique<ZERL_CFG>();
    m_cfg->table_dirty = 1;
}

void Rebuild::cleanupTestCase()
{
    for (const int32_t id : MEMORIES)
        hostsim::withdraw_memory(id);
    QFile::remove(PROGRAM);
}

// The only test that takes the whole wait: the others shorten it.
void Rebuild::waits_two_seconds_by_default()
{
    QCOMPARE(REBUILD_WAIT_MS, 2000);
    QCOMPARE(g_rebuild_wait_ms, 2000);
    QElapsedTimer since;
    since.start();
    rebuild_tables(m_cfg.get());
    QVERIFY2(since.elapsed() >= 2000, "never shorter, whatever the program does");
    QCOMPARE(bound.size(), 1);
    g_rebuild_wait_ms = 0;
}

void Rebuild::host_program_is_started_without_arguments()
{
    g_rebuild_wait_ms = 0;
    install_program("printf '%s arguments' $# >/cell/started.new\n"
                    "mv /cell/started.new /cell/started\n");
    rebuild_tables(m_cfg.get());
    QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(STARTED), 60000);
    QCOMPARE(read_file(STARTED), QByteArray("0 arguments"));
}

void Rebuild::channel_is_bound_again()
{
    g_rebuild_wait_ms = 0;
    Ai_real = nullptr;
    const HostLog log;
    rebuild_tables(m_cfg.get());
    QVERIFY2(Ai_real != nullptr, "the memories are attached anew");
    QCOMPARE(units_modes, QVector<int>({1}));
    QCOMPARE(bound, QVector<ZERL_CFG *>({m_cfg.get()}));
    QCOMPARE(m_cfg->table_dirty, uint16_t{0});
    QCOMPARE(information_texts(), QStringList());
    QCOMPARE(log.texts(), QStringList());
}

void Rebuild::binding_that_fails_keeps_the_flag()
{
    g_rebuild_wait_ms = 0;
    bind_result = -1;
    rebuild_tables(m_cfg.get());
    QCOMPARE(bound.size(), 1);
    QCOMPARE(m_cfg->table_dirty, uint16_t{1});
}

void Rebuild::nothing_to_bind_with()
{
    g_rebuild_wait_ms = 0;
    g_callbacks.rebind_channel = nullptr;
    rebuild_tables(m_cfg.get());
    QCOMPARE(units_modes.size(), 1);
    QCOMPARE(m_cfg->table_dirty, uint16_t{1});
}

void Rebuild::missing_program_is_not_detected()
{
    g_rebuild_wait_ms = 0;
    install_program("");
    const HostLog log;
    rebuild_tables(m_cfg.get());
    QCOMPARE(bound.size(), 1);
    QCOMPARE(m_cfg->table_dirty, uint16_t{0});
    QCOMPARE(information_texts(), QStringList());
    QCOMPARE(log.texts(), QStringList());
}

void Rebuild::failing_program_is_not_detected()
{
    g_rebuild_wait_ms = 0;
    install_program(": >/cell/started\nexit 1\n");
    const HostLog log;
    rebuild_tables(m_cfg.get());
    QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(STARTED), 60000);
    QCOMPARE(bound.size(), 1);
    QCOMPARE(information_texts(), QStringList());
    QCOMPARE(log.texts(), QStringList());
}

// It ends only when the test lets it, which is after the rebuild has returned.
void Rebuild::program_is_not_waited_for()
{
    g_rebuild_wait_ms = 0;
    install_program("n=0\n"
                    "while [ ! -e /cell/go ] && [ $n -lt 1200 ]; do sleep 0.05; n=$((n+1)); done\n"
                    "[ -e /cell/go ] && : >/cell/finished\n");
    rebuild_tables(m_cfg.get());
    QVERIFY(!QFile::exists(QStringLiteral("/cell/finished")));
    write_file(QStringLiteral("/cell/go"), "");
    QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(QStringLiteral("/cell/finished")), 60000);
}

void Rebuild::memories_lost_data()
{
    const auto row = test_columns<int, QString>("id", "message");
    row("the first of them", int{MEMORY_AI_REAL},
        "Vornax must be running\nUnable to get AI_REAL memory");
    row("the last of them", int{MEMORY_CAL_TABLES},
        "Vornax must be running\nUnable to get CAL_TABLES memory");
}

void Rebuild::memories_lost()
{
    QFETCH(int, id);
    QFETCH(QString, message);
    g_rebuild_wait_ms = 0;
    hostsim::withdraw_memory(id);
    const HostLog log;
    rebuild_tables(m_cfg.get());
    QCOMPARE(log.texts(), QStringList("Failure Initializing Shared Memory after Table Rebuild"));
    QCOMPARE(log.entries().first().severity, 1);
    QCOMPARE(information_texts(), QStringList(message));
    QCOMPARE(units_modes, QVector<int>());
    QCOMPARE(bound.size(), 0);
    QCOMPARE(m_cfg->table_dirty, uint16_t{1});
}

void Rebuild::units_lost_data()
{
    const auto row = test_columns<int, bool>("result", "lost");
    row("-1", -1, true);
    row("65535, -1 as a 16-bit value", 65535, true);
    row("another result is no failure", 5, false);
}

void Rebuild::units_lost()
{
    QFETCH(int, result);
    QFETCH(bool, lost);
    g_rebuild_wait_ms = 0;
    units_result = result;
    const HostLog log;
    rebuild_tables(m_cfg.get());
    QCOMPARE(log.count("Failure Re-initializing Units after Table Rebuild"), lost ? 1 : 0);
    QCOMPARE(log.entries().size(), lost ? 1 : 0);
    QCOMPARE(bound.size(), lost ? 0 : 1);
    QCOMPARE(m_cfg->table_dirty, lost ? uint16_t{1} : uint16_t{0});
    QCOMPARE(information_texts(), QStringList());
}

LOOP_TEST(Rebuild);
#include "test_rebuild.moc"
