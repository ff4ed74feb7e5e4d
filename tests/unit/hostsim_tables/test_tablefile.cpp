// SPDX-License-Identifier: GPL-3.0-or-later
//
// The text form of a record: what it looks like, that all of it reads back, and
// that no damage passes for a record.
#include <QtTest>

#include "support/testmain.h"
#include "tablefixture.h"

using namespace hostsim;
using namespace tablefixture;

class TestTableFile : public QObject
{
    Q_OBJECT
private slots:
    void form_of_a_block();
    void an_empty_record_is_short();
    void random_records_read_back_data();
    void random_records_read_back();
    void each_single_byte_reads_back();
    void the_largest_block_is_within_the_limit();
    void header_reads_back();
    void header_is_not_needed_to_read();
    void every_truncation_is_damage();
    void every_flipped_bit_is_damage();
    void random_bytes_are_damage();
    void wrong_lines_data();
    void wrong_lines();
    void damage_names_its_line();
    void stretches_data();
    void stretches();
    void limits_of_a_record_data();
    void limits_of_a_record();
    void mended_records_are_sound();
    void mended_texts_end_before_half_a_character();
    void a_sound_record_is_left_alone();
    void names_of_types_and_steps();
};

static bool read(const QByteArray &text, TABLE_RECORD *record, BlockFault *fault = nullptr)
{
    BlockFault ignored;
    BlockInfo info;
    const std::string_view view(text.constData(), static_cast<std::size_t>(text.size()));
    return parse_block(view, record, &info, fault != nullptr ? fault : &ignored);
}

void TestTableFile::form_of_a_block()
{
    TABLE_RECORD record = sound_record();
    record.reserved_9472[0] = 0x00;
    record.reserved_9472[1] = 0xff;
    record.description[31] = 'x';
    record.poly[7].x[1] = -0.0;
    const QByteArray above = R"(VORNAX-TABLE 1
who "J. Doe"
when 2026-03-01T09:30:00Z
program "1.0.0"
save_type 7 (Table Updated by adjustment)
table_name "torque_1"
description "Torque \"A\""
table_type 0 (INTERP)
poly_range_index 0
eng_units "LB-FT"
last_cal_time 1772357400 (2026-03-01T09:30:00Z)
last_save_type 7 (Table Updated by adjustment)
worst_status 0
y_min 0
y_max 100.1
verified_by "J. Müller"
qie ""
cal_comment ""
sensor_model ""
sensor_serial_no ""
sensor_range_min 0
sensor_range_max 0
sensor_units ""
mua_instance_name ""
ooa_bias 0
ooa_tol 0
oot_bias 0
oot_tol 0
soot_bias 0
soot_tol 0
poly 0 num_coeffs 2
poly 0 coeffs 0 4.8829268292682
poly 0 num_points 3
poly 0 point 0 0 0
poly 0 point 1 10.25 50
poly 0 point 2 20.5 100.1
poly 7 num_coeffs 0
poly 7 num_points 0
poly 7 point 0 0 0
poly 7 point 1 -0 0
point_state 2 0 1
bytes 9473 ff
bytes 20319 78
)";
    const QByteArray text = block_of(record, SAVE_ADJUSTED);
    QCOMPARE(text.left(above.size()), above);
    const QByteArray closing = text.mid(above.size());
    QVERIFY2(QRegularExpression("^END crc32 [0-9a-f]{8}\n$").match(closing).hasMatch(),
             closing.constData());
}

void TestTableFile::an_empty_record_is_short()
{
    const TABLE_RECORD record = {};
    const QByteArray text = block_of(record);
    QVERIFY(!text.contains("poly 0"));
    QVERIFY(!text.contains("point_state"));
    QVERIFY(!text.contains("bytes"));
    QVERIFY(!text.contains("\nsave_type"));
    TABLE_RECORD back = sound_record();
    QVERIFY(read(text, &back));
    QVERIFY(is_zero(back));
}

void TestTableFile::random_records_read_back_data()
{
    QTest::addColumn<bool>("sparse");
    QTest::newRow("every byte at random") << false;
    QTest::newRow("mostly zero") << true;
}

