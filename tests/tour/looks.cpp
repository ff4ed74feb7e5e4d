// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/tour/looks.h"

#include <QTextDocument>

#include <qwt_plot.h>

namespace tour
{

namespace
{

constexpr const char *BOXES[] = {"txtAsFound", "txtAfterService", "txtAdjustCalibration",
                                 "txtVerificationData", "txtNewCorrelation"};

QString box_state(const QLineEdit *box)
{
    const QString colour = colour_name(box->styleSheet());
    if (box->text().isEmpty())
        return colour == QLatin1String("white") || colour == QLatin1String("plain") ? QString()
                                                                                    : colour;
    return box->text() == QLatin1String("N/A") ? QStringLiteral("N/A ") + colour : colour;
}

QString button_state(const QPushButton *button)
{
    const QString style = button->styleSheet();
    const bool idle = style == QLatin1String("background-color: rgb(238, 238,238)");
    if (!button->isEnabled())
        return idle ? QStringLiteral("off") : QStringLiteral("off, ") + style;
    if (idle)
        return QStringLiteral("idle");
    if (style == QLatin1String("background-color: rgb(126,232,255)"))
        return QStringLiteral("ready");
    return style == QLatin1String("background-color: yellow") ? QStringLiteral("caution") : style;
}

} // namespace

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
    struct Colour {
        const char *style;
        const char *name;
    };
    constexpr Colour COLOURS[] = {
        {"background-color: rgb(0,255,0)", "green"},
        {"background-color: rgb(255, 255, 127)", "yellow"},
        {"background-color: rgb(255,170,0)", "orange"},
        {"background-color: rgb(255, 78, 78)", "red"},
        {"background-color: white", "white"},
        {"", "plain"},
    };
    for (const Colour &colour : COLOURS) {
        if (style == QLatin1String(colour.style))
            return QLatin1String(colour.name);
    }
    return style;
}

double shown_mv(Driver &driver)
{
    const QString title = driver.find<QwtPlot>("dataPlot")->title().text();
    return title.section(QLatin1Char(':'), 1).section(QLatin1Char('/'), 0, 0).trimmed().toDouble();
}

void check_boxes(Driver &driver, const QStringList &boxes)
{
    QStringList shown;
    for (const char *box : BOXES)
        shown.append(box_state(driver.find<QLineEdit>(box)));
    driver.check(shown == boxes, QStringLiteral("process boxes: \"%1\" instead of \"%2\"")
                                     .arg(shown.join(QStringLiteral("\", \"")),
                                          boxes.join(QStringLiteral("\", \""))));
}

void check_decisions(Driver &driver, const char *reuse, const char *adjust)
{
    const QString shown = button_state(driver.find<QPushButton>("btnReuseCalibration")) +
                          QStringLiteral(" and ") +
                          button_state(driver.find<QPushButton>("btnAdjustCalibration"));
    const QString wanted =
        QStringLiteral("%1 and %2").arg(QLatin1String(reuse), QLatin1String(adjust));
    driver.check(shown == wanted,
                 QStringLiteral("re-use and adjust are %1 instead of %2").arg(shown, wanted));
}

void check_advice(Driver &driver, const char *advice)
{
    const auto *label = driver.find<QLabel>("lblNextStep");
    QTextDocument markup;
    markup.setDocumentMargin(0.0);
    markup.setDefaultFont(label->font());
    markup.setHtml(label->text());
    driver.check(markup.idealWidth() <= label->width(),
                 QStringLiteral("an advice %1 wide breaks its lines in %2")
                     .arg(markup.idealWidth())
                     .arg(label->width()));
    const QString shown = markup.toPlainText().simplified();
    driver.check(
        shown == QLatin1String(advice),
        QStringLiteral("the advice is \"%1\" instead of \"%2\"").arg(shown, QLatin1String(advice)));
}

void check_rows(Driver &driver, const char *colour)
{
    int number = 0;
    for (const Row &row : visible_rows(driver)) {
        const QString shown = colour_name(row.value->styleSheet());
        driver.check(shown == QLatin1String(colour), QStringLiteral("row %1 is %2 instead of %3")
                                                         .arg(++number)
                                                         .arg(shown, QLatin1String(colour)));
    }
}

} // namespace tour
