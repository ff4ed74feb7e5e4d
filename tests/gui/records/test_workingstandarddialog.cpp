// SPDX-License-Identifier: GPL-3.0-or-later
//
// The dialog of a working standard, over files of the test's own.
#include <QDir>
#include <QLabel>
#include <QtTest>

#include "gui/sensor/tableinformation.h"
#include "records/workingstandarddialog.h"
#include "support/cellfiles.h"
#include "support/hostlog.h"
#include "support/testmain.h"

namespace
{

const char *const FIELDS[] = {"lblWSName",    "txtWSMake",     "txtWSModel",
                              "txtWSCalDate", "txtWSSerialNo", "txtWSRange"};

const QStringList VALUES = {"DW-12", "Pascal & Sons", "P 3000", "03/14/2026", "SN 77", "0 to 100"};

const QString TITLE = "Working Standard Information";
const QString GUARD = "Please make sure data has been entered\nfor all Working Standard fields";
const QString NO_FOLDER =
    "The /specs/working_standards/ directory does not exist.\n\nPlease create this directory in "
    "order for entered Working Standard information to be saved";

const QString FOLDER = "/specs/working_standards";
const QString FILE_OF_VALUES = FOLDER + "/DW-12.txt";

QByteArray file_of(const QStringList &values)
{
    return ("# Information for working standard - " + values[0] + "\n@WS_MAKE_KEYWORD\n" +
            values[1] + "\n@WS_MODEL_KEYWORD\n" + values[2] + "\n@WS_CAL_DATE_KEYWORD\n" +
            values[3] + "\n@WS_SERIAL_NO_KEYWORD\n" + values[4] + "\n@WS_RANGE_KEYWORD\n" +
            values[5] + '\n')
        .toUtf8();
}

QStringList shown(const QDialog &dialog)
{
    QStringList texts;
    for (const char *field : FIELDS)
        texts.append(part<QLineEdit>(dialog, field)->text());
    return texts;
}

QStringList reported()
{
    const LINE_RPT &r = g_line_rpt;
    QStringList texts;
    for (const char *text :
         {r.ws_qie_number, r.ws_make, r.ws_model, r.ws_cal_date, r.ws_serial_no, r.ws_range})
        texts.append(QString::fromUtf8(text));
    return texts;
}

bool is_name_open(const QDialog &dialog)
{
    return part<QLineEdit>(dialog, "lblWSName")->isEnabled();
}

void type_all(const QDialog &dialog, const QStringList &values)
{
    for (int i = 0; i < values.size(); ++i)
        part<QLineEdit>(dialog, FIELDS[i])->setText(values[i]);
}

const QStringList NOTHING = {"", "", "", "", "", ""};

} // namespace

class StandardsDialog : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { require_private_cell(); }
    void init();
    void form();
    void flags_leave_no_close_button();
    void new_standard();
    void new_standard_leaves_the_report_alone();
    void known_standard_fills_fields_and_report_at_once();
    void empty_name_can_be_typed();
    void name_is_taken_once();
    void file_without_the_range();
    void value_that_is_missing_is_cleared_in_the_report();
    void keyword_without_a_value_is_its_own();
    void guard_data();
    void guard();
    void second_save_overwrites_the_whole_file();
    void long_value_is_shown_and_written_whole();
    void folder_is_made();
    void folder_that_cannot_be_made();
    void failed_write_is_logged_and_the_report_has_the_fields();
    void ok_is_the_only_way_out();
    void enter_in_a_field_is_ok();

private:
    QLineEdit m_name;
};

void StandardsDialog::init()
{
    clear_cell();
    QVERIFY(QDir().mkpath(FOLDER));
    m_name.setText("DW-12");
    g_line_rpt = {};
}

