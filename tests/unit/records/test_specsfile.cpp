// SPDX-License-Identifier: GPL-3.0-or-later
//
// The specs file: what the reader makes of every kind of file.
#include <cstring>

#include <QDir>
#include <QtTest>

#include "records/specsfile.h"
#include "support/cellfiles.h"
#include "support/hostlog.h"
#include "support/testmain.h"

namespace
{

const QString PATH = QString::fromLatin1(SPECS_PATH);
const QString NO_KEYWORD = "zerl_util - error finding 1st line after keyword "
                           "<@REPORT_EMAIL_LIST_KEYWORD> in file /cell/zerl_util_specs.ini";
const QByteArray NAMES = "@ROOM_TEMP_KEYWORD\nCELL_TEMP\n@BAROMETER_KEYWORD\nCELL_BARO\n"
                         "@HUMIDITY_KEYWORD\nCELL_HUM\n";
const QByteArray LIST = "@REPORT_EMAIL_LIST_KEYWORD\n";

// The record as texts: three names, then the addresses that the count covers.
QList<QByteArray> texts_of(const SPECS_BLOCK &specs)
{
    QList<QByteArray> texts{specs.temperature_var_name, specs.barometer_var_name,
                            specs.humidity_var_name};
    for (int i = 0; i < specs.report_email_count; ++i)
        texts.append(specs.report_email[i]);
    return texts;
}

} // namespace

class SpecsFile : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { require_private_cell(); }
    void init();
    void file_is_read_data();
    void file_is_read();
    void empty_file();
    void names_without_the_keyword_of_the_list();
    void keywords_missing_beside_that_of_the_list_data();
    void keywords_missing_beside_that_of_the_list();
    void no_file();
    void at_most_25_addresses_data();
    void at_most_25_addresses();
    void long_lines_data();
    void long_lines();
    void reading_again_forgets_the_former_addresses();
    void keyword_of_the_list_with_nothing_behind_it_empties_the_list();
    void written_line_by_line();
    void empty_names_are_empty_lines();
    void line_breaks_in_a_value_become_blanks();
    void free_slots_are_not_written();
    void failed_write_is_logged_data();
    void failed_write_is_logged();
    void text_of_the_record_data();
    void text_of_the_record();
    void count_out_of_range_data();
    void count_out_of_range();
    void humidity_stands_before_barometer_in_the_record();

private:
    QList<QByteArray> read(const QByteArray &content);

    SPECS_BLOCK m_specs = {};
    HostLog m_log;
};

void SpecsFile::init()
{
    clear_cell();
    m_log.mark();
    m_specs = {};
}

QList<QByteArray> SpecsFile::read(const QByteArray &content)
{
    write_file(PATH, content);
    m_log.mark();
    return read_specs(&m_specs) ? texts_of(m_specs) : QList<QByteArray>();
}

