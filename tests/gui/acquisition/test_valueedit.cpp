// SPDX-License-Identifier: GPL-3.0-or-later
//
// Which visit to a row's value field is an edit of the reference. Builds of Qt
// call an edit finished at different moments; here it is called finished by hand
// as well, so that each of them is covered.
#include <QtTest>

#include "gui/frame/testwindow.h"
#include "support/testmain.h"

class ValueEdit : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { m_it = std::make_unique<TestWindow>(); }
    void cleanupTestCase();
    void init();
    void visit_leaves_reference_and_unsaved_mark_data();
    void visit_leaves_reference_and_unsaved_mark();
    void same_digits_typed_are_an_edit();
    void edit_counts_once();
    void text_set_by_another_hand_is_an_edit();
    void text_written_over_an_edit_is_none();
    void blanks_around_the_text_are_no_edit();
    void captured_value_is_no_edit();
    void cancelled_exit_asks_again();
    void cancelled_leave_is_asked_for_behind_a_visit();

private:
    QLineEdit *field() const { return m_it->window->row(1)->value_field(); }
    void finish() { emit field()->editingFinished(); }
    void visit(const QByteArray &way);

    std::unique_ptr<TestWindow> m_it;
};

void ValueEdit::cleanupTestCase()
{
    m_it->forget_work();
    m_it.reset();
}

// A reference with more digits than its field shows, and unsaved work.
void ValueEdit::init()
{
    m_it->bind_afresh(0);
    g_cfg->long_current.y[1] = 68.94757293;
    g_cfg->table.poly[0].y[1] = 68.94757293;
    m_it->window->write_all_row_values();
    g_cfg->table_dirty = 1;
    QCOMPARE(field()->text(), QStringLiteral(" 68.9476"));
    QApplication::setActiveWindow(m_it->window);
    m_it->form->btnRecordData->setFocus();
}

void ValueEdit::visit(const QByteArray &way)
{
    field()->setFocus();
    if (way == "Tab")
        QTest::keyClick(field(), Qt::Key_Tab);
    else if (way == "Return")
        QTest::keyClick(field(), Qt::Key_Return);
    else if (way == "click")
        m_it->form->btnRecordData->setFocus(Qt::MouseFocusReason);
    else if (way == "cursor keys") {
        QTest::keyClick(field(), Qt::Key_Home);
        QTest::keyClick(field(), Qt::Key_Right);
        m_it->form->btnRecordData->setFocus();
    } else
        finish();
}

void ValueEdit::visit_leaves_reference_and_unsaved_mark_data()
{
    QTest::addColumn<int>("times");
    for (const char *way : {"Tab", "Return", "click", "cursor keys", "told by Qt"})
        QTest::newRow(way) << 2;
}

void ValueEdit::visit_leaves_reference_and_unsaved_mark()
{
    QFETCH(int, times);
    for (int i = 0; i < times; ++i)
        visit(QTest::currentDataTag());
    QCOMPARE(g_cfg->long_current.y[1], 68.94757293);
    QCOMPARE(g_cfg->table.poly[0].y[1], 68.94757293);
    QCOMPARE(g_cfg->table_dirty, uint16_t(1));
}

void ValueEdit::same_digits_typed_are_an_edit()
{
    field()->setFocus();
    field()->selectAll();
    QTest::keyClicks(field(), QStringLiteral("68.9476"));
    QCOMPARE(g_cfg->long_current.y[1], 68.94757293); // not before it is finished
    QTest::keyClick(field(), Qt::Key_Tab);
    QCOMPARE(g_cfg->long_current.y[1], 68.9476);
    QCOMPARE(g_cfg->table.poly[0].y[1], 68.9476);
    QCOMPARE(g_cfg->table_dirty, uint16_t(0));
}

