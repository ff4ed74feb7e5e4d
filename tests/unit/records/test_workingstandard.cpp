// SPDX-License-Identifier: GPL-3.0-or-later
//
// Files of working standards, reader against writer.
#include <algorithm>

#include <QDir>
#include <QtTest>

#include "host/operations.h"
#include "records/keywordlines.h"
#include "records/workingstandard.h"
#include "support/anytext.h"
#include "support/cellfiles.h"
#include "support/hostlog.h"
#include "support/testmain.h"

namespace
{

using Six = std::array<QString, 6>;

Six six(const WorkingStandard &s)
{
    return {s.name, s.make, s.model, s.cal_date, s.serial_no, s.range};
}

WorkingStandard standard_of(const Six &texts)
{
    return {texts[0], texts[1], texts[2], texts[3], texts[4], texts[5]};
}

const Six DEAD_WEIGHT = {"DW-12", "Pascal & Sons", "P 3000", "03/14/2026", "SN 77", "0 to 100 kPa"};

const QByteArray DEAD_WEIGHT_FILE = "# Information for working standard - DW-12\n"
                                    "@WS_MAKE_KEYWORD\n"
                                    "Pascal & Sons\n"
                                    "@WS_MODEL_KEYWORD\n"
                                    "P 3000\n"
                                    "@WS_CAL_DATE_KEYWORD\n"
                                    "03/14/2026\n"
                                    "@WS_SERIAL_NO_KEYWORD\n"
                                    "SN 77\n"
                                    "@WS_RANGE_KEYWORD\n"
                                    "0 to 100 kPa\n";

QString file_of(const QString &name)
{
    return "/specs/working_standards/" + name + ".txt";
}

QByteArray without(const QByteArray &part)
{
    return QByteArray(DEAD_WEIGHT_FILE).replace(part, "");
}

// The five values behind the name, joined.
QString read_values(const QByteArray &file)
{
    write_file(file_of("X"), file);
    const std::optional<WorkingStandard> read = read_working_standard("X");
    if (!read)
        return "not opened";
    const Six texts = six(*read);
    return QStringList({texts[1], texts[2], texts[3], texts[4], texts[5]}).join('|');
}

QString text_of(const std::string &bytes)
{
    return QString::fromStdString(bytes);
}

// Of a file, so within one folder and short enough for its system.
rc::Gen<std::string> any_name()
{
    return rc::gen::suchThat(rc::gen::map(any_line(240),
                                          [](std::string text) {
                                              std::replace(text.begin(), text.end(), '/', '_');
                                              return text;
                                          }),
                             [](const std::string &text) { return !text.empty(); });
}

// Anything that may stand on a line of such a file.
rc::Gen<std::string> any_file_line()
{
    const auto keyword = rc::gen::element<std::string>(
        "@WS_MAKE_KEYWORD", "@WS_MODEL_KEYWORD", "@WS_CAL_DATE_KEYWORD", "@WS_SERIAL_NO_KEYWORD",
        "@WS_RANGE_KEYWORD", "@OTHER", "");
    return rc::gen::weightedOneOf<std::string>({{1, any_line(LINE_BUFFER - 1)}, {3, keyword}});
}

} // namespace

class WorkingStandardFile : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { require_private_cell(); }
    void init();
    void file_of_eleven_lines();
    void reading_data();
    void reading();
    void no_file();
    void line_of_one_megabyte_is_cut();
    void ten_thousand_entries();
    void standards_of_the_training_cell();
    void name_in_the_file_plays_no_part();
    void any_six_texts_come_back();
    void any_lines_come_back_as_they_were_read();
    void breaks_and_zero_bytes_become_blanks();
    void second_write_replaces_the_whole_file();
    void paths_data();
    void paths();
    void long_name_is_looked_for_under_a_cut_path();
    void name_with_a_path_separator_is_not_refused();
    void failed_write_is_logged_data();
    void failed_write_is_logged();
};

void WorkingStandardFile::init()
{
    clear_cell();
    QVERIFY(QDir().mkpath("/specs/working_standards"));
}

