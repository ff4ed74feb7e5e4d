// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef CALIBRATION_QUESTIONS_H
#define CALIBRATION_QUESTIONS_H

#include "calibration/processtables.h"

class QWidget;

// Asks; true for OK or Yes. QUESTION_NONE asks nothing and is true.
bool ask_question(QWidget *parent, QUESTION_MARK mark);

#endif
