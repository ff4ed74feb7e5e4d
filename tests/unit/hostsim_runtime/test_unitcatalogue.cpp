// SPDX-License-Identifier: GPL-3.0-or-later
#include <QtTest>

#include <cstring>
#include <map>
#include <vector>

#include "child.h"
#include "host/exports.h"
#include "host/operations.h"
#include "hostsim/runtime/memoryheader.h"
#include "hostsim/runtime/unitcatalogue.h"
#include "logreader.h"
#include "support/testmain.h"

using namespace hostsim;

namespace
{

// The list that a code belongs to: temperature, pressure, time, other.
int list_of(int code)
{
    if (code >= 700 && code <= 799)
        return 2;
    if (code > 199)
        return 3;
    return code > 99 ? 1 : 0;
}

std::string of_units(int count)
{
    std::string text;
    for (int i = 0; i < count; ++i)
        text += "U" + std::to_string(i) + " " + std::to_string(i) + " length m\n";
    return text;
}

} // namespace

class Catalogue : public QObject
{
    Q_OBJECT

private slots:
    void init() { clear_log(); }
    void cleanup() { withdraw_unit_catalogue(); }
    void columns_read();
    void faults_data();
    void faults();
    void more_units_than_records();
    void keywords_compare_without_case();
    void records_are_filled_in_order();
    void all_records_in_use();
    void a_file_reads_whole();
    void the_default_serves_all_four_lists();
    void the_default_has_no_fault();
    void no_keyword_hides_behind_its_longer_one();
    void published_for_other_processes();
    void withdrawn_the_default_serves();
};

void Catalogue::columns_read()
{
    std::vector<std::string> faults;
    const UnitCatalogue catalogue =
        parse_unit_catalogue("# keyword code dimension expression\n"
                             "\n"
                             "  LB-FT  230\ttorque   1.3558179483314004 N.m  \r\n"
                             "%  202 fraction 0.01",
                             &faults);
    QCOMPARE(faults.size(), std::size_t(0));
    QCOMPARE(catalogue.size(), std::size_t(2));
    QCOMPARE(catalogue[0].keyword, std::string("LB-FT"));
    QCOMPARE(catalogue[0].code, 230);
    QCOMPARE(catalogue[0].dimension, std::string("torque"));
    QCOMPARE(catalogue[0].expression, std::string("1.3558179483314004 N.m"));
    QCOMPARE(catalogue[1].keyword, std::string("%"));
    QCOMPARE(catalogue[1].expression, std::string("0.01"));
    QVERIFY(parse_unit_catalogue("", nullptr).empty());
}

void Catalogue::faults_data()
{
    const auto row = test_columns<QByteArray, QByteArray>("line", "fault");
    row("keyword of 16 bytes", QByteArray("ABCDEFGHIJKLMNOP 1 length m"),
        QByteArray("the keyword is longer than 15 bytes"));
    row("keyword only", QByteArray("FT"), QByteArray("the code is not a number"));
    row("code with letters", QByteArray("FT 1x length m"), QByteArray("the code is not a number"));
    row("code too large", QByteArray("FT 99999999999 length m"),
        QByteArray("the code is not a number"));
    row("no expression", QByteArray("FT 1 length"),
        QByteArray("dimension or expression is missing"));
    row("the same keyword again", QByteArray("Good 1 length m"),
        QByteArray("the keyword stands there already"));
    row("the same in other case", QByteArray("gOOD 1 length m"),
        QByteArray("the keyword stands there already"));
}

void Catalogue::faults()
{
    QFETCH(QByteArray, line);
    QFETCH(QByteArray, fault);
    const std::string text =
        "GOOD 1 length m\n# a comment\n" + line.toStdString() + "\nABCDEFGHIJKLMNO 2 length m\n";
    std::vector<std::string> faults;
    const UnitCatalogue catalogue = parse_unit_catalogue(text, &faults);
    QCOMPARE(faults.size(), std::size_t(1));
    QCOMPARE(faults[0], "line 3: " + fault.toStdString());
    QCOMPARE(catalogue.size(), std::size_t(2));
    QCOMPARE(parse_unit_catalogue(text, nullptr).size(), std::size_t(2));
}

void Catalogue::more_units_than_records()
{
    std::vector<std::string> faults;
    QCOMPARE(parse_unit_catalogue(of_units(700), &faults).size(), std::size_t(700));
    QCOMPARE(faults.size(), std::size_t(0));
    QCOMPARE(parse_unit_catalogue(of_units(702), &faults).size(), std::size_t(700));
    QCOMPARE(faults.size(), std::size_t(2));
    QCOMPARE(faults[0], std::string("line 701: there are more units than the memory holds"));
}

void Catalogue::keywords_compare_without_case()
{
    QVERIFY(same_keyword("DEG_F", "deg_f"));
    QVERIFY(same_keyword("kPa", "KPA"));
    QVERIFY(!same_keyword("PSI", "PSIA"));
    QVERIFY(!same_keyword("A[", "a{"));
    QVERIFY(same_keyword("", ""));
}

void Catalogue::records_are_filled_in_order()
{
    std::vector<UNIT_RECORD> records(UNIT_RECORDS);
    memset(static_cast<void *>(records.data()), 0xEE, UNIT_RECORDS * sizeof(UNIT_RECORD));
    fill_unit_records(parse_unit_catalogue("ABCDEFGHIJKLMNO 799 time s\nPSI -5 x m\n", nullptr),
                      records.data());
    QCOMPARE(records[0].keyword, "ABCDEFGHIJKLMNO");
    QCOMPARE(records[0].code, 799);
    QCOMPARE(records[1].keyword, "PSI");
    QCOMPARE(records[1].code, -5);
    for (std::size_t i = 2; i < UNIT_RECORDS; ++i)
        QVERIFY(string_blank(records[i].keyword) != 0);
}

