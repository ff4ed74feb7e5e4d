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
    void initTestCase() { m_it = std::make_unique<TestWindow>(); }
    void cleanupTestCase() { m_it.reset(); }
    void only_channels_whose_active_is_1_are_listed();
    void channel_whose_active_is_2_can_be_bound();
    void binding_in_the_window_skips_a_channel_that_is_not_active_data();
    void binding_in_the_window_skips_a_channel_that_is_not_active();
    void channel_that_went_away_keeps_the_old_table();

private:
    std::unique_ptr<TestWindow> m_it;
};

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
