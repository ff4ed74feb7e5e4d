// SPDX-License-Identifier: GPL-3.0-or-later
//
// The front door on a machine that refuses name spaces, or is made to look like
// one, and without a desktop's session bus.
#include <QtTest>

#include <QDir>
#include <QFile>
#include <QProcess>

#include "machine.h"
#include "support/testmain.h"

class WithoutNameSpaces : public QObject
{
    Q_OBJECT

private slots:
    void tests_without_name_spaces();
    void name_spaces_that_nobody_asked_for_are_no_test();
    void places_that_stay_behind_fail_the_tests();
    void machine_that_gives_no_places();
    void tour_and_run_without_name_spaces();
    void every_change_passes_with_and_without_name_spaces();
    void commands_without_a_desktop_name_no_session_bus();
};

namespace
{

// Lets the build leave one benchmark behind, and a launcher that runs it.
void benchmark(Machine &machine, int status)
{
    machine.command("cmake",
                    "mkdir -p build/bin build/bench\n"
                    "printf '#!/bin/sh\\nshift 2\\nexec \"$@\"\\n' >build/bin/privatecell\n"
                    "printf '#!/bin/sh\\necho ratio a/b: 1.5\\necho more\\nexit " +
                        QString::number(status) +
                        "\\n' >build/bench/bench_a\n"
                        "chmod +x build/bin/privatecell build/bench/bench_a");
}

// Lets the build leave a launcher behind that asks for name spaces and then
// shows what it is given; its status without them. None of the cell's folders is
// there afterwards.
void asking_launcher(Machine &machine, int status)
{
    machine.command("cmake", "mkdir -p build/bin\n"
                             "printf '#!/bin/sh\\n"
                             "bwrap --ask \"$*\" && echo had name spaces && exit 0\\n"
                             "echo \"launched $* bus $DBUS_SESSION_BUS_ADDRESS\"; exit " +
                                 QString::number(status) +
                                 "\\n' >build/bin/privatecell\n"
                                 "printf '#!/bin/sh\\n' >build/bin/cellpanel\n"
                                 "chmod +x build/bin/privatecell build/bin/cellpanel");
    machine.command("ls", "exit 2");
}

} // namespace

void WithoutNameSpaces::tests_without_name_spaces()
{
    Machine machine;
    asking_launcher(machine, 0);
    machine.command("nproc", "echo 4");
    machine.command("ctest", "build/bin/privatecell --no-cell -- a_test; echo tested");
    const Outcome outcome = machine.zerl({"test", "--without-namespaces"});
    QVERIFY2(outcome.status == 0, qPrintable(outcome.errors));
    QVERIFY2(outcome.output.endsWith("launched --no-cell -- a_test bus \ntested\n"),
             qPrintable(outcome.output));
    QVERIFY(!outcome.output.contains("had name spaces"));
    QCOMPARE(machine.calls("ctest"),
             QStringList("ctest --preset default --parallel 1 --exclude-regex ^walk_"));
    QCOMPARE(machine.calls("bwrap"), QStringList()); // the machine's own
    machine.command("ctest", "build/bin/privatecell; exit 8");
    QCOMPARE(machine.zerl({"test", "--without-namespaces"}).status, 8);
}

void WithoutNameSpaces::name_spaces_that_nobody_asked_for_are_no_test()
{
    Machine machine;
    asking_launcher(machine, 0);
    const Outcome outcome = machine.zerl({"test", "--without-namespaces"});
    QCOMPARE(outcome.status, 1);
    QVERIFY2(outcome.errors.contains("name spaces were never asked for"),
             qPrintable(outcome.errors));
}

void WithoutNameSpaces::places_that_stay_behind_fail_the_tests()
{
    Machine machine;
    asking_launcher(machine, 0);
    machine.command("ctest", "build/bin/privatecell");
    machine.command("ls", "echo /ram; exit 2");
    const Outcome outcome = machine.zerl({"test", "--without-namespaces"});
    QCOMPARE(outcome.status, 1);
    QVERIFY2(outcome.errors.contains("left behind: /ram"), qPrintable(outcome.errors));
    QCOMPARE(machine.calls("ls"), QStringList("ls -d /cell /specs /ram /vornax"));
}

void WithoutNameSpaces::machine_that_gives_no_places()
{
    Machine machine;
    asking_launcher(machine, 125);
    const Outcome outcome = machine.zerl({"test", "--without-namespaces"});
    QCOMPARE(outcome.status, 1);
    QVERIFY2(outcome.errors.contains("no cell can be had on this machine"),
             qPrintable(outcome.errors));
    QCOMPARE(machine.calls("ctest"), QStringList());
}

void WithoutNameSpaces::tour_and_run_without_name_spaces()
{
    Machine machine;
    asking_launcher(machine, 0);
    Outcome outcome = machine.zerl({"tour", "--without-namespaces"});
    QVERIFY2(outcome.status == 0, qPrintable(outcome.errors));
    QVERIFY2(outcome.output.contains("launched --cell " + machine.path("build/tour-cell")),
             qPrintable(outcome.output));
    machine.environment("DISPLAY", ":7");
    outcome = machine.zerl({"run", "--cell", "mine", "--without-namespaces"});
    QVERIFY2(outcome.status == 0, qPrintable(outcome.errors));
    QVERIFY2(outcome.output.contains("/mine --start --panel -- "), qPrintable(outcome.output));
    QVERIFY(!outcome.output.contains("had name spaces"));
    QCOMPARE(machine.calls("bwrap"), QStringList());
}

void WithoutNameSpaces::every_change_passes_with_and_without_name_spaces()
{
    Machine machine;
    QDir().mkpath(machine.path(".ci"));
    QVERIFY(QFile::copy(QString(PROJECT_SOURCE_DIR) + "/.ci/run", machine.path(".ci/run")));
    machine.write("zerl", "#!/bin/sh\necho \"$*\"\n");
    QVERIFY(QFile::setPermissions(machine.path("zerl"), QFile::ReadOwner | QFile::ExeOwner));
    QProcess process;
    process.start("/bin/sh", {machine.path(".ci/run")});
    QVERIFY(process.waitForFinished(60000));
    const QStringList steps =
        QString::fromUtf8(process.readAllStandardOutput()).split('\n', Qt::SkipEmptyParts);
    for (const char *step : {"test", "test --without-namespaces", "test --sanitize", "lint", "tour",
                             "tour --without-namespaces"})
        QVERIFY2(steps.contains(step), qPrintable(steps.join('|')));
}

// Only run is for a desktop.
void WithoutNameSpaces::commands_without_a_desktop_name_no_session_bus()
{
    Machine machine;
    asking_launcher(machine, 0);
    machine.command("bwrap", "exit 1");
    machine.environment("DISPLAY", ":7");
    machine.environment("DBUS_SESSION_BUS_ADDRESS", "unix:path=/tmp/theirs");
    for (const char *command : {"tour", "soak"}) {
        const Outcome outcome = machine.zerl({command});
        QVERIFY2(outcome.output.contains(" bus disabled:\n"), qPrintable(outcome.output));
    }
    QVERIFY(machine.zerl({"run"}).output.contains(" bus unix:path=/tmp/theirs\n"));
    benchmark(machine, 0);
    machine.command("cat", "echo \"bus $DBUS_SESSION_BUS_ADDRESS\"");
    const Outcome outcome = machine.zerl({"bench"});
    QVERIFY2(outcome.output.contains("bus disabled:\n"), qPrintable(outcome.output));
}

LOOP_TEST(WithoutNameSpaces);
#include "test_namespaces.moc"
