// SPDX-License-Identifier: GPL-3.0-or-later
//
// The table file tool, run as a process.
#include <sys/stat.h>

#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

#include "support/cellfiles.h"
#include "support/testmain.h"
#include "tablefixture.h"

using namespace tablefixture;

class TestVxtable : public QObject
{
    Q_OBJECT
private slots:
    void init() { m_folder.reset(new QTemporaryDir); }
    void wrong_use_data();
    void wrong_use();
    void help();
    void files_that_cannot_be_read();
    void verify_data();
    void verify();
    void verify_names_line_and_fault();
    void list();
    void list_of_damage();
    void show_last_and_numbered();
    void show_what_is_not_there();
    void export_csv();
    void export_passes_damage_over();
    void texts_cannot_act_on_a_terminal();
    void it_reads_only();
    void a_long_archive();
    void no_bytes_crash_it();

private:
    int run(const QStringList &arguments);
    QString path(const char *name) const { return m_folder->filePath(name); }

    QScopedPointer<QTemporaryDir> m_folder;
    QString m_out;
    QString m_errors;
};

// Exit status; -1 when it did not end by itself.
int TestVxtable::run(const QStringList &arguments)
{
    QProcess process;
    process.start(PROJECT_BINARY_DIR "/bin/vxtable", arguments);
    if (!process.waitForFinished(60000) || process.exitStatus() != QProcess::NormalExit)
        return -1;
    m_out = QString::fromUtf8(process.readAllStandardOutput());
    m_errors = QString::fromUtf8(process.readAllStandardError());
    return process.exitCode();
}

void TestVxtable::wrong_use_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("error");
    QTest::newRow("nothing") << QStringList() << "usage: vxtable list FILE";
    QTest::newRow("unknown command")
        << QStringList{"lsit", "x"} << "vxtable: there is no command \"lsit\"";
    QTest::newRow("unknown option")
        << QStringList{"--all", "list", "a"} << "vxtable: there is no option \"--all\"";
    QTest::newRow("no file") << QStringList{"verify"} << "vxtable: verify needs a FILE";
    QTest::newRow("two files") << QStringList{"verify", "a", "b"}
                               << "vxtable: verify takes no more than a FILE";
    QTest::newRow("too much to show") << QStringList{"show", "a", "1", "2"}
                                      << "vxtable: show takes no more than a FILE and a NUMBER";
    QTest::newRow("record 0") << QStringList{"show", "a", "0"}
                              << "vxtable: \"0\" is no record's number; the first is 1";
    QTest::newRow("record x") << QStringList{"show", "a", "x"}
                              << "vxtable: \"x\" is no record's number; the first is 1";
}

void TestVxtable::wrong_use()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, error);
    QCOMPARE(run(arguments), 2);
    QVERIFY2(m_errors.startsWith(error), qPrintable(m_errors));
    QCOMPARE(m_out, QString());
}

void TestVxtable::help()
{
    QCOMPARE(run({"--help"}), 0);
    for (const char *word : {"list", "show", "verify", "export", "Exit status"})
        QVERIFY2(m_out.contains(word), word);
    QCOMPARE(m_errors, QString());
}

void TestVxtable::files_that_cannot_be_read()
{
    QCOMPARE(run({"list", path("none.tbl")}), 2);
    QCOMPARE(m_errors, "vxtable: " + path("none.tbl") + ": No such file or directory\n");
    QCOMPARE(run({"list", m_folder->path()}), 2);
    QCOMPARE(m_errors, "vxtable: " + m_folder->path() + ": Is a directory\n");
    QCOMPARE(mkfifo(qPrintable(path("fifo")), 0600), 0);
    QCOMPARE(run({"verify", path("fifo")}), 2);
    QCOMPARE(m_errors, "vxtable: " + path("fifo") + ": not a regular file\n");
}

