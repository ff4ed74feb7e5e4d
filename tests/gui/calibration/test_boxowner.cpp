// SPDX-License-Identifier: GPL-3.0-or-later
//
// Whose child a box is while a dialog is open: that dialog's, so that no window
// manager raises the dialog over the box that it waits for.
#include <QtTest>

#include "frame/functions.h"
#include "gui/calibration/processpanel.h"
#include "support/testmain.h"

class BoxOwner : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { m_it = std::make_unique<ProcessPanel>(); }
    void cleanupTestCase() { m_it.reset(); }
    void init() { m_it->bind(); }
    void questions_of_a_recording_belong_to_its_dialog_data();
    void questions_of_a_recording_belong_to_its_dialog();
    void failure_told_during_a_recording_belongs_to_its_dialog();
    void pad_left_open_over_the_dialog_owns_no_box();
    void box_over_a_box_belongs_to_it();
    void box_belongs_to_the_window_when_no_dialog_is_open();

private:
    // Records that kind and answers its box; the classes of dialog and owner.
    void record(char kind, const QString &title);

    std::unique_ptr<ProcessPanel> m_it;
    QPointer<QWidget> m_pad; // opened over the dialog
    QPointer<QWidget> m_dialog;
    QWidget *m_owner = nullptr;
};

void BoxOwner::record(char kind, const QString &title)
{
    m_dialog = nullptr;
    m_owner = nullptr;
    BoxAnswerer answerer;
    answerer.expect_dialog(
        QStringLiteral("Record Calibration Data"), [this, kind](QDialog *dialog) {
            m_dialog = dialog;
            ProcessPanel::choice(dialog, kind)->setChecked(true);
            dialog->findChild<QLineEdit *>(QStringLiteral("txtComment"))
                ->setText(QStringLiteral("why"));
            if (m_pad != nullptr) {
                m_pad->show();
                QCOMPARE(QApplication::activeModalWidget(), m_pad.data());
            }
            dialog->findChild<QPushButton *>(QStringLiteral("btnRecord"))->click();
        });
    bool is_the_dialog = false;
    answerer.expect_dialog(title, [&](QDialog *box) {
        m_owner = box->parentWidget();
        is_the_dialog = m_owner == m_dialog.data();
    });
    m_it->it.form->btnRecordData->click();
    QVERIFY(m_owner != nullptr);
    QVERIFY2(is_the_dialog, "the box is not the dialog's");
}

void BoxOwner::questions_of_a_recording_belong_to_its_dialog_data()
{
    const auto row = test_columns<char, QString>("kind", "boxes");
    row("As-Found after service and update", AS_FOUND, "11100");
    row("After-Service after an update", AFTER_SERVICE, "11100");
    row("Verification without an update", VERIFICATION, "11000");
}

void BoxOwner::questions_of_a_recording_belong_to_its_dialog()
{
    QFETCH(char, kind);
    QFETCH(QString, boxes);
    m_it->set_boxes(boxes.toLatin1().constData());
    m_it->captured(0);
    record(kind, QStringLiteral("Warning"));
}

// As an on-screen pad, which is modal and no dialog.
void BoxOwner::pad_left_open_over_the_dialog_owns_no_box()
{
    m_it->set_boxes("11000");
    m_it->captured(0);
    QWidget pad(nullptr, Qt::Tool | Qt::WindowStaysOnTopHint);
    pad.setWindowModality(Qt::WindowModal);
    m_pad = &pad;
    record(VERIFICATION, QStringLiteral("Warning"));
}

void BoxOwner::failure_told_during_a_recording_belongs_to_its_dialog()
{
    m_it->set_boxes("00000");
    m_it->captured(0);
    g_cfg->table.table_type = 9; // no type that the archive takes
    record(AS_FOUND, QStringLiteral("Information"));
    g_cfg->table.table_type = TABLE_INTERP;
}

void BoxOwner::box_over_a_box_belongs_to_it()
{
    BoxAnswerer answerer;
    QDialog *first = nullptr;
    bool is_the_first = false;
    answerer.expect_dialog(QStringLiteral("Information"), [&](QDialog *box) {
        first = box;
        show_warning("Warning", "second");
    });
    answerer.expect_dialog(QStringLiteral("Warning"),
                           [&](QDialog *box) { is_the_first = box->parentWidget() == first; });
    show_information("first");
    QVERIFY(is_the_first);
}

void BoxOwner::box_belongs_to_the_window_when_no_dialog_is_open()
{
    BoxAnswerer answerer;
    QWidget *owner = nullptr;
    answerer.expect_dialog(QStringLiteral("Information"),
                           [&](QDialog *box) { owner = box->parentWidget(); });
    show_information("text");
    QCOMPARE(owner, static_cast<QWidget *>(m_it->it.window));
}

WINDOW_TEST(BoxOwner);
#include "test_boxowner.moc"
