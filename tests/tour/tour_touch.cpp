// SPDX-License-Identifier: GPL-3.0-or-later
//
// A touch screen cell: one calibration by taps alone. The marker of such a cell
// counts at the program's start, so these stops are a run of their own.
#include <QAbstractItemView>
#include <QApplication>
#include <QComboBox>
#include <QTest>
#include <QValidator>
#include <QWindow>

#include "tests/tour/stops.h"
#include "tests/tour/technician.h"

using namespace tour;

namespace
{

constexpr int GOOD_SENSOR = 14;

QPoint place_of(const QWidget *widget)
{
    return widget->mapTo(widget->window(), widget->rect().center());
}

// What lies over the widget, or blocks its window, keeps the tap from it.
void tap(QWidget *widget)
{
    QTest::mouseClick(widget->window()->windowHandle(), Qt::LeftButton, {}, place_of(widget));
}

QWidget *pad_named(Driver &driver, const char *name)
{
    for (QWidget *widget : QApplication::topLevelWidgets()) {
        if (widget->objectName() == QLatin1String(name))
            return widget;
    }
    driver.check(false, QStringLiteral("there is no pad ") + QLatin1String(name));
    return nullptr;
}

QPushButton *key(Driver &driver, QWidget *pad, const QString &name)
{
    return driver.find<QPushButton>(qPrintable(QStringLiteral("btn_") + name), pad);
}

void tap_keys(Driver &driver, QWidget *pad, const QString &names)
{
    for (const QString &name : names.split(QLatin1Char(' '), Qt::SkipEmptyParts))
        tap(key(driver, pad, name));
}

// Taps the field twice; the pad that opens.
QWidget *open_pad(Driver &driver, QLineEdit *field)
{
    QWidget *const pad = pad_named(driver, field->validator() != nullptr ? "numpad" : "keyboard");
    QTest::mouseDClick(field->window()->windowHandle(), Qt::LeftButton, {}, place_of(field));
    driver.await([=] { return pad->isVisible(); }, pad->windowTitle());
    return pad;
}

void check_text(Driver &driver, const QLineEdit *field, const QString &text)
{
    driver.check(field->text() == text,
                 field->objectName() + QStringLiteral(" holds ") + field->text());
    driver.tell(QStringLiteral("%1 by touch: %2").arg(field->objectName(), text));
}

// A number of digits, points and a sign in front.
void enter_number(Driver &driver, QLineEdit *field, const QString &number)
{
    QWidget *const pad = open_pad(driver, field);
    tap(key(driver, pad, QStringLiteral("clear")));
    for (const QChar c : number) {
        if (c.isDigit())
            tap(key(driver, pad, c));
        else if (c == QLatin1Char('.'))
            tap(key(driver, pad, QStringLiteral("period")));
    }
    if (number.startsWith(QLatin1Char('-')))
        tap(key(driver, pad, QStringLiteral("10")));
    tap(key(driver, pad, QStringLiteral("enter")));
    driver.check(!pad->isVisible(), QStringLiteral("the pad has closed"));
    check_text(driver, field, number);
}

void pick_by_tap(Driver &driver, int channel)
{
    auto *const channels = driver.find<QComboBox>("cboCurrentChannel");
    const int item = channels->findText(QString::asprintf("%5d  -  ", channel), Qt::MatchContains);
    tap(channels);
    QAbstractItemView *const list = channels->view();
    driver.await([=] { return list->isVisible(); }, QStringLiteral("the list of channels"));
    const QModelIndex index = channels->model()->index(item, 0);
    list->scrollTo(index);
    // A list takes no tap so soon after it opened.
    driver.await(
        [=] {
            const QPoint place =
                list->viewport()->mapTo(list->window(), list->visualRect(index).center());
            if (list->isVisible())
                QTest::mouseClick(list->window()->windowHandle(), Qt::LeftButton, {}, place);
            return channels->currentIndex() == item;
        },
        QStringLiteral("the channel"));
}

void capture_by_tap(Driver &driver, int point)
{
    const Row row = visible_rows(driver).at(point);
    const QString reference = row.value->text().trimmed();
    driver.check(driver.cell.apply(GOOD_SENSOR, reference.toDouble(), true) &&
                     driver.cell.wait_settled(GOOD_SENSOR),
                 QStringLiteral("the cell takes the reference"));
    enter_number(driver, driver.find<QLineEdit>("txtAveragingTime"), QStringLiteral("10"));
    cell::ChannelState state;
    driver.await(
        [&] {
            return driver.cell.show(GOOD_SENSOR, &state) &&
                   qAbs(shown_mv(driver) - state.mv) < 0.01 * qMax(1.0, qAbs(state.mv));
        },
        QStringLiteral("the reading on the plot"));
    enter_number(driver, row.value, reference);
    tap(row.button);
    driver.check(row.button->text() == QLatin1String("Undo"),
                 QStringLiteral("point %1 is captured").arg(point + 1));
}

} // namespace

