// SPDX-License-Identifier: GPL-3.0-or-later
//
// Loaded into a program whose start is timed: leaves with status 0 as soon as
// its first window has been painted and the picture has reached the display.
#include <unistd.h>

#include <QCoreApplication>
#include <QEvent>
#include <QGuiApplication>
#include <QTimer>
#include <QWidget>

namespace
{

class FirstPaint : public QObject
{
public:
    using QObject::QObject;

protected:
    bool eventFilter(QObject *object, QEvent *event) override
    {
        const auto *widget = qobject_cast<QWidget *>(object);
        if (event->type() == QEvent::Paint && widget != nullptr && widget->isWindow() && !m_seen) {
            m_seen = true;
            QTimer::singleShot(0, qApp, [] {
                QGuiApplication::sync();
                _exit(0);
            });
        }
        return false;
    }

private:
    bool m_seen = false;
};

void watch()
{
    qApp->installEventFilter(new FirstPaint(qApp));
}

} // namespace

Q_COREAPP_STARTUP_FUNCTION(watch)
