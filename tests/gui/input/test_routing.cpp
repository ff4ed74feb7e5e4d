// SPDX-License-Identifier: GPL-3.0-or-later
//
// The routing of the on-screen input over windows of its own: which field opens
// which pad by a tap and by a double tap, and where the pads stand.
#include <QDoubleValidator>
#include <QIntValidator>
#include <QMetaMethod>
#include <QRegularExpressionValidator>
#include <QScreen>
#include <QSignalSpy>
#include <QTextEdit>
#include <QtTest>

#include "gui/input/nest.h"
#include "support/testmain.h"

using namespace touchscreen;

namespace
{
const auto ASKED = QEvent::RequestSoftwareInputPanel;
const auto CLOSED = QEvent::CloseSoftwareInputPanel;

// Counts what it is shown of one object.
class CountingDevice : public InputDevice
{
public:
    CountingDevice(const QObject *watched, int *count)
        : InputDevice(QStringLiteral("Owner")), m_watched(watched), m_count(count)
    {
    }
    bool eventFilter(QObject *object, QEvent *event) override
    {
        if (object == m_watched)
            ++*m_count;
        return InputDevice::eventFilter(object, event);
    }

private:
    const QObject *m_watched;
    int *m_count;
};

} // namespace

class Routing : public QObject
{
    Q_OBJECT

private slots:
    void init() { m_device = std::make_unique<InputDevice>(QStringLiteral("Owner")); }
    void device();
    void every_event_of_the_application_is_seen();
    void numbers_of_the_events();
    void operations_without_a_caller();
    void signal_that_nothing_emits();
    void taps_at_each_depth_data();
    void taps_at_each_depth();
    void tap_in_a_window_of_another_name();
    void tap_on_a_marked_window_without_ancestors();
    void tap_by_marks_data();
    void tap_by_marks();
    void what_is_no_line_edit_is_swallowed();
    void events_of_other_kinds_pass();
    void close_event_closes_both_pads();
    void double_tap_by_kind_data();
    void double_tap_by_kind();
    void pad_by_validator_data();
    void pad_by_validator();
    void text_is_trimmed_on_its_way_to_the_pad();
    void greatest_length_and_echo_mode_go_along();
    void both_pads_are_centred();
    void pads_go_with_the_device();

private:
    bool ask(QObject *object)
    {
        QEvent event(ASKED);
        m_device->show_input_panel(object, &event);
        return open();
    }
    bool open() const { return m_device->keyboard->isVisible() || m_device->numpad->isVisible(); }

    std::unique_ptr<InputDevice> m_device;
};

void Routing::device()
{
    QCOMPARE(m_device->keyboard->objectName(), QStringLiteral("keyboard"));
    QCOMPARE(m_device->numpad->objectName(), QStringLiteral("numpad"));
    QCOMPARE(m_device->owner_name, QStringLiteral("Owner"));
    QVERIFY(m_device->target.isNull());
    QVERIFY(!m_device->isVisible());
    QVERIFY(!open());
    QCOMPARE(m_device->keyboard->parent(), nullptr);
    QCOMPARE(m_device->numpad->parent(), nullptr);
}

void Routing::every_event_of_the_application_is_seen()
{
    QObject unrelated;
    int count = 0;
    QEvent event(QEvent::User);
    {
        const CountingDevice device(&unrelated, &count);
        QCoreApplication::sendEvent(&unrelated, &event);
        QCOMPARE(count, 1);
    }
    count = 0;
    QCoreApplication::sendEvent(&unrelated, &event);
    QCOMPARE(count, 0);
}

void Routing::numbers_of_the_events()
{
    QCOMPARE(int(QEvent::RequestSoftwareInputPanel), 199);
    QCOMPARE(int(QEvent::CloseSoftwareInputPanel), 200);
    QCOMPARE(int(QEvent::MouseButtonDblClick), 4);
    QCOMPARE(int(QEvent::WindowActivate), 24);
}

void Routing::operations_without_a_caller()
{
    QCOMPARE(m_device->identifierName(), QStringLiteral("InputDevice"));
    QCOMPARE(m_device->language(), QStringLiteral("en_US"));
    QVERIFY(!m_device->isComposing());
    m_device->reset();
}