void StandardsDialog::form()
{
    WorkingStandardDialog dialog(&m_name, nullptr);
    QCOMPARE(dialog.windowTitle(), TITLE);
    const char *const labels[] = {"label_6", "label", "label_2", "label_3", "label_4", "label_5"};
    const char *const texts[] = {
        "Name:", "Make:", "Model:", "Calibration Date:", "Serial No.:", "Range:"};
    for (int i = 0; i < 6; ++i) {
        const auto *const label = part<QLabel>(dialog, labels[i]);
        QCOMPARE(label->text(), QString(texts[i]));
        QCOMPARE(label->buddy(), part<QLineEdit>(dialog, FIELDS[i]));
    }
    QCOMPARE(dialog.findChildren<QLineEdit *>().size(), 6);
    const auto buttons = dialog.findChildren<QPushButton *>();
    QCOMPARE(buttons.size(), 1);
    QCOMPARE(buttons[0]->objectName(), QString("btnWSOK"));
    QCOMPARE(buttons[0]->text(), QString("OK"));
    QVERIFY(buttons[0]->isDefault());
}

void StandardsDialog::flags_leave_no_close_button()
{
    WorkingStandardDialog dialog(&m_name, nullptr);
    MetBox met;
    met.flags = dialog.windowFlags();
    QVERIFY(BoxAnswerer::has_title_bar_only(met));
}

void StandardsDialog::new_standard()
{
    WorkingStandardDialog dialog(&m_name, nullptr);
    QCOMPARE(shown(dialog), QStringList({"DW-12", "", "", "", "", ""}));
    QVERIFY(!is_name_open(dialog));
    QVERIFY(!QFile::exists(FILE_OF_VALUES));
    BoxAnswerer answerer;
    answerer.expect_dialog(TITLE, [](QDialog *open) {
        type_all(*open, VALUES);
        press(*open, "btnWSOK");
    });
    QCOMPARE(dialog.exec(), int(QDialog::Accepted));
    QCOMPARE(read_file(FILE_OF_VALUES), file_of(VALUES));
    QCOMPARE(read_file(FILE_OF_VALUES).count('\n'), 11);
    QCOMPARE(reported(), VALUES);
}

void StandardsDialog::new_standard_leaves_the_report_alone()
{
    qstrncpy(g_line_rpt.ws_qie_number, "former", sizeof g_line_rpt.ws_qie_number);
    qstrncpy(g_line_rpt.ws_range, "former range", sizeof g_line_rpt.ws_range);
    const WorkingStandardDialog dialog(&m_name, nullptr);
    QCOMPARE(reported(), QStringList({"former", "", "", "", "", "former range"}));
}

void StandardsDialog::known_standard_fills_fields_and_report_at_once()
{
    write_file(FILE_OF_VALUES, file_of(VALUES));
    const WorkingStandardDialog dialog(&m_name, nullptr);
    QCOMPARE(shown(dialog), VALUES);
    QVERIFY(!is_name_open(dialog));
    QCOMPARE(reported(), VALUES);
    QCOMPARE(read_file(FILE_OF_VALUES), file_of(VALUES));
}

void StandardsDialog::empty_name_can_be_typed()
{
    write_file(FOLDER + "/.txt", file_of(VALUES));
    m_name.clear();
    WorkingStandardDialog dialog(&m_name, nullptr);
    QCOMPARE(shown(dialog), NOTHING);
    QVERIFY(is_name_open(dialog));
    QCOMPARE(reported(), NOTHING);

    QStringList nameless = VALUES;
    nameless[0].clear();
    type_all(dialog, nameless);
    BoxAnswerer answerer;
    answerer.expect(QString(), GUARD);
    press(dialog, "btnWSOK");
    QCOMPARE(answerer.remaining(), 0);
    QCOMPARE(dialog.result(), 0);
    QCOMPARE(reported(), NOTHING);

    QTest::keyClicks(part<QLineEdit>(dialog, "lblWSName"), "DW-12");
    press(dialog, "btnWSOK");
    QCOMPARE(dialog.result(), int(QDialog::Accepted));
    QCOMPARE(read_file(FILE_OF_VALUES), file_of(VALUES));
    QCOMPARE(reported(), VALUES);
    QCOMPARE(m_name.text(), QString());
}

void StandardsDialog::name_is_taken_once()
{
    WorkingStandardDialog dialog(&m_name, nullptr);
    m_name.setText("other");
    type_all(dialog, {"DW-12", "a", "b", "c", "d", "e"});
    press(dialog, "btnWSOK");
    QCOMPARE(QDir(FOLDER).entryList(QDir::Files), QStringList("DW-12.txt"));
    QCOMPARE(m_name.text(), QString("other"));
}

