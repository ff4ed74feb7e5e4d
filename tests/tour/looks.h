// SPDX-License-Identifier: GPL-3.0-or-later
//
// Reading the window, and checks of what it shows.
#ifndef TOUR_LOOKS_H
#define TOUR_LOOKS_H

#include <QLabel>
#include <QList>

#include "tests/tour/driver.h"

namespace tour
{

// A row of the form: reference, millivolts, button.
struct Row {
    QLineEdit *value;
    QLabel *mv;
    QPushButton *button;
};

QList<Row> visible_rows(Driver &driver);
// "green", "yellow", "orange", "red" or "white" for the style sheet of a field,
// the style sheet itself for any other.
QString colour_name(const QString &style);
// The millivolts that the plot's title shows.
double shown_mv(Driver &driver);

// The five process boxes in their order, each by its colour when it holds a
// time ("plain" without one), by "N/A COLOUR", or by "" when it is empty and
// white or plain.
void check_boxes(Driver &driver, const QStringList &boxes);
// The two decision buttons: "ready", "idle" or "caution", or "off" when the
// button is disabled in the idle colour.
void check_decisions(Driver &driver, const char *reuse, const char *adjust);
// The advice without its markup; "" for none.
void check_advice(Driver &driver, const char *advice);
// All visible rows have that colour.
void check_rows(Driver &driver, const char *colour);

} // namespace tour

#endif