void TestTableFile::random_records_read_back()
{
    QFETCH(bool, sparse);
    std::mt19937_64 random(20260303);
    for (int i = 0; i < 200; ++i) {
        const TABLE_RECORD record = sparse ? sparse_record(random) : random_record(random);
        TABLE_RECORD back = {};
        BlockFault fault;
        QVERIFY2(read(block_of(record, i % 10), &back, &fault), fault.what.c_str());
        QVERIFY(same(back, record));
    }
}

void TestTableFile::each_single_byte_reads_back()
{
    std::mt19937_64 random(20260304);
    for (std::size_t at = 0; at < sizeof(TABLE_RECORD); ++at) {
        TABLE_RECORD record = {};
        reinterpret_cast<unsigned char *>(&record)[at] =
            static_cast<unsigned char>(1 + random() % 255);
        TABLE_RECORD back = {};
        if (!read(block_of(record), &back) || !same(back, record))
            QFAIL(qPrintable(QString("the byte at %1 is lost").arg(at)));
    }
}

void TestTableFile::the_largest_block_is_within_the_limit()
{
    TABLE_RECORD record;
    std::memset(&record, 0x81, sizeof record);
    for (POLY_RANGE_RECORD &range : record.poly) {
        std::fill(std::begin(range.x), std::end(range.x), -2.2250738585072014e-308);
        std::fill(std::begin(range.y), std::end(range.y), -2.2250738585072014e-308);
    }
    const QByteArray text = block_of(record, SAVE_ADJUSTED);
    QVERIFY2(text.size() < static_cast<int>(MAX_BLOCK) * 3 / 4,
             qPrintable(QString::number(text.size())));
    TABLE_RECORD back = {};
    QVERIFY(read(text, &back));
    QVERIFY(same(back, record));
}

void TestTableFile::header_reads_back()
{
    BlockInfo info;
    info.who = "A \"quoted\"\nname";
    info.when = time_text(1772357400);
    info.program = "1.0";
    info.save_type = SAVE_VERIFICATION;
    const std::string text = write_block(sound_record(), info);
    TABLE_RECORD record;
    BlockInfo back;
    BlockFault fault;
    QVERIFY(parse_block(text, &record, &back, &fault));
    QCOMPARE(back.who, info.who);
    QCOMPARE(back.when, info.when);
    QCOMPARE(back.program, info.program);
    QCOMPARE(back.save_type, info.save_type);
    QCOMPARE(header_save_type(text), int(SAVE_VERIFICATION));
    info.save_type = NO_SAVE_TYPE;
    QCOMPARE(header_save_type(write_block(sound_record(), info)), NO_SAVE_TYPE);
}

void TestTableFile::header_is_not_needed_to_read()
{
    const QByteArray text = altered(block_of(sound_record()), "program \"1.0.0\"\n", "");
    TABLE_RECORD record;
    QVERIFY(read(text, &record));
    QVERIFY(same(record, sound_record()));
}

void TestTableFile::every_truncation_is_damage()
{
    const QByteArray text = block_of(sound_record(), SAVE_ADJUSTED);
    for (int size = 0; size < text.size() - 1; ++size) {
        TABLE_RECORD record = sound_record();
        BlockFault fault;
        if (read(text.left(size), &record, &fault) || !is_zero(record) || fault.what.empty())
            QFAIL(qPrintable(QString("%1 bytes pass for a record").arg(size)));
    }
    TABLE_RECORD record;
    QVERIFY2(read(text.left(text.size() - 1), &record), "the last line feed carries nothing");
    QVERIFY(same(record, sound_record()));
}

void TestTableFile::every_flipped_bit_is_damage()
{
    const QByteArray text = block_of(sound_record(), SAVE_ADJUSTED);
    for (int bit = 0; bit < 8 * (text.size() - 1); ++bit) {
        QByteArray damaged = text;
        damaged[bit / 8] = static_cast<char>(damaged.at(bit / 8) ^ (1 << (bit % 8)));
        TABLE_RECORD record = sound_record();
        if (read(damaged, &record) || !is_zero(record))
            QFAIL(qPrintable(QString("bit %1 makes no difference").arg(bit)));
    }
}

