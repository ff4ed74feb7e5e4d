// SPDX-License-Identifier: GPL-3.0-or-later
//
// The recording dialog as it is used: where it stands, what it insists on, and
// what each of its ways out leaves behind.
#include <QLabel>
#include <QScreen>
#include <QtTest>

#include "calibration/dialogplace.h"
#include "calibration/savetypedialog.h"
#include "gui/calibration/processpanel.h"
#include "support/testmain.h"

namespace
{
const QString DIALOG = QStringLiteral("Record Calibration Data");

QLineEdit *comment_of(QDialog *dialog)
{
    return dialog->findChild<QLineEdit *>(QStringLiteral("txtComment"));
}
QPushButton *button_of(QDialog *dialog, const char *name)
{
    return dialog->findChild<QPushButton *>(QLatin1String(name));
}
} // namespace

class SaveType : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { m_it = std::make_unique<ProcessPanel>(); }
    void cleanupTestCase() { m_it.reset(); }
    void init();
    void stands_where_the_window_is_data();
    void stands_where_the_window_is();
    void opens_the_same_in_each_state_data();
    void opens_the_same_in_each_state();
    void touch_input_marks_the_description();
    void first_choice_of_the_form_decides_data();
    void first_choice_of_the_form_decides();
    void description_missing_data();
    void description_missing();
    void description_not_wanted_may_be_empty_data();
    void description_not_wanted_may_be_empty();
    void cancel_keeps_the_former_description_data();
    void cancel_keeps_the_former_description();
    void description_is_cut_and_reads_back_data();
    void description_is_cut_and_reads_back();

private:
    std::unique_ptr<ProcessPanel> m_it;
};

void SaveType::init()
{
    m_it->bind();
    qstrncpy(g_cfg->table.cal_comment, "former", sizeof g_cfg->table.cal_comment);
}

void SaveType::stands_where_the_window_is_data()
{
    QTest::addColumn<int>("top");
    QTest::newRow("at the top of the screen") << 0;
    QTest::newRow("lower") << 37;
    QTest::newRow("near the bottom of the screen") << 600;
}

void SaveType::stands_where_the_window_is()
{
    QFETCH(int, top);
    const QPoint former = m_it->it.window->pos();
    m_it->it.window->move(0, top);
    m_it->captured(0);
    const int window_top = m_it->it.window->y();
    const QRect screen = m_it->it.window->screen()->availableGeometry();
    QRect place;
    QStringList cut; // labels without room for their text
    bool modal = false;
    BoxAnswerer answerer;
    answerer.expect_dialog(DIALOG, [&](QDialog *dialog) {
        place = dialog->geometry();
        modal = dialog->isModal();
        for (const QLabel *label : dialog->findChildren<QLabel *>()) {
            if (label->height() < label->heightForWidth(label->width()))
                cut.append(label->objectName());
        }
    });
    m_it->it.form->btnRecordData->click();
    m_it->it.window->move(former);
    QCOMPARE(window_top, top);
    QCOMPARE(place, recording_dialog_place(top, screen));
    QVERIFY(screen.contains(place));
    QCOMPARE(cut, QStringList());
    QVERIFY(modal);
    QVERIFY(BoxAnswerer::has_title_bar_only(answerer.met().first()));
}

void SaveType::opens_the_same_in_each_state_data()
{
    QTest::addColumn<QByteArray>("boxes");
    QTest::newRow("Idle") << QByteArray("00000");
    QTest::newRow("As-Found") << QByteArray("10000");
    QTest::newRow("After-Service") << QByteArray("11000");
    QTest::newRow("Table Updated") << QByteArray("11100");
    QTest::newRow("Verification") << QByteArray("11110");
    QTest::newRow("New Correlation") << QByteArray("11111");
}

