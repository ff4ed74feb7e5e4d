// SPDX-License-Identifier: GPL-3.0-or-later
#include "window/messagebox.h"

#include <QApplication>
#include <QPointer>

#include "frame/functions.h"
#include "window/termination.h"

namespace
{

QPointer<QWidget> box_parent;

bool stands_over(const QObject *dialog, const QObject *other)
{
    while (dialog != nullptr && dialog != other)
        dialog = dialog->parent();
    return dialog != nullptr;
}

} // namespace

void set_box_parent(QWidget *window)
{
    box_parent = window;
}

// Not the active modal widget alone: an on-screen pad that was left open over a
// dialog is one too.
QDialog *open_dialog()
{
    auto *top = qobject_cast<QDialog *>(QApplication::activeModalWidget());
    if (top != nullptr || QApplication::activeModalWidget() == nullptr)
        return top;
    for (QWidget *window : QApplication::topLevelWidgets()) {
        auto *const dialog = qobject_cast<QDialog *>(window);
        if (dialog != nullptr && dialog->isVisible() && dialog->isModal() &&
            (top == nullptr || stands_over(dialog, top)))
            top = dialog;
    }
    return top;
}

QWidget *box_owner(QWidget *otherwise)
{
    QDialog *const open = open_dialog();
    return open != nullptr ? open : otherwise;
}

QMessageBox::StandardButton ask(QWidget *parent, QMessageBox::Icon icon, const QString &title,
                                const QString &text, QMessageBox::StandardButtons buttons,
                                QMessageBox::StandardButton default_button)
{
    if (end_decided())
        return default_button;
    QMessageBox box(icon, title, text, buttons, box_owner(parent));
    box.setWindowFlags(TITLE_BAR_ONLY); // the constructor would add a close button
    box.setTextFormat(Qt::PlainText);
    box.setDefaultButton(default_button);
    box.exec();
    const QAbstractButton *answer = box.clickedButton();
    return answer != nullptr ? box.standardButton(const_cast<QAbstractButton *>(answer))
                             : default_button;
}

void tell(QWidget *parent, QMessageBox::Icon icon, const QString &title, const QString &text)
{
    ask(parent, icon, title, text, QMessageBox::Ok, QMessageBox::Ok);
}

void show_information(const char *text)
{
    ask(box_parent, QMessageBox::Information, QStringLiteral("Information"),
        QString::fromUtf8(text), QMessageBox::Ok, QMessageBox::Ok);
}

void show_warning(const char *title, const char *text)
{
    ask(box_parent, QMessageBox::Warning, QString::fromUtf8(title), QString::fromUtf8(text),
        QMessageBox::Ok, QMessageBox::Ok);
}
