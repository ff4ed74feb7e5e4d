// SPDX-License-Identifier: GPL-3.0-or-later
//
// One test program holds the test classes of a room; its first argument picks
// the class by the name of its file, and CTest runs one process a class. So a
// class has the process to itself: singletons, hooks and the one window.
#ifndef SUPPORT_TESTMAIN_H
#define SUPPORT_TESTMAIN_H

#ifdef QT_WIDGETS_LIB
#include <QApplication>
#endif
#include <QtTest>

// The columns of a test's data, and what adds a row of them:
//     const auto row = test_columns<double, int>("value", "status");
//     row("no error", 50.0, 0);
template <typename... Types, typename... Names> auto test_columns(Names... names)
{
    (QTest::addColumn<Types>(names), ...);
    return [](const char *name, const Types &...values) {
        QTestData &data = QTest::newRow(name);
        (data << ... << values);
    };
}

struct TestClass {
    const char *file; // __FILE__ of the class
    int (*run)(int argc, char **argv);
};

// Notes the class under its file; true, so that a constant can be made of it.
bool note_test_class(const TestClass &test);

#define RUN_TEST_CLASS(Class, application)                                                         \
    static const bool noted_##Class = note_test_class({__FILE__, [](int argc, char **argv) {       \
                                                           application;                            \
                                                           Class test;                             \
                                                           return QTest::qExec(&test, argc, argv); \
                                                       }})

// A class that shows widgets, one that needs an event loop, one that needs
// nothing of Qt but the test itself.
#define WINDOW_TEST(Class)                                                                         \
    RUN_TEST_CLASS(Class, QApplication app(argc, argv); app.setAttribute(Qt::AA_Use96Dpi))
#define LOOP_TEST(Class)                                                                           \
    RUN_TEST_CLASS(Class, QCoreApplication app(argc, argv); app.setAttribute(Qt::AA_Use96Dpi))
#define PLAIN_TEST(Class) RUN_TEST_CLASS(Class, )

// A class with a function of its own in place of main().
#define TEST_WITH_MAIN(function)                                                                   \
    static const bool noted_##function = note_test_class({__FILE__, function})

#endif
