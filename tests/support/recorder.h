// SPDX-License-Identifier: GPL-3.0-or-later
//
// Stands in for the boxes that the windows show: computation calls
// show_information and show_warning, and a test reads here what was said.
#ifndef SUPPORT_RECORDER_H
#define SUPPORT_RECORDER_H

#include <QString>
#include <QStringList>

// Texts of show_information since the last clear, in their order.
QStringList information_texts();
// What show_warning was given since the last clear, in its order.
QStringList warning_titles();
QStringList warning_texts();
// Forgets all of them.
void clear_recorded();

#endif