void TestVxtable::verify_data()
{
    const auto row =
        test_columns<QString, QByteArray, int, QString>("name", "content", "status", "count");
    const QByteArray block = block_of(sound_record());
    const QByteArray saved = archived(7, "one");
    row("table", "a.tbl", block, 0, "1 whole, 0 damaged");
    row("archive", "a.save", saved + saved, 0, "2 whole, 0 damaged");
    row("history", "a.old", block + block, 0, "2 whole, 0 damaged");
    row("empty archive", "a.save", QByteArray(), 0, "0 whole, 0 damaged");
    row("empty table", "a.tbl", QByteArray(), 1, "0 whole, 0 damaged");
    row("two records in a table", "a.tbl", block + block, 1, "1 whole, 1 damaged");
    row("torn archive", "a.save", saved + saved.left(90), 1, "1 whole, 1 damaged");
    row("torn, then whole", "a.save", saved.left(90) + "\n" + saved, 1, "1 whole, 1 damaged");
    row("torn history with a whole record joined", "a.old", block.left(90) + block, 1,
        "1 whole, 1 damaged");
    row("changed value", "a.save", QByteArray(saved).replace("10.25", "10.35"), 1,
        "0 whole, 1 damaged");
    row("foreign", "a.tbl", QByteArray("a,b\n1,2\n"), 1, "0 whole, 1 damaged");
    row("type not known in a table", "a.tbl", altered(block, "table_type 0", "table_type 65535"), 1,
        "0 whole, 1 damaged");
    row("type not known in an archive", "a.save",
        altered(saved, "table_type 0", "table_type 65535"), 0, "1 whole, 0 damaged");
    row("65 points", "a.save", altered(saved, "num_points 3", "num_points 65"), 1,
        "0 whole, 1 damaged");
    row("much damage is one damage", "a.save", saved + QByteArray(5000000, 'x') + saved, 1,
        "2 whole, 1 damaged");
}

void TestVxtable::verify()
{
    QFETCH(QString, name);
    QFETCH(QByteArray, content);
    QFETCH(int, status);
    QFETCH(QString, count);
    const QString file = m_folder->filePath(name);
    write_file(file, content);
    QCOMPARE(run({"verify", file}), status);
    QCOMPARE(m_out, file + ": " + count + "\n");
    QCOMPARE(m_errors.isEmpty(), status == 0);
}

void TestVxtable::verify_names_line_and_fault()
{
    const QByteArray saved = archived(7, "one");
    write_file(path("a.save"), saved + altered(saved, "qie \"\"", "qie x") + saved.left(90));
    QCOMPARE(run({"verify", path("a.save")}), 1);
    const int lines = saved.count('\n');
    QCOMPARE(m_errors, QString("%1:%2: record 2: qie cannot be read\n"
                               "%1:%3: record 3: the block is cut short\n")
                           .arg(path("a.save"))
                           .arg(lines + 17)
                           .arg(2 * lines + 1));
}

void TestVxtable::list()
{
    write_file(path("a.save"), archived(3, "one") + archived(7, "two"));
    QCOMPARE(run({"list", path("a.save")}), 0);
    QCOMPARE(m_out,
             QString("     #  step                         when                  who             "
                     "      type        points  description\n"
                     "     1  As-Found                     2026-03-01T09:30:00Z  J. Doe          "
                     "      INTERP           3  Torque \\\"A\\\"\n"
                     "     2  Table Updated by adjustment  2026-03-01T09:30:00Z  J. Doe          "
                     "      INTERP           3  Torque \\\"A\\\"\n"));
    QCOMPARE(m_errors, QString());
}

void TestVxtable::list_of_damage()
{
    const QByteArray saved = archived(7, "one");
    write_file(path("a.save"), saved + saved.left(90) + "\n" + saved);
    QCOMPARE(run({"list", path("a.save")}), 1);
    const QStringList lines = m_out.split('\n');
    QCOMPARE(lines.size(), 5);
    QCOMPARE(
        lines.at(2),
        QString("     2  damaged, line %1: the block is cut short").arg(saved.count('\n') + 1));
    QVERIFY(lines.at(3).startsWith("     3  Table Updated by adjustment"));
}

void TestVxtable::show_last_and_numbered()
{
    write_file(path("a.save"), archived(3, "one") + archived(7, "two"));
    QCOMPARE(run({"show", path("a.save")}), 0);
    QVERIFY(m_out.startsWith("record 2\n"));
    QVERIFY(m_out.contains("cal_comment         two\n"));
    QCOMPARE(run({"show", path("a.save"), "1"}), 0);
    QVERIFY(m_out.startsWith("record 1\n  step                As-Found\n"));
    QVERIFY(m_out.contains("cal_comment         one\n"));
    QVERIFY(m_out.contains("  table_type          0 (INTERP)\n"));
    QVERIFY(m_out.contains("  last_cal_time       1772357400 (2026-03-01T09:30:00Z)\n"));
    QVERIFY2(m_out.contains("\nrange 0: point, millivolts, value\n"
                            "     0                         0                         0\n"
                            "     1                     10.25                        50\n"),
             qPrintable(m_out));
    QVERIFY(m_out.contains("\nrange 0: coefficient, value\n"
                           "     0                         0\n"
                           "     1           4.8829268292682\n"));
}