void SaveType::opens_the_same_in_each_state()
{
    QFETCH(QByteArray, boxes);
    m_it->set_boxes(boxes.constData());
    m_it->captured(0);
    BoxAnswerer answerer;
    int chosen = 0;
    int enabled = 0;
    QString comment = QStringLiteral("none");
    answerer.expect_dialog(DIALOG, [&](QDialog *dialog) {
        for (const QRadioButton *choice : dialog->findChildren<QRadioButton *>()) {
            chosen += choice->isChecked() ? 1 : 0;
            enabled += choice->isEnabled() && choice->isVisible() ? 1 : 0;
        }
        comment = comment_of(dialog)->text();
        button_of(dialog, "btnRecord")->click(); // does nothing
        chosen += dialog->isVisible() ? 0 : 10;
    });
    m_it->it.form->btnRecordData->click();
    QCOMPARE(chosen, 0);
    QCOMPARE(enabled, 4);
    QCOMPARE(comment, QString()); // never the former description
    QCOMPARE(QByteArray(g_cfg->table.cal_comment), QByteArray("former"));
    QVERIFY(!QFile::exists(QStringLiteral("/cell/tables/one.save")));
}

void SaveType::touch_input_marks_the_description()
{
    for (const bool touch : {true, false}) {
        g_touch_input = touch;
        const SaveTypeDialog dialog(m_it->it.window, 0);
        g_touch_input = false;
        const QVariant keyboard =
            dialog.findChild<QLineEdit *>(QStringLiteral("txtComment"))->property("keyboard");
        QCOMPARE(keyboard, touch ? QVariant(true) : QVariant());
    }
}

void SaveType::first_choice_of_the_form_decides_data()
{
    const auto row = test_columns<QByteArray, int>("checked", "save_type");
    row("all four", QByteArray("ASVN"), int(SAVE_AS_FOUND));
    row("all but As-Found", QByteArray("SVN"), int(SAVE_AFTER_SERVICE));
    row("the last two", QByteArray("VN"), int(SAVE_VERIFICATION));
    row("the last", QByteArray("N"), int(SAVE_NEW_CORRELATION));
}

// The form lets only one be checked; the order stands should that ever change.
void SaveType::first_choice_of_the_form_decides()
{
    QFETCH(QByteArray, checked);
    m_it->set_boxes("00100"); // nothing is asked
    m_it->captured(0);
    BoxAnswerer answerer;
    answerer.expect_dialog(DIALOG, [&checked](QDialog *dialog) {
        for (QRadioButton *choice : dialog->findChildren<QRadioButton *>())
            choice->setAutoExclusive(false);
        for (const char kind : checked)
            ProcessPanel::choice(dialog, kind)->setChecked(true);
        comment_of(dialog)->setText(QStringLiteral("why"));
        button_of(dialog, "btnRecord")->click();
    });
    m_it->it.form->btnRecordData->click();
    QTEST(int(ProcessPanel::last_record().last_save_type), "save_type");
    QCOMPARE(TestWindow::records_in(QStringLiteral("/cell/tables/one.save")), 1);
}

void SaveType::description_missing_data()
{
    const auto row = test_columns<QString, int, QByteArray, QString, int>(
        "as_found", "kind", "question", "description", "save_type");
    const QString time = QStringLiteral("01/02/2024 03:04:05");
    row("second As-Found", time, int(AS_FOUND), QByteArray("R3"), "knocked over", 3);
    row("As-Found after a service without it", "N/A", int(AS_FOUND), QByteArray("R3"),
        "found after all", 3);
    row("After-Service with an empty description", "", int(AFTER_SERVICE), QByteArray("R4"),
        "bearings rotated", 5);
    row("After-Service behind As-Found with an empty description", time, int(AFTER_SERVICE),
        QByteArray("R4"), " ", 5);
}

// After OK the dialog is open, with the cursor in the description and nothing
// done; with a description the same press records.
void SaveType::description_missing()
{
    QFETCH(QString, as_found);
    QFETCH(int, kind);
    QFETCH(QByteArray, question);
    QFETCH(QString, description);
    m_it->set_buttons(false, false);
    m_it->it.form->txtAsFound->setText(as_found);
    m_it->captured(0);
    const PanelLook before = m_it->look();
    BoxAnswerer answerer;
    bool stayed = false;
    bool cursor = false;
    QByteArray kept;
    answerer.expect_dialog(DIALOG, [&](QDialog *dialog) {
        ProcessPanel::choice(dialog, static_cast<char>(kind))->setChecked(true);
        QPushButton *const record = button_of(dialog, "btnRecord");
        record->setFocus();
        record->click();
        stayed = dialog->isVisible();
        cursor = dialog->focusWidget() == comment_of(dialog);
        kept = g_cfg->table.cal_comment;
        m_it->check(before, static_cast<char>(kind), {"=====", "=====", "==", "==", "-", 0});
        comment_of(dialog)->setText(description);
        record->click();
    });
    ProcessPanel::expect(&answerer, question.constData(), true);
    m_it->it.form->btnRecordData->click();
    QCOMPARE(answerer.met().size(), 2);
    ProcessPanel::check_box(answerer.met().last(), question.constData());
    QVERIFY(stayed);
    QVERIFY(cursor);
    QCOMPARE(kept, QByteArray("former"));
    QCOMPARE(QString::fromUtf8(g_cfg->table.cal_comment), description);
    QTEST(int(ProcessPanel::last_record().last_save_type), "save_type");
}