void SpecsFile::file_is_read_data()
{
    const auto row = test_columns<QByteArray, QList<QByteArray>>("content", "texts");
    const QList<QByteArray> both{"CELL_TEMP", "CELL_BARO", "CELL_HUM", "a@cell", "b@cell"};
    row("as written", NAMES + LIST + "a@cell\nb@cell\n", both);
    row("no final line feed", NAMES + LIST + "a@cell\nb@cell", both);
    row("carriage returns", QByteArray(NAMES + LIST + "a@cell\nb@cell\n").replace("\n", "\r\n"),
        both);
    row("the list first", LIST + "a@cell\nb@cell\n" + NAMES, both);
    row("names the other way round",
        "@HUMIDITY_KEYWORD\nCELL_HUM\n@BAROMETER_KEYWORD\nCELL_BARO\n"
        "@ROOM_TEMP_KEYWORD\nCELL_TEMP\n" +
            LIST + "a@cell\nb@cell\n",
        both);
    row("a further keyword ends the list",
        NAMES + LIST + "a@cell\nb@cell\n@OTHER_KEYWORD\nc@cell\n", both);
    row("comments between the pairs",
        "# a comment\n" + NAMES + "\n# another\n" + LIST + "a@cell\nb@cell\n", both);
    row("a name that comes twice: the first",
        "@ROOM_TEMP_KEYWORD\nCELL_TEMP\n@ROOM_TEMP_KEYWORD\nSECOND\n" + NAMES.mid(29) + LIST +
            "a@cell\nb@cell\n",
        both);
    row("a list that comes twice: the first", NAMES + LIST + "a@cell\nb@cell\n" + LIST + "c@cell\n",
        both);
    row("zero bytes end a value",
        QByteArray("@ROOM_TEMP_KEYWORD\nCELL_TEMP\0x\n", 31) + NAMES.mid(29) + LIST +
            QByteArray("a@cell\0\0\nb@cell\n", 16),
        both);
    row("blanks stay", NAMES + LIST + " a@cell \n\tb\n",
        QList<QByteArray>{"CELL_TEMP", "CELL_BARO", "CELL_HUM", " a@cell ", "\tb"});
    row("UTF-8",
        "@ROOM_TEMP_KEYWORD\n" + QByteArray("Zelle 1 °C\n") + NAMES.mid(29) + LIST + "ä@cell\n",
        QList<QByteArray>{"Zelle 1 °C", "CELL_BARO", "CELL_HUM", "ä@cell"});
    row("an address that begins with @ behind the first ends the list",
        NAMES + LIST + "a@cell\n@b\nc\n",
        QList<QByteArray>{"CELL_TEMP", "CELL_BARO", "CELL_HUM", "a@cell"});
    row("the first line of the list is taken even when it begins with @",
        NAMES + LIST + "@OTHER_KEYWORD\nvalue\n",
        QList<QByteArray>{"CELL_TEMP", "CELL_BARO", "CELL_HUM", "@OTHER_KEYWORD", "value"});
    row("blank lines are counted as addresses", NAMES + LIST + "a@cell\n\nb@cell\n\n",
        QList<QByteArray>{"CELL_TEMP", "CELL_BARO", "CELL_HUM", "a@cell", "", "b@cell", ""});
    row("keyword of the list with nothing behind it: no address", NAMES + LIST,
        QList<QByteArray>{"CELL_TEMP", "CELL_BARO", "CELL_HUM"});
    row("the same without its line feed", NAMES + "@REPORT_EMAIL_LIST_KEYWORD",
        QList<QByteArray>{"CELL_TEMP", "CELL_BARO", "CELL_HUM"});
    row("a keyword that is missing leaves its name empty",
        "@ROOM_TEMP_KEYWORD\nCELL_TEMP\n@HUMIDITY_KEYWORD\nCELL_HUM\n" + LIST + "a\n",
        QList<QByteArray>{"CELL_TEMP", "", "CELL_HUM", "a"});
    row("a keyword at the end becomes its own value",
        LIST + "a@cell\n@HUMIDITY_KEYWORD\nCELL_HUM\n@ROOM_TEMP_KEYWORD",
        QList<QByteArray>{"@ROOM_TEMP_KEYWORD", "", "CELL_HUM", "a@cell"});
    row("keyword as a value",
        "@ROOM_TEMP_KEYWORD\n@BAROMETER_KEYWORD\n@BAROMETER_KEYWORD\nCELL_BARO\n"
        "@HUMIDITY_KEYWORD\nCELL_HUM\n" +
            LIST + "a\n",
        QList<QByteArray>{"@BAROMETER_KEYWORD", "CELL_BARO", "CELL_HUM", "a"});
    row("keywords count whole, and case counts",
        "@ROOM_TEMP_KEYWORD2\n1\n @ROOM_TEMP_KEYWORD\n2\n@room_temp_keyword\n3\n" + NAMES + LIST +
            "a\n",
        QList<QByteArray>{"CELL_TEMP", "CELL_BARO", "CELL_HUM", "a"});
}

