// SPDX-License-Identifier: GPL-3.0-or-later
//
// Binding of a channel into a record, over a host of four channels: 0 with an
// INTERP table, 1 whose table does not exist, 2 not active, 3 active by a value
// other than 1.
#include <cstring>
#include <memory>

#include <QtTest>

#include "acquisition/channelbinding.h"
#include "frame/hostlink.h"
#include "sensor/tolerances.h"
#include "support/cellfiles.h"
#include "support/hostlog.h"
#include "support/recorder.h"
#include "support/testmain.h"
#include "unit/calibration/tablerecords.h"

namespace
{

constexpr int CHANNELS = 4;
AI_REAL_RECORD ai_real[CHANNELS];
AI_TRANSFER_RECORD ai_transfer[CHANNELS];
SYS_ATTR_RECORD attributes;

void write_table(const char *name, const TABLE_RECORD &table)
{
    const QByteArray path = QByteArray("/cell/tables/") + name + ".tbl";
    QCOMPARE(create_table(path.constData(), &table), 0);
}

} // namespace

class ChannelBinding : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void refused_channel_data();
    void refused_channel();
    void last_valid_channel();
    void active_by_another_value();
    void names_and_paths();
    void name_and_units_of_the_file_win();
    void longest_names();
    void table_that_cannot_be_read();
    void former_calibration_is_taken();
    void slots_behind_the_last_point_are_zero();
    void everything_else_starts_afresh();
    void limits_follow_the_table();
    void statistics_of_points_survive();
    void live_fields_stay();
    void rebinding_clears_the_flag();
    void rebinding_that_fails_keeps_the_flag();
    void items_of_the_channel_list();
    void item_prefix_data();
    void item_prefix();
    void channel_of_an_item_data();
    void channel_of_an_item();

private:
    std::unique_ptr<ZERL_CFG> m_cfg;
};

void ChannelBinding::initTestCase()
{
    require_private_cell();
    QCOMPARE(units_init_access(1) & 0xffff, 0);
    set_none_instance_tokens();
    Ai_real = ai_real;
    Sys_attr = &attributes;
    g_ai_transfer = ai_transfer;
}

void ChannelBinding::init()
{
    clear_cell();
    clear_recorded();
    attributes.channel_count = CHANNELS;
    std::memset(ai_real, 0, sizeof ai_real);
    std::memset(ai_transfer, 0, sizeof ai_transfer);
    const uint16_t active[CHANNELS] = {1, 1, 0, 2};
    const char *const names[CHANNELS] = {"flow", "missing", "idle", "flow"};
    for (int n = 0; n < CHANNELS; ++n) {
        ai_real[n].active = active[n];
        std::snprintf(ai_real[n].label, sizeof ai_real[n].label, "Label %d", n);
        qstrncpy(ai_real[n].units, "PSI", sizeof ai_real[n].units);
        qstrncpy(ai_transfer[n].table_name, names[n], sizeof ai_transfer[n].table_name);
    }
    const auto table = make_table(TABLE_INTERP, {{0.0, 0.0}, {50.0, 40.0}, {100.0, 100.0}});
    table->sensor_range_max = 100.0;
    qstrncpy(table->sensor_units, "kPa", sizeof table->sensor_units);
    write_table("flow", *table);
    m_cfg = std::make_unique<ZERL_CFG>();
    g_captured_points = 3;
    g_num_points = 17;
    g_monitor_run = 0;
    mua_instance_index = 5;
}

void ChannelBinding::refused_channel_data()
{
    const auto row = test_columns<int, QString>("channel", "message");
    row("the number of channels itself is out of range", 4, "Channel '4' is Out of Range");
    row("far beyond", 32767, "Channel '32767' is Out of Range");
    row("negative", -1, "Channel '-1' is Out of Range");
    row("active zero", 2, "Channel '2' is not Active");
}

