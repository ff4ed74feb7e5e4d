// SPDX-License-Identifier: GPL-3.0-or-later
//
// The list of channels, and which numbers a binding accepts.
#include <QtTest>

#include "frame/hostlink.h"
#include "gui/frame/testwindow.h"
#include "support/testmain.h"

class ChannelList : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanupTestCase();
    void only_channels_whose_active_is_1_are_listed();
    void item_text_data();
    void item_text();
    void channel_of_an_item_data();
    void channel_of_an_item();
    void number_out_of_range_data();
    void number_out_of_range();
    void channel_not_active();
    void channel_whose_active_is_2_can_be_bound();
    void binding_in_the_window_skips_a_channel_that_is_not_active_data();
    void binding_in_the_window_skips_a_channel_that_is_not_active();
    void channel_that_went_away_keeps_the_old_table();

private:
    std::unique_ptr<TestWindow> m_it;
};

void ChannelList::initTestCase()
{
    m_it = std::make_unique<TestWindow>();
}

void ChannelList::cleanupTestCase()
{
    m_it.reset();
}

void ChannelList::only_channels_whose_active_is_1_are_listed()
{
    QStringList items;
    for (int i = 0; i < m_it->form->cboCurrentChannel->count(); ++i)
        items += m_it->form->cboCurrentChannel->itemText(i);
    QCOMPARE(items,
             (QStringList{"Select A Channel", "    0  -  Channel Zero", "    1  -  Channel One",
                          "    3  -  Channel Three", "    4  -  Channel Four",
                          "    5  -  Channel Five", "    6  -  Channel Six",
                          "    8  -  Channel Eight", "    9  -  Channel Nine"}));
}

void ChannelList::item_text_data()
{
    QTest::addColumn<int>("channel");
    QTest::addColumn<QString>("prefix");
    QTest::newRow("one digit") << 7 << "    7  -  ";
    QTest::newRow("five digits") << 32766 << "32766  -  ";
    QTest::newRow("zero") << 0 << "    0  -  ";
}

void ChannelList::item_text()
{
    QFETCH(int, channel);
    QFETCH(QString, prefix);
    QCOMPARE(channel_item_prefix(channel), prefix);
}

void ChannelList::channel_of_an_item_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("is_channel");
    QTest::addColumn<int>("channel");
    QTest::newRow("a channel") << "   12  -  Oil Pressure" << true << 12;
    QTest::newRow("a label that is a number") << "    3  -  4711" << true << 3;
    QTest::newRow("no label") << "32766  -  " << true << 32766;
    QTest::newRow("the first line") << "Select A Channel" << false << -7;
    QTest::newRow("more than a short integer holds") << "32768  -  X" << false << -7;
    QTest::newRow("empty") << "" << false << -7;
    QTest::newRow("blanks") << "    " << false << -7;
}

void ChannelList::channel_of_an_item()
{
    QFETCH(QString, text);
    QFETCH(bool, is_channel);
    QFETCH(int, channel);
    int16_t found = -7;
    QCOMPARE(channel_of_item(text, &found), is_channel);
    QCOMPARE(int(found), channel);
}

void ChannelList::number_out_of_range_data()
{
    QTest::addColumn<int>("channel");
    QTest::addColumn<QString>("text");
    QTest::newRow("below 0") << -1 << "Channel '-1' is Out of Range";
    QTest::newRow("equal to the number of channels") << 10 << "Channel '10' is Out of Range";
    QTest::newRow("far beyond") << 32767 << "Channel '32767' is Out of Range";
}

void ChannelList::number_out_of_range()
{
    QFETCH(int, channel);
    QFETCH(QString, text);
    QCOMPARE(Sys_attr->channel_count, int16_t(10));
    auto record = std::make_unique<ZERL_CFG>();
    record->channel = static_cast<int16_t>(channel);
    record->long_current.num_points = 9;
    g_captured_points = 4;
    BoxAnswerer answerer;
    answerer.expect(QStringLiteral("Information"), text);
    QCOMPARE(bind_channel(record.get()), -1);
    QCOMPARE(answerer.met().size(), 1);
    QCOMPARE(record->long_current.num_points, int16_t(9));
    QCOMPARE(g_captured_points, 0); // in all cases
}

