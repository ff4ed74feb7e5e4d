// SPDX-License-Identifier: GPL-3.0-or-later
//
// A point row by itself, the column of rows, and the dialog that asks before a
// capture is taken back.
#include <QHBoxLayout>
#include <QLabel>
#include <QtTest>

#include "acquisition/undodialog.h"
#include "gui/frame/testwindow.h"
#include "support/testmain.h"

class Rows : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { m_it = std::make_unique<TestWindow>(); }
    void cleanupTestCase() { m_it.reset(); }
    void form_data();
    void form();
    void order_from_left_to_right();
    void fresh_row();
    void numbers();
    void caption_data();
    void caption();
    void show_and_hide();
    void values_are_written_with_four_places();
    void written_values_are_no_edit();
    void clear_row_captions();
    void change_of_language_keeps_number_and_caption();
    void undo_dialog();
    void undo_dialog_answers_data();
    void undo_dialog_answers();
    void edited_reference_goes_to_the_table_data();
    void edited_reference_goes_to_the_table();
    void edited_reference_goes_to_the_range_in_work();

private:
    std::unique_ptr<TestWindow> m_it;
};

void Rows::form_data()
{
    const auto row = test_columns<QString, QSize>("class_name", "minimum");
    row("lblIndexNum", "QLabel", QSize(25, 27));
    row("txtCurrentValue", "QLineEdit", QSize(95, 27));
    row("lblMillivolts", "QLabel", QSize(95, 27));
    row("btnCapture", "QPushButton", QSize(95, 27));
}

void Rows::form()
{
    const PointInfo row(m_it->window, 0, nullptr);
    QCOMPARE(row.objectName(), QStringLiteral("PointInfo"));
    const auto *part = row.findChild<QWidget *>(QString::fromLatin1(QTest::currentDataTag()));
    QVERIFY(part != nullptr);
    QTEST(QString::fromLatin1(part->metaObject()->className()), "class_name");
    QTEST(part->minimumSize(), "minimum");
}

void Rows::order_from_left_to_right()
{
    const PointInfo row(m_it->window, 0, nullptr);
    const auto *layout = qobject_cast<QHBoxLayout *>(row.layout());
    QVERIFY(layout != nullptr);
    QStringList names;
    for (int i = 0; i < layout->count(); ++i)
        names += layout->itemAt(i)->widget()->objectName();
    QCOMPARE(names, (QStringList{"lblIndexNum", "txtCurrentValue", "lblMillivolts", "btnCapture"}));
}

void Rows::fresh_row()
{
    const PointInfo row(m_it->window, 6, nullptr);
    QCOMPARE(row.value_style(), QStringLiteral("background-color: white"));
    QCOMPARE(row.caption(), QStringLiteral("Capture"));
    QCOMPARE(row.caption_style(), QStringLiteral("background-color: rgb(126,232,255)"));
    QCOMPARE(row.status, uint16_t(0));
    QCOMPARE(row.previous_status, uint16_t(0));
    QCOMPARE(row.state, 0);
    QCOMPARE(row.previous_state, 0);
    QCOMPARE(row.saved_style, QString());
    QCOMPARE(row.findChild<QLabel *>(QStringLiteral("lblIndexNum"))->text(), QStringLiteral("7"));
    QCOMPARE(row.value_field()->validator(), nullptr); // on an ordinary desktop
}

void Rows::numbers()
{
    for (int i = 0; i < MAX_POINTS; ++i)
        QCOMPARE(m_it->number_label(i)->text(), QString::number(i + 1));
}

void Rows::caption_data()
{
    const auto row = test_columns<QString, QString, bool>("style", "checked_style", "captures");
    const QString ready = QStringLiteral("background-color: rgb(126,232,255)");
    const QString idle = QStringLiteral("background-color: rgb(238, 238,238)");
    row("Capture", ready, ready, true);
    row("Capture New", ready, ready, true);
    row("Undo", idle, idle, false);
    row("neither", ready, idle, false);
}

