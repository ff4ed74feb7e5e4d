// SPDX-License-Identifier: GPL-3.0-or-later
//
// A cell with as many channels as there can be.
#include <QtTest>

#include "gui/frame/testwindow.h"
#include "support/testmain.h"

class ManyChannels : public QObject
{
    Q_OBJECT

private slots:
    void full_list_comes_up_without_signals();
};

void ManyChannels::full_list_comes_up_without_signals()
{
    const BoxAnswerer answerer;
    const TestWindow it("channels 32767\nfill 0 32766 active \"Channel %d\"\n");
    QCOMPARE(it.form->cboCurrentChannel->count(), 32768);
    QCOMPARE(it.form->cboCurrentChannel->itemText(0), QStringLiteral("Select A Channel"));
    QCOMPARE(it.form->cboCurrentChannel->itemText(1), QStringLiteral("    0  -  Channel 0"));
    QCOMPARE(it.form->cboCurrentChannel->itemText(32767),
             QStringLiteral("32766  -  Channel 32766"));
    QCOMPARE(it.form->cboCurrentChannel->currentIndex(), 0);
    // A signal would have reached the slot, which sets the one and clears the other.
    QCOMPARE(g_cal_type_changed, int16_t(0));
    QCOMPARE(g_first_select, int16_t(1));
    QVERIFY(!it.window->monitor()->isRunning());
    // "1" is contained in many items, but only one is channel 1's.
    QCOMPARE(it.item_of(1), 2);
    QCOMPARE(it.item_of(32766), 32767);
}

WINDOW_TEST(ManyChannels);
#include "test_manychannels.moc"
