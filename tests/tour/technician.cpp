// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/tour/technician.h"

#include <QComboBox>
#include <QRadioButton>
#include <QTest>

#include <qwt_plot.h>

namespace tour
{

const Kind AS_FOUND = {"As-Found", "rbAsFound", "txtAsFound"};
const Kind AFTER_SERVICE = {"After-Service", "rbAfterService", "txtAfterService"};
const Kind VERIFICATION = {"Verification", "rbVerification", "txtVerificationData"};
const Kind NEW_CORRELATION = {"New Correlation", "rbNewCorrelation", "txtNewCorrelation"};

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
    if (style == QLatin1String("background-color: rgb(0,255,0)"))
        return QStringLiteral("green");
    if (style == QLatin1String("background-color: rgb(255, 255, 127)"))
        return QStringLiteral("yellow");
    if (style == QLatin1String("background-color: rgb(255,170,0)"))
        return QStringLiteral("orange");
    if (style == QLatin1String("background-color: rgb(255, 78, 78)"))
        return QStringLiteral("red");
    return style;
}

double shown_mv(Driver &driver)
{
    const QString title = driver.find<QwtPlot>("dataPlot")->title().text();
    return title.section(QLatin1Char(':'), 1).section(QLatin1Char('/'), 0, 0).trimmed().toDouble();
}

int channel_item(Driver &driver, int channel)
{
    const int item = driver.find<QComboBox>("cboCurrentChannel")
                         ->findText(QString::asprintf("%5d  -  ", channel), Qt::MatchContains);
    driver.check(item > 0, QStringLiteral("the cell offers channel %1").arg(channel));
    return item;
}

void pick_channel(Driver &driver, int channel)
{
    auto *channels = driver.find<QComboBox>("cboCurrentChannel");
    driver.choose(channels, channel_item(driver, channel));
    driver.tell(QStringLiteral("channel") + channels->currentText());
    driver.await([&] { return shown_mv(driver) != 0.0; }, QStringLiteral("a live reading"));
    driver.check(!driver.find<QLabel>("lblTableName")->text().isEmpty(),
                 QStringLiteral("the table has a name"));
}

void apply_reference(Driver &driver, int channel, double value)
{
    driver.check(driver.cell.apply(channel, value, true) && driver.cell.wait_settled(channel),
                 QStringLiteral("the cell takes the reference: ") +
                     QString::fromStdString(driver.cell.error()));
    const auto before = driver.find<QwtPlot>("dataPlot")->title().text();
    driver.enter(driver.find<QLineEdit>("txtAveragingTime"), QStringLiteral("10"));
    cell::ChannelState state;
    driver.await(
        [&] {
            return driver.cell.show(channel, &state) &&
                   qAbs(shown_mv(driver) - state.mv) < 0.01 * qMax(1.0, qAbs(state.mv));
        },
        QStringLiteral("the reading on the plot (before: %1)").arg(before));
}

void capture_point(Driver &driver, int channel, int point)
{
    const Row row = visible_rows(driver).at(point);
    const QString reference = row.value->text().trimmed();
    apply_reference(driver, channel, reference.toDouble());
    driver.enter(row.value, reference);
    driver.press(row.button);
    driver.check(row.button->text() == QLatin1String("Undo"),
                 QStringLiteral("point %1 is captured").arg(point + 1));
    driver.tell(
        QStringLiteral("point %1: %2 at %3 mV, %4")
            .arg(point + 1)
            .arg(reference, row.mv->text().trimmed(), colour_name(row.value->styleSheet())));
}

void capture_all(Driver &driver, int channel)
{
    const int points = visible_rows(driver).size();
    driver.check(points >= 2, QStringLiteral("the table has points"));
    for (int point = 0; point < points; ++point)
        capture_point(driver, channel, point);
}

void fill_recording(Driver &driver, QWidget *dialog, const Kind &kind, const QString &description)
{
    driver.press(driver.find<QRadioButton>(kind.radio, dialog));
    auto *comment = driver.find<QLineEdit>("txtComment", dialog);
    comment->clear();
    QTest::keyClicks(comment, description);
}

void record(Driver &driver, const Kind &kind, const QString &description)
{
    driver.with_dialog([&] { driver.press(driver.find<QPushButton>("btnRecordData")); },
                       [&](QWidget *dialog) {
                           fill_recording(driver, dialog, kind, description);
                           driver.press(driver.find<QPushButton>("btnRecord", dialog));
                       });
    const auto *box = driver.find<QLineEdit>(kind.box);
    driver.check(!box->text().isEmpty(), QLatin1String(kind.name) + QStringLiteral(" is stamped"));
    driver.tell(QStringLiteral("%1 recorded, %2")
                    .arg(QLatin1String(kind.name), colour_name(box->styleSheet())));
}

} // namespace tour
