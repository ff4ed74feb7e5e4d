// SPDX-License-Identifier: GPL-3.0-or-later
//
// The on-screen pad of the fields with a numeric validator. It starts with the
// field's value, replaces it at the first key, shows at each step whether the
// validator would take the text, and refuses Ok while it would not. GUI thread
// only.
#ifndef INPUT_NUMPAD_H
#define INPUT_NUMPAD_H

#include <memory>

#include <QLineEdit>
#include <QObjectList>
#include <QPalette>
#include <QPointer>
#include <QValidator>
#include <QVariant>
#include <QWidget>

namespace Ui
{
class Numpad;
}

class Numpad : public QWidget
{
    Q_OBJECT

public:
    explicit Numpad(QWidget *parent = nullptr);
    ~Numpad() override;

    // Opens the pad with that text. The validator stays its owner's, may be null
    // and may go away while the pad is open; without one any text is taken.
    void setData(const QVariant &value, const QValidator *text_validator);
    void setEchoMode(QLineEdit::EchoMode mode);
    // The widget outside the pad that had the focus last, or null.
    QWidget *last_focused() const { return last_focus; }

signals:
    // The result. Nobody frees the value: a receiver may keep the pointer.
    void dataSet(QVariant *updateData);
    void updateData(); // nothing emits it

protected:
    bool event(QEvent *event) override;

private slots:
    void buttonClicked();
    void enterClicked();
    void escapeClicked();
    void clearClicked();
    void backspaceClicked();
    void periodClicked();
    void pmClicked();
    void saveFocusWidget(QWidget *old, QWidget *newFocus);

private:
    void connect_keys();
    void clear_if_first();
    void show_text(const QString &text);
    void check_value();
    void make_way();

    std::unique_ptr<Ui::Numpad> ui;
    QObjectList buttons;
    QPointer<const QValidator> validator;
    bool clear_on_key = false; // the next key replaces the text
    bool blocked = false;      // by a modal dialog
    QPointer<QWidget> last_focus;
    QPalette normal_palette;
};

#endif
