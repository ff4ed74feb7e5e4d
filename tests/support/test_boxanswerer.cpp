// SPDX-License-Identifier: GPL-3.0-or-later
//
// The answerer of modal boxes: it presses what it was told, reads what stood on
// the screen, and never leaves a box open.
#include <QtTest>

#include <QDialogButtonBox>
#include <QPushButton>
#include <QVBoxLayout>

#include "support/boxanswerer.h"
#include "support/testmain.h"

class BoxAnswererTest : public QObject
{
    Q_OBJECT

private slots:
    void presses_the_button_data();
    void presses_the_button();
    void tells_what_stood_there();
    void boxes_one_behind_the_other();
    void box_out_of_a_dialog();
    void dialog_left_open_is_rejected();
    void unexpected_box_data();
    void unexpected_box();
    void box_that_never_came();
};

namespace
{

int ask(const QString &title, const QString &text)
{
    QMessageBox box(QMessageBox::Question, title, text, QMessageBox::Ok | QMessageBox::Cancel);
    box.setWindowFlags(Qt::Dialog | Qt::WindowTitleHint | Qt::CustomizeWindowHint);
    box.setDefaultButton(QMessageBox::Cancel);
    return box.exec();
}

} // namespace

void BoxAnswererTest::presses_the_button_data()
{
    const auto row = test_columns<QString, int>("button", "result");
    row("OK", "OK", int(QMessageBox::Ok));
    row("Cancel", "Cancel", int(QMessageBox::Cancel));
}

void BoxAnswererTest::presses_the_button()
{
    QFETCH(QString, button);
    BoxAnswerer answerer;
    answerer.expect("Title", "Text", button);
    QTEST(ask("Title", "Text"), "result");
    QCOMPARE(answerer.remaining(), 0);
    QCOMPARE(answerer.met().size(), 1);
    QCOMPARE(answerer.met()[0].pressed, button);
}

void BoxAnswererTest::tells_what_stood_there()
{
    BoxAnswerer answerer;
    answerer.expect_title("Title");
    ask("Title", "First\nsecond");
    const MetBox met = answerer.met().value(0);
    QCOMPARE(met.title, QString("Title"));
    QCOMPARE(met.text, QString("First\nsecond"));
    QCOMPARE(met.class_name, QString("QMessageBox"));
    QCOMPARE(met.buttons.size(), 2);
    QVERIFY(met.buttons.contains("OK") && met.buttons.contains("Cancel"));
    QCOMPARE(met.default_button, QString("Cancel"));
    QCOMPARE(met.icon, QMessageBox::Question);
    QVERIFY(met.expected);
    QVERIFY(BoxAnswerer::has_title_bar_only(met));
    QCOMPARE(answerer.said(), QStringList{"Title: First\nsecond"});
    MetBox ordinary = met;
    ordinary.flags |= Qt::WindowCloseButtonHint;
    QVERIFY(!BoxAnswerer::has_title_bar_only(ordinary));
}

void BoxAnswererTest::boxes_one_behind_the_other()
{
    BoxAnswerer answerer;
    answerer.expect("A", "1", "OK");
    answerer.expect("B", "2", "Cancel");
    answerer.expect("A", "1", "OK");
    QCOMPARE(ask("A", "1"), int(QMessageBox::Ok));
    QCOMPARE(ask("B", "2"), int(QMessageBox::Cancel));
    QCOMPARE(ask("A", "1"), int(QMessageBox::Ok));
    QCOMPARE(answerer.remaining(), 0);
}

// A button of the dialog opens a box while the answer to the dialog runs.
void BoxAnswererTest::box_out_of_a_dialog()
{
    BoxAnswerer answerer;
    int inner = 0;
    QDialog dialog;
    dialog.setWindowTitle("Dialog");
    auto *button = new QPushButton("Ask", &dialog);
    connect(button, &QPushButton::clicked, [&inner] { inner = ask("Inner", "Text"); });
    answerer.expect_dialog("Dialog", [button](QDialog *open) {
        button->click();
        open->accept();
    });
    answerer.expect("Inner", "Text", "OK");
    QCOMPARE(dialog.exec(), int(QDialog::Accepted));
    QCOMPARE(inner, int(QMessageBox::Ok));
    QCOMPARE(answerer.met().size(), 2);
}

void BoxAnswererTest::dialog_left_open_is_rejected()
{
    BoxAnswerer answerer;
    bool visited = false;
    QDialog dialog;
    dialog.setWindowTitle("Dialog");
    answerer.expect_dialog("Dialog", [&visited](QDialog *) { visited = true; });
    QCOMPARE(dialog.exec(), int(QDialog::Rejected));
    QVERIFY(visited);
}

void BoxAnswererTest::unexpected_box_data()
{
    // title: expected; empty: nothing is
    const auto row =
        test_columns<QString, QString, QString, QString>("title", "text", "button", "why");
    row("nothing expected", "", "", "", "nothing was expected");
    row("other title", "Other", "Text", "OK", "expected was Other: Text");
    row("other text", "Title", "Other", "OK", "expected was Title: Other");
    row("no such button", "Title", "Text", "Save", "it has no button \"Save\"");
}

void BoxAnswererTest::unexpected_box()
{
    QFETCH(QString, title);
    QFETCH(QString, text);
    QFETCH(QString, button);
    QFETCH(QString, why);
    QStringList faults;
    BoxAnswerer answerer;
    answerer.set_fault_handler([&faults](const QString &fault) { faults.append(fault); });
    if (!title.isEmpty())
        answerer.expect(title, text, button);
    QCOMPARE(ask("Title", "Text"), int(QMessageBox::Cancel));
    QCOMPARE(faults, QStringList{"unexpected box: Title: Text (" + why + ')'});
    QVERIFY(!answerer.met()[0].expected);
    answerer.forget();
    QDialog dialog;
    QCOMPARE(dialog.exec(), int(QDialog::Rejected));
    QCOMPARE(faults.size(), 2);
}

void BoxAnswererTest::box_that_never_came()
{
    QStringList faults;
    {
        BoxAnswerer answerer;
        answerer.set_fault_handler([&faults](const QString &fault) { faults.append(fault); });
        answerer.expect("Title", "Text");
    }
    QCOMPARE(faults, QStringList{"no box came: Title: Text"});
}

WINDOW_TEST(BoxAnswererTest);
#include "test_boxanswerer.moc"