void Rows::caption()
{
    PointInfo row(m_it->window, 0, nullptr);
    const QString text = QString::fromLatin1(QTest::currentDataTag());
    row.set_caption_style(QString());
    row.set_caption(text);
    QCOMPARE(row.caption(), text);
    QTEST(row.caption_style(), "style");
    QTEST(row.captures(), "captures");
    row.set_caption(QString());
    row.set_caption_style(QString());
    row.set_caption_checked(text);
    QCOMPARE(row.caption(), text);
    QTEST(row.caption_style(), "checked_style");
}

void Rows::show_and_hide()
{
    const int16_t kept = g_num_points;
    for (const int count : {0, 1, 17, 64}) {
        m_it->window->hide_rows();
        QCOMPARE(m_it->rows_shown(), 0);
        g_num_points = static_cast<int16_t>(count);
        m_it->window->show_rows();
        QCOMPARE(m_it->rows_shown(), count);
    }
    for (const char *name : {"lblIndexNum", "txtCurrentValue", "lblMillivolts", "btnCapture"})
        QVERIFY(!m_it->window->row(63)->findChild<QWidget *>(QLatin1String(name))->isHidden());
    m_it->window->hide_rows();
    for (const char *name : {"lblIndexNum", "txtCurrentValue", "lblMillivolts", "btnCapture"})
        QVERIFY(m_it->window->row(63)->findChild<QWidget *>(QLatin1String(name))->isHidden());
    QCOMPARE(m_it->window->row(63)->sizeHint().height(), 0); // it takes no room
    g_num_points = kept;
}

void Rows::values_are_written_with_four_places()
{
    QLineEdit value;
    QLabel mv;
    g_cfg->long_current.y[5] = -12.34567;
    g_cfg->long_current.x[5] = 12345.67891;
    m_it->window->write_row_values(&value, &mv, 5);
    QCOMPARE(value.text(), QStringLiteral("-12.3457"));
    QCOMPARE(mv.text(), QStringLiteral("12345.6789"));
    g_cfg->long_current.y[5] = 0.0;
    g_cfg->long_current.x[5] = 1.0;
    m_it->window->write_row_values(&value, &mv, 5);
    QCOMPARE(value.text(), QStringLiteral("  0.0000"));
    QCOMPARE(mv.text(), QStringLiteral("  1.0000"));
    g_cfg->long_current.x[5] = 0.0;
}

// editingFinished would clear table_dirty.
void Rows::written_values_are_no_edit()
{
    g_cfg->table_dirty = 1;
    m_it->window->show_table_fields(g_cfg);
    m_it->window->write_all_row_values();
    QCOMPARE(g_cfg->table_dirty, uint16_t(1));
    g_cfg->table_dirty = 0;
}

void Rows::clear_row_captions()
{
    for (int i = 0; i < MAX_POINTS; ++i) {
        m_it->window->row(i)->set_caption(QStringLiteral("Undo"));
        m_it->window->row(i)->state = POINT_CAPTURED;
        m_it->window->row(i)->saved_style = QStringLiteral("kept");
        g_cfg->table.point_state[i] = POINT_CAPTURED;
    }
    g_captured_points = 12;
    m_it->form->btnRecordData->setStyleSheet(QStringLiteral("background-color: yellow"));
    m_it->window->clear_row_captions();
    for (int i = 0; i < MAX_POINTS; ++i) {
        QCOMPARE(m_it->window->row(i)->caption(), QStringLiteral("Capture"));
        QCOMPARE(m_it->window->row(i)->caption_style(),
                 QStringLiteral("background-color: rgb(126,232,255)"));
        QCOMPARE(m_it->window->row(i)->state, int32_t(POINT_CAPTURED));
        QCOMPARE(m_it->window->row(i)->saved_style, QStringLiteral("kept"));
        QCOMPARE(g_cfg->table.point_state[i], int32_t(POINT_CAPTURED));
    }
    QCOMPARE(g_captured_points, 0);
    QCOMPARE(m_it->form->btnRecordData->styleSheet(),
             QStringLiteral("background-color: rgb(238, 238,238)"));
}

void Rows::change_of_language_keeps_number_and_caption()
{
    PointInfo row(m_it->window, 11, nullptr);
    row.set_caption(QStringLiteral("Undo"));
    QEvent change(QEvent::LanguageChange);
    QApplication::sendEvent(&row, &change);
    QCOMPARE(row.caption(), QStringLiteral("Undo"));
    QCOMPARE(row.findChild<QLabel *>(QStringLiteral("lblIndexNum"))->text(), QStringLiteral("12"));
}

