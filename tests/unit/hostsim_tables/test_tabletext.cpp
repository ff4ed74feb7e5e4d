// SPDX-License-Identifier: GPL-3.0-or-later
//
// Values of the table files as text and back.
#include <clocale>
#include <cmath>
#include <cstring>
#include <random>

#include <QtTest>

#include "hostsim/runtime/tabletext.h"
#include "support/testmain.h"

using namespace hostsim;

class TestTableText : public QObject
{
    Q_OBJECT
private slots:
    void doubles_read_back_bit_for_bit_data();
    void doubles_read_back_bit_for_bit();
    void random_bits_read_back();
    void no_locale_changes_a_number();
    void not_a_number_of_the_form_data();
    void not_a_number_of_the_form();
    void texts_stand_readable_data();
    void texts_stand_readable();
    void every_byte_reads_back();
    void random_texts_read_back_on_one_line();
    void no_quoted_text_data();
    void no_quoted_text();
    void hex_reads_back();
    void no_hex_data();
    void no_hex();
    void times_data();
    void times();
};

static std::uint64_t bits_of(double value)
{
    std::uint64_t bits = 0;
    std::memcpy(&bits, &value, sizeof bits);
    return bits;
}

static double from_bits(quint64 bits)
{
    double value = 0;
    std::memcpy(&value, &bits, sizeof value);
    return value;
}

void TestTableText::doubles_read_back_bit_for_bit_data()
{
    const auto row = test_columns<quint64, QString>("bits", "text");
    row("zero", quint64(bits_of(0.0)), "0");
    row("minus zero", quint64(bits_of(-0.0)), "-0");
    row("a tenth is short", quint64(bits_of(0.1)), "0.1");
    row("next above a tenth", quint64(bits_of(std::nextafter(0.1, 1))), "0.10000000000000002");
    row("smallest denormal", quint64(1), "5e-324");
    row("largest denormal", quint64(0x000fffffffffffff), "2.225073858507201e-308");
    row("smallest normal", quint64(0x0010000000000000), "2.2250738585072014e-308");
    row("largest", quint64(0x7fefffffffffffff), "1.7976931348623157e+308");
    row("infinity", quint64(0x7ff0000000000000), "inf");
    row("minus infinity", quint64(0xfff0000000000000), "-inf");
    row("quiet NaN", quint64(0x7ff8000000000000), "nan:7ff8000000000000");
    row("signalling NaN with payload", quint64(0x7ff00000deadbeef), "nan:7ff00000deadbeef");
    row("negative NaN", quint64(0xffffffffffffffff), "nan:ffffffffffffffff");
}

void TestTableText::doubles_read_back_bit_for_bit()
{
    QFETCH(quint64, bits);
    QFETCH(QString, text);
    QCOMPARE(QString::fromStdString(double_text(from_bits(bits))), text);
    double read = 1;
    QVERIFY(parse_double(text.toStdString(), &read));
    QCOMPARE(quint64(bits_of(read)), bits);
}

void TestTableText::random_bits_read_back()
{
    std::mt19937_64 random(20260301);
    for (int i = 0; i < 100000; ++i) {
        const std::uint64_t bits = random();
        double read = 0;
        QVERIFY(parse_double(double_text(from_bits(bits)), &read));
        QCOMPARE(bits_of(read), bits);
    }
}

void TestTableText::no_locale_changes_a_number()
{
    const QByteArray former = std::setlocale(LC_ALL, nullptr);
    std::setlocale(LC_ALL, "");
    for (const char *locale : {"de_DE.UTF-8", "fr_FR.UTF-8", "C.UTF-8"}) {
        std::setlocale(LC_ALL, locale);
        QCOMPARE(double_text(1234.5), std::string("1234.5"));
        double read = 0;
        QVERIFY(parse_double("1234.5", &read));
        QCOMPARE(read, 1234.5);
    }
    std::setlocale(LC_ALL, former.constData());
}

void TestTableText::not_a_number_of_the_form_data()
{
    QTest::addColumn<QByteArray>("text");
    for (const char *text : {"",
                             " ",
                             "-",
                             "1.5x",
                             " 1",
                             "1 ",
                             "+1",
                             "0x1p3",
                             "1,5",
                             "nan",
                             "-nan",
                             "infinity",
                             "INF",
                             "1e999",
                             "nan:",
                             "nan:7ff8",
                             "nan:0000000000000001",
                             "nan:7ff0000000000000",
                             "nan:7FF8000000000000",
                             "nan:7ff80000000000000",
                             "nan:7ff800000000000g"})
        QTest::newRow(qPrintable(QString("\"%1\"").arg(text))) << QByteArray(text);
}

void TestTableText::not_a_number_of_the_form()
{
    QFETCH(QByteArray, text);
    double read = 0;
    QVERIFY(!parse_double(text.toStdString(), &read));
}