void TestTableFile::random_bytes_are_damage()
{
    std::mt19937_64 random(20260305);
    for (int i = 0; i < 5000; ++i) {
        QByteArray text = i % 2 == 0 ? QByteArray() : QByteArray("VORNAX-TABLE 1\n");
        for (std::size_t size = random() % 400; size > 0; --size)
            text += static_cast<char>(random());
        TABLE_RECORD record = sound_record();
        QVERIFY(!read(text, &record));
        QVERIFY(is_zero(record));
    }
}

void TestTableFile::wrong_lines_data()
{
    const auto row = test_columns<QByteArray, QByteArray, QString>("from", "to", "what");
    row("another form", "TABLE 1\n", "TABLE 2\n", "form \"2\" is not known");
    row("unknown field", "qie \"\"", "qia \"\"", "no field \"qia\" is known");
    row("a field twice", "qie \"\"\n", "qie \"\"\nqie \"\"\n", "qie stands twice");
    row("a field missing", "qie \"\"\n", "", "qie is missing");
    row("text too long", "qie \"\"", "qie \"123456789012345678901234567890123\"",
        "qie cannot be read");
    row("text without quotes", "qie \"\"", "qie x", "qie cannot be read");
    row("who without quotes", "who \"J. Doe\"", "who J", "who cannot be read");
    row("number with rubbish", "y_max 100.1", "y_max 100.1x", "y_max cannot be read");
    row("type beyond 16 bits", "table_type 0", "table_type 65536", "table_type cannot be read");
    row("type below 0", "table_type 0", "table_type -1", "table_type cannot be read");
    row("open parenthesis", "(INTERP)", "(INTERP", "table_type cannot be read");
    row("range 8", "poly 0 point 1", "poly 8 point 1", "poly cannot be read");
    row("range -1", "poly 0 point 1", "poly -1 point 1", "poly cannot be read");
    row("point 64", "poly 0 point 1", "poly 0 point 64", "poly cannot be read");
    row("point without y", "poly 0 point 1 10.25 50", "poly 0 point 1 10.25",
        "poly cannot be read");
    row("nineteen coefficients", "coeffs 0", "coeffs 1 2 3 4 5 6 7 8 9 10 11 12 13 14 15 16 17 18",
        "poly cannot be read");
    row("count beyond 16 bits", "num_points 3", "num_points 32768", "poly cannot be read");
    row("unknown part of a range", "num_points 3", "num_pints 3", "poly cannot be read");
    row("65 states", "point_state 2 0 1",
        "point_state 1 2 3 4 5 6 7 8 9 10 11 12 13 14 15 16 17 18 19 20 21 22 23 24 25 26 27 28 "
        "29 30 31 32 33 34 35 36 37 38 39 40 41 42 43 44 45 46 47 48 49 50 51 52 53 54 55 56 57 "
        "58 59 60 61 62 63 64 65",
        "point_state cannot be read");
    row("state beyond 32 bits", "point_state 2", "point_state 2147483648",
        "point_state cannot be read");
    row("bytes behind the record", "point_state", "bytes 21991 0000\npoint_state",
        "bytes cannot be read");
    row("bytes far away", "point_state", "bytes 99999999999999999999 00\npoint_state",
        "bytes cannot be read");
    row("half a byte", "point_state", "bytes 9472 0\npoint_state", "bytes cannot be read");
}

void TestTableFile::wrong_lines()
{
    QFETCH(QByteArray, from);
    QFETCH(QByteArray, to);
    const QByteArray text = block_of(sound_record());
    QVERIFY(text.contains(from));
    TABLE_RECORD record = sound_record();
    BlockFault fault;
    QVERIFY(!read(altered(text, from, to), &record, &fault));
    QTEST(QString::fromStdString(fault.what), "what");
    QVERIFY(is_zero(record));
}

