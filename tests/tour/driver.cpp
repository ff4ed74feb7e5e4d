// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/tour/driver.h"

#include <cstdio>
#include <cstdlib>

#include <QApplication>
#include <QComboBox>
#include <QDir>
#include <QElapsedTimer>
#include <QListView>
#include <QMainWindow>
#include <QMenu>
#include <QMenuBar>
#include <QMessageBox>
#include <QScreen>
#include <QScrollArea>
#include <QTest>
#include <QTimer>

#include "tests/tour/marks.h"

namespace tour
{

namespace
{

QString plain_text(const QAbstractButton *button)
{
    return button->text().remove(QLatin1Char('&'));
}

} // namespace

// The pictures of a further run follow on those of the former.
Driver::Driver(const QString &folder)
    : m_folder(folder), m_pictures(QDir(folder).entryList({QStringLiteral("*.png")}).size())
{
    qApp->installEventFilter(this);
}

void Driver::tell(const QString &text)
{
    std::printf("tour: %s\n", qUtf8Printable(text));
    std::fflush(stdout);
}

void Driver::check(bool holds, const QString &what)
{
    if (holds)
        return;
    std::fprintf(stderr, "tour: FAILED: %s\n", qUtf8Printable(what));
    picture(QStringLiteral("failed"));
    std::_Exit(1);
}

void Driver::await(const std::function<bool()> &condition, const QString &what, int seconds)
{
    QElapsedTimer timer;
    timer.start();
    while (!condition()) {
        check(timer.elapsed() < seconds * 1000, QStringLiteral("waited in vain for ") + what);
        QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
        QTest::qSleep(5);
    }
}

void Driver::settle()
{
    for (int i = 0; i < 10; ++i) {
        QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
        QTest::qSleep(5);
    }
}

QWidget *Driver::window()
{
    for (QWidget *widget : QApplication::topLevelWidgets()) {
        if (qobject_cast<QMainWindow *>(widget) != nullptr)
            return widget;
    }
    check(false, QStringLiteral("the window is not there"));
    return nullptr;
}

void Driver::press(QWidget *button)
{
    check(button->isVisible() && button->isEnabled(),
          button->objectName() + QStringLiteral(" cannot be pressed"));
    for (QWidget *ancestor = button; ancestor != nullptr; ancestor = ancestor->parentWidget()) {
        if (auto *area = qobject_cast<QScrollArea *>(ancestor))
            area->ensureWidgetVisible(button);
    }
    QTest::mouseClick(button, Qt::LeftButton);
}

void Driver::enter(QLineEdit *field, const QString &text)
{
    field->setFocus();
    field->selectAll();
    QTest::keyClicks(field, text);
    QTest::keyClick(field, Qt::Key_Return);
}

void Driver::pick(QComboBox *combo, int item)
{
    combo->showPopup();
    settle();
    combo->view()->setCurrentIndex(combo->model()->index(item, 0));
    QTest::keyClick(combo->view(), Qt::Key_Return);
}

void Driver::choose(QComboBox *combo, int item)
{
    pick(combo, item);
    await([=] { return combo->currentIndex() == item; }, QStringLiteral("the chosen item"));
}

void Driver::choose_action(const char *menu_name, const char *action_name)
{
    auto *menu = find<QMenu>(menu_name);
    auto *action = find<QAction>(action_name);
    auto *bar = find<QMenuBar>("menubar");
    QTest::mouseClick(bar, Qt::LeftButton, Qt::NoModifier,
                      bar->actionGeometry(menu->menuAction()).center());
    await([=] { return menu->isVisible(); }, QStringLiteral("the menu"));
    QTest::mouseClick(menu, Qt::LeftButton, Qt::NoModifier, menu->actionGeometry(action).center());
}

void Driver::await_modal(const std::function<void()> &action,
                         const std::function<bool(QWidget *)> &wanted,
                         const std::function<void(QWidget *)> &answer)
{
    bool answered = false;
    QWidget *const before = QApplication::activeModalWidget();
    QTimer watcher;
    connect(&watcher, &QTimer::timeout, [&] {
        QWidget *modal = QApplication::activeModalWidget();
        if (modal == nullptr || modal == before || !modal->isVisible() || !wanted(modal))
            return;
        watcher.stop();
        answered = true;
        settle();
        answer(modal);
    });
    watcher.start(20);
    action();
    check(answered, QStringLiteral("what was awaited did not open"));
}

void Driver::with_dialog(const std::function<void()> &action,
                         const std::function<void(QWidget *)> &answer)
{
    await_modal(
        action, [](QWidget *modal) { return qobject_cast<QMessageBox *>(modal) == nullptr; },
        answer);
}

void Driver::answer(const std::function<void()> &action, const QString &mark, const QString &button,
                    const QString &picture_name)
{
    ++m_awaited;
    await_modal(
        action, [](QWidget *modal) { return qobject_cast<QMessageBox *>(modal) != nullptr; },
        [&](QWidget *modal) {
            --m_awaited;
            if (!picture_name.isEmpty())
                picture(picture_name);
            press_answer(qobject_cast<QMessageBox *>(modal), mark, button);
        });
}

void Driver::press_answer(QMessageBox *box, const QString &mark, const QString &button)
{
    check(mark_of(box->windowTitle(), box->text()) == mark,
          QStringLiteral("question %1 was awaited, not \"%2\": %3")
              .arg(mark, box->windowTitle(), box->text()));
    for (QAbstractButton *candidate : box->buttons()) {
        if (plain_text(candidate) == button) {
            QTest::mouseClick(candidate, Qt::LeftButton);
            return;
        }
    }
    check(false, QStringLiteral("question %1 has no button %2").arg(mark, button));
}

bool Driver::eventFilter(QObject *object, QEvent *event)
{
    if (event->type() == QEvent::Show) {
        if (auto *box = qobject_cast<QMessageBox *>(object))
            note(box);
    }
    return false;
}

void Driver::note(QMessageBox *box)
{
    const int index = m_questions.size();
    m_questions.append({mark_of(box->windowTitle(), box->text()), box->windowTitle(), box->text(),
                        QStringLiteral("(none)")});
    connect(box, &QMessageBox::buttonClicked, this, [this, index](QAbstractButton *button) {
        m_questions[index].answer = plain_text(button);
    });
    if (m_awaited == 0) {
        QTimer::singleShot(200, this, [this, index] {
            check(false, QStringLiteral("a question that nobody awaits: %1: %2")
                             .arg(m_questions[index].title, m_questions[index].text));
        });
    }
}

void Driver::tell_questions()
{
    tell(QStringLiteral("%1 questions, in the order in which they were met:")
             .arg(m_questions.size()));
    int number = 0;
    for (const Question &met : m_questions)
        tell(QStringLiteral("%1. %2 | %3 | %4 | %5")
                 .arg(++number, 3)
                 .arg(met.mark, met.title, met.text.simplified(), met.answer));
}

void Driver::expect_record(const char *table, const char *step)
{
    m_expected_files.append(
        QStringLiteral("record %1 %2").arg(QLatin1String(table), QLatin1String(step)));
}

void Driver::expect_rewritten(const char *table)
{
    m_expected_files.append(QStringLiteral("rewritten %1").arg(QLatin1String(table)));
}

QString Driver::next_picture(const QString &name)
{
    return QStringLiteral("%1/%2-%3.png")
        .arg(m_folder)
        .arg(++m_pictures, 2, 10, QLatin1Char('0'))
        .arg(name);
}

void Driver::picture(const QString &name)
{
    settle();
    const QString file = next_picture(name);
    QScreen *screen = QGuiApplication::primaryScreen();
    const bool saved = screen->grabWindow(0).save(file);
    tell((saved ? QStringLiteral("picture ") : QStringLiteral("no picture ")) + file);
}

} // namespace tour
