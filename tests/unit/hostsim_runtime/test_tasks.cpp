// SPDX-License-Identifier: GPL-3.0-or-later
#include <QProcess>
#include <QtTest>

#include <cstdlib>
#include <cstring>

#include "child.h"
#include "host/operations.h"
#include "hostsim/runtime/memoryheader.h"
#include "logreader.h"
#include "support/testmain.h"

using namespace hostsim;

#define REFUSED "refused"

class Tasks : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        clear_log();
        withdraw_memory(MEMORY_CONTROL);
    }
    void cleanupTestCase() { init(); }
    void join_without_a_cell_is_admitted();
    void join_answers_as_the_cell_says_data();
    void join_answers_as_the_cell_says();
    void join_after_the_cell_died_is_admitted();
    void join_with_a_short_memory_is_admitted();
    void authentication_failure_logs_and_exits();
};

void Tasks::join_without_a_cell_is_admitted()
{
    QCOMPARE(join_layer(3), 0);
}

void Tasks::join_answers_as_the_cell_says_data()
{
    QTest::addColumn<int>("answer");
    QTest::newRow("admitted") << 0;
    QTest::newRow("refused") << int(JOIN_REFUSED);
    QTest::newRow("anything else") << -7;
}

void Tasks::join_answers_as_the_cell_says()
{
    QFETCH(int, answer);
    const LivingChild cell([&answer] {
        const auto fill = [](void *payload, void *context) {
            static_cast<ControlRecord *>(payload)->join_answer = *static_cast<int *>(context);
        };
        return publish_memory(MEMORY_CONTROL, sizeof(ControlRecord), fill, &answer) != nullptr;
    });
    QVERIFY(cell.done());
    QCOMPARE(join_layer(3), answer);
}

// What a dead cell would have answered plays no part.
void Tasks::join_after_the_cell_died_is_admitted()
{
    LivingChild cell([] {
        const auto fill = [](void *payload, void *) {
            static_cast<ControlRecord *>(payload)->join_answer = JOIN_REFUSED;
        };
        return publish_memory(MEMORY_CONTROL, sizeof(ControlRecord), fill, nullptr) != nullptr;
    });
    QVERIFY(cell.done());
    QCOMPARE(join_layer(3), int(JOIN_REFUSED));
    cell.kill();
    QCOMPARE(join_layer(3), 0);
}

void Tasks::join_with_a_short_memory_is_admitted()
{
    QVERIFY(publish_memory(MEMORY_CONTROL, 4, nullptr, nullptr) != nullptr);
    QCOMPARE(join_layer(3), 0);
}

void Tasks::authentication_failure_logs_and_exits()
{
    QProcess refused;
    refused.start(QStringLiteral("/proc/self/exe"),
                  {QStringLiteral("tasks"), QStringLiteral(REFUSED)});
    QVERIFY(refused.waitForFinished());
    QCOMPARE(refused.exitStatus(), QProcess::NormalExit);
    QCOMPARE(refused.exitCode(), 1);
    QCOMPARE(refused.readAllStandardError(), QByteArray());
    const QList<LogEntry> entries = log_entries();
    QCOMPARE(entries.size(), 2);
    QCOMPARE(entries[0].code, static_cast<int>(LogCode::TaskRefused));
    QCOMPARE(entries[1].text, std::string("ran"));
}

// Started with REFUSED, the program is a task that the host refuses.
static int run(int argc, char **argv)
{
    if (argc == 2 && strcmp(argv[1], REFUSED) == 0) {
        // Not by an abort or a quick exit: what is to run at the end, runs.
        atexit([] { log_error("atexit.cpp", 1, 1, 0, "ran"); });
        exit_auth_failure();
    }
    Tasks tasks;
    return QTest::qExec(&tasks, argc, argv);
}
TEST_WITH_MAIN(run);

#include "test_tasks.moc"
