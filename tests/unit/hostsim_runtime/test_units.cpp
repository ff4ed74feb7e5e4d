// SPDX-License-Identifier: GPL-3.0-or-later
#include <QProcess>
#include <QtTest>

#include <cmath>
#include <cstring>
#include <locale.h>
#include <string>

#include "child.h"
#include "host/operations.h"
#include "hostsim/runtime/unitcatalogue.h"
#include "logreader.h"
#include "support/testmain.h"

namespace
{

constexpr int FAILURE = 65535; // as a 16-bit value

int low16(int32_t result)
{
    return result & 0xFFFF;
}

// The value in the other unit; a failure fails the test.
double converted(const char *from, const char *to, double value)
{
    double out = qQNaN();
    const int32_t result = units_dbl_keyword_convrt(from, &out, to, value);
    if (result != 0)
        qFatal("no conversion from %s to %s", from, to);
    return out;
}

// What goes wrong when the thread's numbers have a decimal comma; 0: nothing. A
// catalogue is published for it, so that its factors are read now.
int fault_with_locale(locale_t locale)
{
    uselocale(locale);
    if (strtod("1,5", nullptr) != 1.5)
        return 1;
    if (!hostsim::publish_unit_catalogue("A 1 length 0.3048 m\nB 2 length 0.0254 m\n") ||
        units_init_access(1) != 0)
        return 2;
    double inches = 0.0;
    if (units_dbl_keyword_convrt("A", &inches, "B", 1.0) != 0 || inches != 12.0)
        return 3;
    double feet = 0.0;
    if (units_token_convert("1.5[B]", "A", &feet) != 0 || feet != 0.125)
        return 4;
    return uselocale(nullptr) == locale ? 0 : 5;
}

std::uint64_t bits(double value)
{
    std::uint64_t result = 0;
    memcpy(&result, &value, sizeof result);
    return result;
}

} // namespace

class UnitService : public QObject
{
    Q_OBJECT

private slots:
    void init() { clear_log(); }
    void conversions_that_people_know_data();
    void conversions_that_people_know();
    void same_keyword_gives_the_same_bits_data();
    void same_keyword_gives_the_same_bits();
    void unlike_keywords_pass_the_value_on_data();
    void unlike_keywords_pass_the_value_on();
    void unit_not_chosen_yet_data();
    void unit_not_chosen_yet();
    void dimensions_data();
    void dimensions();
    void numbers_that_are_none();
    void tokens_data();
    void tokens();
    void tokens_without_a_place_to_go();
    void codes();
    void variables_convert_from_their_native_unit();
    void variables_with_unfit_units();
    void init_may_be_called_again();
    void without_the_database_nothing_converts();
    void unusable_entries_are_refused();
    void a_decimal_comma_changes_nothing();
};

void UnitService::conversions_that_people_know_data()
{
    const auto row =
        test_columns<QByteArray, double, QByteArray, double>("from", "value", "to", "result");
    row("ice", "DEG_F", 32.0, "DEG_C", 0.0);
    row("steam", "DEG_F", 212.0, "DEG_C", 100.0);
    row("steam, back", "DEG_C", 100.0, "DEG_F", 212.0);
    row("ice, back", "DEG_C", 0.0, "DEG_F", 32.0);
    row("where the scales meet", "DEG_F", -40.0, "DEG_C", -40.0);
    row("body", "DEG_F", 98.6, "DEG_C", 37.0);
    row("room", "DEG_F", 68.0, "DEG_C", 20.0);
    row("ice in kelvin", "DEG_C", 0.0, "DEG_K", 273.15);
    row("absolute zero", "DEG_K", 0.0, "DEG_F", -459.67);
    row("Rankine", "DEG_F", 0.0, "DEG_R", 459.67);
    row("one inch of mercury", "IN_HG", 1.0, "kPa", 3.386388640341);
    row("one inch of mercury, back", "kPa", 3.386388640341, "IN_HG", 1.0);
    row("percent", "PCT", 1.0, "FRAC", 0.01);
    row("percent sign", "%", 25.0, "FRAC", 0.25);
    row("fraction", "FRAC", 0.5, "PCT", 50.0);
    row("percent to percent", "PCT", 0.1, "%", 0.1);
    row("foot", "FT", 3.0, "INCH", 36.0);
    row("hour", "HR", 1.0, "SEC", 3600.0);
    row("atmosphere", "ATM", 1.0, "kPa", 101.325);
    row("bar", "BAR", 1.0, "kPa", 100.0);
    row("keyword in other case", "deg_f", 212.0, "Deg_C", 100.0);
}