void SpecsFile::file_is_read()
{
    QFETCH(QByteArray, content);
    QFETCH(QList<QByteArray>, texts);
    qstrncpy(m_specs.temperature_var_name, "before", 80);
    qstrncpy(m_specs.barometer_var_name, "before", 80);
    qstrncpy(m_specs.humidity_var_name, "before", 80);
    QCOMPARE(read(content), texts);
    QCOMPARE(m_log.texts(), QStringList());
}

void SpecsFile::empty_file()
{
    qstrncpy(m_specs.temperature_var_name, "before", 80);
    qstrncpy(m_specs.barometer_var_name, "before", 80);
    qstrncpy(m_specs.humidity_var_name, "before", 80);
    // Slot 0 takes what the line buffer held: nothing.
    QCOMPARE(read(""), (QList<QByteArray>{"", "", "", ""}));
    QCOMPARE(m_log.texts(), QStringList{NO_KEYWORD});
    QCOMPARE(m_log.entries()[0].code, 76);
    QCOMPARE(m_log.entries()[0].severity, 1);
}

void SpecsFile::names_without_the_keyword_of_the_list()
{
    QCOMPARE(read(NAMES), (QList<QByteArray>{"CELL_TEMP", "CELL_BARO", "CELL_HUM", "CELL_HUM"}));
    QCOMPARE(m_log.texts(), QStringList{NO_KEYWORD});
    // What stands behind the humidity is read on as addresses.
    QCOMPARE(read(NAMES + "x\ny\n@Z\n"),
             (QList<QByteArray>{"CELL_TEMP", "CELL_BARO", "CELL_HUM", "CELL_HUM", "x", "y"}));
}

void SpecsFile::keywords_missing_beside_that_of_the_list_data()
{
    const auto row = test_columns<QByteArray, QList<QByteArray>>("content", "texts");
    const QByteArray temperature = "@ROOM_TEMP_KEYWORD\nCELL_TEMP\n";
    const QByteArray barometer = "@BAROMETER_KEYWORD\nCELL_BARO\n";
    row("the humidity's: the barometer's line is the address", temperature + barometer,
        QList<QByteArray>{"CELL_TEMP", "CELL_BARO", "", "CELL_BARO"});
    row("the humidity's, with lines behind", temperature + barometer + "x\ny\n@Z\nz\n",
        QList<QByteArray>{"CELL_TEMP", "CELL_BARO", "", "CELL_BARO", "x", "y"});
    row("the humidity's and the barometer's: the temperature's line", temperature,
        QList<QByteArray>{"CELL_TEMP", "", "", "CELL_TEMP"});
    row("the temperature's and the humidity's: the barometer's line", barometer,
        QList<QByteArray>{"", "CELL_BARO", "", "CELL_BARO"});
    row("all: an empty text, then the file from its begin", QByteArray("x\ny\n"),
        QList<QByteArray>{"", "", "", "", "x", "y"});
}

void SpecsFile::keywords_missing_beside_that_of_the_list()
{
    QFETCH(QByteArray, content);
    QFETCH(QList<QByteArray>, texts);
    qstrncpy(m_specs.humidity_var_name, "before", 80);
    QCOMPARE(read(content), texts);
    QCOMPARE(m_log.texts(), QStringList{NO_KEYWORD});
}

void SpecsFile::no_file()
{
    qstrncpy(m_specs.temperature_var_name, "before", 80);
    m_specs.report_email_count = 1;
    QVERIFY(!read_specs(&m_specs));
    QCOMPARE(m_specs.temperature_var_name, "before");
    QCOMPARE(m_specs.report_email_count, 1);
    QCOMPARE(m_log.texts(), QStringList{"zerl_util - unable to open the ini file "
                                        "</cell/zerl_util_specs.ini>"});
    QCOMPARE(m_log.entries()[0].severity, 65);
    QCOMPARE(m_log.entries()[0].code, 77);
}

void SpecsFile::at_most_25_addresses_data()
{
    QTest::addColumn<int>("count");
    for (const int count : {24, 25, 26, 10000})
        QTest::newRow(qPrintable(QString::number(count))) << count;
}

