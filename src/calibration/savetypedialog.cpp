// SPDX-License-Identifier: GPL-3.0-or-later
#include "calibration/savetypedialog.h"

#include <QScreen>
#include <QWindow>

#include "calibration/questions.h"
#include "frame/mainwindow.h"
#include "frame/messagebox.h"
#include "host/operations.h"
#include "ui_savetypedialog.h"

namespace
{

// The place beside the process column; moved back where it would leave the
// screen.
QRect place_on_screen(const QWidget *window)
{
    const int top = window != nullptr ? window->window()->y() : 0;
    QRect place(QPoint(280, top + 250), QPoint(860, top + 553));
    const QScreen *screen = window != nullptr ? window->window()->screen() : nullptr;
    if (screen == nullptr)
        return place;
    const QRect available = screen->availableGeometry();
    place.moveRight(qMin(place.right(), available.right()));
    place.moveBottom(qMin(place.bottom(), available.bottom()));
    place.moveLeft(qMax(place.left(), available.left()));
    place.moveTop(qMax(place.top(), available.top()));
    return place;
}

} // namespace

SaveTypeDialog::SaveTypeDialog(QWidget *parent, uint16_t done)
    : QDialog(parent), ui(new Ui::SaveTypeDialog), as_found_done(done)
{
    ui->setupUi(this);
    setWindowFlags(TITLE_BAR_ONLY);
    setGeometry(place_on_screen(parent));
    connect(ui->btnCancel, &QPushButton::clicked, this, &QDialog::reject);
    if (g_touch_input) {
        ui->txtComment->setProperty("keyboard", true);
        ui->txtComment->installEventFilter(this);
    }
}

SaveTypeDialog::~SaveTypeDialog()
{
    delete ui;
}

bool SaveTypeDialog::eventFilter(QObject *, QEvent *)
{
    return false;
}

// The first radio button checked, in the order of the form, decides; with none
// the press does nothing.
void SaveTypeDialog::on_btnRecord_clicked()
{
    if (ui->rbAsFound->isChecked()) {
        if (as_found_done == 0 || description_given(QUESTION_R3))
            record(&MainWindow::record_as_found);
    } else if (ui->rbAfterService->isChecked()) {
        if (description_given(QUESTION_R4))
            record(&MainWindow::record_after_service);
    } else if (ui->rbVerification->isChecked()) {
        record(&MainWindow::record_verification);
    } else if (ui->rbNewCorrelation->isChecked()) {
        record(&MainWindow::record_new_correlation);
    }
}

bool SaveTypeDialog::description_given(int mark)
{
    if (!ui->txtComment->text().isEmpty())
        return true;
    ask_question(this, static_cast<QUESTION_MARK>(mark));
    ui->txtComment->setFocus();
    return false;
}

// The description is taken first, so a recording that is then declined leaves it
// in the record all the same.
void SaveTypeDialog::record(void (MainWindow::*recording)())
{
    copyn(__FILE__, __LINE__, g_cfg->table.cal_comment, ui->txtComment->text().toUtf8().constData(),
          sizeof g_cfg->table.cal_comment);
    (g_main_window->*recording)();
    accept();
}
