// SPDX-License-Identifier: GPL-3.0-or-later
//
// The session record: its birth, its pointers, its layout towards the host.
#include <algorithm>
#include <cstring>
#include <memory>
#include <type_traits>

#include <QtTest>

#include "frame/zerl_cfg.h"
#include "support/testmain.h"

static_assert(std::is_trivially_copyable<ZERL_CFG>::value,
              "the record is published by one block copy");

namespace
{

template <typename Block> bool all_zero(const Block &block)
{
    const auto *bytes = reinterpret_cast<const unsigned char *>(&block);
    return std::all_of(bytes, bytes + sizeof block, [](unsigned char byte) { return byte == 0; });
}

// A table record of bytes as the host lays them out.
class HostBytes
{
public:
    template <typename Value> void put(std::size_t offset, Value value)
    {
        std::memcpy(m_bytes + offset, &value, sizeof value);
    }
    void put_text(std::size_t offset, const char *text)
    {
        std::memcpy(m_bytes + offset, text, std::strlen(text) + 1);
    }
    template <typename Record> std::unique_ptr<Record> as() const
    {
        static_assert(sizeof(Record) <= sizeof m_bytes, "the record must fit");
        auto record = std::make_unique<Record>();
        std::memcpy(record.get(), m_bytes, sizeof(Record));
        return record;
    }

private:
    unsigned char m_bytes[21992] = {};
};

} // namespace

class SessionRecord : public QObject
{
    Q_OBJECT

private slots:
    void record_pointer_is_null_before_initialisation();
    void blocks_are_born_zero();
    void nothing_is_bound_at_birth();
    void process_wide_values_start_at_zero();
    void second_pointer_is_what_was_set();
    void dirty_table_is_noticed_data();
    void dirty_table_is_noticed();
    void record_type_is_known_by_name();
    void table_record_as_the_host_lays_it_out();
    void texts_of_the_table_record_data();
    void texts_of_the_table_record();
    void poly_range_as_the_host_lays_it_out();
    void long_table_as_the_host_lays_it_out();
    void range_in_work_follows_the_type_data();
    void range_in_work_follows_the_type();
    void range_index_stays_within_the_ranges_data();
    void range_index_stays_within_the_ranges();
    void start_values_of_points_0_and_1();
    void statistics_of_points_2_to_63_survive();
};

void SessionRecord::record_pointer_is_null_before_initialisation()
{
    QVERIFY(get_cfg_pointer() == nullptr);
    QVERIFY(g_cfg == nullptr);
    QVERIFY(g_main_window == nullptr);
    QVERIFY(g_input_device == nullptr);
}

void SessionRecord::blocks_are_born_zero()
{
    allocate_session();
    QVERIFY(g_cfg != nullptr && all_zero(*g_cfg));
    QVERIFY(g_ws_block != nullptr && all_zero(*g_ws_block));
    QVERIFY(g_specs != nullptr && all_zero(*g_specs));
    QVERIFY(g_env != nullptr && all_zero(*g_env));
}

void SessionRecord::nothing_is_bound_at_birth()
{
    QCOMPARE(g_cfg->channel, int16_t{0});
    QCOMPARE(g_cfg->long_current.num_points, int16_t{0});
    QCOMPARE(g_cfg->long_previous.num_points, int16_t{0});
    QCOMPARE(g_cfg->table.poly[0].num_points, int16_t{0});
    QCOMPARE(g_cfg->plot_current.count, uint16_t{0});
    QCOMPARE(g_cfg->unit_counts[0], int16_t{0});
    QCOMPARE(g_cfg->monitor_pass_done, uint16_t{0});
}

void SessionRecord::process_wide_values_start_at_zero()
{
    QCOMPARE(g_num_points, int16_t{0});
    QCOMPARE(g_captured_points, 0);
    QCOMPARE(g_monitor_run, uint16_t{0});
    QCOMPARE(g_monitor_enabled, uint8_t{0});
    QCOMPARE(g_cal_type_changed, int16_t{0});
    QVERIFY(!g_touch_input);
    QVERIFY(g_poly_order_text.isEmpty());
    QVERIFY(all_zero(g_sample));
}

void SessionRecord::second_pointer_is_what_was_set()
{
    set_cfg_pointer(g_cfg);
    QCOMPARE(get_cfg_pointer(), g_cfg);
    set_cfg_pointer(nullptr);
    QVERIFY(get_cfg_pointer() == nullptr);
    QVERIFY2(g_cfg != nullptr, "the two pointers are apart");
}

void SessionRecord::dirty_table_is_noticed_data()
{
    const auto row = test_columns<int, int, int>("dirty", "unsaved_before", "unsaved_after");
    row("a clean table raises nothing", 0, 0, 0);
    row("a clean table lowers nothing either", 0, 1, 1);
    row("a dirty table raises the flag", 1, 0, 1);
    row("any value but zero is dirty, and returned as it is", 0x8000, 0, 1);
}

