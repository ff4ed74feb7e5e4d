// SPDX-License-Identifier: GPL-3.0-or-later
#include <QtTest>

#include <algorithm>
#include <cstdio>
#include <memory>

#include "host/operations.h"
#include "logreader.h"
#include "support/anytext.h"
#include "support/testmain.h"

namespace
{

using File = std::unique_ptr<FILE, int (*)(FILE *)>;

File file_of(const QByteArray &content)
{
    File file(tmpfile(), fclose);
    fwrite(content.constData(), 1, static_cast<std::size_t>(content.size()), file.get());
    rewind(file.get());
    return file;
}

} // namespace

class Lines : public QObject
{
    Q_OBJECT

private slots:
    void init() { clear_log(); }
    void next_line_data();
    void next_line();
    void next_line_at_the_end_leaves_the_line_alone();
    void line_behind_the_keyword_data();
    void line_behind_the_keyword();
    void search_goes_on_from_the_beginning();
    void the_next_occurrence_comes_first();
    void keyword_with_nothing_behind_it_data();
    void keyword_with_nothing_behind_it();
    void absent_keyword_changes_nothing_data();
    void absent_keyword_changes_nothing();
    void long_lines_are_cut_and_logged_data();
    void long_lines_are_cut_and_logged();
    void passed_over_lines_are_not_logged();
    void zero_bytes_in_a_line();
    void a_specs_file_reads_in_order();
    void file_that_cannot_be_searched_backwards();
    void every_line_of_any_file();
    void keyword_in_any_file();
};

void Lines::next_line_data()
{
    const auto row = test_columns<QByteArray, QByteArray>("content", "line");
    row("line feed", QByteArray("a b\nc"), QByteArray("a b"));
    row("carriage return and line feed", QByteArray("a\r\nc"), QByteArray("a"));
    row("no line feed at the end", QByteArray("last"), QByteArray("last"));
    row("empty line", QByteArray("\nc"), QByteArray(""));
    row("empty line of two bytes", QByteArray("\r\nc"), QByteArray(""));
    row("carriage return within", QByteArray("a\rb\n"), QByteArray("a\rb"));
    row("one carriage return goes, not two", QByteArray("a\r\r\n"), QByteArray("a\r"));
    row("carriage return without line feed", QByteArray("a\r"), QByteArray("a\r"));
    row("blanks stay", QByteArray("  a \t\n"), QByteArray("  a \t"));
}

void Lines::next_line()
{
    QFETCH(QByteArray, content);
    const File file = file_of(content);
    char buffer[LINE_BUFFER] = "before";
    QCOMPARE(get_next_line(file.get(), buffer), 0);
    QTEST(QByteArray(buffer), "line");
}

void Lines::next_line_at_the_end_leaves_the_line_alone()
{
    const File file = file_of("only\n");
    char buffer[LINE_BUFFER] = "";
    QCOMPARE(get_next_line(file.get(), buffer), 0);
    QCOMPARE(get_next_line(file.get(), buffer), -1);
    QCOMPARE(buffer, "only");
    QCOMPARE(get_next_line(nullptr, buffer), -1);
}

void Lines::line_behind_the_keyword_data()
{
    const auto row = test_columns<QByteArray>("content");
    row("first line", QByteArray("@KEY\nvalue\n"));
    row("behind others", QByteArray("@OTHER\n1\n@KEY\nvalue\n@NEXT\n2\n"));
    row("no line feed at the end", QByteArray("@KEY\nvalue"));
    row("carriage returns", QByteArray("@OTHER\r\n1\r\n@KEY\r\nvalue\r\n"));
    row("the whole line counts, not its beginning", QByteArray("@KEY2\n1\n@KEY\nvalue\n"));
    row("not part of a line", QByteArray("x @KEY\n1\n@KEY\nvalue\n"));
    row("not with blanks behind it", QByteArray("@KEY \n1\n@KEY\nvalue\n"));
    row("not in other case", QByteArray("@key\n1\n@KEY\nvalue\n"));
    row("not before a zero byte", QByteArray("@KEY\0x\n1\n@KEY\nvalue\n", 21));
    row("behind a very long line",
        QByteArray("@KEY") + QByteArray(5000, 'x') + "\n1\n@KEY\nvalue\n");
}

void Lines::line_behind_the_keyword()
{
    QFETCH(QByteArray, content);
    const File file = file_of(content);
    char buffer[LINE_BUFFER] = "before";
    QCOMPARE(get_1st_line(file.get(), buffer, "@KEY"), 0);
    QCOMPARE(buffer, "value");
}

