// SPDX-License-Identifier: GPL-3.0-or-later
#include "calibration/savetypedialog.h"

#include <QEvent>
#include <QScreen>

#include "calibration/dialogplace.h"
#include "calibration/questions.h"
#include "frame/functions.h"
#include "frame/mainwindow.h"
#include "ui_savetypedialog.h"
#include "window/messagebox.h"
#include "window/touchfield.h"

namespace
{

QRect place_beside_process(const QWidget *parent)
{
    const QWidget *window = parent->window();
    return recording_dialog_place(window->y(), window->screen()->availableGeometry());
}

} // namespace

SaveTypeDialog::SaveTypeDialog(QWidget *parent, uint16_t done)
    : QDialog(parent), ui(std::make_unique<Ui::SaveTypeDialog>()), as_found_done(done)
{
    ui->setupUi(this);
    setWindowFlags(TITLE_BAR_ONLY);
    setGeometry(place_beside_process(parent));
    connect(ui->btnCancel, &QPushButton::clicked, this, &QDialog::reject);
    if (g_touch_input)
        mark_touch_field(ui->txtComment, this);
}

SaveTypeDialog::~SaveTypeDialog() = default;

// A double tap opens the field's pad and goes on to the field as well.
bool SaveTypeDialog::eventFilter(QObject *object, QEvent *event)
{
    hand_double_tap_over(object, event);
    return false;
}

// The first radio button checked, in the order of the form, decides; with none
// the press does nothing.
void SaveTypeDialog::on_btnRecord_clicked()
{
    if (ui->rbAsFound->isChecked()) {
        if (as_found_done == 0 || description_given(QuestionMark::R3))
            record(&MainWindow::record_as_found);
    } else if (ui->rbAfterService->isChecked()) {
        if (description_given(QuestionMark::R4))
            record(&MainWindow::record_after_service);
    } else if (ui->rbVerification->isChecked()) {
        record(&MainWindow::record_verification);
    } else if (ui->rbNewCorrelation->isChecked()) {
        record(&MainWindow::record_new_correlation);
    }
}

bool SaveTypeDialog::description_given(QuestionMark mark)
{
    if (!ui->txtComment->text().isEmpty())
        return true;
    ask_question(this, mark);
    ui->txtComment->setFocus();
    return false;
}

// The description is taken first, so a recording that is then declined leaves it
// in the record all the same.
void SaveTypeDialog::record(void (MainWindow::*recording)())
{
    copy_text(g_cfg->table.cal_comment, ui->txtComment->text());
    (g_main_window->*recording)();
    accept();
}