void Routing::signal_that_nothing_emits()
{
    const QMetaObject *const meta = m_device->metaObject();
    QVERIFY(meta->indexOfSignal("updateData(QString)") >= 0);
    QVERIFY(meta->indexOfSlot("dataSet(QVariant*)") >= 0);
    QVERIFY(m_device->numpad->metaObject()->indexOfSignal("updateData()") >= 0);
    QSignalSpy spy(m_device.get(), &InputDevice::updateData);
    QSignalSpy pad_spy(m_device->numpad, SIGNAL(updateData()));
    Nest nest(3);
    QIntValidator whole;
    nest.field->setValidator(&whole);
    QVERIFY(panel_event(m_device.get(), nest.field));
    tap_keys(m_device->numpad, "5 enter");
    QCOMPARE(nest.field->text(), QStringLiteral("5"));
    QVERIFY(spy.isEmpty());
    QVERIFY(pad_spy.isEmpty());
}

void Routing::taps_at_each_depth_data()
{
    const auto row = test_columns<int, bool>("depth", "served");
    row("in the window itself", 1, false);
    row("two levels below", 2, false);
    row("three levels below", 3, true);
    row("four levels below", 4, false);
}

// The walk stops safely where the ancestors end sooner.
void Routing::taps_at_each_depth()
{
    QFETCH(int, depth);
    QFETCH(bool, served);
    Nest nest(depth);
    QCOMPARE(panel_event(m_device.get(), nest.field), served);
    QCOMPARE(open(), served);
    QVERIFY(ask(nest.field));
}

void Routing::tap_in_a_window_of_another_name()
{
    Nest nest(3);
    nest.window.setObjectName(QStringLiteral("Other"));
    QVERIFY(!panel_event(m_device.get(), nest.field));
    QVERIFY(!open());
}

// Not even where the name that is missing would be the right one.
void Routing::tap_on_a_marked_window_without_ancestors()
{
    InputDevice nameless{QString()};
    QLineEdit field;
    field.setProperty("keyboard", true);
    QVERIFY(!panel_event(m_device.get(), &field));
    QVERIFY(!panel_event(&nameless, &field));
    QVERIFY(!open());
    QVERIFY(!nameless.keyboard->isVisible());
}

void Routing::tap_by_marks_data()
{
    const auto row = test_columns<QVariant, QVariant, bool, bool, bool>(
        "keyboard", "numpad", "enabled", "swallowed", "served");
    const QVariant none;
    row("no mark", none, none, true, false, false);
    row("a mark that says no", QVariant(false), none, true, false, false);
    row("the mark", QVariant(true), none, true, true, true);
    row("both marks", QVariant(true), QVariant(true), true, true, true);
    row("only the mark of the number pad", none, QVariant(true), true, true, false);
    row("a disabled field", QVariant(true), none, false, true, false);
    row("a disabled field without a mark", none, none, false, false, false);
}

void Routing::tap_by_marks()
{
    QFETCH(QVariant, keyboard);
    QFETCH(QVariant, numpad);
    QFETCH(bool, enabled);
    Nest nest(3);
    nest.field->setProperty("keyboard", keyboard);
    nest.field->setProperty("numpad", numpad);
    nest.field->setEnabled(enabled);
    QTEST(panel_event(m_device.get(), nest.field), "swallowed");
    QTEST(open(), "served");
    m_device->keyboard->close();
    QTEST(ask(nest.field), "served");
}

void Routing::what_is_no_line_edit_is_swallowed()
{
    QTextEdit text;
    QObject object;
    for (QObject *const marked : {static_cast<QObject *>(&text), &object}) {
        marked->setProperty("keyboard", true);
        QVERIFY(panel_event(m_device.get(), marked));
        QVERIFY(!ask(marked));
    }
}

void Routing::events_of_other_kinds_pass()
{
    Nest nest(3);
    for (const QEvent::Type type : {QEvent::MouseButtonDblClick, QEvent::MouseButtonPress,
                                    QEvent::Paint, QEvent::KeyPress, QEvent::User}) {
        QEvent event(type);
        QVERIFY(!m_device->eventFilter(nest.field, &event));
        m_device->show_input_panel(nest.field, &event);
    }
    QVERIFY(!open());
    QEvent closed(CLOSED);
    m_device->show_input_panel(nest.field, &closed);
    QVERIFY(!ask(nullptr));
}

void Routing::close_event_closes_both_pads()
{
    Nest nest(3);
    nest.field->setText(QStringLiteral("old"));
    m_device->numpad->setData(QStringLiteral("5"), nullptr);
    m_device->keyboard->setData(QStringLiteral("a"), 10, false);
    QLineEdit unmarked;
    QVERIFY(!panel_event(m_device.get(), &unmarked, CLOSED));
    QVERIFY(m_device->numpad->isVisible());
    QVERIFY(m_device->keyboard->isVisible());
    QVERIFY(panel_event(m_device.get(), nest.field, CLOSED));
    QVERIFY(!open());
    QCOMPARE(nest.field->text(), QStringLiteral("old"));
}