// But for the captured points nothing of the session is touched.
void ChannelBinding::refused_channel()
{
    QFETCH(int, channel);
    QFETCH(QString, message);
    std::memset(&m_cfg->table, 0x21, sizeof m_cfg->table);
    m_cfg->channel = static_cast<int16_t>(channel);
    m_cfg->table_dirty = 1;
    const auto before = std::make_unique<ZERL_CFG>(*m_cfg);
    QCOMPARE(bind_channel(m_cfg.get()), -1);
    QCOMPARE(information_texts(), QStringList(message));
    QVERIFY(std::memcmp(m_cfg.get(), before.get(), sizeof *before) == 0);
    QCOMPARE(g_captured_points, 0);
    QCOMPARE(g_num_points, int16_t{17});
    QCOMPARE(g_monitor_run, uint16_t{0});
    QCOMPARE(int{mua_instance_index}, 5);
    clear_recorded();
    g_captured_points = 3;
    bind_active_channel(m_cfg.get());
    QCOMPARE(information_texts(), QStringList());
    QVERIFY(std::memcmp(m_cfg.get(), before.get(), sizeof *before) == 0);
    QCOMPARE(g_captured_points, 3);
}

void ChannelBinding::last_valid_channel()
{
    attributes.channel_count = 1;
    QCOMPARE(bind_channel(m_cfg.get()), 0);
    m_cfg->channel = 1;
    QCOMPARE(bind_channel(m_cfg.get()), -1);
    QCOMPARE(information_texts(), QStringList("Channel '1' is Out of Range"));
}

// Neither listed nor bound by its being active, yet it can be bound.
void ChannelBinding::active_by_another_value()
{
    m_cfg->channel = 3;
    bind_active_channel(m_cfg.get());
    QCOMPARE(m_cfg->long_current.num_points, int16_t{0});
    QCOMPARE(bind_channel(m_cfg.get()), 0);
    QCOMPARE(m_cfg->long_current.num_points, int16_t{3});
    m_cfg->channel = 0;
    m_cfg->long_current.num_points = 0;
    bind_active_channel(m_cfg.get());
    QCOMPARE(m_cfg->long_current.num_points, int16_t{3});
}

void ChannelBinding::names_and_paths()
{
    QCOMPARE(bind_channel(m_cfg.get()), 0);
    QCOMPARE(QByteArray(m_cfg->tbl_path), QByteArray("/cell/tables/flow.tbl"));
    QCOMPARE(QByteArray(m_cfg->save_path), QByteArray("/cell/tables/flow.save"));
    QCOMPARE(QByteArray(m_cfg->old_path), QByteArray("/cell/tables/flow.old"));
    QCOMPARE(information_texts(), QStringList());
    QCOMPARE(warning_texts(), QStringList());
}

void ChannelBinding::name_and_units_of_the_file_win()
{
    const auto table = make_table(TABLE_INTERP, line_points(2));
    qstrncpy(table->table_name, "another name", sizeof table->table_name);
    qstrncpy(table->eng_units, "inHg", sizeof table->eng_units);
    write_table("flow", *table);
    QCOMPARE(bind_channel(m_cfg.get()), 0);
    QCOMPARE(QByteArray(m_cfg->table.table_name), QByteArray("another name"));
    QCOMPARE(QByteArray(m_cfg->table.eng_units), QByteArray("inHg"));
    QCOMPARE(QByteArray(m_cfg->table_units), QByteArray("inHg"));
    QCOMPARE(QByteArray(m_cfg->tbl_path), QByteArray("/cell/tables/flow.tbl"));
}

void ChannelBinding::longest_names()
{
    const QByteArray name(79, 'n');
    qstrncpy(ai_transfer[0].table_name, name.constData(), sizeof ai_transfer[0].table_name);
    std::memset(ai_real[0].units, 'u', sizeof ai_real[0].units); // without a terminator
    write_table(name.constData(), *make_table(TABLE_INTERP, line_points(2)));
    QCOMPARE(bind_channel(m_cfg.get()), 0);
    QCOMPARE(QByteArray(m_cfg->tbl_path), "/cell/tables/" + name + ".tbl");
    QCOMPARE(QByteArray(m_cfg->save_path), "/cell/tables/" + name + ".save");
    QCOMPARE(QByteArray(m_cfg->old_path), "/cell/tables/" + name + ".old");
    QCOMPARE(m_cfg->long_current.num_points, int16_t{2});
    QCOMPARE(m_cfg->channel, int16_t{0});
}

