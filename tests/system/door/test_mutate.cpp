// SPDX-License-Identifier: GPL-3.0-or-later
//
// Small mistakes in a copy of the sources: what ./zerl mutate passes on, and what
// mutate.py makes of a tree with stand-ins for CMake and CTest.
#include <QtTest>

#include <QProcess>

#include "machine.h"
#include "support/testmain.h"

class Mutate : public QObject
{
    Q_OBJECT

private slots:
    void options_are_passed_on();
    void comes_first_among_commands();
    void text_stands_in_one_place_data();
    void text_stands_in_one_place();
    void verdict_data();
    void verdict();
    void tests_that_fail_without_a_mutant_count_for_nothing();
    void one_is_picked_by_its_name();

private:
    void write(const QString &name, const QByteArray &text);
    void make_tree(const QByteArray &changed_to);
    Outcome mutate(const QStringList &arguments);
    QByteArray read(const QString &name) const;

    QTemporaryDir m_folder;
};

void Mutate::options_are_passed_on()
{
    Machine machine;
    machine.command("nproc", "echo 4");
    machine.command("python3", "exit 7");
    const QString begin = "python3 " + machine.path("tests/mutate.py");
    QCOMPARE(machine.zerl({"mutate", "--list", "--touch"}).status, 7);
    QCOMPARE(machine.calls(begin + " --jobs 4 --list --touch").size(), 1);
    machine.command("bwrap", "exit 1");
    QCOMPARE(machine.zerl({"mutate", "--only", "test"}).status, 7);
    QCOMPARE(machine.calls(begin + " --jobs 1 --only test").size(), 1);
}

void Mutate::comes_first_among_commands()
{
    Machine machine;
    const Outcome outcome = machine.zerl({"test", "mutate"});
    QCOMPARE(outcome.status, 2);
    QVERIFY(outcome.errors.contains("one command at a time: test or mutate"));
}

void Mutate::write(const QString &name, const QByteArray &text)
{
    const QString path = m_folder.filePath(name);
    QDir().mkpath(QFileInfo(path).path());
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(text);
    file.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
}

QByteArray Mutate::read(const QString &name) const
{
    QFile file(m_folder.filePath(name));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("none");
}

// A tree with one source and one mutant. The compiler refuses the word "refused",
// and the test fails when the source does not say "right" any more.
void Mutate::make_tree(const QByteArray &changed_to)
{
    QDir(m_folder.filePath("tree")).removeRecursively();
    write("tree/src/room/one.cpp", "int right;\nint other;\n");
    write("tree/tests/mutants.txt",
          "# a list\n\nfirst | one.cpp | unit_room_class\n- int right;\n+ " + changed_to + "\n");
    write("tree/tests/mutate.py", [] {
        QFile script(QString(PROJECT_SOURCE_DIR) + "/tests/mutate.py");
        return script.open(QIODevice::ReadOnly) ? script.readAll() : QByteArray();
    }());
    write("bin/cmake",
          "#!/bin/sh\ncase $1 in --build) ! grep -q refused src/room/one.cpp ;; esac\n");
    write("bin/ctest", "#!/bin/sh\n"
                       "case $* in *--show-only*)\n"
                       "    printf '{\"tests\": [{\"name\": \"unit_room_class\", \"command\":\n"
                       "        [\"launcher\", \"%s/tests/unit_room\", \"class\"]}]}' \"$2\"\n"
                       "    exit ;;\n"
                       "esac\n"
                       "state=Passed\n"
                       "grep -q right src/room/one.cpp || state='***Failed  '\n"
                       "grep -q slow src/room/one.cpp && state='***Timeout '\n"
                       "echo \"1/1 Test #1: unit_room_class ...........   $state 0.01 sec\"\n"
                       "echo 'FAIL!  : Class::function(row) not right'\n");
}

Outcome Mutate::mutate(const QStringList &arguments)
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("PATH", m_folder.filePath("bin") + ':' + environment.value("PATH"));
    QProcess process;
    process.setProcessEnvironment(environment);
    process.start("python3", QStringList{m_folder.filePath("tree/tests/mutate.py")} + arguments);
    if (!process.waitForStarted() || !process.waitForFinished(60000))
        return {-1, QString(), process.errorString()};
    return {process.exitCode(), process.readAllStandardOutput(), process.readAllStandardError()};
}