void ChannelList::channel_not_active()
{
    auto record = std::make_unique<ZERL_CFG>();
    record->channel = 2;
    g_captured_points = 4;
    BoxAnswerer answerer;
    answerer.expect(QStringLiteral("Information"), QStringLiteral("Channel '2' is not Active"));
    QCOMPARE(bind_channel(record.get()), -1);
    QCOMPARE(g_captured_points, 0);
    QCOMPARE(record->tbl_path[0], '\0');
}

void ChannelList::channel_whose_active_is_2_can_be_bound()
{
    const BoxAnswerer answerer;
    QCOMPARE(m_it->item_of(7), -1);
    auto record = std::make_unique<ZERL_CFG>();
    record->channel = 7;
    QCOMPARE(bind_channel(record.get()), 0);
    QCOMPARE(QString::fromUtf8(record->table.table_name), QStringLiteral("seven"));
    QCOMPARE(QString::fromUtf8(record->tbl_path), QStringLiteral("/cell/tables/seven.tbl"));
    QCOMPARE(QString::fromUtf8(record->save_path), QStringLiteral("/cell/tables/seven.save"));
    QCOMPARE(QString::fromUtf8(record->old_path), QStringLiteral("/cell/tables/seven.old"));
    QVERIFY(answerer.met().isEmpty());
}

void ChannelList::binding_in_the_window_skips_a_channel_that_is_not_active_data()
{
    QTest::addColumn<int>("channel");
    QTest::newRow("not active") << 2;
    QTest::newRow("active is 2") << 7;
}

void ChannelList::binding_in_the_window_skips_a_channel_that_is_not_active()
{
    QFETCH(int, channel);
    const BoxAnswerer answerer;
    auto record = std::make_unique<ZERL_CFG>();
    record->channel = static_cast<int16_t>(channel);
    record->long_current.num_points = 9;
    g_captured_points = 4;
    bind_active_channel(record.get());
    QCOMPARE(record->long_current.num_points, int16_t(9));
    QCOMPARE(g_captured_points, 4);
    QVERIFY(answerer.met().isEmpty());
    g_captured_points = 0;
}

// The list was made at the start: a channel that has gone since is skipped in
// silence, and the record is published with the new number and the old table.
void ChannelList::channel_that_went_away_keeps_the_old_table()
{
    BoxAnswerer answerer;
    m_it->bind_afresh(0);
    QCOMPARE(g_cfg->channel, int16_t(0));
    QVERIFY(m_it->cell.set(1, "active", "0"));
    m_it->pick(1);
    QCOMPARE(g_cfg->channel, int16_t(1));
    QCOMPARE(QString::fromUtf8(g_cfg->table.table_name), QStringLiteral("zero"));
    QCOMPARE(m_it->form->lblTableName->text(), QStringLiteral("zero"));
    QVERIFY(answerer.met().isEmpty());
    // A rebuild binds without that test, and there it is told.
    answerer.expect(QStringLiteral("Information"), QStringLiteral("Channel '1' is not Active"));
    g_cfg->table_dirty = 1;
    QCOMPARE(rebind_channel(g_cfg), -1);
    QCOMPARE(g_cfg->table_dirty, uint16_t(1));
    QVERIFY(m_it->cell.set(1, "active", "1"));
    QCOMPARE(rebind_channel(g_cfg), 0);
    QCOMPARE(g_cfg->table_dirty, uint16_t(0));
    QCOMPARE(QString::fromUtf8(g_cfg->table.table_name), QStringLiteral("one"));
}

WINDOW_TEST(ChannelList);
#include "test_channellist.moc"