// The session goes on with an empty table.
void ChannelBinding::table_that_cannot_be_read()
{
    QCOMPARE(bind_channel(m_cfg.get()), 0);
    m_cfg->channel = 1;
    m_cfg->long_current.flags = 9;
    m_cfg->table_dirty = 1;
    g_captured_points = 3;
    QCOMPARE(bind_channel(m_cfg.get()), 0);
    QCOMPARE(QByteArray(m_cfg->table.description), QByteArray("No Description"));
    QCOMPARE(m_cfg->long_current.num_points, int16_t{0});
    QCOMPARE(m_cfg->long_current.flags, uint16_t{0});
    QCOMPARE(m_cfg->long_previous.num_points, int16_t{0});
    for (int i = 0; i < MAX_POINTS; ++i) {
        QCOMPARE(m_cfg->long_current.x[i], 0.0);
        QCOMPARE(m_cfg->long_current.y[i], 0.0);
    }
    QCOMPARE(QByteArray(m_cfg->table.table_name), QByteArray());
    QCOMPARE(QByteArray(m_cfg->table.eng_units), QByteArray());
    QCOMPARE(m_cfg->table.poly[0].num_points, int16_t{0});
    QCOMPARE(QByteArray(m_cfg->table_units), QByteArray("kPa")); // of the channel before
    QCOMPARE(QByteArray(m_cfg->tbl_path), QByteArray("/cell/tables/missing.tbl"));
    QCOMPARE(g_num_points, int16_t{0});
    QCOMPARE(g_captured_points, 0);
    QCOMPARE(m_cfg->table_dirty, uint16_t{0});
    QCOMPARE(information_texts(), QStringList());
}

void ChannelBinding::former_calibration_is_taken()
{
    m_cfg->plot_current.count = 64;
    for (int i = 0; i < MAX_POINTS; ++i)
        m_cfg->plot_current.pairs[i] = {1.0 + i, 2.0 + i};
    QCOMPARE(bind_channel(m_cfg.get()), 0);
    QCOMPARE(m_cfg->long_current.num_points, int16_t{3});
    QCOMPARE(m_cfg->long_current.y[1], 40.0);
    QVERIFY(std::memcmp(&m_cfg->long_previous, &m_cfg->long_current, sizeof(LONG_TABLE)) == 0);
    QCOMPARE(m_cfg->plot_previous.count, uint16_t{64});
    QVERIFY(std::memcmp(m_cfg->plot_previous.pairs, m_cfg->plot_current.pairs,
                        sizeof m_cfg->plot_current.pairs) == 0);
    QCOMPARE(m_cfg->plot_previous.pairs[63].x, 64.0);
}

void ChannelBinding::slots_behind_the_last_point_are_zero()
{
    for (int i = 0; i < MAX_POINTS; ++i)
        m_cfg->long_current.x[i] = m_cfg->long_current.y[i] = 7.0;
    QCOMPARE(bind_channel(m_cfg.get()), 0);
    QCOMPARE(m_cfg->long_current.x[2], 100.0);
    for (int i = 3; i < MAX_POINTS; ++i) {
        QCOMPARE(m_cfg->long_current.x[i], 0.0);
        QCOMPARE(m_cfg->long_current.y[i], 0.0);
        QCOMPARE(m_cfg->long_previous.x[i], 0.0);
    }
}

void ChannelBinding::everything_else_starts_afresh()
{
    const auto table = make_table(TABLE_INTERP, line_points(2));
    table->worst_status = 3;
    table->last_save_type = SAVE_ADJUSTED;
    table->point_state[1] = 2;
    write_table("flow", *table);
    m_cfg->x_axis_range.min = -5.0;
    m_cfg->x_axis_range.max = 5.0;
    m_cfg->y_axis_range.changed = 1;
    m_cfg->table_dirty = 1;
    QCOMPARE(bind_channel(m_cfg.get()), 0);
    for (const AXIS_RANGE &axis : {m_cfg->x_axis_range, m_cfg->y_axis_range}) {
        QCOMPARE(axis.min, 0.0);
        QCOMPARE(axis.max, 0.0);
        QCOMPARE(axis.divisions, int16_t{5});
    }
    QCOMPARE(m_cfg->table.worst_status, uint16_t{0});
    QCOMPARE(m_cfg->table.last_save_type, uint16_t{SAVE_ADJUSTED}); // rides along
    QCOMPARE(m_cfg->table.point_state[1], 2);
    QCOMPARE(int{mua_instance_index}, 0);
    QCOMPARE(g_num_points, int16_t{2});
    QCOMPARE(g_monitor_run, uint16_t{1});
    QCOMPARE(m_cfg->redraw_all, uint16_t{1});
    QCOMPARE(m_cfg->table_dirty, uint16_t{0});
    QCOMPARE(g_captured_points, 0);
}

