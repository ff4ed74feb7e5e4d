// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/tour/driver.h"

#include <cstdio>
#include <cstdlib>

#include <QApplication>
#include <QComboBox>
#include <QElapsedTimer>
#include <QListView>
#include <QMainWindow>
#include <QMenu>
#include <QMenuBar>
#include <QScreen>
#include <QScrollArea>
#include <QTest>
#include <QTimer>

namespace tour
{

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

void Driver::choose(QComboBox *combo, int item)
{
    combo->showPopup();
    settle();
    combo->view()->setCurrentIndex(combo->model()->index(item, 0));
    QTest::keyClick(combo->view(), Qt::Key_Return);
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

void Driver::with_dialog(const std::function<void()> &action,
                         const std::function<void(QWidget *)> &answer)
{
    bool answered = false;
    QWidget *const before = QApplication::activeModalWidget();
    QTimer watcher;
    QObject::connect(&watcher, &QTimer::timeout, [&] {
        QWidget *modal = QApplication::activeModalWidget();
        if (modal == nullptr || modal == before || !modal->isVisible())
            return;
        watcher.stop();
        answered = true;
        settle();
        answer(modal);
    });
    watcher.start(20);
    action();
    check(answered, QStringLiteral("no window opened"));
}

void Driver::picture(const QString &name)
{
    settle();
    const QString file = QStringLiteral("%1/%2-%3.png")
                             .arg(m_folder)
                             .arg(++m_pictures, 2, 10, QLatin1Char('0'))
                             .arg(name);
    QScreen *screen = QGuiApplication::primaryScreen();
    const bool saved = screen->grabWindow(0).save(file);
    tell((saved ? QStringLiteral("picture ") : QStringLiteral("no picture ")) + file);
}

} // namespace tour