void Catalogue::all_records_in_use()
{
    // One record more behind them: it stays as it is.
    std::vector<UNIT_RECORD> records(UNIT_RECORDS + 1);
    memset(static_cast<void *>(&records[UNIT_RECORDS]), 0xEE, sizeof(UNIT_RECORD));
    UnitCatalogue catalogue = parse_unit_catalogue(of_units(700), nullptr);
    catalogue.push_back({"EXTRA", 1, "length", "m"});
    fill_unit_records(catalogue, records.data());
    QCOMPARE(records[699].keyword, "U699");
    QCOMPARE(static_cast<unsigned char>(records[700].keyword[0]), static_cast<unsigned char>(0xEE));
}

void Catalogue::a_file_reads_whole()
{
    QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("units.txt"));
    const std::string written = of_units(700);
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(written.c_str());
    file.close();
    std::string text = "before";
    QVERIFY(read_unit_catalogue_text(path.toUtf8().constData(), &text));
    QCOMPARE(text, written);
    errno = 0;
    QVERIFY(!read_unit_catalogue_text(folder.filePath(QStringLiteral("none")).toUtf8().constData(),
                                      &text));
    QCOMPARE(errno, ENOENT);
    QVERIFY(!read_unit_catalogue_text(folder.path().toUtf8().constData(), &text));
}

void Catalogue::the_default_serves_all_four_lists()
{
    std::vector<std::string> faults;
    const UnitCatalogue catalogue = parse_unit_catalogue(default_unit_catalogue_text(), &faults);
    QCOMPARE(faults.size(), std::size_t(0));
    QVERIFY(catalogue.size() >= 80);
    int counts[4] = {};
    std::map<std::string, int> lists;
    for (const CatalogueUnit &unit : catalogue) {
        QVERIFY2(unit.code > 0, unit.keyword.c_str());
        ++counts[list_of(unit.code)];
        lists[unit.keyword] = list_of(unit.code);
    }
    for (const int count : counts)
        QVERIFY(count >= 5);
    for (const char *keyword : {"DEG_F", "DEG_C", "DEG_K", "DEG_R"})
        QCOMPARE(lists.at(keyword), 0);
    for (const char *keyword : {"IN_HG", "kPa", "PSI"})
        QCOMPARE(lists.at(keyword), 1);
    for (const char *keyword : {"PCT", "%", "FRAC", "LB-FT", "none"})
        QCOMPARE(lists.at(keyword), 3);
}

void Catalogue::the_default_has_no_fault()
{
    // No unit is refused when the runtime takes it up.
    QCOMPARE(units_init_access(1), 0);
    QVERIFY(log_lines().isEmpty());
    for (const CatalogueUnit &unit : parse_unit_catalogue(default_unit_catalogue_text(), nullptr)) {
        int32_t code = -1;
        QCOMPARE(units_keyword_to_code(unit.keyword.c_str(), &code), 0);
        QCOMPARE(code, unit.code);
    }
}

void Catalogue::no_keyword_hides_behind_its_longer_one()
{
    // Lists are searched by the beginning of an entry, one list after another.
    std::vector<std::string> order;
    const UnitCatalogue catalogue = parse_unit_catalogue(default_unit_catalogue_text(), nullptr);
    for (int list = 0; list < 4; ++list) {
        for (const CatalogueUnit &unit : catalogue) {
            if (list_of(unit.code) == list)
                order.push_back(unit.keyword);
        }
    }
    for (const std::string &keyword : order) {
        const auto first = std::find_if(order.begin(), order.end(), [&](const std::string &entry) {
            return entry.compare(0, keyword.size(), keyword) == 0;
        });
        QCOMPARE(*first, keyword);
    }
}

void Catalogue::published_for_other_processes()
{
    const LivingChild cell(
        [] { return publish_unit_catalogue("FURLONG 900 length 201.168 m\nm 901 length m\n"); });
    QVERIFY(cell.done());
    void *address = nullptr;
    QVERIFY(link_to_memory(43, &address) != 0);
    QCOMPARE(Unit_mem[0].keyword, "FURLONG");
    QCOMPARE(Unit_mem[0].code, 900);
    QVERIFY(string_blank(Unit_mem[2].keyword) != 0);

    QCOMPARE(units_init_access(1), 0);
    double meters = 0.0;
    QCOMPARE(units_dbl_keyword_convrt("furlong", &meters, "m", 2.0), 0);
    QVERIFY(meters == 402.336);
    // The cell's catalogue serves alone.
    QVERIFY(units_dimension_check_key("PSI", "kPa") != 0);
}

void Catalogue::withdrawn_the_default_serves()
{
    QVERIFY(publish_unit_catalogue("m 901 length m\n"));
    QCOMPARE(units_init_access(1), 0);
    QVERIFY(units_dimension_check_key("PSI", "kPa") != 0);
    withdraw_unit_catalogue();
    void *address = nullptr;
    QCOMPARE(link_to_memory(43, &address), 0);
    QCOMPARE(published_unit_catalogue_text(), std::string(default_unit_catalogue_text()));
    QCOMPARE(units_init_access(1), 0);
    QCOMPARE(units_dimension_check_key("PSI", "kPa"), 0);
}

PLAIN_TEST(Catalogue);
#include "test_unitcatalogue.moc"