void StandardsDialog::file_without_the_range()
{
    const QByteArray file = file_of(VALUES).replace("@WS_RANGE_KEYWORD\n0 to 100\n", "");
    write_file(FILE_OF_VALUES, file);
    WorkingStandardDialog dialog(&m_name, nullptr);
    QStringList values = VALUES;
    values[5].clear();
    QCOMPARE(shown(dialog), values);
    QCOMPARE(reported(), values);

    BoxAnswerer answerer;
    answerer.expect(QString(), GUARD);
    press(dialog, "btnWSOK");
    QCOMPARE(answerer.remaining(), 0);
    QCOMPARE(dialog.result(), 0);
    QCOMPARE(read_file(FILE_OF_VALUES), file);

    type(dialog, "txtWSRange", VALUES[5]);
    press(dialog, "btnWSOK");
    QCOMPARE(dialog.result(), int(QDialog::Accepted));
    QCOMPARE(read_file(FILE_OF_VALUES), file_of(VALUES));
    QCOMPARE(reported(), VALUES);
}

void StandardsDialog::value_that_is_missing_is_cleared_in_the_report()
{
    qstrncpy(g_line_rpt.ws_model, "former", sizeof g_line_rpt.ws_model);
    write_file(FILE_OF_VALUES, "@WS_MAKE_KEYWORD\nA\n");
    const WorkingStandardDialog dialog(&m_name, nullptr);
    QCOMPARE(shown(dialog), QStringList({"DW-12", "A", "", "", "", ""}));
    QCOMPARE(reported(), QStringList({"DW-12", "A", "", "", "", ""}));
}

void StandardsDialog::keyword_without_a_value_is_its_own()
{
    write_file(FILE_OF_VALUES, "@WS_RANGE_KEYWORD\n");
    const WorkingStandardDialog dialog(&m_name, nullptr);
    QCOMPARE(shown(dialog), QStringList({"DW-12", "", "", "", "", "@WS_RANGE_KEYWORD"}));
    QCOMPARE(reported()[5], QString("@WS_RANGE_KEYWORD"));
}

void StandardsDialog::guard_data()
{
    QTest::addColumn<int>("empty");
    for (int i = 0; i < 6; ++i)
        QTest::newRow(FIELDS[i]) << i;
}

void StandardsDialog::guard()
{
    QFETCH(int, empty);
    m_name.clear();
    WorkingStandardDialog dialog(&m_name, nullptr);
    BoxAnswerer answerer;
    answerer.expect_dialog(TITLE, [&](QDialog *open) {
        type_all(*open, VALUES);
        part<QLineEdit>(*open, FIELDS[empty])->clear();
        answerer.expect(QString(), GUARD);
        press(*open, "btnWSOK");
        QVERIFY(open->isVisible());
        QVERIFY(QDir(FOLDER).entryList(QDir::Files | QDir::Hidden).isEmpty());
        QCOMPARE(reported(), NOTHING);
        part<QLineEdit>(*open, FIELDS[empty])->setText(VALUES[empty]);
        press(*open, "btnWSOK");
    });
    QCOMPARE(dialog.exec(), int(QDialog::Accepted));
    QCOMPARE(reported(), VALUES);
    const MetBox &box = answerer.met().last();
    QVERIFY(is_ok_box(box));
    QCOMPARE(box.icon, QMessageBox::Warning);
}

void StandardsDialog::second_save_overwrites_the_whole_file()
{
    const QStringList former = {"DW-12", QString(500, 'x'), "b", "c", "d", QString(500, 'y')};
    for (const QStringList &values : {former, VALUES}) {
        WorkingStandardDialog dialog(&m_name, nullptr);
        type_all(dialog, values);
        press(dialog, "btnWSOK");
        QCOMPARE(dialog.result(), int(QDialog::Accepted));
        QCOMPARE(read_file(FILE_OF_VALUES), file_of(values));
    }
}

