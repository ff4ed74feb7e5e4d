// SPDX-License-Identifier: GPL-3.0-or-later
//
// Drives the running program through its widgets, found by their names, the way
// a person at the cell does. The driver is loaded into the program's process and
// knows none of its code.
#ifndef TOUR_DRIVER_H
#define TOUR_DRIVER_H

#include <functional>

#include <QLineEdit>
#include <QList>
#include <QPushButton>
#include <QString>
#include <QStringList>
#include <QWidget>

#include "hostsim/cell/cellclient.h"

class QComboBox;
class QMessageBox;

namespace tour
{

// A message box as it was met.
struct Question {
    QString mark; // see marks.h
    QString title;
    QString text;
    QString answer; // text of the button that was pressed
};

class Driver : public QObject
{
public:
    explicit Driver(const QString &folder);

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
    // The same, but the list may go elsewhere in answer to it.
    void pick(QComboBox *combo, int item);
    // Opens the menu and clicks its entry.
    void choose_action(const char *menu, const char *action);
    // Does the action, which opens a dialog other than a message box, and hands
    // that dialog over; returns when the action has run to its end.
    void with_dialog(const std::function<void()> &action,
                     const std::function<void(QWidget *)> &answer);
    // Does the action, which asks the question of that mark, and presses the
    // button with that text; a picture of it before, when one is named. A
    // message box that comes when none is awaited ends the tour.
    void answer(const std::function<void()> &action, const QString &mark, const QString &button,
                const QString &picture_name = QString());
    // A picture of the whole screen, numbered; the name tells the state.
    void picture(const QString &name);
    // File for the next picture, for one that is taken by other means.
    QString next_picture(const QString &name);
    const QString &folder() const { return m_folder; }

    // The table's archive has gained a record of that step, as vxtable names it.
    void expect_record(const char *table, const char *step);
    // The table's file has been rewritten.
    void expect_rewritten(const char *table);
    const QStringList &expected_files() const { return m_expected_files; }
    // Prints the questions in the order in which they were met.
    void tell_questions();

    cell::CellClient cell;

protected:
    bool eventFilter(QObject *object, QEvent *event) override;

private:
    void await_modal(const std::function<void()> &action,
                     const std::function<bool(QWidget *)> &wanted,
                     const std::function<void(QWidget *)> &answer);
    void press_answer(QMessageBox *box, const QString &mark, const QString &button);
    void note(QMessageBox *box);

    QString m_folder;
    int m_pictures;
    int m_awaited = 0; // questions that an action is to ask and has not yet
    QList<Question> m_questions;
    QStringList m_expected_files;
};

} // namespace tour

#endif