void SaveType::description_not_wanted_may_be_empty_data()
{
    QTest::addColumn<int>("kind");
    QTest::newRow("first As-Found") << int(AS_FOUND);
    QTest::newRow("Verification") << int(VERIFICATION);
    QTest::newRow("New Correlation") << int(NEW_CORRELATION);
}

void SaveType::description_not_wanted_may_be_empty()
{
    QFETCH(int, kind);
    if (kind != AS_FOUND)
        m_it->set_boxes("11100");
    m_it->captured(0);
    m_it->press(static_cast<char>(kind), "", true, QString());
    QCOMPARE(QByteArray(g_cfg->table.cal_comment), QByteArray());
    QCOMPARE(QByteArray(ProcessPanel::last_record().cal_comment), QByteArray());
    QCOMPARE(TestWindow::records_in(QStringLiteral("/cell/tables/one.save")), 1);
}

void SaveType::cancel_keeps_the_former_description_data()
{
    QTest::addColumn<bool>("by_key");
    QTest::newRow("button") << false;
    QTest::newRow("escape") << true;
}

void SaveType::cancel_keeps_the_former_description()
{
    QFETCH(bool, by_key);
    m_it->set_boxes("11110");
    m_it->set_buttons(true, false);
    m_it->captured(2);
    const PanelLook before = m_it->look();
    QVERIFY(m_it->it.ticks(3)); // what the binding has the plot do is done
    m_it->it.form->dataPlot->setAxisScale(QwtPlot::xBottom, -7.0, -6.0);
    BoxAnswerer answerer;
    answerer.expect_dialog(DIALOG, [by_key](QDialog *dialog) {
        ProcessPanel::choice(dialog, AS_FOUND)->setChecked(true);
        comment_of(dialog)->setText(QStringLiteral("new"));
        if (by_key)
            QTest::keyClick(dialog, Qt::Key_Escape);
        else
            button_of(dialog, "btnCancel")->click();
    });
    m_it->it.form->btnRecordData->click();
    m_it->check(before, AS_FOUND, {"=====", "=====", "==", "==", "-", 0});
    QCOMPARE(QByteArray(g_cfg->table.cal_comment), QByteArray("former"));
    QCOMPARE(int(g_cfg->table.worst_status), 2); // computed ahead of the dialog
    QVERIFY(m_it->it.form->dataPlot->axisAutoScale(QwtPlot::xBottom));
}

void SaveType::description_is_cut_and_reads_back_data()
{
    const auto row = test_columns<QString, QString>("description", "kept");
    const QChar euro(0x20ac); // three bytes
    row("79 characters", QString(79, QLatin1Char('x')), QString(79, QLatin1Char('x')));
    row("80 characters", QString(80, QLatin1Char('x')), QString(79, QLatin1Char('x')));
    row("5000 characters", QString(5000, QLatin1Char('x')), QString(79, QLatin1Char('x')));
    row("cut inside a character", QString(40, euro), QString(26, euro));
    row("quotes and back slashes", R"("a" 'b' \n %s)", R"("a" 'b' \n %s)");
}

void SaveType::description_is_cut_and_reads_back()
{
    QFETCH(QString, description);
    m_it->captured(0);
    m_it->press(AS_FOUND, "", true, description);
    QTEST(QString::fromUtf8(g_cfg->table.cal_comment), "kept");
    QTEST(QString::fromUtf8(ProcessPanel::last_record().cal_comment), "kept");
}

WINDOW_TEST(SaveType);
#include "test_savetypedialog.moc"
