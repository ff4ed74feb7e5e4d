// SPDX-License-Identifier: GPL-3.0-or-later
//
// Asks what kind of data the captured points are, and records them.
#ifndef CALIBRATION_SAVETYPEDIALOG_H
#define CALIBRATION_SAVETYPEDIALOG_H

#include <memory>

#include <QDialog>

#include "calibration/processtables.h"

class MainWindow;

namespace Ui
{
class SaveTypeDialog;
}

class SaveTypeDialog : public QDialog
{
    Q_OBJECT

public:
    SaveTypeDialog(QWidget *parent, uint16_t as_found_done);
    ~SaveTypeDialog() override;

private slots:
    void on_btnRecord_clicked();

protected:
    bool eventFilter(QObject *object, QEvent *event) override;

private:
    bool description_given(QuestionMark mark);
    void record(void (MainWindow::*recording)());

    std::unique_ptr<Ui::SaveTypeDialog> ui;
    uint16_t as_found_done;
};

#endif
