// SPDX-License-Identifier: GPL-3.0-or-later
//
// The dialog that asks what becomes of a report.
#include <QAbstractItemView>
#include <QCheckBox>
#include <QComboBox>
#include <QInputDialog>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QtTest>

#include "gui/records/specsrecord.h"
#include "reports/reportdialog.h"
#include "support/boxanswerer.h"
#include "support/hostlog.h"
#include "support/testmain.h"

namespace
{

const QString ASKED = "Enter Email Address to be Added";
const QString NONE_ADDED = "No Email Address Added";
const QString NONE_WILL_BE = "No email address will be added.";

QComboBox *list_of(const QDialog &dialog)
{
    return part_of<QComboBox>(dialog, "cboEmailAddresses");
}

QStringList listed(const QDialog &dialog)
{
    QStringList texts;
    for (int i = 0; i < list_of(dialog)->count(); ++i)
        texts.append(list_of(dialog)->itemText(i));
    return texts;
}

QStringList numbered(int count)
{
    QStringList emails;
    for (int i = 0; i < count; ++i)
        emails.append(QString("%1@cell").arg(i));
    return emails;
}

// The e-mail box, ticked as by hand, then the button behind the list.
void press_add(const QDialog &dialog)
{
    if (!part_of<QCheckBox>(dialog, "chkEmail")->isChecked())
        part_of<QCheckBox>(dialog, "chkEmail")->click();
    part_of<QPushButton>(dialog, "btnAddEmailAddress")->click();
}

void expect_entry(BoxAnswerer *answerer, const QString &text, bool accepted = true)
{
    answerer->expect_dialog(ASKED, [text, accepted](QDialog *asked) {
        asked->findChild<QLineEdit *>()->setText(text);
        if (accepted)
            asked->accept();
    });
}

} // namespace

class ReportDialogTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { require_private_cell(); }
    void init() { fresh_specs(); }
    void form();
    void state_at_the_start_data();
    void state_at_the_start();
    void ticking_email_opens_the_list();
    void without_email_the_list_stays_out_of_reach();
    void empty_list_gives_an_empty_address();
    void list_shows_the_record();
    void count_beyond_the_slots_shows_what_there_is();
    void emptied_list_keeps_its_old_rows();
    void filling_without_clearing_appends();
    void choice_is_read_after_exec();
    void address_is_asked_for();
    void address_is_added_and_written();
    void address_is_not_selected();
    void nothing_entered_adds_nothing_data();
    void nothing_entered_adds_nothing();
    void address_of_more_than_79_bytes_is_cut();
    void duplicate_and_nonsense_are_taken();
    void twenty_fifth_address_is_taken();
    void twenty_sixth_address_is_refused();
    void blank_address_of_the_file_shifts_the_slots();
    void names_that_were_never_read_are_written_as_empty_lines();
    void failed_write_keeps_the_address_for_this_run();
};

void ReportDialogTest::form()
{
    const ReportDialog dialog(nullptr, true);
    QCOMPARE(dialog.windowTitle(), QString("Report Action Dialog"));
    QCOMPARE(part_of<QCheckBox>(dialog, "chkDisplay")->text(),
             QString("Display Report in Browser"));
    QCOMPARE(part_of<QCheckBox>(dialog, "chkEmail")->text(), QString("Email the Report"));
    for (const char *box : {"chkDisplay", "chkEmail"}) {
        const QFont font = part_of<QCheckBox>(dialog, box)->font();
        QCOMPARE(font.family(), QString("Sans Serif"));
        QCOMPARE(font.pointSize(), 13);
    }
    QCOMPARE(part_of<QPushButton>(dialog, "btnAddEmailAddress")->text(),
             QString("Add Email\nAddress"));
    QCOMPARE(part_of<QPushButton>(dialog, "btnOk")->text(), QString("Ok"));
    QCOMPARE(part_of<QPushButton>(dialog, "btnCancel")->text(), QString("Cancel"));
    MetBox as_box;
    as_box.flags = dialog.windowFlags();
    QVERIFY(BoxAnswerer::has_title_bar_only(as_box));
}

void ReportDialogTest::state_at_the_start_data()
{
    QTest::addColumn<bool>("allowed");
    QTest::newRow("e-mail allowed") << true;
    QTest::newRow("not allowed") << false;
}

