// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef CALIBRATION_QUESTIONS_H
#define CALIBRATION_QUESTIONS_H

#include "calibration/processtables.h"

class QWidget;

// Asks; true for OK or Yes. QuestionMark::None asks nothing and is true.
bool ask_question(QWidget *parent, QuestionMark mark);

#endif
