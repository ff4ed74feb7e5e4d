// SPDX-License-Identifier: GPL-3.0-or-later
//
// Breaks the writing of a working standard off at each of its steps, in every
// way that a process, a disc or a machine fails. The file is the former one or
// the new one, and whole.
#include <algorithm>
#include <cstring>

#include <sys/wait.h>
#include <unistd.h>

#include <QtTest>

#include "discstate.h"
#include "records/workingstandard.h"
#include "support/cellfiles.h"
#include "support/testmain.h"

static const QString FOLDER = QStringLiteral("/specs/working_standards");
static const QString NAME = QStringLiteral("DW-12.txt");

static WorkingStandard standard(const QString &make)
{
    return {"DW-12", make, "model", "date", "serial", QString(2000, 'r')};
}

static QByteArray text_of(const QString &make)
{
    return working_standard_text(standard(make));
}

class TestTextFaults : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase() { require_private_cell(); }
    void every_step_breaks_off_data();
    void every_step_breaks_off();
    void undisturbed_write_is_safe_on_the_disc();

private:
    void prepare(bool present);
    int run(const QString &mode, int at);
    quint32 calls() const;
    QVector<FolderContents> outcomes(bool machine) const;

    const QString m_counter = QDir::tempPath() + "/calls";
    const QString m_shadow = QDir::tempPath() + "/shadow";
};

void TestTextFaults::prepare(bool present)
{
    restore_folder(FOLDER, {});
    if (present)
        write_file(FOLDER + "/" + NAME, text_of("former"));
}

quint32 TestTextFaults::calls() const
{
    quint32 number = 0;
    const QByteArray bytes = read_file(m_counter);
    std::memcpy(&number, bytes.constData(), std::min<std::size_t>(4, std::size_t(bytes.size())));
    return number;
}

// Exit status of the writing process, -1 when it was killed.
int TestTextFaults::run(const QString &mode, int at)
{
    write_file(m_counter, QByteArray(4, '\0'));
    begin_shadow(FOLDER, m_shadow);
    const pid_t pid = fork();
    if (pid == 0) {
        setpgid(0, 0);
        setenv("LD_PRELOAD", FAULTINJECT_LIBRARY, 1);
        setenv("FAULTINJECT_FOLDER", qPrintable(FOLDER), 1);
        setenv("FAULTINJECT_COUNTER", qPrintable(m_counter), 1);
        setenv("FAULTINJECT_SHADOW", qPrintable(m_shadow), 1);
        setenv("FAULTINJECT_MODE", qPrintable(mode), 1);
        setenv("FAULTINJECT_AT", qPrintable(QString::number(at)), 1);
        const QByteArray asan = qgetenv("ASAN_OPTIONS");
        setenv("ASAN_OPTIONS",
               (asan + (asan.isEmpty() ? "" : ":") + "verify_asan_link_order=0").constData(), 1);
        execl("/proc/self/exe", "write", "--write", nullptr);
        _exit(99);
    }
    int status = 0;
    if (pid < 0 || waitpid(pid, &status, 0) != pid)
        qFatal("no process can be started");
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

// All that may be found afterwards.
QVector<FolderContents> TestTextFaults::outcomes(bool machine) const
{
    QVector<FolderContents> found = {read_folder(FOLDER)};
    if (!machine)
        return found;
    found += kept_contents(FOLDER, m_shadow);
    found += kept_names_and_contents(m_shadow);
    for (const FolderContents &contents : lost_new_names(FOLDER, m_shadow))
        found += contents;
    return found;
}

void TestTextFaults::every_step_breaks_off_data()
{
    QTest::addColumn<bool>("present");
    QTest::addColumn<QString>("mode");
    for (const bool present : {true, false}) {
        for (const char *mode : {"kill", "torn", "crash", "torncrash", "enospc", "erofs", "full"})
            QTest::newRow(qPrintable(
                QString("%1, %2").arg(present ? "known standard" : "new standard", mode)))
                << present << QString(mode);
    }
}

void TestTextFaults::every_step_breaks_off()
{
    QFETCH(bool, present);
    QFETCH(QString, mode);
    prepare(present);
    QCOMPARE(run(mode, 0), 0);
    QCOMPARE(read_file(FOLDER + "/" + NAME), text_of("new"));
    const int count = static_cast<int>(calls());
    QVERIFY2(count >= 4, qPrintable(QString("only %1 calls were seen").arg(count)));
    const bool machine = mode == "crash" || mode == "torncrash";
    for (int at = 1; at <= count; ++at) {
        prepare(present);
        run(mode, at);
        for (const FolderContents &left : outcomes(machine)) {
            const QByteArray where = QString("at call %1 of %2").arg(at).arg(count).toUtf8();
            QVERIFY2(left.contains(NAME) || !present, where);
            const QByteArray text = left.value(NAME, text_of("former"));
            QVERIFY2(text == text_of("former") || text == text_of("new"), where);
            if (mode == "full")
                QVERIFY2(left.size() <= 1, where); // what cannot be kept is taken away
        }
    }
}

void TestTextFaults::undisturbed_write_is_safe_on_the_disc()
{
    prepare(true);
    QCOMPARE(run("crash", 0), 0);
    const FolderContents left = read_folder(FOLDER);
    QCOMPARE(left, (FolderContents{{NAME, text_of("new")}}));
    QCOMPARE(kept_names_and_contents(m_shadow), left);
    QCOMPARE(kept_contents(FOLDER, m_shadow), left);
}

static int run(int argc, char **argv)
{
    if (argc == 2 && qstrcmp(argv[1], "--write") == 0) {
        write_working_standard(standard("new"));
        return 0;
    }
    QCoreApplication application(argc, argv);
    TestTextFaults test;
    return QTest::qExec(&test, argc, argv);
}
TEST_WITH_MAIN(run);

#include "test_text_faults.moc"