void ReportDialogTest::state_at_the_start()
{
    QFETCH(bool, allowed);
    set_emails({"a@cell", "b@cell"});
    const ReportDialog dialog(nullptr, allowed);
    QCOMPARE(part_of<QCheckBox>(dialog, "chkEmail")->isEnabled(), allowed);
    QVERIFY(!list_of(dialog)->isEnabled());
    QVERIFY(!part_of<QPushButton>(dialog, "btnAddEmailAddress")->isEnabled());
    QVERIFY(dialog.display_checked());
    QVERIFY(!dialog.email_checked());
    QCOMPARE(list_of(dialog)->currentIndex(), 0);
    QCOMPARE(dialog.email_address(), QString("a@cell"));
}

void ReportDialogTest::ticking_email_opens_the_list()
{
    const ReportDialog dialog(nullptr, true);
    auto *const box = part_of<QCheckBox>(dialog, "chkEmail");
    for (const bool checked : {true, false, true}) {
        box->click();
        QCOMPARE(dialog.email_checked(), checked);
        QCOMPARE(list_of(dialog)->isEnabled(), checked);
        QCOMPARE(part_of<QPushButton>(dialog, "btnAddEmailAddress")->isEnabled(), checked);
    }
}

void ReportDialogTest::without_email_the_list_stays_out_of_reach()
{
    set_emails({"a@cell", "b@cell"});
    const BoxAnswerer answerer;
    ReportDialog dialog(nullptr, false);
    dialog.show();
    QTest::mouseClick(part_of<QCheckBox>(dialog, "chkEmail"), Qt::LeftButton);
    QTest::keyClick(part_of<QCheckBox>(dialog, "chkEmail"), Qt::Key_Space);
    QVERIFY(!dialog.email_checked());
    QVERIFY(!list_of(dialog)->isEnabled());
    auto *const add = part_of<QPushButton>(dialog, "btnAddEmailAddress");
    QVERIFY(!add->isEnabled());
    add->click();
    QTest::mouseClick(add, Qt::LeftButton);
    QTest::keyClick(add, Qt::Key_Space);
    QVERIFY(answerer.met().isEmpty());
    QTest::mouseClick(list_of(dialog), Qt::LeftButton);
    QTest::keyClick(list_of(dialog), Qt::Key_F4);
    QVERIFY(!list_of(dialog)->view()->isVisible());
    QTest::keyClick(list_of(dialog), Qt::Key_Down);
    QCOMPARE(dialog.email_address(), QString("a@cell"));
}

void ReportDialogTest::empty_list_gives_an_empty_address()
{
    const ReportDialog dialog(nullptr, true);
    QCOMPARE(list_of(dialog)->count(), 0);
    QCOMPARE(dialog.email_address(), QString());
}

void ReportDialogTest::list_shows_the_record()
{
    const QStringList emails{"a@cell", "ä@cell", QString(1023, 'x')};
    set_emails(emails);
    const ReportDialog dialog(nullptr, true);
    QCOMPARE(listed(dialog), emails);
}

void ReportDialogTest::count_beyond_the_slots_shows_what_there_is()
{
    set_emails(numbered(25));
    g_specs->report_email_count = 26;
    const ReportDialog dialog(nullptr, true);
    QCOMPARE(listed(dialog), numbered(25));
}

void ReportDialogTest::emptied_list_keeps_its_old_rows()
{
    set_emails({"a@cell"});
    ReportDialog dialog(nullptr, true);
    set_emails({});
    dialog.fill_email_addresses(true);
    QCOMPARE(listed(dialog), QStringList{"a@cell"});
}

void ReportDialogTest::filling_without_clearing_appends()
{
    set_emails({"a@cell"});
    ReportDialog dialog(nullptr, true);
    dialog.fill_email_addresses(false);
    QCOMPARE(listed(dialog), (QStringList{"a@cell", "a@cell"}));
    dialog.fill_email_addresses(true);
    QCOMPARE(listed(dialog), QStringList{"a@cell"});
}

