// SPDX-License-Identifier: GPL-3.0-or-later
//
// A table whose texts fill their fields without a terminator, as another writer
// may leave them: the read ends each within its field.
#include <cstring>
#include <memory>

#include <QTest>

#include "calibration/tablestore.h"
#include "host/operations.h"
#include "sensor/sensorrange.h"
#include "support/cellfiles.h"
#include "support/hostlog.h"
#include "support/testmain.h"

namespace
{

template <std::size_t Size> void fill(char (&field)[Size], char with)
{
    std::memset(field, with, Size);
}

} // namespace

// In place of the host's: a table of 0 to 100 without a terminator in any text.
extern "C" int32_t read_table(const char *, TABLE_RECORD *table)
{
    fill(table->description, 'd');
    fill(table->qie, 'q');
    fill(table->verified_by, 'v');
    fill(table->cal_comment, 'c');
    fill(table->sensor_model, 'm');
    fill(table->sensor_serial_no, 's');
    fill(table->sensor_units, 'u');
    fill(table->table_name, 't');
    fill(table->eng_units, 'e');
    fill(table->mua_instance_name, 'n');
    // Two bytes to a letter: half of one must not be left.
    for (std::size_t i = 0; i < sizeof table->sensor_model; i += 2)
        std::memcpy(table->sensor_model + i, "\xc3\xbc", 2);
    table->sensor_range_min = 0.0;
    table->sensor_range_max = 100.0;
    return 0;
}

class FullTexts : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { require_private_cell(); }
    void every_text_ends_within_its_field();
    void unit_of_16_characters_is_judged_as_one_of_15();
};

void FullTexts::every_text_ends_within_its_field()
{
    clear_cell();
    const auto table = std::make_unique<TABLE_RECORD>();
    const HostLog log;
    QCOMPARE(read_channel_table("/cell/tables/flow.tbl", table.get()), 0);
    QCOMPARE(QByteArray(table->description), QByteArray(31, 'd'));
    QCOMPARE(QByteArray(table->qie), QByteArray(31, 'q'));
    QCOMPARE(QByteArray(table->verified_by), QByteArray(31, 'v'));
    QCOMPARE(QByteArray(table->cal_comment), QByteArray(79, 'c'));
    QCOMPARE(QByteArray(table->sensor_model), QByteArray("\xc3\xbc").repeated(15));
    QCOMPARE(QByteArray(table->sensor_serial_no), QByteArray(31, 's'));
    QCOMPARE(QByteArray(table->sensor_units), QByteArray(15, 'u'));
    QCOMPARE(QByteArray(table->table_name), QByteArray(79, 't'));
    QCOMPARE(QByteArray(table->eng_units), QByteArray(15, 'e'));
    QCOMPARE(QByteArray(table->mua_instance_name), QByteArray(79, 'n'));
    QCOMPARE(log.count_containing("cut to <" + QString(15, 'u') + ">"), 1);
}

void FullTexts::unit_of_16_characters_is_judged_as_one_of_15()
{
    const auto table = std::make_unique<TABLE_RECORD>();
    QCOMPARE(read_channel_table("/cell/tables/flow.tbl", table.get()), 0);
    QCOMPARE(units_init_access(1) & 0xffff, 0);
    QCOMPARE(sensor_range_reason(*table), uint32_t(RANGE_UNITS_UNLIKE));
    const QString text = range_update_text(RANGE_UNITS_UNLIKE, *table);
    QVERIFY(text.contains('(' + QString(15, 'u') + ')'));
    QVERIFY(text.contains('(' + QString(15, 'e') + ')'));
}

LOOP_TEST(FullTexts);
#include "test_fulltexts.moc"
