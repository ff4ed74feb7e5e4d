// SPDX-License-Identifier: GPL-3.0-or-later
//
// The on-screen input: events through its filter, which sees every event of the
// application, against the same events through one that does nothing, and a key
// of either pad to the painted display against a key typed into a bare line edit
// of the same size.
#include <QApplication>
#include <QDoubleValidator>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMouseEvent>
#include <QPushButton>

#include "bench/ratios.h"
#include "input/inputdevice.h"
#include "input/keyboard.h"
#include "input/numpad.h"

namespace
{

constexpr int EVENTS = 1000000;

InputDevice *device = nullptr;

class EmptyFilter : public QObject
{
public:
    bool eventFilter(QObject *, QEvent *) override { return false; }
};

// Fields and labels without a mark, as nearly all objects are.
void send_events()
{
    QWidget window;
    QObject *const receivers[] = {new QLineEdit(&window), new QLabel(&window),
                                  new QPushButton(&window), &window};
    QEvent event(QEvent::User);
    for (int i = 0; i < EVENTS; ++i)
        QCoreApplication::sendEvent(receivers[i % 4], &event);
}

void BM_million_events_through_the_device(benchmark::State &state)
{
    qApp->installEventFilter(device);
    for (auto run : state) {
        static_cast<void>(run);
        send_events();
    }
    qApp->removeEventFilter(device);
}
BENCHMARK(BM_million_events_through_the_device)->Unit(benchmark::kMillisecond);

void BM_million_events_through_an_empty_filter(benchmark::State &state)
{
    EmptyFilter filter;
    qApp->installEventFilter(&filter);
    for (auto run : state) {
        static_cast<void>(run);
        send_events();
    }
}
BENCHMARK(BM_million_events_through_an_empty_filter)->Unit(benchmark::kMillisecond);

void press(QPushButton *key)
{
    const QPointF place(key->rect().center());
    QMouseEvent down(QEvent::MouseButtonPress, place, Qt::LeftButton, Qt::LeftButton, {});
    QCoreApplication::sendEvent(key, &down);
    QMouseEvent up(QEvent::MouseButtonRelease, place, Qt::LeftButton, {}, {});
    QCoreApplication::sendEvent(key, &up);
    QCoreApplication::processEvents();
}

// A character comes and goes, so that the text stays as short as it was.
void press_keys(benchmark::State &state, const QWidget *pad, const char *character)
{
    auto *const key = pad->findChild<QPushButton *>(QLatin1String(character));
    auto *const backspace = pad->findChild<QPushButton *>(QStringLiteral("btn_backspace"));
    for (auto run : state) {
        static_cast<void>(run);
        press(key);
        press(backspace);
    }
}

void BM_key_of_the_keyboard(benchmark::State &state)
{
    device->keyboard->setData(QStringLiteral("12.5"), 80, false);
    QCoreApplication::processEvents();
    press_keys(state, device->keyboard, "btn_a");
    device->keyboard->close();
}
BENCHMARK(BM_key_of_the_keyboard)->Unit(benchmark::kMicrosecond);

void BM_key_of_the_number_pad(benchmark::State &state)
{
    // The key makes the empty text a number, backspace makes it none again: red
    // and back, with Ok grey and back.
    QDoubleValidator validator;
    validator.setLocale(QLocale::c());
    device->numpad->setData(QStringLiteral("12.5"), &validator);
    QCoreApplication::processEvents();
    press_keys(state, device->numpad, "btn_7");
    device->numpad->close();
}
BENCHMARK(BM_key_of_the_number_pad)->Unit(benchmark::kMicrosecond);

// The same in a bare line edit, in a window of the pad's size.
void type_keys(benchmark::State &state, const QWidget *pad)
{
    QWidget window;
    window.resize(pad->size());
    QLineEdit field(&window);
    const auto *const display = pad->findChild<QLineEdit *>(QStringLiteral("edValue"));
    field.setGeometry(display->geometry());
    field.setText(QStringLiteral("12.5"));
    window.show();
    window.activateWindow();
    field.setFocus();
    QCoreApplication::processEvents();
    const auto type = [&field](int key, const QString &text) {
        QKeyEvent down(QEvent::KeyPress, key, {}, text);
        QCoreApplication::sendEvent(&field, &down);
        QKeyEvent up(QEvent::KeyRelease, key, {}, text);
        QCoreApplication::sendEvent(&field, &up);
        QCoreApplication::processEvents();
    };
    for (auto run : state) {
        static_cast<void>(run);
        type(Qt::Key_7, QStringLiteral("7"));
        type(Qt::Key_Backspace, QString());
    }
}

void BM_key_of_a_line_edit(benchmark::State &state)
{
    type_keys(state, device->keyboard);
}
BENCHMARK(BM_key_of_a_line_edit)->Unit(benchmark::kMicrosecond);

void BM_key_of_a_small_line_edit(benchmark::State &state)
{
    type_keys(state, device->numpad);
}
BENCHMARK(BM_key_of_a_small_line_edit)->Unit(benchmark::kMicrosecond);

} // namespace

int main(int argc, char **argv)
{
    QApplication application(argc, argv);
    InputDevice input(QStringLiteral("MainWindow"));
    qApp->removeEventFilter(&input);
    device = &input;
    return bench::run(
        argc, argv,
        {{"BM_million_events_through_the_device", "BM_million_events_through_an_empty_filter", 2.0},
         {"BM_key_of_the_keyboard", "BM_key_of_a_line_edit", 2.0},
         {"BM_key_of_the_number_pad", "BM_key_of_a_small_line_edit", 2.0}});
}