void WorkingStandardFile::file_of_eleven_lines()
{
    const WorkingStandard standard = standard_of(DEAD_WEIGHT);
    QCOMPARE(working_standard_text(standard), DEAD_WEIGHT_FILE);
    QCOMPARE(working_standard_text(standard).count('\n'), 11);
    write_working_standard(standard);
    QCOMPARE(read_file(file_of("DW-12")), DEAD_WEIGHT_FILE);
    QCOMPARE(QDir("/specs/working_standards").entryList(QDir::Files), QStringList("DW-12.txt"));
    const std::optional<WorkingStandard> read = read_working_standard("DW-12");
    QVERIFY(read.has_value());
    QVERIFY(six(*read) == DEAD_WEIGHT);
    // A percent sign is a character like others, in each of the texts.
    const Six percents = {"%1 %2", "%1", "%2\\n", "%s", "%%", "100 %"};
    write_working_standard(standard_of(percents));
    QVERIFY(read_file(file_of("%1 %2")).startsWith("# Information for working standard - %1 %2\n"));
    QVERIFY(six(*read_working_standard("%1 %2")) == percents);
}

void WorkingStandardFile::reading_data()
{
    // values: make, model, calibration date, serial number, range
    test_columns<QByteArray, QString>("file", "values");
    const auto row = [](const char *name, const QByteArray &file, const char *values) {
        QTest::newRow(name) << file << QString::fromUtf8(values);
    };
    const QByteArray &whole = DEAD_WEIGHT_FILE;
    const char *const all = "Pascal & Sons|P 3000|03/14/2026|SN 77|0 to 100 kPa";

    row("whole", whole, all);
    row("no final line feed", whole.chopped(1), all);
    row("carriage returns", QByteArray(whole).replace("\n", "\r\n"), all);
    row("no comment line", whole.mid(whole.indexOf('@')), all);
    row("empty", "", "||||");
    row("comment alone", whole.left(whole.indexOf('@')), "||||");
    row("make missing", without("@WS_MAKE_KEYWORD\nPascal & Sons\n"),
        "|P 3000|03/14/2026|SN 77|0 to 100 kPa");
    row("model missing", without("@WS_MODEL_KEYWORD\nP 3000\n"),
        "Pascal & Sons||03/14/2026|SN 77|0 to 100 kPa");
    row("calibration date missing", without("@WS_CAL_DATE_KEYWORD\n03/14/2026\n"),
        "Pascal & Sons|P 3000||SN 77|0 to 100 kPa");
    row("serial number missing", without("@WS_SERIAL_NO_KEYWORD\nSN 77\n"),
        "Pascal & Sons|P 3000|03/14/2026||0 to 100 kPa");
    row("range missing", without("@WS_RANGE_KEYWORD\n0 to 100 kPa\n"),
        "Pascal & Sons|P 3000|03/14/2026|SN 77|");
    row("first of two makes",
        QByteArray(whole).replace("@WS_MODEL", "@WS_MAKE_KEYWORD\nB\n@WS_MODEL"), all);
    row("first range behind the serial number",
        "@WS_RANGE_KEYWORD\nearly\n@WS_SERIAL_NO_KEYWORD\nS\n@WS_RANGE_KEYWORD\nlate\n",
        "|||S|late");
    row("keywords from last to first",
        "@WS_RANGE_KEYWORD\nr\n@WS_SERIAL_NO_KEYWORD\ns\n@WS_CAL_DATE_KEYWORD\nd\n"
        "@WS_MODEL_KEYWORD\nm\n@WS_MAKE_KEYWORD\nk\n",
        "k|m|d|s|r");
    row("other keywords between",
        QByteArray(whole).replace("@WS_MODEL", "@WS_COLOUR_KEYWORD\nblue\n\n@WS_MODEL"), all);
    row("blank lines are values", "@WS_MAKE_KEYWORD\n\n@WS_MODEL_KEYWORD\n  \n", "|  |||");
    row("keyword with nothing behind it", without("0 to 100 kPa\n"),
        "Pascal & Sons|P 3000|03/14/2026|SN 77|@WS_RANGE_KEYWORD");
    row("keyword where a value should be", without("Pascal & Sons\n"),
        "@WS_MODEL_KEYWORD|P 3000|03/14/2026|SN 77|0 to 100 kPa");
    row("keyword with a blank", "@WS_MAKE_KEYWORD \nA\n", "||||");
    row("keyword in small letters", "@ws_make_keyword\nA\n", "||||");
    row("keyword as a beginning", "@WS_MAKE_KEYWORDS\nA\n", "||||");
    row("zero byte ends a value",
        QByteArray("@WS_MAKE_KEYWORD\nAB\0CD\n@WS_MODEL_KEYWORD\nM\n", 43), "AB|M|||");
    row("zero byte in a keyword", QByteArray("@WS_MAKE_KEYWORD\0\nA\n@WS_MODEL_KEYWORD\nM\n", 40),
        "|M|||");
    row("more than one byte a character",
        "@WS_MAKE_KEYWORD\nGr\xc3\xb6\xc3\x9f"
        "e \xe2\x84\xa6\n",
        "Gr\xc3\xb6\xc3\x9f"
        "e \xe2\x84\xa6||||");
    QTest::newRow("byte order mark") << QByteArray("@WS_MAKE_KEYWORD\n\xef\xbb\xbf"
                                                   "A\n")
                                     << QChar(0xfeff) + QString("A||||");
    row("no UTF-8",
        "@WS_MAKE_KEYWORD\n\xb0"
        "C\n",
        "\xef\xbf\xbd"
        "C||||");
}