void SpecsFile::at_most_25_addresses()
{
    QFETCH(int, count);
    struct Guarded {
        SPECS_BLOCK specs;
        char behind[4 * REPORT_EMAIL_SIZE];
    };
    static Guarded guarded;
    std::memset(&guarded, 'x', sizeof guarded);
    QByteArray content = NAMES + LIST;
    for (int i = 0; i < count; ++i)
        content += QByteArray::number(i) + "@cell\n";
    write_file(PATH, content);
    QVERIFY(read_specs(&guarded.specs));
    QCOMPARE(guarded.specs.report_email_count, qMin(count, 25));
    QCOMPARE(guarded.specs.report_email[23], "23@cell");
    QCOMPARE(guarded.specs.report_email[24], count > 24 ? "24@cell" : "");
    QCOMPARE(QByteArray(guarded.behind, sizeof guarded.behind).count('x'),
             static_cast<int>(sizeof guarded.behind));
}

void SpecsFile::long_lines_data()
{
    const auto row = test_columns<QByteArray, int, int>("line", "kept_of_name", "kept_of_address");
    row("79 bytes", QByteArray(79, 'n'), 79, 79);
    row("80 bytes", QByteArray(80, 'n'), 79, 80);
    row("1023 bytes", QByteArray(1023, 'n'), 79, 1023);
    row("1024 bytes", QByteArray(1024, 'n'), 79, 1023);
    row("a megabyte", QByteArray(1 << 20, 'n'), 79, 1023);
    row("never half a character", QByteArray("°").repeated(600), 78, 1022);
}

void SpecsFile::long_lines()
{
    QFETCH(QByteArray, line);
    QFETCH(int, kept_of_name);
    QFETCH(int, kept_of_address);
    const QByteArray name = line.left(kept_of_name);
    QCOMPARE(read("@ROOM_TEMP_KEYWORD\n" + line + "\n@BAROMETER_KEYWORD\n" + line +
                  "\n@HUMIDITY_KEYWORD\n" + line + '\n' + LIST + line + "\nnext\n"),
             (QList<QByteArray>{name, name, name, line.left(kept_of_address), "next"}));
}

void SpecsFile::reading_again_forgets_the_former_addresses()
{
    QCOMPARE(read(NAMES + LIST + "a\nb\nc\n").size(), 6);
    QCOMPARE(read(NAMES + LIST + "d\n").mid(3), QList<QByteArray>{"d"});
    QCOMPARE(specs_lines(m_specs).emails, QVector<QByteArray>{"d"});
}

void SpecsFile::keyword_of_the_list_with_nothing_behind_it_empties_the_list()
{
    QCOMPARE(read(NAMES + LIST + "a\nb\n").size(), 5);
    QCOMPARE(read(NAMES + LIST).size(), 3);
    QCOMPARE(m_specs.report_email_count, 0);
    QVERIFY(specs_lines(m_specs).emails.isEmpty());
}

void SpecsFile::written_line_by_line()
{
    write_file(PATH, QByteArray(5000, 'x'));
    write_specs({"TEMP", "BARO", "HUM", {"a@cell", "ä@cell"}});
    QCOMPARE(read_file(PATH), QByteArray("@ROOM_TEMP_KEYWORD\nTEMP\n"
                                         "@BAROMETER_KEYWORD\nBARO\n"
                                         "@HUMIDITY_KEYWORD\nHUM\n"
                                         "@REPORT_EMAIL_LIST_KEYWORD\na@cell\nä@cell\n"));
    QCOMPARE(m_log.texts(), QStringList());
}

void SpecsFile::empty_names_are_empty_lines()
{
    write_specs(specs_lines(m_specs));
    QCOMPARE(read_file(PATH), QByteArray("@ROOM_TEMP_KEYWORD\n\n@BAROMETER_KEYWORD\n\n"
                                         "@HUMIDITY_KEYWORD\n\n@REPORT_EMAIL_LIST_KEYWORD\n"));
}