void Routing::double_tap_by_kind_data()
{
    QTest::addColumn<int>("depth");
    QTest::newRow("a window of its own") << 0;
    QTest::newRow("in a window") << 1;
    QTest::newRow("deep within") << 6;
}

void Routing::double_tap_by_kind()
{
    QFETCH(int, depth);
    if (depth > 0) {
        Nest nest(depth);
        QVERIFY(ask(nest.field));
        return;
    }
    QLineEdit alone;
    alone.setProperty("keyboard", true);
    QVERIFY(ask(&alone));
}

void Routing::pad_by_validator_data()
{
    const auto row = test_columns<int, bool>("validator", "numbers");
    row("none", 0, false);
    row("of numbers", 1, true);
    row("of whole numbers", 2, true);
    row("of something else", 3, false);
}

void Routing::pad_by_validator()
{
    QFETCH(int, validator);
    QFETCH(bool, numbers);
    QDoubleValidator doubles;
    QIntValidator whole;
    const QRegularExpressionValidator other(QRegularExpression("[0-9]*"));
    const QValidator *const all[] = {nullptr, &doubles, &whole, &other};
    Nest nest(3);
    nest.field->setText(QStringLiteral("12"));
    nest.field->setValidator(all[validator]);
    // Of an earlier field, which the keyboard must not keep.
    m_device->keyboard->setValidator(&whole);
    QVERIFY(panel_event(m_device.get(), nest.field));
    QCOMPARE(m_device->numpad->isVisible(), numbers);
    QCOMPARE(m_device->keyboard->isVisible(), !numbers);
    QCOMPARE(m_device->target.data(), nest.field);
    QCOMPARE(shown(numbers ? static_cast<QWidget *>(m_device->numpad) : m_device->keyboard),
             QStringLiteral("12"));
    if (!numbers)
        QCOMPARE(display(m_device->keyboard)->validator(), all[validator]);
}

void Routing::text_is_trimmed_on_its_way_to_the_pad()
{
    QDoubleValidator doubles;
    Nest nest(3);
    nest.field->setText(QStringLiteral("  12.5 \n"));
    QVERIFY(ask(nest.field));
    QCOMPARE(m_device->target_text(), QStringLiteral("12.5"));
    QCOMPARE(shown(m_device->keyboard), QStringLiteral("12.5"));
    nest.field->setValidator(&doubles);
    QVERIFY(ask(nest.field));
    QCOMPARE(shown(m_device->numpad), QStringLiteral("12.5"));
    QCOMPARE(nest.field->text(), QStringLiteral("  12.5 \n"));
}

void Routing::greatest_length_and_echo_mode_go_along()
{
    Nest nest(3);
    nest.field->setMaxLength(5);
    nest.field->setEchoMode(QLineEdit::Password);
    QVERIFY(ask(nest.field));
    QCOMPARE(display(m_device->keyboard)->maxLength(), 5);
    QCOMPARE(display(m_device->keyboard)->echoMode(), QLineEdit::Password);
    QIntValidator whole;
    nest.field->setValidator(&whole);
    QVERIFY(ask(nest.field));
    QCOMPARE(display(m_device->numpad)->echoMode(), QLineEdit::Password);
    nest.field->setEchoMode(QLineEdit::Normal);
    QVERIFY(ask(nest.field));
    QCOMPARE(display(m_device->numpad)->echoMode(), QLineEdit::Normal);
}

void Routing::both_pads_are_centred()
{
    Nest nest(3);
    m_device->keyboard->move(3, 4);
    m_device->numpad->move(5, 6);
    QVERIFY(ask(nest.field));
    const QRect screen = QGuiApplication::primaryScreen()->geometry();
    QCOMPARE(m_device->keyboard->pos(),
             QPoint(screen.width() / 2 - 439, screen.height() / 2 - 213));
    QCOMPARE(m_device->numpad->pos(), QPoint(screen.width() / 2 - 130, screen.height() / 2 - 190));
}

void Routing::pads_go_with_the_device()
{
    const QPointer<QWidget> keyboard = m_device->keyboard;
    const QPointer<QWidget> numpad = m_device->numpad;
    m_device.reset();
    QVERIFY(keyboard.isNull());
    QVERIFY(numpad.isNull());
}

WINDOW_TEST(Routing);
#include "test_routing.moc"