void UnitService::conversions_that_people_know()
{
    QFETCH(QByteArray, from);
    QFETCH(double, value);
    QFETCH(QByteArray, to);
    QFETCH(double, result);
    const double out = converted(from.constData(), to.constData(), value);
    QVERIFY2(out == result, qPrintable(QString::number(out, 'g', 17)));
}

void UnitService::same_keyword_gives_the_same_bits_data()
{
    QTest::addColumn<double>("value");
    QTest::newRow("a tenth") << 0.1;
    QTest::newRow("minus zero") << -0.0;
    QTest::newRow("smallest number") << 4.9406564584124654e-324;
    QTest::newRow("largest number") << std::numeric_limits<double>::max();
    QTest::newRow("infinity") << qInf();
    QTest::newRow("not a number") << qQNaN();
}

void UnitService::same_keyword_gives_the_same_bits()
{
    QFETCH(double, value);
    for (const char *keyword : {"DEG_F", "PSI", "none", "PCT"}) {
        QCOMPARE(bits(converted(keyword, keyword, value)), bits(value));
        const QByteArray other = QByteArray(keyword).toLower();
        QCOMPARE(bits(converted(keyword, other.constData(), value)), bits(value));
    }
}

void UnitService::unlike_keywords_pass_the_value_on_data()
{
    const auto row = test_columns<QByteArray, QByteArray>("from", "to");
    row("another dimension", QByteArray("PSI"), QByteArray("DEG_F"));
    row("unknown to known", QByteArray("FURLONG"), QByteArray("PSI"));
    row("known to unknown", QByteArray("PSI"), QByteArray("FURLONG"));
    row("unknown to itself", QByteArray("FURLONG"), QByteArray("FURLONG"));
    row("blanks", QByteArray("   "), QByteArray("PSI"));
    row("the entry of an empty list", QByteArray(" <empty>"), QByteArray("PSI"));
    row("none to a fraction", QByteArray("none"), QByteArray("FRAC"));
    row("a fraction to none", QByteArray("PCT"), QByteArray("none"));
    row("torque to energy", QByteArray("LB-FT"), QByteArray("JOULE"));
    row("rotation to frequency", QByteArray("RPM"), QByteArray("HZ"));
    row("angle to fraction", QByteArray("RADIAN"), QByteArray("FRAC"));
    row("temperature to difference", QByteArray("DEG_F"), QByteArray("DELTA_F"));
    row("longer than a keyword", QByteArray(5000, 'P'), QByteArray("PSI"));
    row("a keyword with blanks", QByteArray("PSI "), QByteArray("kPa"));
    row("an expression, not a keyword", QByteArray("1000 Pa"), QByteArray("kPa"));
}

void UnitService::unlike_keywords_pass_the_value_on()
{
    QFETCH(QByteArray, from);
    QFETCH(QByteArray, to);
    double out = 0.0;
    QCOMPARE(low16(units_dbl_keyword_convrt(from.constData(), &out, to.constData(), 0.1)), FAILURE);
    QVERIFY(out == 0.1);
    QCOMPARE(low16(units_dbl_keyword_convrt(nullptr, &out, to.constData(), 0.2)), FAILURE);
    QVERIFY(out == 0.2);
    QCOMPARE(low16(units_dbl_keyword_convrt(from.constData(), &out, nullptr, 0.3)), FAILURE);
    QVERIFY(out == 0.3);
    QVERIFY((low16(units_dimension_check_key(from.constData(), to.constData()))) != 0);
    QCOMPARE(low16(units_dbl_keyword_convrt("PSI", nullptr, "kPa", 1.0)), FAILURE);
}