void ReportDialogTest::choice_is_read_after_exec()
{
    set_emails({"a@cell", "b@cell"});
    for (const char *button : {"btnOk", "btnCancel"}) {
        ReportDialog dialog(nullptr, true);
        BoxAnswerer answerer;
        answerer.expect_dialog("Report Action Dialog", [button](QDialog *open) {
            part_of<QCheckBox>(*open, "chkDisplay")->click();
            part_of<QCheckBox>(*open, "chkEmail")->click();
            list_of(*open)->setCurrentIndex(1);
            part_of<QPushButton>(*open, button)->click();
        });
        QCOMPARE(dialog.exec(),
                 int(qstrcmp(button, "btnOk") == 0 ? QDialog::Accepted : QDialog::Rejected));
        QVERIFY(!dialog.display_checked());
        QVERIFY(dialog.email_checked());
        QCOMPARE(dialog.email_address(), QString("b@cell"));
    }
}

void ReportDialogTest::address_is_asked_for()
{
    const ReportDialog dialog(nullptr, true);
    BoxAnswerer answerer;
    answerer.expect_dialog(ASKED, [](QDialog *asked) {
        auto *const input = qobject_cast<QInputDialog *>(asked);
        QVERIFY(input != nullptr);
        QCOMPARE(input->labelText(), QString("Email Address:"));
        QCOMPARE(input->textEchoMode(), QLineEdit::Normal);
        QCOMPARE(input->textValue(), QString());
    });
    answerer.expect(NONE_ADDED, NONE_WILL_BE);
    press_add(dialog);
}

void ReportDialogTest::address_is_added_and_written()
{
    set_names("T", "B", "H");
    set_emails({"a@cell"});
    const HostLog log;
    const ReportDialog dialog(nullptr, true);
    BoxAnswerer answerer;
    expect_entry(&answerer, "ä@cell");
    press_add(dialog);
    QCOMPARE(answerer.met().size(), 1);
    QCOMPARE(g_specs->report_email_count, 2);
    QCOMPARE(g_specs->report_email[1], "ä@cell");
    QCOMPARE(listed(dialog), (QStringList{"a@cell", "ä@cell"}));
    QCOMPARE(read_file(SPECS_FILE), QByteArray("@ROOM_TEMP_KEYWORD\nT\n@BAROMETER_KEYWORD\nB\n"
                                               "@HUMIDITY_KEYWORD\nH\n"
                                               "@REPORT_EMAIL_LIST_KEYWORD\na@cell\nä@cell\n"));
    QCOMPARE(log.texts(), QStringList());
}

void ReportDialogTest::address_is_not_selected()
{
    set_emails({"a@cell", "b@cell"});
    const ReportDialog dialog(nullptr, true);
    list_of(dialog)->setCurrentIndex(1);
    BoxAnswerer answerer;
    expect_entry(&answerer, "c@cell");
    press_add(dialog);
    QCOMPARE(list_of(dialog)->currentIndex(), 0);
    QCOMPARE(dialog.email_address(), QString("a@cell"));
}

void ReportDialogTest::nothing_entered_adds_nothing_data()
{
    const auto row = test_columns<QString, bool>("text", "accepted");
    row("cancelled", "a@cell", false);
    row("accepted empty", "", true);
    row("cancelled empty", "", false);
}

void ReportDialogTest::nothing_entered_adds_nothing()
{
    QFETCH(QString, text);
    QFETCH(bool, accepted);
    const ReportDialog dialog(nullptr, true);
    BoxAnswerer answerer;
    expect_entry(&answerer, text, accepted);
    answerer.expect(NONE_ADDED, NONE_WILL_BE);
    press_add(dialog);
    const MetBox &box = answerer.met().last();
    QCOMPARE(box.buttons, QStringList{"OK"});
    QCOMPARE(box.icon, QMessageBox::Warning);
    QVERIFY(BoxAnswerer::has_title_bar_only(box));
    QCOMPARE(g_specs->report_email_count, 0);
    QVERIFY(!QFile::exists(SPECS_FILE));
    QVERIFY(listed(dialog).isEmpty());
}

void ReportDialogTest::address_of_more_than_79_bytes_is_cut()
{
    const ReportDialog dialog(nullptr, true);
    BoxAnswerer answerer;
    expect_entry(&answerer, QString(79, 'a'));
    press_add(dialog);
    expect_entry(&answerer, QString(80, 'b'));
    press_add(dialog);
    expect_entry(&answerer, QString(60, QChar(0xe4)));
    press_add(dialog);
    QCOMPARE(listed(dialog),
             (QStringList{QString(79, 'a'), QString(79, 'b'), QString(39, QChar(0xe4))}));
    QVERIFY(read_file(SPECS_FILE).endsWith('\n' + QString(39, QChar(0xe4)).toUtf8() + '\n'));
}

