// SPDX-License-Identifier: GPL-3.0-or-later
//
// Drives the running program through its widgets, found by their names, the way
// a person at the cell does. The driver is loaded into the program's process and
// knows none of its code.
#ifndef TOUR_DRIVER_H
#define TOUR_DRIVER_H

#include <functional>

#include <QLineEdit>
#include <QPushButton>
#include <QString>
#include <QWidget>

#include "hostsim/cell/cellclient.h"

class QComboBox;

namespace tour
{

class Driver
{
public:
    explicit Driver(const QString &folder) : m_folder(folder) {}

    // Prints one line of the story.
    void tell(const QString &text);
    // Ends the process with status 1 when the condition does not hold.
    void check(bool holds, const QString &what);
    // Runs the event loop until the condition holds; a failed check after
    // `seconds`.
    void await(const std::function<bool()> &condition, const QString &what, int seconds = 30);
    void settle(); // lets what has been posted be painted

    QWidget *window();
    template <typename Widget> Widget *find(const char *name, QWidget *parent = nullptr)
    {
        auto *widget =
            (parent != nullptr ? parent : window())->findChild<Widget *>(QString::fromLatin1(name));
        check(widget != nullptr, QStringLiteral("there is no widget ") + QLatin1String(name));
        return widget;
    }

    void press(QWidget *button);
    void enter(QLineEdit *field, const QString &text);
    void choose(QComboBox *combo, int item);
    // Opens the menu and clicks its entry.
    void choose_action(const char *menu, const char *action);
    // Does the action, which opens a modal window, and hands that window over;
    // returns when the action has run to its end.
    void with_dialog(const std::function<void()> &action,
                     const std::function<void(QWidget *)> &answer);
    // A picture of the whole screen.
    void picture(const QString &name);

    cell::CellClient cell;

private:
    QString m_folder;
    int m_pictures = 0;
};

} // namespace tour

#endif