void SpecsFile::line_breaks_in_a_value_become_blanks()
{
    write_specs({"A\nB", "A\r\nB", QByteArray("A\0B", 3), {"a\nb"}});
    QVERIFY(read_specs(&m_specs));
    QCOMPARE(texts_of(m_specs), (QList<QByteArray>{"A B", "A  B", "A B", "a b"}));
}

void SpecsFile::free_slots_are_not_written()
{
    qstrncpy(m_specs.report_email[1], "b", REPORT_EMAIL_SIZE);
    qstrncpy(m_specs.report_email[24], "z", REPORT_EMAIL_SIZE);
    m_specs.report_email_count = 1;
    QCOMPARE(specs_lines(m_specs).emails, (QVector<QByteArray>{"b", "z"}));
}

void SpecsFile::failed_write_is_logged_data()
{
    const auto row = test_columns<bool, QString>("full", "reason");
    row("cannot be opened", false, "Is a directory");
    row("disc full", true, "No space left on device");
}

void SpecsFile::failed_write_is_logged()
{
    QFETCH(bool, full);
    QFETCH(QString, reason);
    if (full)
        QVERIFY(QFile::link("/dev/full", PATH));
    else
        QVERIFY(QDir().mkpath(PATH));
    write_specs({"TEMP", "BARO", "HUM", {}});
    QCOMPARE(m_log.texts(), QStringList{"zerl_util - unable to write the ini file "
                                        "</cell/zerl_util_specs.ini>: " +
                                        reason});
    QCOMPARE(m_log.entries()[0].severity, 1);
}

void SpecsFile::text_of_the_record_data()
{
    const auto row = test_columns<QByteArray, QString>("bytes", "text");
    row("ASCII", QByteArray("CELL_TEMP"), "CELL_TEMP");
    row("empty", QByteArray(), "");
    row("UTF-8, from the file", QByteArray("Zelle °C"), QString("Zelle °C"));
    row("Latin-1, from the dialog",
        QByteArray("Zelle \xb0"
                   "C"),
        QString("Zelle °C"));
    row("Latin-1 at the end", QByteArray("\xb0\xe4"), QString("°ä"));
    row("begins like UTF-8", QByteArray("\xc3"), QString("Ã"));
    row("byte order mark",
        QByteArray("\xef\xbb\xbf"
                   "A"),
        QString(QChar(0xfeff)) + "A");
}

void SpecsFile::text_of_the_record()
{
    QFETCH(QByteArray, bytes);
    QFETCH(QString, text);
    char slot[80];
    qstrncpy(slot, bytes.constData(), sizeof slot);
    QCOMPARE(specs_text(slot), text);
    // A field that is full to its last byte.
    QCOMPARE(specs_text(bytes.constData(), static_cast<std::size_t>(bytes.size())), text);
}

void SpecsFile::count_out_of_range_data()
{
    const auto row = test_columns<int, int>("stored", "count");
    row("negative", -1, 0);
    row("none", 0, 0);
    row("all", 25, 25);
    row("more than there are", 26, 25);
}

void SpecsFile::count_out_of_range()
{
    QFETCH(int, stored);
    m_specs.report_email_count = stored;
    QTEST(specs_email_count(m_specs), "count");
}

void SpecsFile::humidity_stands_before_barometer_in_the_record()
{
    QCOMPARE(offsetof(SPECS_BLOCK, temperature_var_name), std::size_t{0});
    QCOMPARE(offsetof(SPECS_BLOCK, humidity_var_name), std::size_t{80});
    QCOMPARE(offsetof(SPECS_BLOCK, barometer_var_name), std::size_t{160});
    QCOMPARE(offsetof(SPECS_BLOCK, report_email), std::size_t{240});
    QCOMPARE(offsetof(SPECS_BLOCK, report_email_count), std::size_t{240 + 25 * 1024});
}

PLAIN_TEST(SpecsFile);
#include "test_specsfile.moc"