void Lines::search_goes_on_from_the_beginning()
{
    const File file = file_of("@A\n1\n@B\n2\n@C\n3\n");
    char buffer[LINE_BUFFER] = "";
    QCOMPARE(get_1st_line(file.get(), buffer, "@C"), 0);
    QCOMPARE(buffer, "3");
    QCOMPARE(get_1st_line(file.get(), buffer, "@A"), 0);
    QCOMPARE(buffer, "1");
    // From within a line too, the keyword's own among them.
    QCOMPARE(fseek(file.get(), 7, SEEK_SET), 0);
    QCOMPARE(get_1st_line(file.get(), buffer, "@B"), 0);
    QCOMPARE(buffer, "2");
}

void Lines::the_next_occurrence_comes_first()
{
    const File file = file_of("@A\n1\n@B\n2\n@A\n3\n");
    char buffer[LINE_BUFFER] = "";
    QCOMPARE(get_1st_line(file.get(), buffer, "@B"), 0);
    QCOMPARE(get_1st_line(file.get(), buffer, "@A"), 0);
    QCOMPARE(buffer, "3");
}

void Lines::keyword_with_nothing_behind_it_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::newRow("line feed") << QByteArray("@A\n1\n@KEY\n");
    QTest::newRow("no line feed") << QByteArray("@A\n1\n@KEY");
    QTest::newRow("nothing else") << QByteArray("@KEY\r\n");
}

void Lines::keyword_with_nothing_behind_it()
{
    QFETCH(QByteArray, content);
    const File file = file_of(content);
    char buffer[LINE_BUFFER] = "before";
    QCOMPARE(get_1st_line(file.get(), buffer, "@KEY"), -1);
    QCOMPARE(buffer, "@KEY");
    QCOMPARE(get_next_line(file.get(), buffer), -1);
}

void Lines::absent_keyword_changes_nothing_data()
{
    const auto row = test_columns<QByteArray, int>("content", "position");
    row("empty file", QByteArray(), 0);
    row("at the beginning", QByteArray("@A\n1\n"), 0);
    row("in the middle", QByteArray("@A\n1\n@B\n2\n"), 5);
    row("at the end", QByteArray("@A\n1\n"), 5);
}

void Lines::absent_keyword_changes_nothing()
{
    QFETCH(QByteArray, content);
    QFETCH(int, position);
    const File file = file_of(content);
    QCOMPARE(fseek(file.get(), position, SEEK_SET), 0);
    char buffer[LINE_BUFFER] = "before";
    QCOMPARE(get_1st_line(file.get(), buffer, "@KEY"), -51);
    QCOMPARE(buffer, "before");
    QCOMPARE(ftell(file.get()), static_cast<long>(position));
    QCOMPARE(get_1st_line(nullptr, buffer, "@KEY"), -51);
    QCOMPARE(get_1st_line(file.get(), buffer, nullptr), -51);
}

void Lines::long_lines_are_cut_and_logged_data()
{
    const auto row = test_columns<QByteArray, int>("line", "kept");
    row("just fits", QByteArray(1023, 'x'), 1023);
    row("one byte too long", QByteArray(1024, 'x'), 1023);
    row("far too long", QByteArray(100000, 'x'), 1023);
    row("cut within two bytes", QByteArray(1022, 'x') + "°", 1022);
    row("cut within three bytes", QByteArray(1021, 'x') + "€", 1021);
    row("cut between characters", QByteArray("°").repeated(600), 1022);
}

void Lines::long_lines_are_cut_and_logged()
{
    QFETCH(QByteArray, line);
    QFETCH(int, kept);
    for (const char *end : {"\n", "\r\n"}) {
        clear_log();
        const File file = file_of("@KEY\n" + line + end + "next\n");
        char buffer[LINE_BUFFER];
        QCOMPARE(get_1st_line(file.get(), buffer, "@KEY"), 0);
        QCOMPARE(QByteArray(buffer), line.left(kept));
        const QList<hostsim::LogEntry> entries = log_entries();
        QCOMPARE(entries.size(), kept < line.size() ? 1 : 0);
        if (!entries.isEmpty())
            QCOMPARE(entries[0].code, static_cast<int>(hostsim::LogCode::LineCut));
        QCOMPARE(get_next_line(file.get(), buffer), 0);
        QCOMPARE(buffer, "next");
    }
}

void Lines::passed_over_lines_are_not_logged()
{
    const File file = file_of(QByteArray(5000, 'x') + "\n@KEY\nvalue\n");
    char buffer[LINE_BUFFER];
    QCOMPARE(get_1st_line(file.get(), buffer, "@KEY"), 0);
    QVERIFY(log_lines().isEmpty());
}