void SessionRecord::dirty_table_is_noticed()
{
    QFETCH(int, dirty);
    QFETCH(int, unsaved_before);
    auto cfg = std::make_unique<ZERL_CFG>();
    cfg->table_dirty = static_cast<uint16_t>(dirty);
    cfg->unsaved_flag = static_cast<uint16_t>(unsaved_before);
    QCOMPARE(int{table_dirty_noticed(cfg.get())}, dirty);
    QTEST(int{cfg->unsaved_flag}, "unsaved_after");
    QCOMPARE(int{cfg->table_dirty}, dirty);
}

void SessionRecord::record_type_is_known_by_name()
{
    const int type = qMetaTypeId<ZERL_CFG *>();
    QCOMPARE(QByteArray(QMetaType::typeName(type)), QByteArray("ZERL_CFG*"));
    QCOMPARE(QMetaType::type("ZERL_CFG*"), type);
}

void SessionRecord::table_record_as_the_host_lays_it_out()
{
    HostBytes bytes;
    const std::size_t numbers[] = {20224, 20232, 20528, 20536, 20832,
                                   20840, 20960, 20968, 21088, 21096};
    for (std::size_t i = 0; i < std::size(numbers); ++i)
        bytes.put(numbers[i], 1.5 + static_cast<double>(i));
    bytes.put(20264, int64_t{1700000000});
    bytes.put(20280, int16_t{5});
    bytes.put(20282, uint16_t{65535});
    bytes.put(21728, uint16_t{9});
    bytes.put(21730, uint16_t{3});
    bytes.put(21736, int32_t{1});
    bytes.put(21736 + 63 * 4, int32_t{2});
    const auto table = bytes.as<TABLE_RECORD>();
    const double fields[] = {
        table->y_min,     table->y_max,   table->sensor_range_min, table->sensor_range_max,
        table->ooa_bias,  table->ooa_tol, table->oot_bias,         table->oot_tol,
        table->soot_bias, table->soot_tol};
    for (std::size_t i = 0; i < std::size(numbers); ++i)
        QCOMPARE(fields[i], 1.5 + static_cast<double>(i));
    QCOMPARE(table->last_cal_time, int64_t{1700000000});
    QCOMPARE(table->poly_range_index, int16_t{5});
    QCOMPARE(table->table_type, uint16_t{65535});
    QCOMPARE(table->last_save_type, uint16_t{9});
    QCOMPARE(table->worst_status, uint16_t{3});
    QCOMPARE(table->point_state[0], 1);
    QCOMPARE(table->point_state[63], 2);
    QCOMPARE(sizeof(TABLE_RECORD), std::size_t{21992});
}

void SessionRecord::texts_of_the_table_record_data()
{
    const auto row =
        test_columns<int, int, int, int>("offset", "size", "field_offset", "field_size");
#define TEXT_ROW(field, offset, size)                                                              \
    row(#field, offset, size, static_cast<int>(offsetof(TABLE_RECORD, field)),                     \
        static_cast<int>(sizeof(TABLE_RECORD::field)))
    TEXT_ROW(description, 20288, 32);
    TEXT_ROW(qie, 20320, 32);
    TEXT_ROW(verified_by, 20352, 32);
    TEXT_ROW(cal_comment, 20384, 80);
    TEXT_ROW(sensor_model, 20464, 32);
    TEXT_ROW(sensor_serial_no, 20496, 32);
    TEXT_ROW(sensor_units, 20544, 16);
    TEXT_ROW(table_name, 20560, 80);
    TEXT_ROW(eng_units, 20640, 16);
    TEXT_ROW(mua_instance_name, 20752, 80);
#undef TEXT_ROW
}

void SessionRecord::texts_of_the_table_record()
{
    QFETCH(int, offset);
    QFETCH(int, field_offset);
    QFETCH(int, field_size);
    QTEST(field_size, "size");
    HostBytes bytes;
    bytes.put_text(static_cast<std::size_t>(offset), "a text");
    const auto table = bytes.as<TABLE_RECORD>();
    QCOMPARE(QByteArray(reinterpret_cast<const char *>(table.get()) + field_offset),
             QByteArray("a text"));
}