void TestTableText::texts_stand_readable_data()
{
    const auto row = test_columns<QByteArray, QByteArray>("text", "expected");
    row("empty", QByteArray(""), QByteArray("\"\""));
    row("plain", QByteArray("Torque 1"), QByteArray("\"Torque 1\""));
    row("letters of any script", QByteArray("Müller 温度 🌡"),
        QByteArray("\"Müller 温度 🌡\""));
    row("quote and backslash", QByteArray("a\"b\\c"), QByteArray("\"a\\\"b\\\\c\""));
    row("line feed, tab, return", QByteArray("a\nb\tc\rd"), QByteArray("\"a\\nb\\tc\\rd\""));
    row("control and delete", QByteArray("\x01\x1b\x7f"), QByteArray("\"\\x01\\x1b\\x7f\""));
    row("a byte that is no UTF-8",
        QByteArray("a\xff"
                   "b"),
        QByteArray("\"a\\xffb\""));
    row("half a character", QByteArray("a\xc3"), QByteArray("\"a\\xc3\""));
    row("overlong", QByteArray("\xc0\xaf"), QByteArray("\"\\xc0\\xaf\""));
    row("surrogate", QByteArray("\xed\xa0\x80"), QByteArray("\"\\xed\\xa0\\x80\""));
    row("line separator", QByteArray("\xe2\x80\xa8"), QByteArray("\"\\xe2\\x80\\xa8\""));
    row("right to left override", QByteArray("\xe2\x80\xae"), QByteArray("\"\\xe2\\x80\\xae\""));
    row("control above 127", QByteArray("\xc2\x85"), QByteArray("\"\\xc2\\x85\""));
    row("beyond the last character", QByteArray("\xf4\x90\x80\x80"),
        QByteArray("\"\\xf4\\x90\\x80\\x80\""));
}

void TestTableText::texts_stand_readable()
{
    QFETCH(QByteArray, text);
    QFETCH(QByteArray, expected);
    QCOMPARE(QByteArray::fromStdString(quoted(text.toStdString())), expected);
    std::string read;
    QVERIFY(unquote(expected.toStdString(), &read));
    QCOMPARE(QByteArray::fromStdString(read), text);
}

void TestTableText::every_byte_reads_back()
{
    std::string text;
    for (int byte = 0; byte < 256; ++byte)
        text += static_cast<char>(byte);
    std::string read;
    QVERIFY(unquote(quoted(text), &read));
    QCOMPARE(read, text);
}

void TestTableText::random_texts_read_back_on_one_line()
{
    std::mt19937_64 random(20260302);
    for (int i = 0; i < 20000; ++i) {
        std::string text;
        for (std::size_t size = random() % 80; text.size() < size;)
            text += static_cast<char>(random());
        const std::string written = quoted(text);
        QVERIFY(QByteArray::fromStdString(written).indexOf('\n') < 0);
        std::string read;
        QVERIFY(unquote(written, &read));
        QCOMPARE(read, text);
    }
}

void TestTableText::no_quoted_text_data()
{
    QTest::addColumn<QByteArray>("text");
    for (const char *text : {"", "\"", "a", "\"a", "a\"", "\"a\"b\"", "\"\\\"", "\"\\q\"",
                             "\"\\x\"", "\"\\x4\"", "\"\\xg0\"", "\"\\xFF\"", "\"a\" "})
        QTest::newRow(text[0] == 0 ? "empty" : text) << QByteArray(text);
}

void TestTableText::no_quoted_text()
{
    QFETCH(QByteArray, text);
    std::string read;
    QVERIFY(!unquote(text.toStdString(), &read));
}

void TestTableText::hex_reads_back()
{
    std::string bytes;
    for (int byte = 0; byte < 256; ++byte)
        bytes += static_cast<char>(byte);
    const std::string text =
        hex_text(reinterpret_cast<const unsigned char *>(bytes.data()), bytes.size());
    QCOMPARE(text.substr(0, 8), std::string("00010203"));
    std::string read;
    QVERIFY(parse_hex(text, &read));
    QCOMPARE(read, bytes);
}

void TestTableText::no_hex_data()
{
    QTest::addColumn<QByteArray>("text");
    for (const char *text : {"", "0", "012", "0g", "g0", "AB", "00 00", "0x"})
        QTest::newRow(text[0] == 0 ? "empty" : text) << QByteArray(text);
}

void TestTableText::no_hex()
{
    QFETCH(QByteArray, text);
    std::string read;
    QVERIFY(!parse_hex(text.toStdString(), &read));
}

void TestTableText::times_data()
{
    const auto row = test_columns<qint64, QString>("seconds", "text");
    row("the epoch", qint64(0), "1970-01-01T00:00:00Z");
    row("a day of March", qint64(1772357400), "2026-03-01T09:30:00Z");
    row("last second with four digits of year", qint64(253402300799), "9999-12-31T23:59:59Z");
    row("beyond it", qint64(253402300800), "");
    row("before the epoch", qint64(-1), "");
    row("the largest number", std::numeric_limits<qint64>::max(), "");
}

void TestTableText::times()
{
    QFETCH(qint64, seconds);
    QTEST(QString::fromStdString(time_text(seconds)), "text");
}

PLAIN_TEST(TestTableText);
#include "test_tabletext.moc"