void TestTableFile::damage_names_its_line()
{
    const QByteArray text = block_of(sound_record());
    BlockFault fault;
    TABLE_RECORD record;
    QByteArray garbled = text;
    garbled.replace("table_type 0", "table_tipe 0");
    QVERIFY(!read(garbled, &record, &fault));
    QCOMPARE(fault.line, std::size_t(7));
    QCOMPARE(fault.what, std::string("no field \"table_tipe\" is known"));

    QByteArray changed = text;
    changed.replace("10.25", "10.26");
    QVERIFY(!read(changed, &record, &fault));
    QCOMPARE(fault.line, std::size_t(text.count('\n')));
    QCOMPARE(fault.what, std::string("the check sum does not agree"));

    QVERIFY(!read(text.left(100), &record, &fault));
    QCOMPARE(fault.what, std::string("the block is cut short"));
    QVERIFY(!read("whatever\n", &record, &fault));
    QCOMPARE(fault.line, std::size_t(1));
    QCOMPARE(fault.what, std::string("not a table file"));
    QVERIFY(!read("VORNAX-TABLE 1\n" + QByteArray(int(MAX_BLOCK), 'x') + text, &record, &fault));
    QCOMPARE(fault.what, std::string("the block is too long"));
}

void TestTableFile::stretches_data()
{
    const auto row = test_columns<QByteArray, QString>("data", "kinds");
    const QByteArray block = block_of(sound_record());
    const QByteArray torn = block.left(200);
    row("a block", block, "B");
    row("blocks one behind the other", block + block + block, "BBB");
    row("blank lines between", "\n" + block + "\n \r\n" + block, "-B-B");
    row("a torn block alone", torn, "D");
    row("a torn block, a line break, a whole one", torn + "\n" + block, "DB");
    row("a whole block joined to a torn one", torn + block, "DB");
    row("a block without its last line feed, and another", block.chopped(1) + block, "BB");
    row("rubbish before and behind", "abc\n" + block + "def", "DBD");
    row("zeros behind", block + QByteArray(5000, '\0'), "BD");
    row("half an opening line", block + "VORNAX-TAB", "BD");
    row("an opening line without a number", QByteArray("VORNAX-TABLE x\n"), "D");
    row("the opening words within a text", altered(block, "qie \"\"", "qie \"VORNAX-TABLE 1\""),
        "B");
}

void TestTableFile::stretches()
{
    QFETCH(QByteArray, data);
    QString found;
    std::string_view rest(data.constData(), static_cast<std::size_t>(data.size()));
    while (!rest.empty()) {
        std::size_t size = 0;
        const Stretch kind = first_stretch(rest, &size);
        QVERIFY(size > 0 && size <= rest.size());
        found += kind == Stretch::Block ? "B" : kind == Stretch::Blank ? "-" : "D";
        rest.remove_prefix(size);
    }
    QTEST(found, "kinds");
}

void TestTableFile::limits_of_a_record_data()
{
    test_columns<int, int, bool, QString>("field", "value", "archived", "what");
    const auto row = [](const char *name, int field, int value, const char *what,
                        bool archived = false) {
        QTest::newRow(name) << field << value << archived << QString(what);
    };
    row("no points", 0, 0, "");
    row("64 points", 0, 64, "");
    row("65 points", 0, 65, "poly 2 num_points is 65, outside 0 to 64");
    row("-1 points", 0, -1, "poly 2 num_points is -1, outside 0 to 64");
    row("18 coefficients", 1, 18, "");
    row("19 coefficients", 1, 19, "poly 2 num_coeffs is 19, outside 0 to 18");
    row("-1 coefficients", 1, -1, "poly 2 num_coeffs is -1, outside 0 to 18");
    row("a point table's 64 points as its coefficients", 4, 64, "");
    row("65 of them", 4, 65, "poly 0 num_coeffs is 65, outside 0 to 64");
    row("range 7", 2, 7, "");
    row("range 8", 2, 8, "poly_range_index is 8, outside 0 to 7");
    row("range -1", 2, -1, "poly_range_index is -1, outside 0 to 7");
    row("INTERP", 3, 0, "");
    row("POLY", 3, 1, "");
    row("SCALED", 3, 2, "");
    row("POLY_RANGE", 3, 7, "");
    row("type 3", 3, 3, "table_type is 3, which is not known");
    row("type 65535 in a table", 3, 65535, "table_type is 65535, which is not known");
    row("type 65535 in an archive", 3, 65535, "", true);
    row("type 8 in an archive", 3, 8, "table_type is 8, which is not known", true);
}