void Mutate::text_stands_in_one_place_data()
{
    QTest::addColumn<QByteArray>("here");
    QTest::addColumn<QByteArray>("elsewhere");
    QTest::addColumn<int>("status");
    QTest::addColumn<QString>("told");
    const QByteArray text = "int right;\n";
    QTest::newRow("where it is said to") << text << QByteArray() << 0 << "src/room/one.cpp";
    QTest::newRow("in another file") << QByteArray() << text << 0 << "hostsim/else/two.h";
    QTest::newRow("nowhere") << QByteArray() << QByteArray() << 1 << "BROKEN: its text is not in";
    QTest::newRow("in both") << text << text << 1 << "BROKEN: its text stands more than once";
    QTest::newRow("twice in one") << text + text << QByteArray() << 1
                                  << "BROKEN: its text stands more than once";
}

void Mutate::text_stands_in_one_place()
{
    if (QStandardPaths::findExecutable("python3").isEmpty())
        QSKIP("python3 is not installed");
    QFETCH(QByteArray, here);
    QFETCH(QByteArray, elsewhere);
    QFETCH(int, status);
    QFETCH(QString, told);
    make_tree("int wrong;");
    write("tree/src/room/one.cpp", here);
    write("tree/hostsim/else/two.h", elsewhere);
    const Outcome outcome = mutate({"--list"});
    QVERIFY2(outcome.output.startsWith("first | " + told),
             qPrintable(outcome.output + outcome.errors));
    QCOMPARE(outcome.status, status);
}

void Mutate::verdict_data()
{
    QTest::addColumn<QByteArray>("changed_to");
    QTest::addColumn<int>("status");
    QTest::addColumn<QString>("told");
    QTest::addColumn<QString>("score");
    QTest::newRow("seen") << QByteArray("int wrong;") << 0 << "killed  "
                          << "1 of 1 mutants killed\n";
    QTest::newRow("not in time") << QByteArray("int slow;") << 0 << "killed, timeout "
                                 << "1 of 1 mutants killed\n";
    QTest::newRow("not seen") << QByteArray("int right ;") << 1 << "SURVIVED "
                              << "0 of 1 mutants killed\nsurvivors: first\n";
    QTest::newRow("not built") << QByteArray("refused;") << 1 << "BROKEN "
                               << "0 of 1 mutants killed\nbroken: first\n";
}

void Mutate::verdict()
{
    if (QStandardPaths::findExecutable("python3").isEmpty())
        QSKIP("python3 is not installed");
    QFETCH(QByteArray, changed_to);
    QFETCH(int, status);
    QFETCH(QString, told);
    QFETCH(QString, score);
    make_tree(changed_to);
    const Outcome outcome = mutate({"--jobs", "1"});
    QVERIFY2(outcome.output.startsWith(told), qPrintable(outcome.output + outcome.errors));
    QVERIFY2(outcome.output.endsWith(score), qPrintable(outcome.output));
    QCOMPARE(outcome.status, status);
    const QByteArray source = "int right;\nint other;\n";
    QCOMPARE(read("tree/src/room/one.cpp"), source);
    QCOMPARE(read("tree/build/mutants/1/tree/src/room/one.cpp"), source);
}

void Mutate::tests_that_fail_without_a_mutant_count_for_nothing()
{
    if (QStandardPaths::findExecutable("python3").isEmpty())
        QSKIP("python3 is not installed");
    make_tree("int worse;");
    write("tree/src/room/one.cpp", "int wrong;\n");
    write("tree/src/room/two.cpp", "int right;\n");
    const Outcome outcome = mutate({"--jobs", "1"});
    QVERIFY2(outcome.errors.contains("these fail without a mutant: unit_room_class"),
             qPrintable(outcome.errors));
    QCOMPARE(outcome.output, QString());
    QCOMPARE(outcome.status, 1);
}

void Mutate::one_is_picked_by_its_name()
{
    if (QStandardPaths::findExecutable("python3").isEmpty())
        QSKIP("python3 is not installed");
    make_tree("int wrong;");
    for (const char *name : {"irs", "one.cpp", "unit_room_class"})
        QVERIFY(mutate({"--list", "--only", name}).output.startsWith("first | "));
    const Outcome outcome = mutate({"--list", "--only", "second"});
    QCOMPARE(outcome.errors, QString("no mutant is named second\n"));
    QCOMPARE(outcome.status, 1);
}

LOOP_TEST(Mutate);
#include "test_mutate.moc"
