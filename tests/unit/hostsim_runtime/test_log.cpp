// SPDX-License-Identifier: GPL-3.0-or-later
#include <QDir>
#include <QRegularExpression>
#include <QtTest>

#include <cerrno>
#include <fcntl.h>
#include <thread>
#include <unistd.h>
#include <vector>

#include "child.h"
#include "host/operations.h"
#include "logreader.h"
#include "support/testmain.h"

using hostsim::LOG_ENTRY_BYTES;
using hostsim::LOG_FILE;
using hostsim::LogEntry;
using hostsim::parse_log_line;

class Log : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        clear_log();
        QDir().rmdir(QString::fromLatin1(LOG_FILE));
    }
    void entry_has_the_documented_form();
    void fields_read_back();
    void text_data();
    void text();
    void long_text_is_cut_at_a_character_data();
    void long_text_is_cut_at_a_character();
    void errno_is_kept();
    void unusual_arguments();
    void threads_and_processes_do_not_mix();
    void goes_to_stderr_when_the_file_cannot_be_written_data();
    void goes_to_stderr_when_the_file_cannot_be_written();
    void foreign_lines_are_no_entries_data();
    void foreign_lines_are_no_entries();
};

void Log::entry_has_the_documented_form()
{
    log_error("/a/folder/mainwindow.cpp", 120, 1, 77, "Can't find variable <%s>", "ROOM");
    const QList<QByteArray> lines = log_lines();
    QCOMPARE(lines.size(), 1);
    const QRegularExpression form(
        QStringLiteral("^\\d{4}-\\d\\d-\\d\\dT\\d\\d:\\d\\d:\\d\\d\\.\\d{3}Z 1 77 "
                       "mainwindow\\.cpp:120 Can't find variable <ROOM>\n$"));
    QVERIFY2(form.match(QString::fromUtf8(lines[0])).hasMatch(), lines[0].constData());
}

void Log::fields_read_back()
{
    const QDateTime before = QDateTime::currentDateTimeUtc();
    log_error("a file.cpp", -1, 65, -51, "%d of %d", 3, 4);
    const QDateTime after = QDateTime::currentDateTimeUtc();
    const QList<LogEntry> entries = log_entries();
    QCOMPARE(entries.size(), 1);
    const LogEntry &entry = entries[0];
    const QDateTime time =
        QDateTime::fromString(QString::fromStdString(entry.time), Qt::ISODateWithMs);
    QVERIFY(time >= before && time <= after);
    QCOMPARE(entry.severity, 65);
    QCOMPARE(entry.code, -51);
    QCOMPARE(entry.source, std::string("a file.cpp"));
    QCOMPARE(entry.line, -1);
    QCOMPARE(entry.text, std::string("3 of 4"));
    QVERIFY(!entry.cut);
}

void Log::text_data()
{
    const auto row = test_columns<QByteArray, QByteArray>("text", "stands");
    row("plain", QByteArray("No file"), QByteArray("No file"));
    row("empty", QByteArray(), QByteArray());
    row("line feed", QByteArray("one\ntwo"), QByteArray("one\\ntwo"));
    row("carriage return and tab", QByteArray("\r\t"), QByteArray("\\r\\t"));
    row("backslash", QByteArray("a\\nb"), QByteArray("a\\\\nb"));
    row("escape sequence of a terminal", QByteArray("\x1b[31m"), QByteArray("\\x1b[31m"));
    row("delete", QByteArray("\x7f"), QByteArray("\\x7f"));
    row("UTF-8", QByteArray("25 °C, Ω"), QByteArray("25 °C, Ω"));
    row("not UTF-8", QByteArray("\xff\xc3("), QByteArray("\xff\xc3("));
    row("leading blanks", QByteArray("  x "), QByteArray("  x "));
}

void Log::text()
{
    QFETCH(QByteArray, text);
    QFETCH(QByteArray, stands);
    log_error("x.cpp", 1, 1, 0, "%s", text.constData());
    const QList<QByteArray> lines = log_lines();
    QCOMPARE(lines.size(), 1);
    QVERIFY2(lines[0].endsWith(" x.cpp:1 " + stands + "\n"), lines[0].constData());
    QCOMPARE(QByteArray::fromStdString(log_entries().at(0).text), text);
}

void Log::long_text_is_cut_at_a_character_data()
{
    QTest::addColumn<QByteArray>("unit");
    QTest::newRow("letters") << QByteArray("x");
    QTest::newRow("two bytes each") << QByteArray("°");
    QTest::newRow("three bytes each") << QByteArray("€");
    QTest::newRow("four bytes each") << QByteArray("\xF0\x9F\x98\x80");
    QTest::newRow("escaped to two bytes each") << QByteArray("\n");
    QTest::newRow("escaped to four bytes each") << QByteArray("\x01");
}

void Log::long_text_is_cut_at_a_character()
{
    QFETCH(QByteArray, unit);
    for (int shift = 0; shift < 4; ++shift) {
        clear_log();
        const QByteArray text = QByteArray(shift, '-') + unit.repeated(100000 / unit.size());
        log_error("x.cpp", 1, 1, 0, "%s", text.constData());
        const QByteArray line = log_lines().value(0);
        QVERIFY(static_cast<std::size_t>(line.size()) <= LOG_ENTRY_BYTES);
        QVERIFY(static_cast<std::size_t>(line.size()) > LOG_ENTRY_BYTES - 16);
        const LogEntry entry = log_entries().value(0);
        QVERIFY(entry.cut);
        const QByteArray kept = QByteArray::fromStdString(entry.text);
        QVERIFY(text.startsWith(kept));
        QCOMPARE((kept.size() - shift) % unit.size(), 0);
    }
}