void ReportDialogTest::duplicate_and_nonsense_are_taken()
{
    set_emails({"a@cell"});
    const ReportDialog dialog(nullptr, true);
    BoxAnswerer answerer;
    for (const char *text : {"a@cell", "no address at all", " ", "@x", "b@cell"}) {
        expect_entry(&answerer, text);
        press_add(dialog);
    }
    QCOMPARE(listed(dialog),
             (QStringList{"a@cell", "a@cell", "no address at all", " ", "@x", "b@cell"}));
    QVERIFY(read_file(SPECS_FILE).endsWith("\n \n@x\nb@cell\n"));
    // To the reader "@x" is a keyword, so the list ends before it.
    QVERIFY(read_specs(g_specs));
    const ReportDialog next(nullptr, true);
    QCOMPARE(listed(next), (QStringList{"a@cell", "a@cell", "no address at all", " "}));
}

void ReportDialogTest::twenty_fifth_address_is_taken()
{
    set_emails(numbered(24));
    const ReportDialog dialog(nullptr, true);
    BoxAnswerer answerer;
    expect_entry(&answerer, "24@cell");
    press_add(dialog);
    QCOMPARE(listed(dialog), numbered(25));
    QCOMPARE(g_specs->report_email_count, 25);
    QVERIFY(read_file(SPECS_FILE).endsWith("\n23@cell\n24@cell\n"));
}

void ReportDialogTest::twenty_sixth_address_is_refused()
{
    set_emails(numbered(25));
    for (const int count : {25, 26, 1000}) {
        g_specs->report_email_count = count;
        const ReportDialog dialog(nullptr, true);
        BoxAnswerer answerer;
        expect_entry(&answerer, "25@cell");
        answerer.expect(NONE_ADDED, NONE_WILL_BE);
        press_add(dialog);
        QCOMPARE(g_specs->report_email_count, count);
        QCOMPARE(g_specs->report_email[24], "24@cell");
        QCOMPARE(listed(dialog), numbered(25));
        QVERIFY(!QFile::exists(SPECS_FILE));
    }
}

// The reader counts a blank line as an address and the writer does not, so the
// next address goes where another stands.
void ReportDialogTest::blank_address_of_the_file_shifts_the_slots()
{
    set_emails({"a@cell", "", "b@cell"});
    const ReportDialog dialog(nullptr, true);
    BoxAnswerer answerer;
    expect_entry(&answerer, "c@cell");
    press_add(dialog);
    QCOMPARE(listed(dialog), (QStringList{"a@cell", "", "b@cell", "c@cell"}));
    QCOMPARE(g_specs->report_email_count, 3);
    QVERIFY(read_file(SPECS_FILE).endsWith("LIST_KEYWORD\na@cell\nb@cell\nc@cell\n"));
    expect_entry(&answerer, "d@cell");
    press_add(dialog);
    QCOMPARE(listed(dialog), (QStringList{"a@cell", "", "b@cell", "d@cell"}));
    QVERIFY(read_file(SPECS_FILE).endsWith("LIST_KEYWORD\na@cell\nb@cell\nd@cell\n"));
}

void ReportDialogTest::names_that_were_never_read_are_written_as_empty_lines()
{
    const ReportDialog dialog(nullptr, true);
    BoxAnswerer answerer;
    expect_entry(&answerer, "a@cell");
    press_add(dialog);
    QCOMPARE(read_file(SPECS_FILE),
             QByteArray("@ROOM_TEMP_KEYWORD\n\n@BAROMETER_KEYWORD\n\n@HUMIDITY_KEYWORD\n\n"
                        "@REPORT_EMAIL_LIST_KEYWORD\na@cell\n"));
}

void ReportDialogTest::failed_write_keeps_the_address_for_this_run()
{
    QVERIFY(QDir().mkpath(SPECS_FILE));
    const HostLog log;
    const ReportDialog dialog(nullptr, true);
    BoxAnswerer answerer;
    expect_entry(&answerer, "a@cell");
    press_add(dialog);
    QCOMPARE(answerer.met().size(), 1);
    QCOMPARE(log.count_containing("unable to write the ini file"), 1);
    QCOMPARE(g_specs->report_email_count, 1);
    QCOMPARE(listed(ReportDialog(nullptr, true)), QStringList{"a@cell"});
}

WINDOW_TEST(ReportDialogTest);
#include "test_reportdialog.moc"