void WorkingStandardFile::reading()
{
    QFETCH(QByteArray, file);
    QTEST(read_values(file), "values");
}

void WorkingStandardFile::no_file()
{
    QVERIFY(!read_working_standard("DW-12").has_value());
    QVERIFY(QDir("/specs").removeRecursively() ||
            QDir("/specs/working_standards").removeRecursively());
    QVERIFY(!read_working_standard("DW-12").has_value());
}

void WorkingStandardFile::line_of_one_megabyte_is_cut()
{
    const HostLog log;
    const QByteArray line(1000000, 'x');
    const QByteArray file = '#' + line + "\n@WS_MAKE_KEYWORD\n" + line +
                            "\n@WS_MODEL_KEYWORD\nM\n" + line + line.left(1023) +
                            "\n@WS_RANGE_KEYWORD\n" + line.left(1023) + '\n';
    const QStringList values = read_values(file).split('|');
    QCOMPARE(values.size(), 5);
    QCOMPARE(values[0], QString(1023, 'x'));
    QCOMPARE(values[1], QString("M"));
    QCOMPARE(values[4], QString(1023, 'x'));
    QCOMPARE(log.count_containing("line of 1000000 bytes cut to 1023"), 1);
}

void WorkingStandardFile::ten_thousand_entries()
{
    QByteArray file;
    for (int i = 0; i < 10000; ++i)
        file += keyword_lines("@WS_MAKE_KEYWORD", "A" + QByteArray::number(i));
    file += DEAD_WEIGHT_FILE.mid(DEAD_WEIGHT_FILE.indexOf("@WS_MODEL"));
    QCOMPARE(read_values(file), QString("A0|P 3000|03/14/2026|SN 77|0 to 100 kPa"));
    // Missing ones are looked for throughout.
    QCOMPARE(read_values(file.left(file.indexOf("@WS_MODEL"))), QString("A0||||"));
}

void WorkingStandardFile::standards_of_the_training_cell()
{
    const QDir shipped(PROJECT_SOURCE_DIR "/hostsim/cells/training/specs/working_standards");
    const QFileInfoList files = shipped.entryInfoList({"*.txt"}, QDir::Files);
    QVERIFY(!files.isEmpty());
    for (const QFileInfo &file : files) {
        const QByteArray bytes = read_file(file.filePath());
        write_file(file_of(file.completeBaseName()), bytes);
        const std::optional<WorkingStandard> read = read_working_standard(file.completeBaseName());
        QVERIFY2(read && is_complete(*read), qPrintable(file.fileName()));
        QCOMPARE(working_standard_text(*read), bytes);
    }
}