void SessionRecord::poly_range_as_the_host_lays_it_out()
{
    HostBytes bytes;
    const std::size_t range = 7 * 1184; // the last of the eight
    bytes.put(range, int16_t{18});
    bytes.put(range + 8, 1.25);
    bytes.put(range + 8 + 17 * 8, 2.25);
    bytes.put(range + 152, 3.25);
    bytes.put(range + 152 + 63 * 8, 4.25);
    bytes.put(range + 664, 5.25);
    bytes.put(range + 664 + 63 * 8, 6.25);
    bytes.put(range + 1176, int16_t{64});
    const auto table = bytes.as<TABLE_RECORD>();
    const POLY_RANGE_RECORD &last = table->poly[7];
    QCOMPARE(last.num_coeffs, int16_t{18});
    QCOMPARE(last.coeffs[0], 1.25);
    QCOMPARE(last.coeffs[17], 2.25);
    QCOMPARE(last.x[0], 3.25);
    QCOMPARE(last.x[63], 4.25);
    QCOMPARE(last.y[0], 5.25);
    QCOMPARE(last.y[63], 6.25);
    QCOMPARE(last.num_points, int16_t{64});
    QVERIFY(all_zero(table->poly[0]));
    QVERIFY(all_zero(table->reserved_9472));
}

void SessionRecord::long_table_as_the_host_lays_it_out()
{
    HostBytes bytes;
    bytes.put(63 * 8, 1.25);
    bytes.put(512, 2.25);
    bytes.put(1024, 3.25);
    bytes.put(2048, 4.25);
    bytes.put(2560, int16_t{64});
    bytes.put(7182, uint16_t{17});
    const auto table = bytes.as<LONG_TABLE>();
    QCOMPARE(table->x[63], 1.25);
    QCOMPARE(table->y[0], 2.25);
    QCOMPARE(table->slope[0], 3.25);
    QCOMPARE(table->intercept[0], 4.25);
    QCOMPARE(table->num_points, int16_t{64});
    QCOMPARE(table->flags, uint16_t{17});
    QCOMPARE(sizeof(LONG_TABLE), std::size_t{7472});
}

void SessionRecord::range_in_work_follows_the_type_data()
{
    const auto row = test_columns<int, int, int>("type", "index", "range");
    row("INTERP works with range 0", 0, 3, 0);
    row("POLY works with range 0", 1, 3, 0);
    row("POLY_RANGE works with the range of its index", 7, 3, 3);
    row("POLY_RANGE, last range", 7, 7, 7);
    row("POLY_RANGE, index too large", 7, 8, 7);
    row("POLY_RANGE, index negative", 7, -1, 0);
    row("a type that is not known works with range 0", 65535, 3, 0);
}

void SessionRecord::range_in_work_follows_the_type()
{
    QFETCH(int, type);
    QFETCH(int, index);
    QFETCH(int, range);
    auto table = std::make_unique<TABLE_RECORD>();
    table->table_type = static_cast<uint16_t>(type);
    table->poly_range_index = static_cast<int16_t>(index);
    QCOMPARE(&range_in_work(*table), &table->poly[range]);
}

void SessionRecord::range_index_stays_within_the_ranges_data()
{
    const auto row = test_columns<int, int>("index", "used");
    row("first", 0, 0);
    row("last", 7, 7);
    row("just past the last", 8, 7);
    row("largest", 32767, 7);
    row("just below the first", -1, 0);
    row("smallest", -32768, 0);
}

void SessionRecord::range_index_stays_within_the_ranges()
{
    QFETCH(int, index);
    auto table = std::make_unique<TABLE_RECORD>();
    table->poly_range_index = static_cast<int16_t>(index);
    QTEST(range_index(*table), "used");
}

void SessionRecord::start_values_of_points_0_and_1()
{
    auto cfg = std::make_unique<ZERL_CFG>();
    for (POINT_STATISTICS &point : cfg->point_stats) {
        point.mv_mean = 5.0;
        point.eu_reference = 6.0;
    }
    reset_point_statistics(cfg.get());
    for (int i = 0; i < 2; ++i) {
        const POINT_STATISTICS &point = cfg->point_stats[i];
        QCOMPARE(point.mv_at_capture, -999.0);
        QCOMPARE(point.eu_mean, -999.0);
        QCOMPARE(point.eu_std, -999.0);
        QCOMPARE(point.eu_min, 999.0);
        QCOMPARE(point.eu_max, -999.0);
        QCOMPARE(point.mv_mean, 5.0);
        QCOMPARE(point.eu_reference, 6.0);
        QVERIFY(all_zero(point.reserved_10));
    }
}

void SessionRecord::statistics_of_points_2_to_63_survive()
{
    auto cfg = std::make_unique<ZERL_CFG>();
    std::memset(cfg->point_stats, 0x3f, sizeof cfg->point_stats);
    const auto before = std::make_unique<ZERL_CFG>(*cfg);
    reset_point_statistics(cfg.get());
    QCOMPARE(
        std::memcmp(cfg->point_stats + 2, before->point_stats + 2, 62 * sizeof(POINT_STATISTICS)),
        0);
}

LOOP_TEST(SessionRecord);
#include "test_sessionrecord.moc"