void stop_touch_names(Driver &driver)
{
    driver.await([&] { return driver.window()->isVisible(); }, QStringLiteral("the window"));
    auto *const standard = driver.find<QLineEdit>("txtCalibrationQIE");
    QWidget *const pad = open_pad(driver, standard);
    tap_keys(driver, pad, QStringLiteral("lshift d w dash"));
    driver.picture(QStringLiteral("touch-keyboard"));
    tap_keys(driver, pad, QStringLiteral("1 2 lshift"));
    driver.picture(QStringLiteral("touch-keyboard-shift"));
    tap_keys(driver, pad, QStringLiteral("rshift cabs left"));
    QWindow *const window = pad->windowHandle();
    const QPoint held = place_of(key(driver, pad, QStringLiteral("h")));
    QTest::mousePress(window, Qt::LeftButton, {}, held);
    driver.picture(QStringLiteral("touch-keyboard-caps-and-a-pressed-key"));
    QTest::mouseRelease(window, Qt::LeftButton, {}, held);
    tap_keys(driver, pad, QStringLiteral("backspace cabs rshift_2"));
    check_text(driver, standard, QStringLiteral("Dw-12"));
    auto *const name = driver.find<QLineEdit>("txtTechnicianName");
    tap_keys(driver, open_pad(driver, name),
             QStringLiteral("lshift r period space lshift a l v a r e z enter"));
    check_text(driver, name, QStringLiteral("R. Alvarez"));
}

void stop_touch_calibration(Driver &driver)
{
    driver.check(driver.cell.set_condition(GOOD_SENSOR, "drifted1"), QStringLiteral("a drift"));
    pick_by_tap(driver, GOOD_SENSOR);
    const int points = visible_rows(driver).size();
    auto *const first = visible_rows(driver).at(0).value;
    QWidget *const pad = open_pad(driver, first);
    driver.picture(QStringLiteral("touch-numpad"));
    tap_keys(driver, pad, QStringLiteral("5 10 backspace"));
    driver.check(!key(driver, pad, QStringLiteral("enter"))->isEnabled(),
                 QStringLiteral("a lone sign cannot be confirmed"));
    driver.picture(QStringLiteral("touch-numpad-lone-sign"));
    tap_keys(driver, pad, QStringLiteral("2 period period 5"));
    driver.picture(QStringLiteral("touch-numpad-number"));
    tap_keys(driver, pad, QStringLiteral("escape"));
    for (int point = 0; point < points; ++point)
        capture_by_tap(driver, point);
    driver.picture(QStringLiteral("touch-all-captured"));
    driver.with_dialog([&] { tap(driver.find<QPushButton>("btnRecordData")); },
                       [&](QWidget *dialog) {
                           tap(driver.find<QWidget>(AS_FOUND.radio, dialog));
                           auto *const comment = driver.find<QLineEdit>("txtComment", dialog);
                           QWidget *const keys = open_pad(driver, comment);
                           tap_keys(driver, keys, QStringLiteral("lshift b y space h a n d"));
                           driver.picture(QStringLiteral("touch-keyboard-over-a-dialog"));
                           tap_keys(driver, keys, QStringLiteral("enter"));
                           check_text(driver, comment, QStringLiteral("By hand"));
                           tap(driver.find<QPushButton>("btnRecord", dialog));
                       });
    driver.expect_record("good_sensor", AS_FOUND.step);
    tap(driver.find<QPushButton>("btnAdjustCalibration"));
    driver.check(!driver.find<QLineEdit>("txtAdjustCalibration")->text().isEmpty(),
                 QStringLiteral("Table Updated is stamped"));
    driver.expect_record("good_sensor", "Table Updated by adjustment");
    driver.expect_rewritten("good_sensor");
    driver.picture(QStringLiteral("touch-table-updated"));
}

void stop_touch_leave(Driver &driver)
{
    driver.window()->close();
}
