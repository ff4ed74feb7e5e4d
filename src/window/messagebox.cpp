// SPDX-License-Identifier: GPL-3.0-or-later
#include "window/messagebox.h"

#include <QApplication>
#include <QPointer>

#include "frame/functions.h"
#include "window/termination.h"

namespace
{
QPointer<QWidget> box_parent;
}

void set_box_parent(QWidget *window)
{
    box_parent = window;
}

QWidget *box_owner(QWidget *otherwise)
{
    auto *const open = qobject_cast<QDialog *>(QApplication::activeModalWidget());
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
