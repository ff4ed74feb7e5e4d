// SPDX-License-Identifier: GPL-3.0-or-later
//
// Serves the marked text fields of a touch screen cell: decides which pad opens
// for a field, places it, and carries its result back. A field is marked with
// the dynamic property "keyboard"; its validator decides the pad. GUI thread
// only.
#ifndef INPUT_INPUTDEVICE_H
#define INPUT_INPUTDEVICE_H

#include <QPointer>
#include <QString>
#include <QVariant>
#include <QWidget>

class Keyboard;
class Numpad;
class QLineEdit;

class InputDevice : public QWidget
{
    Q_OBJECT

public:
    // Builds both pads and watches every event of the application. A tap serves
    // the fields three levels below the window of that name.
    explicit InputDevice(const QString &owner_name);
    ~InputDevice() override;

    // A tap: swallows the panel events of the marked fields and opens the pad.
    bool eventFilter(QObject *object, QEvent *event) override;
    // A double tap, handed over by the field's owner as an event of the type
    // RequestSoftwareInputPanel; at any depth.
    void show_input_panel(QObject *object, QEvent *event);

    // Puts the centre of both pads on the centre of the primary screen.
    void center_pads();

    // Text of the field being served, trimmed; empty when it is no line edit.
    QString target_text() const;
    // Puts the text into it and takes its focus, so that its owner sees an edit
    // that is finished. Nothing happens when the field has gone.
    void set_target_text(const QString &text);

    // Left of an older interface; nobody calls them.
    QString identifierName() const { return QStringLiteral("InputDevice"); }
    QString language() const { return QStringLiteral("en_US"); }
    bool isComposing() const { return false; }
    void reset() {}

    Keyboard *const keyboard;
    Numpad *const numpad;
    QPointer<QWidget> target; // the field served last
    const QString owner_name;

signals:
    void updateData(const QString &calledFrom); // nothing emits it

public slots:
    void dataSet(QVariant *v);

private:
    void open_pad(QLineEdit *field);
    void close_pads();
};

#endif
