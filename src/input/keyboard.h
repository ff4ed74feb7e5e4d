// SPDX-License-Identifier: GPL-3.0-or-later
//
// The on-screen keyboard of the text fields: a typewriter's keys with shift,
// caps lock and a cursor. It edits the carried-in text in place and judges
// nothing. GUI thread only.
#ifndef INPUT_KEYBOARD_H
#define INPUT_KEYBOARD_H

#include <memory>

#include <QLineEdit>
#include <QObjectList>
#include <QPointer>
#include <QVariant>
#include <QWidget>

namespace Ui
{
class Keyboard;
}

class QValidator;

class Keyboard : public QWidget
{
    Q_OBJECT

public:
    Keyboard();
    ~Keyboard() override;

    // Opens the keyboard with that text, of at most max_length characters, the
    // cursor behind it. With lines, Enter puts a line feed in instead of
    // finishing. Shift and caps lock stand as they were left.
    void setData(const QVariant &value, int max_length, bool lines);
    void setEchoMode(QLineEdit::EchoMode mode);
    void setValidator(const QValidator *validator);

signals:
    // The result. Nobody frees the value: a receiver may keep the pointer.
    void dataSet(QVariant *updateData);

protected:
    bool event(QEvent *event) override;

private slots:
    void buttonClicked();
    void shiftClicked();
    void capsClicked();
    void enterClicked();
    void okClicked();
    void escapeClicked();
    void spaceClicked();
    void clearClicked();
    void tabClicked();
    void backspaceClicked();
    void leftClicked();
    void rightClicked();
    void saveFocusWidget(QWidget *old, QWidget *newFocus);

private:
    void connect_keys();
    void update_labels();
    void insert_text(const QString &text);
    void show_cursor(bool visible);
    void make_way();

    QObjectList buttons;
    bool shift = false; // for one character
    bool caps = false;
    bool multi_line = false;
    bool blocked = false; // by a modal dialog
    QPointer<QWidget> last_focus;
    std::unique_ptr<Ui::Keyboard> ui;
};

#endif
