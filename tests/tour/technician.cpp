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

namespace
{

QString text_of(Driver &driver, const char *box)
{
    return driver.find<QLineEdit>(box)->text();
}

void decide(Driver &driver, const char *button, const QString &mark)
{
    if (mark.isEmpty())
        press(driver, button);
    else
        driver.answer([&] { press(driver, button); }, mark, QStringLiteral("Yes"));
    driver.check(!text_of(driver, "txtAdjustCalibration").isEmpty(),
                 QStringLiteral("Table Updated is stamped"));
}

} // namespace

void press(Driver &driver, const char *button)
{
    driver.press(driver.find<QPushButton>(button));
}

void choose_exit(Driver &driver)
{
    driver.choose_action("menuFile", "actionExit");
}

void choose_channel(Driver &driver, int channel)
{
    auto *channels = driver.find<QComboBox>("cboCurrentChannel");
    const int item = channels->findText(QString::asprintf("%5d  -  ", channel), Qt::MatchContains);
    driver.check(item > 0, QStringLiteral("the cell offers channel %1").arg(channel));
    driver.pick(channels, item);
}

void pick_channel(Driver &driver, int channel)
{
    choose_channel(driver, channel);
    const QString shown = driver.find<QComboBox>("cboCurrentChannel")->currentText();
    driver.check(shown.section(QLatin1Char('-'), 0, 0).toInt() == channel,
                 QStringLiteral("channel %1 is picked").arg(channel));
    driver.tell(QStringLiteral("channel") + shown);
    driver.check(!driver.find<QLabel>("lblTableName")->text().isEmpty(),
                 QStringLiteral("the table has a name"));
    cell::ChannelState state;
    driver.check(driver.cell.show(channel, &state), QStringLiteral("the cell tells the channel"));
    apply_reference(driver, channel, state.applied);
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

void capture_points(Driver &driver, int channel, int first, int last)
{
    for (int point = first; point <= last; ++point)
        capture_point(driver, channel, point);
}

void capture_all(Driver &driver, int channel)
{
    const int points = visible_rows(driver).size();
    driver.check(points >= 2, QStringLiteral("the table has points"));
    capture_points(driver, channel, 0, points - 1);
}

void fill_recording(Driver &driver, QWidget *dialog, const Kind &kind, const QString &description)
{
    driver.press(driver.find<QRadioButton>(kind.radio, dialog));
    auto *comment = driver.find<QLineEdit>("txtComment", dialog);
    comment->clear();
    QTest::keyClicks(comment, description);
}

void record(Driver &driver, const char *table, const Kind &kind, const QString &description,
            const Asked &asked)
{
    const auto open = [&] {
        if (asked.points_missing)
            driver.answer([&] { press(driver, "btnRecordData"); }, QStringLiteral("R2"),
                          QStringLiteral("Yes"));
        else
            press(driver, "btnRecordData");
    };
    const QString before = text_of(driver, kind.box);
    driver.with_dialog(open, [&](QWidget *dialog) {
        fill_recording(driver, dialog, kind, description);
        const auto confirm = [&] { driver.press(driver.find<QPushButton>("btnRecord", dialog)); };
        if (asked.mark.isEmpty())
            confirm();
        else
            driver.answer(confirm, asked.mark, asked.button, asked.picture);
    });
    if (asked.button == QLatin1String("No") || asked.button == QLatin1String("Cancel")) {
        driver.check(text_of(driver, kind.box) == before, QStringLiteral("a box has changed"));
        return;
    }
    driver.check(!text_of(driver, kind.box).isEmpty(),
                 QLatin1String(kind.step) + QStringLiteral(" is stamped"));
    driver.expect_record(table, kind.step);
    driver.tell(QStringLiteral("%1 recorded, %2")
                    .arg(QLatin1String(kind.step),
                         colour_name(driver.find<QLineEdit>(kind.box)->styleSheet())));
}

void adjust(Driver &driver, const char *table, const QString &mark)
{
    decide(driver, "btnAdjustCalibration", mark);
    driver.expect_record(table, "Table Updated by adjustment");
    driver.expect_rewritten(table);
    driver.tell(QStringLiteral("adjusted"));
}

void reuse(Driver &driver, const char *table, const QString &mark)
{
    decide(driver, "btnReuseCalibration", mark);
    driver.expect_record(table, "Table Updated by re-use");
    driver.tell(QStringLiteral("re-used"));
}

} // namespace tour