// An empty keyword is a unit that was not chosen yet, as in a channel that has
// no table: it agrees with any, and there is nothing to convert by.
void UnitService::unit_not_chosen_yet_data()
{
    const auto row = test_columns<QByteArray, QByteArray>("a", "b");
    row("empty and known", QByteArray(""), QByteArray("PSI"));
    row("both empty", QByteArray(""), QByteArray(""));
    row("empty and none", QByteArray(""), QByteArray("none"));
    row("empty and unknown", QByteArray(""), QByteArray("FURLONG"));
}

void UnitService::unit_not_chosen_yet()
{
    QFETCH(QByteArray, a);
    QFETCH(QByteArray, b);
    QCOMPARE(units_dimension_check_key(a.constData(), b.constData()), 0);
    QCOMPARE(units_dimension_check_key(b.constData(), a.constData()), 0);
    QVERIFY(units_dimension_check_key(a.constData(), nullptr) != 0);
    double out = 0.0;
    QCOMPARE(low16(units_dbl_keyword_convrt(a.constData(), &out, b.constData(), 0.1)), FAILURE);
    QVERIFY(out == 0.1);
    QCOMPARE(low16(units_dbl_keyword_convrt(b.constData(), &out, a.constData(), 0.2)), FAILURE);
    QVERIFY(out == 0.2);
}

void UnitService::dimensions_data()
{
    const auto row = test_columns<QByteArray, QByteArray>("a", "b");
    row("itself", QByteArray("PSI"), QByteArray("PSI"));
    row("pressures", QByteArray("PSI"), QByteArray("IN_HG"));
    row("temperatures", QByteArray("DEG_F"), QByteArray("DEG_K"));
    row("percent and fraction", QByteArray("PCT"), QByteArray("FRAC"));
    row("both percents", QByteArray("%"), QByteArray("PCT"));
    row("torques", QByteArray("N-M"), QByteArray("LB-FT"));
    row("none and none", QByteArray("none"), QByteArray("NONE"));
    row("without case", QByteArray("kpa"), QByteArray("psi"));
}

void UnitService::dimensions()
{
    QFETCH(QByteArray, a);
    QFETCH(QByteArray, b);
    QCOMPARE(units_dimension_check_key(a.constData(), b.constData()), 0);
    QCOMPARE(units_dimension_check_key(b.constData(), a.constData()), 0);
    QVERIFY(units_dimension_check_key(a.constData(), nullptr) != 0);
    QVERIFY(units_dimension_check_key(nullptr, nullptr) != 0);
}

void UnitService::numbers_that_are_none()
{
    QVERIFY(std::isnan(converted("DEG_F", "DEG_C", qQNaN())));
    QVERIFY(converted("DEG_F", "DEG_C", qInf()) == qInf());
    QVERIFY(converted("PSI", "kPa", -qInf()) == -qInf());
    QCOMPARE(bits(converted("PSI", "kPa", -0.0)), bits(-0.0));
}

void UnitService::tokens_data()
{
    const auto row =
        test_columns<QByteArray, QByteArray, double, bool>("token", "to", "value", "good");
    row("one percent", "1[PCT]", "FRAC", 0.01, true);
    row("leading point", ".25[PCT]", "FRAC", 0.0025, true);
    row("two percent", "2[PCT]", "FRAC", 0.02, true);
    row("zero", "0[PCT]", "FRAC", 0.0, true);
    row("sign and exponent", "-1.5e2[PCT]", "FRAC", -1.5, true);
    row("plus", "+5[%]", "FRAC", 0.05, true);
    row("temperature", "212[DEG_F]", "DEG_C", 100.0, true);
    row("blanks before the number", "  1[PCT]", "FRAC", 0.01, true);
    row("blanks before the unit", "1 [PCT]", "FRAC", 0.01, true);
    row("without the closing bracket", "1[PCT", "FRAC", 0.01, true);
    row("text behind the bracket", "1[PCT] of span", "FRAC", 0.01, true);
    row("without case", "1[pct]", "frac", 0.01, true);
    row("no unit", "1.5", "FRAC", 1.5, false);
    row("empty unit", "1.5[]", "FRAC", 1.5, false);
    row("unknown unit", "1.5[FURLONG]", "FRAC", 1.5, false);
    row("unit of 16 characters", "1.5[ABCDEFGHIJKLMNOP]", "FRAC", 1.5, false);
    row("unit of 17 characters", "1.5[ABCDEFGHIJKLMNOPQ]", "FRAC", 1.5, false);
    row("another dimension", "1.5[PSI]", "FRAC", 1.5, false);
    row("unknown target", "1.5[PCT]", "FURLONG", 1.5, false);
    row("text between", "1.5 or so [PCT]", "FRAC", 1.5, false);
    row("no number", "[PCT]", "FRAC", 0.0, false);
    row("empty", "", "FRAC", 0.0, false);
}