void Log::errno_is_kept()
{
    errno = ENOSPC;
    log_error("x.cpp", 1, 1, 0, "text");
    QCOMPARE(errno, ENOSPC);
    errno = EINTR;
    log_error("x.cpp", 1, 1, 0, QByteArray("%m").constData());
    QCOMPARE(errno, EINTR);
    QCOMPARE(log_entries().value(1).text, std::string(strerror(EINTR)));
}

void Log::unusual_arguments()
{
    log_error(nullptr, 0, 1, 0, "no source");
    log_error("folder/", 5, 1, 0, "no name");
    log_error("x.cpp", 1, 1, 0, "%ls", L"\x7fffffff");
    const std::string name(5000, 'n');
    log_error(name.c_str(), 1, 1, 0, "long source");
    const QList<LogEntry> entries = log_entries();
    QCOMPARE(entries.size(), 4);
    QCOMPARE(entries[0].source, std::string());
    QCOMPARE(entries[0].text, std::string("no source"));
    QCOMPARE(entries[1].line, 5);
    QCOMPARE(entries[2].text, std::string("%ls"));
    QVERIFY(!entries[3].source.empty());
    QCOMPARE(name.compare(0, entries[3].source.size(), entries[3].source), 0);
    QCOMPARE(entries[3].text, std::string("long source"));
}

void Log::threads_and_processes_do_not_mix()
{
    constexpr int processes = 4;
    constexpr int threads = 4;
    constexpr int entries = 50;
    const std::string text(900, 'e');
    std::vector<pid_t> children;
    for (int process = 0; process < processes; ++process) {
        const pid_t child = fork();
        if (child == 0) {
            std::vector<std::thread> all;
            for (int i = 0; i < threads; ++i)
                all.emplace_back([&text, process] {
                    for (int n = 0; n < entries; ++n)
                        log_error("x.cpp", n, 1, process, "%s", text.c_str());
                });
            for (std::thread &thread : all)
                thread.join();
            _exit(0);
        }
        children.push_back(child);
    }
    for (const pid_t child : children) {
        int status = -1;
        QCOMPARE(waitpid(child, &status, 0), child);
        QCOMPARE(status, 0);
    }
    const QList<LogEntry> all = log_entries();
    QCOMPARE(all.size(), processes * threads * entries);
    for (const LogEntry &entry : all) {
        QVERIFY(entry.code >= 0 && entry.code < processes);
        QVERIFY(entry.text == text);
    }
}

void Log::goes_to_stderr_when_the_file_cannot_be_written_data()
{
    QTest::addColumn<bool>("full");
    QTest::newRow("the file cannot be opened") << false;
    QTest::newRow("the disc is full") << true;
}

void Log::goes_to_stderr_when_the_file_cannot_be_written()
{
    QFETCH(bool, full);
    if (full)
        QCOMPARE(symlink("/dev/full", LOG_FILE), 0);
    else
        QVERIFY(QDir().mkdir(QString::fromLatin1(LOG_FILE)));
    QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("stderr"));
    const int status = in_child([&path] {
        const int file = open(path.toUtf8().constData(), O_WRONLY | O_CREAT, 0600);
        dup2(file, STDERR_FILENO);
        log_error("x.cpp", 7, 1, 2, "nowhere to go");
        return 0;
    });
    QCOMPARE(status, 0);
    const QList<QByteArray> lines = log_lines(path);
    QCOMPARE(lines.size(), 1);
    LogEntry entry;
    QVERIFY(parse_log_line(lines[0].toStdString(), &entry));
    QCOMPARE(entry.text, std::string("nowhere to go"));
}

void Log::foreign_lines_are_no_entries_data()
{
    QTest::addColumn<QByteArray>("line");
    QTest::newRow("empty") << QByteArray();
    QTest::newRow("words") << QByteArray("something else altogether here\n");
    QTest::newRow("torn in the place") << QByteArray("2024-05-17T09:30:00.125Z 1 77 main");
    QTest::newRow("no text") << QByteArray("2024-05-17T09:30:00.125Z 1 77 main.cpp:1");
    QTest::newRow("unknown escape") << QByteArray("2024-05-17T09:30:00.125Z 1 77 m:1 \\q");
    QTest::newRow("torn in an escape") << QByteArray("2024-05-17T09:30:00.125Z 1 77 m:1 a\\");
    QTest::newRow("quote escaped") << QByteArray("2024-05-17T09:30:00.125Z 1 77 m:1 a\\\"");
    QTest::newRow("half a code") << QByteArray("2024-05-17T09:30:00.125Z 1 77 m:1 a\\x1");
    QTest::newRow("torn in a code") << QByteArray("2024-05-17T09:30:00.125Z 1 77 m:1 a\\x");
}

void Log::foreign_lines_are_no_entries()
{
    QFETCH(QByteArray, line);
    LogEntry entry;
    QVERIFY(!parse_log_line(line.toStdString(), &entry));
    QVERIFY(parse_log_line("2024-05-17T09:30:00.125Z 1 77 m:1 ", &entry));
}

PLAIN_TEST(Log);
#include "test_log.moc"
