// SPDX-License-Identifier: GPL-3.0-or-later
//
// The dialog that asks what becomes of a report: shown in a browser, sent to an
// address of the kept list, or both. It yields the choice and does neither.
// Built on the caller's stack and run with exec; the caller then reads the
// choice. The caller has read the specs file first: an address that is added
// rewrites the file from g_specs, which loses the names and addresses that are
// not in it. GUI thread; takes no lock.
#ifndef REPORTS_REPORTDIALOG_H
#define REPORTS_REPORTDIALOG_H

#include <memory>

#include <QDialog>

namespace Ui
{
class ReportDialog;
}

class ReportDialog : public QDialog
{
    Q_OBJECT

public:
    // Without email_allowed the list stays out of reach.
    ReportDialog(QWidget *parent, bool email_allowed);
    ~ReportDialog() override;

    // The chosen address, empty for an empty list.
    QString email_address() const;
    bool email_checked() const;
    bool display_checked() const;

    // Appends the addresses of g_specs, to the cleared list when asked. Without
    // addresses nothing is cleared either.
    void fill_email_addresses(bool clear);

    // Rewrites the specs file from g_specs and counts the addresses anew.
    void save_specs_file();

private slots:
    void on_chkEmail_clicked(bool checked);
    void on_btnAddEmailAddress_clicked();

private:
    std::unique_ptr<Ui::ReportDialog> ui;
};

#endif