void UnitService::tokens()
{
    QFETCH(QByteArray, token);
    QFETCH(QByteArray, to);
    QFETCH(double, value);
    QFETCH(bool, good);
    double out = 77.0;
    const int32_t result = units_token_convert(token.constData(), to.constData(), &out);
    QCOMPARE(low16(result), good ? 0 : FAILURE);
    QVERIFY2(out == value, qPrintable(QString::number(out, 'g', 17)));
}

void UnitService::tokens_without_a_place_to_go()
{
    double out = 77.0;
    QCOMPARE(low16(units_token_convert(nullptr, "FRAC", &out)), FAILURE);
    QVERIFY(out == 77.0);
    QCOMPARE(low16(units_token_convert("1[PCT]", "FRAC", nullptr)), FAILURE);
    QCOMPARE(low16(units_token_convert("1[PCT]", nullptr, &out)), FAILURE);
    QVERIFY(out == 1.0);
}

void UnitService::codes()
{
    int32_t code = 0;
    QCOMPARE(units_keyword_to_code("psi", &code), 0);
    QVERIFY(code >= 100 && code <= 199);
    QCOMPARE(units_keyword_to_code("SEC", &code), 0);
    QVERIFY(code >= 700 && code <= 799);
    QCOMPARE(units_keyword_to_code("DEG_F", &code), 0);
    QVERIFY(code <= 99);
    QCOMPARE(units_keyword_to_code("LB-FT", &code), 0);
    QVERIFY(code >= 200 && (code < 700 || code > 799));
    for (const char *unknown : {"FURLONG", "", " "}) {
        code = 150;
        QCOMPARE(low16(units_keyword_to_code(unknown, &code)), FAILURE);
        QCOMPARE(code, -1); // no pressure
    }
    QCOMPARE(low16(units_keyword_to_code(nullptr, &code)), FAILURE);
    QCOMPARE(units_keyword_to_code("PSI", nullptr), 0);
}

void UnitService::variables_convert_from_their_native_unit()
{
    VARIABLE_RECORD record{};
    record.value = 100.0;
    strcpy(record.units, "DEG_C");
    double out = 0.0;
    QCOMPARE(units_get_real_keyword(&out, &record, "DEG_F"), 0);
    QVERIFY(out == 212.0);
    record.value = 3.386388640341;
    strcpy(record.units, "kPa");
    QCOMPARE(units_get_real_keyword(&out, &record, "IN_HG"), 0);
    QVERIFY(out == 1.0);
    strcpy(record.units, "PCT");
    QCOMPARE(units_get_real_keyword(&out, &record, "PCT"), 0);
    QVERIFY(out == record.value);
}

void UnitService::variables_with_unfit_units()
{
    VARIABLE_RECORD record{};
    record.value = 45.0;
    double out = 0.0;
    QCOMPARE(low16(units_get_real_keyword(&out, &record, "DEG_F")), FAILURE);
    QVERIFY(out == 45.0);
    memset(record.units, 'x', sizeof record.units); // without a terminator
    memset(record.reserved_176, 'x', sizeof record.reserved_176);
    record.value = 46.0;
    QCOMPARE(low16(units_get_real_keyword(&out, &record, "DEG_F")), FAILURE);
    QVERIFY(out == 46.0);
    QCOMPARE(low16(units_get_real_keyword(&out, nullptr, "DEG_F")), FAILURE);
    QVERIFY(out == 46.0);
    QCOMPARE(low16(units_get_real_keyword(nullptr, &record, "DEG_F")), FAILURE);
}