void TestVxtable::show_what_is_not_there()
{
    write_file(path("a.save"), archived(3, "one") + archived(3, "two").left(90));
    QCOMPARE(run({"show", path("a.save"), "3"}), 1);
    QCOMPARE(m_errors, "vxtable: " + path("a.save") + " holds no record 3, the last is 2\n");
    QCOMPARE(run({"show", path("a.save")}), 1);
    QVERIFY(m_errors.endsWith("record 2: the block is cut short\n"));
    QCOMPARE(m_out, QString());
    write_file(path("b.save"), "");
    QCOMPARE(run({"show", path("b.save")}), 1);
    QCOMPARE(m_errors, "vxtable: " + path("b.save") + " holds no record\n");
}

void TestVxtable::export_csv()
{
    TABLE_RECORD empty = sound_record();
    empty.poly[0] = {};
    set_text(empty.description, sizeof empty.description, "a, b");
    write_file(path("a.save"), archived(7, "one") + block_of(empty, 7));
    QCOMPARE(run({"export", path("a.save")}), 0);
    const QString start = "1,7,2026-03-01T09:30:00Z,J. Doe,1.0.0,torque_1,\"Torque \"\"A\"\"\","
                          "INTERP,LB-FT,";
    QCOMPARE(m_out,
             "record,save_type,when,who,program,table_name,description,table_type,eng_units,"
             "item,range,index,millivolts,value\n" +
                 start + "coefficient,0,0,,0\n" + start + "coefficient,0,1,,4.8829268292682\n" +
                 start + "point,0,0,0,0\n" + start + "point,0,1,10.25,50\n" + start +
                 "point,0,2,20.5,100.1\n" +
                 "2,7,2026-03-01T09:30:00Z,J. Doe,1.0.0,torque_1,\"a, b\",INTERP,LB-FT,,,,,\n");
}

void TestVxtable::export_passes_damage_over()
{
    const QByteArray saved = archived(7, "one");
    write_file(path("a.save"), saved.left(90) + "\n" + saved);
    QCOMPARE(run({"export", path("a.save")}), 1);
    QCOMPARE(m_out.count("\n2,7,"), 5);
    QVERIFY(!m_out.contains("\n1,"));
    QCOMPARE(m_errors, path("a.save") + ":1: record 1: the block is cut short\n");
}

void TestVxtable::texts_cannot_act_on_a_terminal()
{
    TABLE_RECORD record = sound_record();
    set_text(record.description, sizeof record.description, "\x1b[2Jred\n");
    write_file(path("a.save"), block_of(record, 7));
    for (const char *command : {"list", "show"}) {
        QCOMPARE(run({command, path("a.save")}), 0);
        QVERIFY(m_out.contains("\\x1b[2Jred\\n"));
        QVERIFY(!m_out.contains('\x1b'));
    }
}

void TestVxtable::it_reads_only()
{
    const QByteArray content = archived(7, "one") + archived(7, "two").left(90);
    write_file(path("a.save"), content);
    const QDateTime before = QFileInfo(path("a.save")).lastModified();
    for (const char *command : {"list", "show", "verify", "export"})
        QVERIFY(run({command, path("a.save")}) >= 0);
    QCOMPARE(read_file(path("a.save")), content);
    QCOMPARE(QFileInfo(path("a.save")).lastModified(), before);
    QCOMPARE(QDir(m_folder->path()).entryList(QDir::Files | QDir::Hidden), QStringList("a.save"));
}

void TestVxtable::a_long_archive()
{
    // Longer than what is held in memory at once, with records of many sizes.
    std::mt19937_64 random(20260311);
    QByteArray content;
    for (int i = 0; i < 1500; ++i)
        content += block_of(sparse_record(random), 7);
    const int records = content.count("VORNAX-TABLE 1\n");
    QCOMPARE(records, 1500);
    write_file(path("a.save"), content);
    QVERIFY(run({"list", path("a.save")}) >= 0);
    QCOMPARE(m_out.count('\n'), 1501);
    QCOMPARE(m_out.count("check sum"), 0);
}

void TestVxtable::no_bytes_crash_it()
{
    std::mt19937_64 random(20260312);
    const QByteArray saved = archived(7, "one") + archived(6, "two");
    for (int i = 0; i < 40; ++i) {
        QByteArray content = saved;
        for (int hit = 0; hit < 5; ++hit)
            content[static_cast<int>(random() % static_cast<unsigned>(content.size()))] =
                static_cast<char>(random());
        write_file(path("a.save"), content);
        for (const char *command : {"list", "show", "verify", "export"})
            QVERIFY(run({command, path("a.save")}) >= 0);
    }
}

LOOP_TEST(TestVxtable);
#include "test_vxtable.moc"