void WorkingStandardFile::name_in_the_file_plays_no_part()
{
    write_file(file_of("Other"), DEAD_WEIGHT_FILE);
    const std::optional<WorkingStandard> read = read_working_standard("Other");
    QVERIFY(read.has_value());
    QCOMPARE(read->name, QString("Other"));
    QCOMPARE(read->make, QString("Pascal & Sons"));
    QVERIFY(!read_working_standard("DW-12").has_value());
}

void WorkingStandardFile::any_six_texts_come_back()
{
    QVERIFY(rc::check("what is written is read", [] {
        const std::string name = *any_name();
        const auto values = *any_list(5, 5, any_line(LINE_BUFFER - 1));
        const Six texts = {text_of(name),      text_of(values[0]), text_of(values[1]),
                           text_of(values[2]), text_of(values[3]), text_of(values[4])};
        const WorkingStandard standard = standard_of(texts);
        write_working_standard(standard);
        const std::optional<WorkingStandard> read = read_working_standard(standard.name);
        RC_ASSERT(read.has_value());
        RC_ASSERT(six(*read) == texts);
        RC_ASSERT(read_file(file_of(standard.name)) == working_standard_text(standard));
        RC_ASSERT(QFile::remove(file_of(standard.name)));
    }));
}

void WorkingStandardFile::any_lines_come_back_as_they_were_read()
{
    QVERIFY(rc::check("what was read is written and read again", [] {
        const auto lines = *rc::gen::container<std::vector<std::string>>(any_file_line());
        const bool ends = *rc::gen::arbitrary<bool>();
        const QByteArray feed = *rc::gen::element<QByteArray>("\n", "\r\n");
        QByteArray file;
        for (const std::string &line : lines)
            file += QByteArray::fromStdString(line) + feed;
        write_file(file_of("X"), ends ? file : file.chopped(file.isEmpty() ? 0 : feed.size()));
        const std::optional<WorkingStandard> first = read_working_standard("X");
        RC_ASSERT(first.has_value());
        RC_CLASSIFY(!first->make.isEmpty() && !first->range.isEmpty());
        write_working_standard(*first);
        const QByteArray written = read_file(file_of("X"));
        RC_ASSERT(written.count('\n') == 11);
        const std::optional<WorkingStandard> second = read_working_standard("X");
        RC_ASSERT(second.has_value());
        RC_ASSERT(six(*second) == six(*first));
        write_working_standard(*second);
        RC_ASSERT(read_file(file_of("X")) == written);
    }));
}

void WorkingStandardFile::breaks_and_zero_bytes_become_blanks()
{
    QCOMPARE(keyword_lines("@K", "a\nb\r\nc"), QByteArray("@K\na b  c\n"));
    QCOMPARE(text_line(QByteArray("a\0b", 3)), QByteArray("a b\n"));
    QCOMPARE(text_line(""), QByteArray("\n"));
    const WorkingStandard standard = {"X", "a\n@WS_RANGE_KEYWORD\nb", "m", "d", "s", "r\r"};
    write_working_standard(standard);
    QCOMPARE(read_file(file_of("X")).count('\n'), 11);
    const std::optional<WorkingStandard> read = read_working_standard("X");
    QVERIFY(read.has_value());
    QCOMPARE(read->make, QString("a @WS_RANGE_KEYWORD b"));
    QCOMPARE(read->range, QString("r "));
}

void WorkingStandardFile::second_write_replaces_the_whole_file()
{
    write_file(file_of("DW-12"), QByteArray(5000, 'x') + "\n@WS_MAKE_KEYWORD\nold\n");
    write_working_standard(standard_of(DEAD_WEIGHT));
    QCOMPARE(read_file(file_of("DW-12")), DEAD_WEIGHT_FILE);
    WorkingStandard shorter = standard_of(DEAD_WEIGHT);
    shorter.range = "r";
    write_working_standard(shorter);
    QCOMPARE(read_file(file_of("DW-12")),
             QByteArray(DEAD_WEIGHT_FILE).replace("0 to 100 kPa", "r"));
}