void UnitService::init_may_be_called_again()
{
    QCOMPARE(units_init_access(1), 0);
    QCOMPARE(units_init_access(1), 0);
    QVERIFY(converted("DEG_F", "DEG_C", 212.0) == 100.0);
    QVERIFY(log_lines().isEmpty());
}

// A process that never opened the service: this program, started anew.
void UnitService::without_the_database_nothing_converts()
{
    if (qEnvironmentVariableIsSet("UNITS_DATABASE_GONE")) {
        QCOMPARE(low16(units_init_access(1)), FAILURE);
        double out = 0.0;
        QCOMPARE(low16(units_dbl_keyword_convrt("PSI", &out, "kPa", 2.0)), FAILURE);
        QVERIFY(out == 2.0);
        QVERIFY(units_dimension_check_key("PSI", "PSI") != 0);
        int32_t code = 7;
        QCOMPARE(low16(units_keyword_to_code("PSI", &code)), FAILURE);
        qunsetenv("UDUNITS2_XML_PATH");
        QCOMPARE(units_init_access(1), 0);
        return;
    }
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("UNITS_DATABASE_GONE"), QStringLiteral("1"));
    environment.insert(QStringLiteral("UDUNITS2_XML_PATH"), QStringLiteral("/nowhere/units.xml"));
    process.setProcessEnvironment(environment);
    process.start(
        QStringLiteral("/proc/self/exe"),
        {QStringLiteral("units"), QStringLiteral("without_the_database_nothing_converts")});
    QVERIFY(process.waitForFinished());
    const QByteArray output = process.readAllStandardOutput();
    QVERIFY2(process.exitStatus() == QProcess::NormalExit && process.exitCode() == 0,
             output.constData());
    QVERIFY2(output.contains("3 passed"), output.constData());
    // The library's own messages are kept away, the log says it.
    QCOMPARE(process.readAllStandardError(), QByteArray());
    QCOMPARE(log_entries().value(0).code, static_cast<int>(hostsim::LogCode::UnitsDatabase));
}

void UnitService::unusable_entries_are_refused()
{
    QVERIFY(hostsim::publish_unit_catalogue("GOOD 1 length m\n"
                                            "NOTHING 2 length no_such_unit\n"
                                            "ODD 3 length s\n"
                                            "bad line\n"
                                            "KILO 4 length 1000 m\n"));
    QCOMPARE(units_init_access(1), 0);
    hostsim::withdraw_unit_catalogue();
    const QList<hostsim::LogEntry> entries = log_entries();
    QCOMPARE(entries.size(), 3);
    for (const hostsim::LogEntry &entry : entries)
        QCOMPARE(entry.code, static_cast<int>(hostsim::LogCode::UnitRefused));
    QVERIFY(entries[0].text.find("NOTHING") != std::string::npos);
    QVERIFY(entries[1].text.find("ODD") != std::string::npos);
    QVERIFY(entries[2].text.find("line 4") != std::string::npos);
    QVERIFY(converted("KILO", "GOOD", 2.0) == 2000.0);
    QVERIFY(units_dimension_check_key("ODD", "ODD") != 0);
    QCOMPARE(units_init_access(1), 0);
}

// The window's toolkit takes up the user's locale; numbers in the catalogue,
// in the database and in tokens have points all the same.
void UnitService::a_decimal_comma_changes_nothing()
{
    QTemporaryDir folder;
    QProcess::execute(QStringLiteral("localedef"),
                      {QStringLiteral("-i"), QStringLiteral("de_DE"), QStringLiteral("-f"),
                       QStringLiteral("UTF-8"), folder.filePath(QStringLiteral("de_DE.UTF-8"))});
    // In a process of its own, since the C library keeps what LOCPATH told it.
    const int status = in_child([&folder] {
        qputenv("LOCPATH", folder.path().toUtf8());
        const locale_t german = newlocale(LC_ALL_MASK, "de_DE.UTF-8", nullptr);
        return german != nullptr ? fault_with_locale(german) : -1;
    });
    if (status == 255)
        QSKIP("this machine cannot make a locale with a decimal comma");
    QCOMPARE(status, 0);
    hostsim::withdraw_unit_catalogue();
}

PLAIN_TEST(UnitService);
#include "test_units.moc"