void StandardsDialog::long_value_is_shown_and_written_whole()
{
    QStringList values = VALUES;
    values[1] = QString::fromUtf8("\xc3\xb6").repeated(100);
    values[5] = QString(300, 'r');
    write_file(FILE_OF_VALUES, file_of(values));
    WorkingStandardDialog dialog(&m_name, nullptr);
    QCOMPARE(shown(dialog), values);
    press(dialog, "btnWSOK");
    QCOMPARE(read_file(FILE_OF_VALUES), file_of(values));
    QCOMPARE(reported()[1], values[1].left(39)); // 78 bytes; half a character is none
    QCOMPARE(reported()[5], values[5].left(79));
}

void StandardsDialog::folder_is_made()
{
    QVERIFY(QDir().rmdir(FOLDER));
    WorkingStandardDialog dialog(&m_name, nullptr);
    QVERIFY(QDir(FOLDER).exists());
    QVERIFY(!is_name_open(dialog));
    type_all(dialog, VALUES);
    press(dialog, "btnWSOK");
    QCOMPARE(read_file(FILE_OF_VALUES), file_of(VALUES));
}

// A file of that name stands in the way.
void StandardsDialog::folder_that_cannot_be_made()
{
    QVERIFY(QDir().rmdir(FOLDER));
    write_file(FOLDER, "");
    const HostLog log;
    BoxAnswerer answerer;
    answerer.expect(QString(), NO_FOLDER);
    WorkingStandardDialog dialog(&m_name, nullptr);
    QCOMPARE(answerer.remaining(), 0);
    QVERIFY(is_ok_box(answerer.met().last()));
    QCOMPARE(answerer.met().last().icon, QMessageBox::Warning);
    QCOMPARE(shown(dialog), QStringList({"DW-12", "", "", "", "", ""}));
    QVERIFY(is_name_open(dialog));
    QCOMPARE(reported(), NOTHING);
    QVERIFY(log.entries().isEmpty());

    type_all(dialog, VALUES);
    press(dialog, "btnWSOK");
    QCOMPARE(dialog.result(), int(QDialog::Accepted));
    QCOMPARE(reported(), VALUES);
    QCOMPARE(log.texts(), QStringList("Unable to write </specs/working_standards/DW-12.txt>: "
                                      "Not a directory"));
}

void StandardsDialog::failed_write_is_logged_and_the_report_has_the_fields()
{
    WorkingStandardDialog dialog(&m_name, nullptr);
    QVERIFY(QFile::link("/dev/full", FILE_OF_VALUES));
    const HostLog log;
    type_all(dialog, VALUES);
    press(dialog, "btnWSOK");
    QCOMPARE(dialog.result(), int(QDialog::Accepted));
    QCOMPARE(reported(), VALUES);
    QCOMPARE(log.texts(), QStringList("Unable to write </specs/working_standards/DW-12.txt>: "
                                      "No space left on device"));
}

void StandardsDialog::ok_is_the_only_way_out()
{
    WorkingStandardDialog dialog(&m_name, nullptr);
    BoxAnswerer answerer;
    answerer.expect_dialog(TITLE, [](QDialog *open) {
        QTest::keyClick(open, Qt::Key_Escape);
        QVERIFY(open->isVisible());
        open->close();
        QVERIFY(open->isVisible());
        type_all(*open, VALUES);
        press(*open, "btnWSOK");
        QVERIFY(!open->isVisible());
    });
    QCOMPARE(dialog.exec(), int(QDialog::Accepted));
}

void StandardsDialog::enter_in_a_field_is_ok()
{
    WorkingStandardDialog dialog(&m_name, nullptr);
    BoxAnswerer answerer;
    answerer.expect_dialog(TITLE, [](QDialog *open) {
        type_all(*open, VALUES);
        QTest::keyClick(part<QLineEdit>(*open, "txtWSModel"), Qt::Key_Return);
        QVERIFY(!open->isVisible());
    });
    QCOMPARE(dialog.exec(), int(QDialog::Accepted));
    QCOMPARE(read_file(FILE_OF_VALUES), file_of(VALUES));
}

WINDOW_TEST(StandardsDialog);
#include "test_workingstandarddialog.moc"
