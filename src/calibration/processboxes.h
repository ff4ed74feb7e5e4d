// SPDX-License-Identifier: GPL-3.0-or-later
//
// The widgets that show the state of the calibration process, and the menu that
// follows it. The window owns them.
#ifndef CALIBRATION_PROCESSBOXES_H
#define CALIBRATION_PROCESSBOXES_H

class QAction;
class QLabel;
class QLineEdit;
class QMenu;
class QPushButton;

struct ProcessBoxes {
    QLineEdit *as_found;
    QLineEdit *after_service;
    QLineEdit *adjust_calibration;
    QLineEdit *verification;
    QLineEdit *new_correlation;
    QPushButton *record_data;
    QPushButton *reuse_calibration;
    QPushButton *adjust_decision;
    QPushButton *line_report; // hidden
    QMenu *statistics;
    QAction *polynomial_regression;
    QAction *point_statistics;
};

#endif