// Return, then the leave, then whatever else Qt calls finished.
void ValueEdit::edit_counts_once()
{
    field()->setFocus();
    field()->selectAll();
    QTest::keyClicks(field(), QStringLiteral("26.5"));
    QTest::keyClick(field(), Qt::Key_Return);
    QCOMPARE(g_cfg->long_current.y[1], 26.5);
    g_cfg->table_dirty = 1;
    g_cfg->long_current.y[1] = 27.0;
    finish();
    m_it->form->btnRecordData->setFocus();
    QCOMPARE(g_cfg->long_current.y[1], 27.0);
    QCOMPARE(g_cfg->table_dirty, uint16_t(1));
    field()->setFocus();
    QTest::keyClicks(field(), QStringLiteral("9"));
    finish();
    QCOMPARE(g_cfg->long_current.y[1], 26.59); // a further edit counts again
    QCOMPARE(g_cfg->table_dirty, uint16_t(0));
}

// As the pad does, which is no key of the field.
void ValueEdit::text_set_by_another_hand_is_an_edit()
{
    field()->setText(QStringLiteral("26.5"));
    QVERIFY(!field()->isModified());
    finish();
    QCOMPARE(g_cfg->long_current.y[1], 26.5);
    QCOMPARE(g_cfg->table_dirty, uint16_t(0));
    g_cfg->table_dirty = 1;
    finish();
    QCOMPARE(g_cfg->table_dirty, uint16_t(1));
}

void ValueEdit::text_written_over_an_edit_is_none()
{
    field()->setFocus();
    QTest::keyClicks(field(), QStringLiteral("7"));
    m_it->window->show_table_fields(g_cfg);
    g_cfg->table_dirty = 1;
    finish();
    QCOMPARE(g_cfg->long_current.y[1], 68.94757293);
    QCOMPARE(g_cfg->table_dirty, uint16_t(1));
}

void ValueEdit::blanks_around_the_text_are_no_edit()
{
    field()->setText(QStringLiteral("68.9476"));
    finish();
    QCOMPARE(g_cfg->long_current.y[1], 68.94757293);
    QCOMPARE(g_cfg->table_dirty, uint16_t(1));
}

void ValueEdit::captured_value_is_no_edit()
{
    g_cfg->table_dirty = 0;
    QVERIFY(m_it->reading(1300.0));
    field()->setFocus();
    field()->selectAll();
    QTest::keyClicks(field(), QStringLiteral("26.123456789"));
    m_it->button(1)->click(); // by a key elsewhere: the field still has the focus
    QCOMPARE(g_cfg->table_dirty, uint16_t(1));
    m_it->form->btnRecordData->setFocus();
    finish();
    QCOMPARE(g_cfg->long_current.y[1], 26.123456789);
    QCOMPARE(g_cfg->table_dirty, uint16_t(1));
}

// The question takes the focus from the field, which must not take the reason of
// the question away.
void ValueEdit::cancelled_exit_asks_again()
{
    const QString title = QStringLiteral("Table Information Modified");
    field()->setFocus();
    QVERIFY(field()->hasFocus());
    BoxAnswerer answerer;
    for (int i = 0; i < 2; ++i) {
        answerer.expect_dialog(title, [this](QDialog *box) {
            if (field()->hasFocus())
                m_it->form->btnRecordData->setFocus();
            finish(); // as the builds do that tell of every leave
            box->reject();
        });
        m_it->form->actionExit->trigger();
        QVERIFY(m_it->window->isVisible());
        QCOMPARE(answerer.met().size(), i + 1);
        QCOMPARE(g_cfg->table_dirty, uint16_t(1));
        QApplication::setActiveWindow(m_it->window);
        field()->setFocus();
    }
}

void ValueEdit::cancelled_leave_is_asked_for_behind_a_visit()
{
    QVERIFY(m_it->capture(2, 2600.0, 52.0));
    visit("Tab");
    visit("told by Qt");
    BoxAnswerer answerer;
    answerer.expect_title(QStringLiteral("Captured Points Not Recorded"), QStringLiteral("Cancel"));
    m_it->pick(1);
    QCOMPARE(answerer.met().size(), 1);
    QCOMPARE(g_cfg->channel, int16_t(0));
}

WINDOW_TEST(ValueEdit);
#include "test_valueedit.moc"
