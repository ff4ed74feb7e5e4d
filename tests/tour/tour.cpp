// SPDX-License-Identifier: GPL-3.0-or-later
//
// The scripted calibration: one channel from its first reading to its rewritten
// table. Loaded into the real program beside a running training cell.
#include <cstdio>
#include <cstdlib>

#include <QApplication>
#include <QComboBox>
#include <QLabel>
#include <QRadioButton>
#include <QTest>
#include <QTimer>

#include "tests/tour/driver.h"

#include <qwt_plot.h>

namespace
{

using tour::Driver;

constexpr char GREEN[] = "background-color: rgb(0,255,0)";

// The calibrated channel, by its number in the shipped cell.
constexpr int CHANNEL = 0;

struct Row {
    QLineEdit *value;
    QLabel *mv;
    QPushButton *button;
};

QList<Row> visible_rows(Driver &driver)
{
    QList<Row> rows;
    const auto widgets = driver.window()->findChildren<QWidget *>(QStringLiteral("PointInfo"));
    for (QWidget *widget : widgets) {
        auto *button = driver.find<QPushButton>("btnCapture", widget);
        if (button->isVisibleTo(driver.window()))
            rows.append({driver.find<QLineEdit>("txtCurrentValue", widget),
                         driver.find<QLabel>("lblMillivolts", widget), button});
    }
    return rows;
}

QString colour_name(const QString &style)
{
    if (style == QLatin1String(GREEN))
        return QStringLiteral("green");
    if (style == QLatin1String("background-color: rgb(255, 255, 127)"))
        return QStringLiteral("yellow");
    if (style == QLatin1String("background-color: rgb(255,170,0)"))
        return QStringLiteral("orange");
    if (style == QLatin1String("background-color: rgb(255, 78, 78)"))
        return QStringLiteral("red");
    return style;
}

// The millivolts that the plot's title shows.
double shown_mv(Driver &driver)
{
    const QString title = driver.find<QwtPlot>("dataPlot")->title().text();
    return title.section(QLatin1Char(':'), 1).section(QLatin1Char('/'), 0, 0).trimmed().toDouble();
}

// Applies a reference and has the averaging start afresh, as leaving the field
// of the averaging time does, until the plot shows the reading.
void apply_reference(Driver &driver, double value)
{
    driver.check(driver.cell.apply(CHANNEL, value, true) && driver.cell.wait_settled(CHANNEL),
                 QStringLiteral("the cell takes the reference: ") +
                     QString::fromStdString(driver.cell.error()));
    const auto before = driver.find<QwtPlot>("dataPlot")->title().text();
    driver.enter(driver.find<QLineEdit>("txtAveragingTime"), QStringLiteral("10"));
    cell::ChannelState state;
    driver.await(
        [&] {
            return driver.cell.show(CHANNEL, &state) &&
                   qAbs(shown_mv(driver) - state.mv) < 0.01 * qMax(1.0, qAbs(state.mv));
        },
        QStringLiteral("the reading on the plot (before: %1)").arg(before));
}

void start(Driver &driver)
{
    driver.await([&] { return driver.window()->isVisible(); }, QStringLiteral("the window"));
    driver.picture(QStringLiteral("start"));
    driver.enter(driver.find<QLineEdit>("txtCalibrationQIE"), QStringLiteral("Dead weight DW-12"));
    driver.enter(driver.find<QLineEdit>("txtTechnicianName"), QStringLiteral("R. Alvarez"));
}

void pick_channel(Driver &driver)
{
    auto *channels = driver.find<QComboBox>("cboCurrentChannel");
    const int item = channels->findText(QString::asprintf("%5d  -  ", CHANNEL), Qt::MatchContains);
    driver.check(item > 0, QStringLiteral("the cell offers the channel"));
    driver.choose(channels, item);
    driver.tell(QStringLiteral("channel") + channels->currentText());
    driver.await([&] { return shown_mv(driver) != 0.0; }, QStringLiteral("a live reading"));
    driver.check(!driver.find<QLabel>("lblTableName")->text().isEmpty(),
                 QStringLiteral("the table has a name"));
    driver.picture(QStringLiteral("channel-bound"));
}

void capture_all(Driver &driver)
{
    const QList<Row> rows = visible_rows(driver);
    driver.check(rows.size() >= 3, QStringLiteral("the table has points"));
    for (int i = 0; i < rows.size(); ++i) {
        const Row &row = rows[i];
        const QString reference = row.value->text().trimmed();
        apply_reference(driver, reference.toDouble());
        driver.enter(row.value, reference);
        driver.press(row.button);
        driver.check(row.button->text() == QLatin1String("Undo"),
                     QStringLiteral("point %1 is captured").arg(i + 1));
        driver.tell(
            QStringLiteral("point %1: %2 at %3 mV, %4")
                .arg(i + 1)
                .arg(reference, row.mv->text().trimmed(), colour_name(row.value->styleSheet())));
        if (i == rows.size() / 2)
            driver.picture(QStringLiteral("capturing"));
    }
    driver.picture(QStringLiteral("all-captured"));
}

void record_as_found(Driver &driver)
{
    driver.with_dialog([&] { driver.press(driver.find<QPushButton>("btnRecordData")); },
                       [&](QWidget *dialog) {
                           driver.press(driver.find<QRadioButton>("rbAsFound", dialog));
                           QTest::keyClicks(driver.find<QLineEdit>("txtComment", dialog),
                                            QStringLiteral("Yearly calibration"));
                           driver.picture(QStringLiteral("record-data"));
                           driver.press(driver.find<QPushButton>("btnRecord", dialog));
                       });
    driver.check(!driver.find<QLineEdit>("txtAsFound")->text().isEmpty(),
                 QStringLiteral("As-Found is stamped"));
    driver.tell(QStringLiteral("As-Found %1, %2")
                    .arg(driver.find<QLineEdit>("txtAsFound")->text(),
                         colour_name(driver.find<QLineEdit>("txtAsFound")->styleSheet())));
    driver.picture(QStringLiteral("as-found-recorded"));
}

void adjust(Driver &driver)
{
    driver.press(driver.find<QPushButton>("btnAdjustCalibration"));
    driver.check(!driver.find<QLineEdit>("txtAdjustCalibration")->text().isEmpty(),
                 QStringLiteral("Table Updated is stamped"));
    for (const Row &row : visible_rows(driver))
        driver.check(row.value->styleSheet() == QLatin1String(GREEN),
                     QStringLiteral("a row is not green after the adjustment: ") +
                         row.value->styleSheet());
    driver.tell(QStringLiteral("adjusted; all rows green"));
    driver.picture(QStringLiteral("adjusted"));
}

void run()
{
    Driver driver(QString::fromLocal8Bit(qgetenv("ZERL_TOUR_FOLDER")));
    start(driver);
    pick_channel(driver);
    capture_all(driver);
    record_as_found(driver);
    adjust(driver);
    std::FILE *done = std::fopen(qgetenv("ZERL_TOUR_DONE").constData(), "w");
    driver.check(done != nullptr && std::fclose(done) == 0, QStringLiteral("the end is noted"));
    driver.tell(QStringLiteral("leaving through the menu"));
    driver.choose_action("menuFile", "actionExit");
}

// Only the program itself is driven, not what it starts.
void begin()
{
    unsetenv("LD_PRELOAD");
    QTimer::singleShot(0, qApp, run);
}

} // namespace

Q_COREAPP_STARTUP_FUNCTION(begin)
