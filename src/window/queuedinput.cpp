// SPDX-License-Identifier: GPL-3.0-or-later
#include "window/queuedinput.h"

#include <QCoreApplication>
#include <QMouseEvent>

#include "window/messagebox.h"

namespace
{

// Input that has ended is dropped sooner than this; a user who goes on pressing
// must not block the window.
constexpr int LONGEST_MS = 200;

bool acts(QEvent::Type type)
{
    switch (type) {
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonDblClick:
    case QEvent::Wheel:
    case QEvent::KeyPress:
    case QEvent::ShortcutOverride:
    case QEvent::Shortcut:
    case QEvent::InputMethod:
    case QEvent::ContextMenu:
    case QEvent::TouchBegin:
    case QEvent::TouchUpdate:
    case QEvent::TabletPress:
        return true;
    default:
        return false;
    }
}

// In force while it lives; the filter installed last is asked first. A box that
// what is worked off brings up is answered by hand: nothing else could close it.
class InputDrop : public QObject
{
public:
    InputDrop() { QCoreApplication::instance()->installEventFilter(this); }

protected:
    bool eventFilter(QObject *, QEvent *event) override
    {
        if (open_dialog() != nullptr)
            return false;
        if (!acts(event->type()) && !ends_dropped_press(event))
            return false;
        if (event->type() == QEvent::MouseButtonPress)
            m_dropped |= static_cast<const QMouseEvent *>(event)->button();
        event->accept(); // so that it is not offered to a parent or as another kind
        return true;
    }

private:
    // A release goes with its press. That of an earlier press is let through, or
    // what it holds would stay held down.
    bool ends_dropped_press(const QEvent *event)
    {
        if (event->type() != QEvent::MouseButtonRelease)
            return false;
        return m_dropped.testFlag(static_cast<const QMouseEvent *>(event)->button());
    }

    Qt::MouseButtons m_dropped;
};

} // namespace

// The display server's own queue is read here too, so that what was pressed a
// moment ago is among it.
void drop_queued_input()
{
    const InputDrop drop;
    QCoreApplication::processEvents(QEventLoop::AllEvents, LONGEST_MS);
}
