// SPDX-License-Identifier: GPL-3.0-or-later
//
// Where the recording dialog stands on screens of all sizes.
#include <QtTest>

#include "calibration/dialogplace.h"
#include "support/testmain.h"

class DialogPlace : public QObject
{
    Q_OBJECT

private slots:
    void place_data();
    void place();
};

void DialogPlace::place_data()
{
    const auto row = test_columns<int, QRect, QRect>("window_top", "screen", "expected");
    const QSize size(581, 304); // 280 to 860, 250 to 553
    const auto at = [size](int left, int top) { return QRect(QPoint(left, top), size); };
    row("the screen the window was drawn for", 0, QRect(0, 0, 1024, 768), at(280, 250));
    row("follows the window's top", 100, QRect(0, 0, 1280, 1024), at(280, 350));
    row("large screen", 400, QRect(0, 0, 3840, 2160), at(280, 650));
    row("just within: right and bottom edge touch", 0, QRect(0, 0, 861, 554), at(280, 250));
    row("one pixel too narrow", 0, QRect(0, 0, 860, 554), at(279, 250));
    row("one pixel too low", 0, QRect(0, 0, 861, 553), at(280, 249));
    row("small screen", 0, QRect(0, 0, 640, 480), at(59, 176));
    row("window near the bottom of its screen", 700, QRect(0, 0, 1024, 768), at(280, 464));
    row("window above the top of its screen", -300, QRect(0, 0, 1024, 768), at(280, 0));
    row("a bar at the top and at the left", -240, QRect(300, 28, 1000, 740), at(300, 28));
    row("screen on the right of another", 0, QRect(1920, 0, 1280, 1024), at(1920, 250));
    row("screen on the left of another", 0, QRect(-1280, 0, 1280, 1024), at(-581, 250));
    row("smaller than the dialog: its left and top are seen", 0, QRect(0, 0, 320, 240), at(0, 0));
    row("narrower than the dialog alone", 0, QRect(10, 0, 400, 1000), at(10, 250));
}

void DialogPlace::place()
{
    QFETCH(int, window_top);
    QFETCH(QRect, screen);
    QTEST(recording_dialog_place(window_top, screen), "expected");
}

LOOP_TEST(DialogPlace);
#include "test_dialogplace.moc"