void ChannelBinding::limits_follow_the_table()
{
    QCOMPARE(bind_channel(m_cfg.get()), 0);
    QCOMPARE(m_cfg->table.ooa_tol, 0.25);
    QCOMPARE(m_cfg->table.oot_tol, 1.0);
    QCOMPARE(m_cfg->table.soot_tol, 2.0);
}

void ChannelBinding::statistics_of_points_survive()
{
    std::memset(m_cfg->point_stats, 0x3f, sizeof m_cfg->point_stats);
    const auto before = std::make_unique<ZERL_CFG>(*m_cfg);
    QCOMPARE(bind_channel(m_cfg.get()), 0);
    QVERIFY(std::memcmp(m_cfg->point_stats + 2, before->point_stats + 2,
                        62 * sizeof(POINT_STATISTICS)) == 0);
}

void ChannelBinding::live_fields_stay()
{
    m_cfg->live_mv = 12.0;
    m_cfg->live_eu = 13.0;
    m_cfg->unsaved_flag = 1;
    qstrncpy(m_cfg->value_units, "kPa", sizeof m_cfg->value_units);
    QCOMPARE(bind_channel(m_cfg.get()), 0);
    QCOMPARE(m_cfg->live_mv, 12.0);
    QCOMPARE(m_cfg->live_eu, 13.0);
    QCOMPARE(m_cfg->unsaved_flag, uint16_t{1});
    QCOMPARE(QByteArray(m_cfg->value_units), QByteArray("kPa"));
}

void ChannelBinding::rebinding_clears_the_flag()
{
    m_cfg->table_dirty = 1;
    QCOMPARE(rebind_channel(m_cfg.get()), 0);
    QCOMPARE(m_cfg->table_dirty, uint16_t{0});
    QCOMPARE(m_cfg->long_current.num_points, int16_t{3});
}

void ChannelBinding::rebinding_that_fails_keeps_the_flag()
{
    m_cfg->channel = 2;
    m_cfg->table_dirty = 1;
    QCOMPARE(rebind_channel(m_cfg.get()), -1);
    QCOMPARE(m_cfg->table_dirty, uint16_t{1});
    QCOMPARE(information_texts(), QStringList("Channel '2' is not Active"));
}

void ChannelBinding::items_of_the_channel_list()
{
    QCOMPARE(channel_items(),
             QStringList({"Select A Channel", "    0  -  Label 0", "    1  -  Label 1"}));
    attributes.channel_count = 0;
    QCOMPARE(channel_items(), QStringList("Select A Channel"));
    attributes.channel_count = 1;
    std::memset(ai_real[0].label, 'l', sizeof ai_real[0].label); // without a terminator
    QCOMPARE(channel_items().last(), "    0  -  " + QString(sizeof ai_real[0].label, 'l'));
}

void ChannelBinding::item_prefix_data()
{
    const auto row = test_columns<int, QString>("channel", "prefix");
    row("one digit", 7, "    7  -  ");
    row("five digits", 32766, "32766  -  ");
}

void ChannelBinding::item_prefix()
{
    QFETCH(int, channel);
    QTEST(channel_item_prefix(channel), "prefix");
}

void ChannelBinding::channel_of_an_item_data()
{
    // channel: -7: none
    const auto row = test_columns<QString, int>("item", "channel");
    row("one digit", "    7  -  Label 8", 7);
    row("five digits", "32766  -  Label", 32766);
    row("without a label", "    0  -  ", 0);
    row("a label that is a number", "    3  -  4711", 3);
    row("the list's first line", "Select A Channel", -7);
    row("empty", "", -7);
    row("blanks", "   ", -7);
    row("past a short integer", "32768  -  Label", -7);
    row("number and more in one part", "7a  -  Label", -7);
}

void ChannelBinding::channel_of_an_item()
{
    QFETCH(QString, item);
    QFETCH(int, channel);
    int16_t found = -7;
    QCOMPARE(channel_of_item(item, &found), channel != -7);
    QCOMPARE(int{found}, channel);
}

LOOP_TEST(ChannelBinding);
#include "test_channelbinding.moc"
