// SPDX-License-Identifier: GPL-3.0-or-later
//
// Answers modal boxes and dialogs while the code under test waits in their
// exec(). Boxes are expected in their order; one that was not expected fails
// the test and is dismissed, so that a test never hangs. Lives on the GUI
// thread; one at a time.
#ifndef SUPPORT_BOXANSWERER_H
#define SUPPORT_BOXANSWERER_H

#include <functional>

#include <QDialog>
#include <QMessageBox>
#include <QPointer>
#include <QQueue>
#include <QSet>
#include <QString>
#include <QStringList>
#include <QTimer>
#include <QVector>

// A box as it stood on the screen; of a dialog that is no message box only
// title, flags and class.
struct MetBox {
    QString class_name;
    QString title;
    QString text;
    QStringList buttons; // their texts without the mark of a shortcut
    QString default_button;
    Qt::WindowFlags flags;
    QMessageBox::Icon icon = QMessageBox::NoIcon;
    bool expected = false;
    QString pressed; // text of the button that was pressed
};

class BoxAnswerer : public QObject
{
    Q_OBJECT

public:
    using Visit = std::function<void(QDialog *)>;

    BoxAnswerer();
    // Expectations that were not met fail the test.
    ~BoxAnswerer() override;

    // The next box is a message box of that title and text; the button with
    // that text is pressed.
    void expect(const QString &title, const QString &text,
                const QString &button = QStringLiteral("OK"));
    // The next box is a message box of that title, whatever its text.
    void expect_title(const QString &title, const QString &button = QStringLiteral("OK"));
    // The next dialog has that title: visit looks at it, works it and closes it;
    // one that is still open after that is rejected.
    void expect_dialog(const QString &title, Visit visit);

    // What becomes of a fault instead of failing the test; for tests of this.
    void set_fault_handler(std::function<void(const QString &)> handler)
    {
        m_fault = std::move(handler);
    }

    // Boxes met so far, in their order; also those that were not expected.
    const QVector<MetBox> &met() const { return m_met; }
    // What met boxes said, "title: text" each.
    QStringList said() const;
    int remaining() const { return m_expected.size(); }
    void forget()
    {
        m_expected.clear();
        m_met.clear();
    }

    // Flags of the system's own boxes: a title bar without a close button.
    static bool has_title_bar_only(const MetBox &box);

private:
    struct Expected {
        QString title;
        QString text;
        bool any_text = false;
        QString button;
        Visit visit;
    };

    void look();
    void answer(QDialog *dialog);
    void answer_box(QMessageBox *box, MetBox met);
    void answer_dialog(QDialog *dialog, MetBox met);
    void unexpected(QDialog *dialog, const MetBox &met, const QString &why);

    std::function<void(const QString &)> m_fault;
    QTimer m_timer;
    QQueue<Expected> m_expected;
    QVector<MetBox> m_met;
    QSet<QObject *> m_answered; // and still open
};

#endif
