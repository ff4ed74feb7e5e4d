// SPDX-License-Identifier: GPL-3.0-or-later
#include <QLibrary>
#include <QtTest>

#include "support/testmain.h"

// The library is the host's: taken as the program takes it, by its file.
class Display : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanup();
    void no_display_data();
    void no_display();
    void the_programs_name_plays_no_part();

private:
    using Operation = bool (*)(QString);
    Operation m_is_empty = nullptr;
};

namespace
{

// A null text takes the variable away.
void set_variable(const char *name, const QByteArray &value)
{
    if (value.isNull())
        qunsetenv(name);
    else
        qputenv(name, value);
}

} // namespace

void Display::initTestCase()
{
    QLibrary library(QStringLiteral(PROJECT_BINARY_DIR "/lib/libvornaxqt.so"));
    QVERIFY2(library.load(), qPrintable(library.errorString()));
    m_is_empty =
        reinterpret_cast<Operation>(library.resolve("_Z24is_display_env_var_empty7QString"));
    QVERIFY(m_is_empty != nullptr);
}

void Display::cleanup()
{
    set_variable("DISPLAY", QByteArray());
    set_variable("WAYLAND_DISPLAY", QByteArray());
    set_variable("QT_QPA_PLATFORM", QByteArray());
}

void Display::no_display_data()
{
    const auto row = test_columns<QByteArray, QByteArray, QByteArray, bool>("display", "wayland",
                                                                            "platform", "empty");
    const QByteArray unset;
    const QByteArray blank("");
    row("nothing set", unset, unset, unset, true);
    row("all set to nothing", blank, blank, blank, true);
    row("X display", QByteArray(":0"), unset, unset, false);
    row("Wayland display", unset, QByteArray("wayland-0"), unset, false);
    row("X display, Wayland set to nothing", QByteArray(":1"), blank, unset, false);
    for (const char *name : {"offscreen", "minimal", "vnc", "linuxfb", "eglfs"})
        QTest::addRow("platform %s", name) << unset << unset << QByteArray(name) << false;
    row("platform with options", unset, unset, QByteArray("vnc:size=1216x788:port=5901"), false);
    row("second of two platforms", unset, unset, QByteArray("xcb;offscreen"), false);
    row("platform xcb", unset, unset, QByteArray("xcb"), true);
    row("platform wayland", unset, unset, QByteArray("wayland;xcb"), true);
    row("a name that only begins so", unset, unset, QByteArray("vncx"), true);
    row("options that name one", unset, unset, QByteArray("xcb:offscreen"), true);
    row("platform xcb with its display", QByteArray(":0"), unset, QByteArray("xcb"), false);
}

void Display::no_display()
{
    QFETCH(QByteArray, display);
    QFETCH(QByteArray, wayland);
    QFETCH(QByteArray, platform);
    set_variable("DISPLAY", display);
    set_variable("WAYLAND_DISPLAY", wayland);
    set_variable("QT_QPA_PLATFORM", platform);
    QTEST(m_is_empty(QStringLiteral("zerl_util")), "empty");
}

void Display::the_programs_name_plays_no_part()
{
    cleanup();
    QVERIFY(m_is_empty(QString()));
    QVERIFY(m_is_empty(QStringLiteral("/some/where/zerl_util")));
    qputenv("DISPLAY", ":0");
    QVERIFY(!m_is_empty(QString()));
}

PLAIN_TEST(Display);
#include "test_vornaxqt.moc"