void Lines::zero_bytes_in_a_line()
{
    const File file = file_of(QByteArray("ab\0cd\nnext\n", 11));
    char buffer[LINE_BUFFER];
    QCOMPARE(get_next_line(file.get(), buffer), 0);
    QCOMPARE(buffer, "ab");
    QCOMPARE(get_next_line(file.get(), buffer), 0);
    QCOMPARE(buffer, "next");
    QCOMPARE(get_next_line(file.get(), buffer), -1);
}

void Lines::a_specs_file_reads_in_order()
{
    const File file = file_of("@ROOM_TEMP_KEYWORD\nROOM_TEMP\n@BAROMETER_KEYWORD\n\n"
                              "@HUMIDITY_KEYWORD\nHUMIDITY\n@REPORT_EMAIL_LIST_KEYWORD\n"
                              "one@cell\ntwo@cell\n");
    char line[LINE_BUFFER];
    QCOMPARE(get_1st_line(file.get(), line, "@ROOM_TEMP_KEYWORD"), 0);
    QCOMPARE(line, "ROOM_TEMP");
    QCOMPARE(get_1st_line(file.get(), line, "@BAROMETER_KEYWORD"), 0);
    QCOMPARE(line, "");
    QCOMPARE(get_1st_line(file.get(), line, "@HUMIDITY_KEYWORD"), 0);
    QCOMPARE(line, "HUMIDITY");
    QCOMPARE(get_1st_line(file.get(), line, "@REPORT_EMAIL_LIST_KEYWORD"), 0);
    QCOMPARE(line, "one@cell");
    QCOMPARE(get_next_line(file.get(), line), 0);
    QCOMPARE(line, "two@cell");
    QCOMPARE(get_next_line(file.get(), line), -1);
}

// A pipe is read on to its end.
void Lines::file_that_cannot_be_searched_backwards()
{
    const std::unique_ptr<FILE, int (*)(FILE *)> pipe(popen("printf '@A\\n1\\n@B\\n2\\n'", "r"),
                                                      pclose);
    char line[LINE_BUFFER] = "before";
    QCOMPARE(get_1st_line(pipe.get(), line, "@A"), 0);
    QCOMPARE(line, "1");
    QCOMPARE(get_1st_line(pipe.get(), line, "@C"), -51);
    QCOMPARE(line, "1");
    QCOMPARE(get_next_line(pipe.get(), line), -1);
}

void Lines::every_line_of_any_file()
{
    QVERIFY(rc::check("lines come as they were written", [] {
        const std::vector<std::string> lines = *any_list(1, 50, any_line(LINE_BUFFER - 1));
        const std::string end = *rc::gen::element<std::string>("\n", "\r\n");
        std::string content;
        for (const std::string &line : lines)
            content += line + end;
        const File file = file_of(QByteArray::fromStdString(content));
        char read[LINE_BUFFER];
        for (const std::string &line : lines) {
            RC_ASSERT(get_next_line(file.get(), read) == 0);
            RC_ASSERT(read == line);
        }
        RC_ASSERT(get_next_line(file.get(), read) == LINE_END_OF_FILE);
    }));
}

// From any line on: the first keyword behind it, or else the first of all.
void Lines::keyword_in_any_file()
{
    QVERIFY(rc::check("the line behind the keyword", [] {
        const auto any = rc::gen::element<std::string>("@KEY", "@KEY ", "@KEYS", "", "a", "b");
        const std::vector<std::string> lines = *any_list(1, 12, any);
        const auto start = *rc::gen::inRange<std::size_t>(0, lines.size() + 1);
        std::string content;
        for (const std::string &line : lines)
            content += line + '\n';
        const File file = file_of(QByteArray::fromStdString(content));
        char read[LINE_BUFFER] = "before";
        for (std::size_t i = 0; i < start; ++i)
            get_next_line(file.get(), read);
        const std::string before = read;
        const auto from = lines.begin() + static_cast<std::ptrdiff_t>(start);
        auto found = std::find(from, lines.end(), "@KEY");
        if (found == lines.end())
            found = std::find(lines.begin(), from, "@KEY");
        const bool present = found != lines.end() && *found == "@KEY";
        const bool last = present && found + 1 == lines.end();
        const int32_t status = get_1st_line(file.get(), read, "@KEY");
        RC_ASSERT(status == (!present ? KEYWORD_NOT_FOUND : last ? LINE_END_OF_FILE : 0));
        RC_ASSERT(read == (!present ? before : last ? std::string("@KEY") : *(found + 1)));
    }));
}

PLAIN_TEST(Lines);
#include "test_lines.moc"
