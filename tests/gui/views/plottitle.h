// SPDX-License-Identifier: GPL-3.0-or-later
//
// The plot's title at every length that it can have.
#ifndef GUI_VIEWS_PLOTTITLE_H
#define GUI_VIEWS_PLOTTITLE_H

#include <QImage>
#include <QtTest>

#include <qwt_plot.h>
#include <qwt_text_label.h>

#include "frame/zerl_cfg.h"
#include "gui/frame/testwindow.h"

inline void title_rows()
{
    QTest::addColumn<double>("mv");
    QTest::newRow("ordinary") << 1.5;
    QTest::newRow("five digits before the point") << -12345.6789;
    QTest::newRow("79 characters") << -1e60;
}

// Whether anything is drawn in that column of pixels.
inline bool drawn_in_column(const QImage &image, int x)
{
    for (int y = 0; y < image.height(); ++y) {
        if (image.pixel(x, y) != image.pixel(0, 0))
            return true;
    }
    return false;
}

// Height and place of the canvas are those of a title that is short.
inline void check_title(QwtPlot *plot)
{
    QFETCH(double, mv);
    MainWindow *const window = g_main_window;
    const auto show_reading = [&](double reading) {
        ZERL_CFG cfg = *g_cfg; // its axes do not grow for good
        cfg.live_mv = reading;
        cfg.live_eu = reading;
        window->update_plot(&cfg);
        QApplication::sendPostedEvents();
        plot->updateLayout();
    };
    show_reading(1.0);
    const QRect before = plot->canvas()->geometry();
    show_reading(mv);
    const QString text = plot->titleLabel()->text().text();
    const QRect after = plot->canvas()->geometry();
    const QImage image = plot->titleLabel()->grab().toImage();
    show_reading(0.0);
    QCOMPARE(text, QString::asprintf("Current Point: %8.4f /%8.4f", mv, mv).left(79));
    QCOMPARE(after.top(), before.top());
    QCOMPARE(after.bottom(), before.bottom());
    QVERIFY(!drawn_in_column(image, 0));
    QVERIFY(!drawn_in_column(image, image.width() - 1));
    QVERIFY(drawn_in_column(image, image.width() / 2) ||
            drawn_in_column(image, image.width() / 2 + 3));
}

#endif
