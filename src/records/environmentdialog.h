// SPDX-License-Identifier: GPL-3.0-or-later
//
// The dialog in which the host variables of the test cell's surroundings are
// named. Built on the caller's stack and run with exec; OK stores the names in
// g_specs and rewrites the specs file. The caller has read the file first: an OK
// before that empties its list of addresses. GUI thread; takes no lock.
#ifndef RECORDS_ENVIRONMENTDIALOG_H
#define RECORDS_ENVIRONMENTDIALOG_H

#include <memory>

#include <QDialog>

namespace Ui
{
class EnvironmentDialog;
}

class EnvironmentDialog : public QDialog
{
    Q_OBJECT

public:
    explicit EnvironmentDialog(QWidget *parent);
    ~EnvironmentDialog() override;

private slots:
    void on_btnOK_clicked();

private:
    void store() const;

    std::unique_ptr<Ui::EnvironmentDialog> ui;
};

#endif