void WorkingStandardFile::paths_data()
{
    const auto row = test_columns<QString, QByteArray>("name", "path");
    row("plain", "DW-12", QByteArray("/specs/working_standards/DW-12.txt"));
    row("blanks and a dot", " a b.c ", QByteArray("/specs/working_standards/ a b.c .txt"));
    row("percent signs", "%1%2%s", QByteArray("/specs/working_standards/%1%2%s.txt"));
    row("path separator", "../a/b", QByteArray("/specs/working_standards/../a/b.txt"));
    row("UTF-8", QString::fromUtf8("\xc3\x84"),
        QByteArray("/specs/working_standards/\xc3\x84.txt"));
    row("empty", "", QByteArray("/specs/working_standards/.txt"));
    row("303 bytes", QString(274, 'n'),
        "/specs/working_standards/" + QByteArray(274, 'n') + ".txt");
}

void WorkingStandardFile::paths()
{
    QFETCH(QString, name);
    QTEST(working_standard_path(name), "path");
    QTEST(working_standard_lookup_path(name), "path");
}

void WorkingStandardFile::long_name_is_looked_for_under_a_cut_path()
{
    const QString name = QString(200, 'a') + '/' + QString(200, 'b');
    const QByteArray path = "/specs/working_standards/" + name.toUtf8() + ".txt";
    QCOMPARE(working_standard_path(name), path);
    QCOMPARE(working_standard_lookup_path(name), path.left(303));
    QCOMPARE(working_standard_lookup_path(QString(275, 'n')).size(), 303);
    QVERIFY(working_standard_lookup_path(QString(275, 'n')).endsWith("n.tx"));

    QVERIFY(QDir().mkpath("/specs/working_standards/" + QString(200, 'a')));
    WorkingStandard standard = standard_of(DEAD_WEIGHT);
    standard.name = name;
    write_working_standard(standard);
    QVERIFY(QFile::exists(path));
    QVERIFY(!read_working_standard(name).has_value());
    write_file(path.left(303), "@WS_MAKE_KEYWORD\nfrom the cut path\n");
    QCOMPARE(read_working_standard(name)->make, QString("from the cut path"));
}

void WorkingStandardFile::name_with_a_path_separator_is_not_refused()
{
    WorkingStandard standard = standard_of(DEAD_WEIGHT);
    standard.name = "../elsewhere";
    write_working_standard(standard);
    QVERIFY(QFile::exists("/specs/elsewhere.txt"));
    QCOMPARE(read_working_standard("../elsewhere")->make, QString("Pascal & Sons"));
}

void WorkingStandardFile::failed_write_is_logged_data()
{
    const auto row = test_columns<QString, QString>("obstacle", "reason");
    row("no folder", "no folder", "No such file or directory");
    row("a folder of that name", "folder", "Is a directory");
    row("full disc", "/dev/full", "No space left on device");
}

void WorkingStandardFile::failed_write_is_logged()
{
    QFETCH(QString, obstacle);
    QFETCH(QString, reason);
    if (obstacle == "no folder")
        QVERIFY(QDir().rmdir("/specs/working_standards"));
    else if (obstacle == "folder")
        QVERIFY(QDir().mkpath(file_of("DW-12")));
    else
        QVERIFY(QFile::link(obstacle, file_of("DW-12")));
    const HostLog log;
    // Larger than any buffer on the way to the disc, and smaller.
    for (const int size : {10, 1000000}) {
        WorkingStandard standard = standard_of(DEAD_WEIGHT);
        standard.range = QString(size, 'x');
        write_working_standard(standard);
    }
    const QVector<LoggedEntry> entries = log.entries();
    QCOMPARE(entries.size(), 2);
    for (const LoggedEntry &entry : entries) {
        QCOMPARE(entry.text, "Unable to write </specs/working_standards/DW-12.txt>: " + reason);
        QCOMPARE(entry.severity, 1);
        QCOMPARE(entry.source, QString("workingstandard.cpp"));
    }
    write_working_standard({"good", "a", "b", "c", "d", "e"});
    QCOMPARE(log.entries().size(), obstacle == "no folder" ? 3 : 2);
}

LOOP_TEST(WorkingStandardFile);
#include "test_workingstandard.moc"
