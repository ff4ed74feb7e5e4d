// SPDX-License-Identifier: GPL-3.0-or-later
//
// The program's modal boxes: title, text, buttons, default and frame.
#include <QtTest>

#include "calibration/questions.h"
#include "frame/functions.h"
#include "support/boxanswerer.h"
#include "support/testmain.h"
#include "window/messagebox.h"

class MessageBoxes : public QObject
{
    Q_OBJECT

private slots:
    void information();
    void information_is_modal();
    void information_text_is_plain();
    void information_text_is_utf8();
    void warning_has_its_own_title();
    void questions_data();
    void questions();
    void question_answers_data();
    void question_answers();
    void nothing_asked_is_agreed();
    void box_closed_with_the_program_answers_the_default();
};

void MessageBoxes::information()
{
    BoxAnswerer answerer;
    answerer.expect(QStringLiteral("Information"), QStringLiteral("First\nSecond"));
    show_information("First\nSecond");
    QCOMPARE(answerer.met().size(), 1);
    const MetBox &box = answerer.met().first();
    QCOMPARE(box.buttons, QStringList{"OK"});
    QCOMPARE(box.class_name, QStringLiteral("QMessageBox"));
    QVERIFY(BoxAnswerer::has_title_bar_only(box));
    QVERIFY(box.flags.testFlag(Qt::CustomizeWindowHint));
    QVERIFY(!box.flags.testFlag(Qt::WindowCloseButtonHint));
}

void MessageBoxes::information_is_modal()
{
    bool modal = false;
    QTimer::singleShot(0, this, [&modal] {
        auto *const box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget());
        modal = box != nullptr && box->isModal();
        if (box != nullptr)
            box->accept();
    });
    show_information("text");
    QVERIFY(modal);
}

// Names of channels and files are shown as they are.
void MessageBoxes::information_text_is_plain()
{
    Qt::TextFormat format = Qt::RichText;
    QTimer::singleShot(0, this, [&format] {
        auto *const box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget());
        format = box->textFormat();
        box->accept();
    });
    show_information("<b>a</b> & b");
    QCOMPARE(format, Qt::PlainText);
}

void MessageBoxes::information_text_is_utf8()
{
    BoxAnswerer answerer;
    answerer.expect(QStringLiteral("Information"), QStringLiteral("25 \u00b0C"));
    show_information("25 \xc2\xb0"
                     "C");
}

void MessageBoxes::warning_has_its_own_title()
{
    BoxAnswerer answerer;
    answerer.expect(QStringLiteral("Warning"), QStringLiteral("Take care"));
    show_warning("Warning", "Take care");
    QCOMPARE(answerer.met().first().buttons, QStringList{"OK"});
    QVERIFY(BoxAnswerer::has_title_bar_only(answerer.met().first()));
}

void MessageBoxes::questions_data()
{
    const auto row = test_columns<int, QString, QString>("mark", "title", "text");
    const QString not_recorded = QStringLiteral("Captured Points Not Recorded");
    const QString incomplete = QStringLiteral("Incomplete Calibration");
    const QString modified = QStringLiteral("Table Information Modified");
    row("leaving captured points", int(QuestionMark::L1), not_recorded,
        "Captured points have not been recorded.\n\nClick OK to leave this channel anyway or "
        "Cancel to return and record data.");
    row("leaving an incomplete calibration", int(QuestionMark::L2), incomplete,
        "The calibration is incomplete.\n\nClick OK to leave this channel anyway or Cancel to "
        "return and complete the calibration.");
    row("leaving a modified table", int(QuestionMark::L3), modified,
        "The table information has been modified and will not be saved without updating the "
        "calibration table.\n\nClick OK to leave this channel anyway or Cancel to return and "
        "update the calibration.");
    row("exit with captured points", int(QuestionMark::G1), not_recorded,
        "Captured points have not been recorded.\n\nClick OK to exit anyway or Cancel to return "
        "and record data.");
    row("exit with an incomplete calibration", int(QuestionMark::G2), incomplete,
        "The calibration is incomplete.\n\nClick OK to exit anyway or Cancel to return and "
        "complete the calibration.");
    row("exit with a modified table", int(QuestionMark::G3), modified,
        "The table information has been modified and will not be saved without updating the "
        "calibration table.\n\nClick OK to exit anyway or Cancel to return and update the "
        "calibration.");
}

void MessageBoxes::questions()
{
    QFETCH(int, mark);
    QFETCH(QString, title);
    QFETCH(QString, text);
    BoxAnswerer answerer;
    answerer.expect(title, text, QStringLiteral("Cancel"));
    QVERIFY(!ask_question(nullptr, static_cast<QuestionMark>(mark)));
    const MetBox &box = answerer.met().first();
    QCOMPARE(QSet<QString>(box.buttons.begin(), box.buttons.end()),
             (QSet<QString>{"OK", "Cancel"}));
    QCOMPARE(box.default_button, QStringLiteral("Cancel"));
    QVERIFY(BoxAnswerer::has_title_bar_only(box));
}

void MessageBoxes::question_answers_data()
{
    const auto row =
        test_columns<int, QString, QString, bool>("mark", "button", "default_button", "agreed");
    row("OK agrees", int(QuestionMark::L1), "OK", "Cancel", true);
    row("Cancel does not", int(QuestionMark::L1), "Cancel", "Cancel", false);
    row("Yes agrees", int(QuestionMark::R2), "Yes", "No", true);
    row("No does not", int(QuestionMark::R2), "No", "No", false);
    row("OK alone agrees", int(QuestionMark::R1), "OK", "OK", true);
}

void MessageBoxes::question_answers()
{
    QFETCH(int, mark);
    QFETCH(QString, button);
    QFETCH(QString, default_button);
    BoxAnswerer answerer;
    const ProcessQuestion &asked = question(static_cast<QuestionMark>(mark));
    answerer.expect(QString::fromUtf8(asked.title), QString::fromUtf8(asked.text), button);
    QTEST(ask_question(nullptr, asked.mark), "agreed");
    QCOMPARE(answerer.met().first().default_button, default_button);
}

void MessageBoxes::nothing_asked_is_agreed()
{
    const BoxAnswerer answerer;
    QVERIFY(ask_question(nullptr, QuestionMark::None));
    QVERIFY(answerer.met().isEmpty());
}

// The end of the program ends the box's loop without a button.
void MessageBoxes::box_closed_with_the_program_answers_the_default()
{
    QTimer::singleShot(0, this, [] { QApplication::activeModalWidget()->close(); });
    QTimer::singleShot(0, this, [] {
        auto *const box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget());
        if (box != nullptr)
            box->done(-1);
    });
    QCOMPARE(ask(nullptr, QMessageBox::Question, QStringLiteral("Title"), QStringLiteral("Text"),
                 QMessageBox::Yes | QMessageBox::No, QMessageBox::No),
             QMessageBox::No);
}

WINDOW_TEST(MessageBoxes);
#include "test_messagebox.moc"
