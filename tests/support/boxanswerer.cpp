// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/boxanswerer.h"

#include <QAbstractButton>
#include <QApplication>
#include <QPushButton>
#include <QTest>

namespace
{

constexpr int LOOK_MS = 5;

QString plain_text(const QAbstractButton *button)
{
    return button->text().remove(QLatin1Char('&'));
}

MetBox describe(QDialog *dialog)
{
    MetBox met;
    met.class_name = QString::fromLatin1(dialog->metaObject()->className());
    met.title = dialog->windowTitle();
    met.flags = dialog->windowFlags();
    const auto *box = qobject_cast<QMessageBox *>(dialog);
    if (box == nullptr)
        return met;
    met.text = box->text();
    met.icon = box->icon();
    for (const QAbstractButton *button : box->buttons()) {
        met.buttons.append(plain_text(button));
        const auto *push = qobject_cast<const QPushButton *>(button);
        if (push != nullptr && push->isDefault())
            met.default_button = plain_text(push);
    }
    return met;
}

void fail(const QString &what)
{
    QTest::qFail(what.toUtf8().constData(), __FILE__, __LINE__);
}

} // namespace

BoxAnswerer::BoxAnswerer() : m_fault(fail)
{
    connect(&m_timer, &QTimer::timeout, this, &BoxAnswerer::look);
    m_timer.start(LOOK_MS);
}

BoxAnswerer::~BoxAnswerer()
{
    for (const Expected &expected : qAsConst(m_expected))
        m_fault(QStringLiteral("no box came: %1: %2").arg(expected.title, expected.text));
}

void BoxAnswerer::expect(const QString &title, const QString &text, const QString &button)
{
    m_expected.enqueue({title, text, false, button, nullptr});
}

void BoxAnswerer::expect_title(const QString &title, const QString &button)
{
    m_expected.enqueue({title, QString(), true, button, nullptr});
}

void BoxAnswerer::expect_dialog(const QString &title, Visit visit)
{
    m_expected.enqueue({title, QString(), true, QString(), std::move(visit)});
}

QStringList BoxAnswerer::said() const
{
    QStringList said;
    for (const MetBox &met : m_met)
        said.append(met.title + QStringLiteral(": ") + met.text);
    return said;
}

bool BoxAnswerer::has_title_bar_only(const MetBox &box)
{
    const Qt::WindowFlags hints =
        box.flags & (Qt::WindowTitleHint | Qt::CustomizeWindowHint | Qt::WindowCloseButtonHint |
                     Qt::WindowSystemMenuHint);
    return (box.flags & Qt::WindowType_Mask) == Qt::Dialog &&
           hints == (Qt::WindowTitleHint | Qt::CustomizeWindowHint);
}

// The answer is given from a call of its own: a timer does not fire again while
// its own slot runs, and an answer may open the next box.
void BoxAnswerer::look()
{
    auto *dialog = qobject_cast<QDialog *>(QApplication::activeModalWidget());
    if (dialog == nullptr || !dialog->isVisible() || m_answered.contains(dialog))
        return;
    m_answered.insert(dialog);
    connect(dialog, &QDialog::finished, this, [this, dialog] { m_answered.remove(dialog); });
    connect(dialog, &QObject::destroyed, this, [this](QObject *gone) { m_answered.remove(gone); });
    const QPointer<QDialog> open(dialog);
    QMetaObject::invokeMethod(
        this,
        [this, open] {
            if (!open.isNull())
                answer(open);
        },
        Qt::QueuedConnection);
}

void BoxAnswerer::answer(QDialog *dialog)
{
    const MetBox met = describe(dialog);
    if (m_expected.isEmpty()) {
        unexpected(dialog, met, QStringLiteral("nothing was expected"));
        return;
    }
    const Expected &next = m_expected.head();
    if (next.title != met.title || (!next.any_text && next.text != met.text)) {
        unexpected(dialog, met, QStringLiteral("expected was %1: %2").arg(next.title, next.text));
        return;
    }
    if (next.visit)
        answer_dialog(dialog, met);
    else if (auto *box = qobject_cast<QMessageBox *>(dialog))
        answer_box(box, met);
    else
        unexpected(dialog, met, QStringLiteral("expected was a message box"));
}

void BoxAnswerer::answer_box(QMessageBox *box, MetBox met)
{
    const QString button = m_expected.head().button;
    for (QAbstractButton *candidate : box->buttons()) {
        if (plain_text(candidate) != button)
            continue;
        m_expected.dequeue();
        met.expected = true;
        met.pressed = button;
        m_met.append(met);
        candidate->click();
        return;
    }
    unexpected(box, met, QStringLiteral("it has no button \"%1\"").arg(button));
}

void BoxAnswerer::answer_dialog(QDialog *dialog, MetBox met)
{
    const Visit visit = m_expected.dequeue().visit;
    met.expected = true;
    m_met.append(met);
    const QPointer<QDialog> open(dialog);
    visit(dialog);
    if (!open.isNull() && open->isVisible())
        open->reject();
}

void BoxAnswerer::unexpected(QDialog *dialog, const MetBox &met, const QString &why)
{
    m_met.append(met);
    m_fault(QStringLiteral("unexpected box: %1: %2 (%3)").arg(met.title, met.text, why));
    // A message box answers this as its escape button would, where it has one.
    dialog->close();
    if (dialog->isVisible())
        dialog->reject();
}