static void set_field(TABLE_RECORD *record, int field, int value)
{
    const auto number = static_cast<std::int16_t>(value);
    if (field == 0)
        record->poly[2].num_points = number;
    else if (field == 1)
        record->poly[2].num_coeffs = number;
    else if (field == 2)
        record->poly_range_index = number;
    else if (field == 4)
        record->poly[0].num_coeffs = number;
    else
        record->table_type = static_cast<std::uint16_t>(value);
}

void TestTableFile::limits_of_a_record()
{
    QFETCH(int, field);
    QFETCH(int, value);
    QFETCH(bool, archived);
    TABLE_RECORD record = sound_record();
    set_field(&record, field, value);
    QTEST(QString::fromStdString(record_fault(record, archived).what), "what");
}

void TestTableFile::mended_records_are_sound()
{
    std::mt19937_64 random(20260306);
    for (int i = 0; i < 500; ++i) {
        TABLE_RECORD record = random_record(random);
        record.table_type = TABLE_POLY;
        const std::string changes = mend_record(&record);
        QCOMPARE(record_fault(record, false).what, std::string());
        QVERIFY(!changes.empty());
    }
    for (const Field &field : TABLE_FIELDS) {
        if (field.kind != FieldKind::Text)
            continue;
        TABLE_RECORD record = sound_record();
        std::memset(reinterpret_cast<char *>(&record) + field.offset, 'x', field.size);
        const std::string what = std::string(field.name) + " is not terminated";
        QCOMPARE(record_fault(record, true).what, what);
        QCOMPARE(mend_record(&record), what);
        QCOMPARE(strlen(reinterpret_cast<char *>(&record) + field.offset), field.size - 1);
    }
}

void TestTableFile::mended_texts_end_before_half_a_character()
{
    TABLE_RECORD record = sound_record();
    std::memcpy(record.description, "123456789012345678901234567890\xc3\xa4", 32);
    mend_record(&record);
    QCOMPARE(QByteArray(record.description), QByteArray("123456789012345678901234567890"));
    QCOMPARE(record.description[31], '\0');
}

void TestTableFile::a_sound_record_is_left_alone()
{
    TABLE_RECORD record = sound_record();
    std::memset(record.reserved_9472, 0xaa, sizeof record.reserved_9472);
    record.description[31] = 0;
    record.description[20] = 'x';
    const TABLE_RECORD before = record;
    QCOMPARE(mend_record(&record), std::string());
    QVERIFY(same(record, before));
}

void TestTableFile::names_of_types_and_steps()
{
    QCOMPARE(QString(save_type_name(3)), QString("As-Found"));
    QCOMPARE(QString(save_type_name(5)), QString("After-Service"));
    QCOMPARE(QString(save_type_name(6)), QString("Verification"));
    QCOMPARE(QString(save_type_name(7)), QString("Table Updated by adjustment"));
    QCOMPARE(QString(save_type_name(8)), QString("Table Updated by re-use"));
    QCOMPARE(QString(save_type_name(9)), QString("New Correlation"));
    QCOMPARE(QString(save_type_name(4)), QString("unknown"));
    QCOMPARE(QString(table_type_name(0)), QString("INTERP"));
    QCOMPARE(QString(table_type_name(1)), QString("POLY"));
    QCOMPARE(QString(table_type_name(2)), QString("SCALED"));
    QCOMPARE(QString(table_type_name(7)), QString("POLY_RANGE"));
    QCOMPARE(QString(table_type_name(65535)), QString("unknown"));
}

PLAIN_TEST(TestTableFile);
#include "test_tablefile.moc"