void Rows::undo_dialog()
{
    const undoDialog dialog(m_it->window);
    QCOMPARE(QString::fromLatin1(dialog.metaObject()->className()), QStringLiteral("undoDialog"));
    QCOMPARE(dialog.windowTitle(), QStringLiteral("Undo Action"));
    const auto *label = dialog.findChild<QLabel *>(QStringLiteral("label"));
    QCOMPARE(label->text(), QStringLiteral("Do you want to ..."));
    QCOMPARE(label->styleSheet(), QStringLiteral("font: 11pt \"Sans Serif\";"));
    QCOMPARE(dialog.findChild<QPushButton *>(QStringLiteral("btnRevert"))->text(),
             QStringLiteral("Revert to Previous Value"));
    QCOMPARE(dialog.findChild<QPushButton *>(QStringLiteral("btnCancelUndo"))->text(),
             QStringLiteral("Cancel Undo"));
    MetBox met;
    met.flags = dialog.windowFlags();
    QVERIFY(BoxAnswerer::has_title_bar_only(met));
}

void Rows::undo_dialog_answers_data()
{
    QTest::addColumn<int>("result");
    QTest::newRow("btnRevert") << int(QDialog::Accepted);
    QTest::newRow("btnCancelUndo") << int(QDialog::Rejected);
}

void Rows::undo_dialog_answers()
{
    const QString button = QString::fromLatin1(QTest::currentDataTag());
    BoxAnswerer answerer;
    answerer.expect_dialog(QStringLiteral("Undo Action"), [&button](QDialog *dialog) {
        dialog->findChild<QPushButton *>(button)->click();
    });
    undoDialog dialog(m_it->window);
    QTEST(dialog.exec(), "result");
}

void Rows::edited_reference_goes_to_the_table_data()
{
    const auto row = test_columns<QString, double>("text", "value");
    row("a number", "26.5", 26.5);
    row("negative", "-3e2", -300.0);
    row("blanks around it", "  7.25 ", 7.25);
    row("not a number", "abc", 0.0);
    row("empty", "", 0.0);
}

// The value is set up before a capture, which is what then counts as unsaved.
void Rows::edited_reference_goes_to_the_table()
{
    QFETCH(QString, text);
    QFETCH(double, value);
    const BoxAnswerer answerer;
    m_it->bind_afresh(0);
    PointInfo *const row = m_it->window->row(1);
    const int32_t state = row->state;
    g_cfg->table_dirty = 1;
    row->value_field()->setFocus();
    row->value_field()->selectAll();
    QTest::keyClick(row->value_field(), Qt::Key_Delete);
    QTest::keyClicks(row->value_field(), text);
    QCOMPARE(g_cfg->long_current.y[1], 25.0); // not before the edit is finished
    QTest::keyClick(row->value_field(), Qt::Key_Return);
    QCOMPARE(g_cfg->long_current.y[1], value);
    QCOMPARE(g_cfg->table.poly[0].y[1], value);
    QCOMPARE(g_cfg->long_current.x[1], 1250.0);
    QCOMPARE(g_cfg->table_dirty, uint16_t(0));
    QCOMPARE(row->state, state);
    QCOMPARE(g_cfg->redraw_all, uint16_t(0)); // drawn at once
    QVERIFY(answerer.met().isEmpty());
}

void Rows::edited_reference_goes_to_the_range_in_work()
{
    m_it->bind_afresh(5);
    g_cfg->table.poly_range_index = 5;
    QLineEdit *const field = m_it->window->row(0)->value_field();
    field->setText(QStringLiteral("41"));
    QTest::keyClick(field, Qt::Key_Return);
    QCOMPARE(g_cfg->table.poly[5].y[0], 41.0);
    QCOMPARE(g_cfg->table.poly[0].y[0], 0.0);
    QCOMPARE(g_cfg->long_current.y[0], 41.0);
}

WINDOW_TEST(Rows);
#include "test_rows.moc"
