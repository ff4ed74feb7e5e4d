// SPDX-License-Identifier: GPL-3.0-or-later
//
// Small helpers of the whole program, and the table lock.
#include <cmath>
#include <limits>
#include <thread>

#include <QtTest>

#include "frame/functions.h"
#include "frame/relaxed.h"
#include "frame/tablelock.h"
#include "support/testmain.h"
#include "window/styles.h"

namespace
{

// Whether another thread could take the mutex now.
bool free_for_others(QMutex &mutex)
{
    bool taken = false;
    std::thread other([&] {
        taken = mutex.tryLock();
        if (taken)
            mutex.unlock();
    });
    other.join();
    return taken;
}

} // namespace

class Functions : public QObject
{
    Q_OBJECT

private slots:
    void nearly_equal_values_data();
    void nearly_equal_values();
    void trimmed_text_data();
    void trimmed_text();
    void failure_value_data();
    void failure_value();
    void value_text_form_data();
    void value_text_form();
    void record_text_decoding();
    void bytes_behind_a_shown_text_data();
    void bytes_behind_a_shown_text();
    void style_texts_data();
    void style_texts();
    void relaxed_access_is_whole();
    void lock_holds_for_its_scope();
    void lock_can_be_given_back_early();
    void lock_is_recursive();
    void lock_without_a_mutex_locks_nothing();
};

void Functions::nearly_equal_values_data()
{
    const auto row = test_columns<double, double, bool>("a", "b", "equal");
    const double infinity = std::numeric_limits<double>::infinity();
    row("the same number", 12.5, 12.5, true);
    row("zeros of both signs", 0.0, -0.0, true);
    row("apart by the limit itself", 1e-6, 0.0, true);
    row("apart by the limit, downwards", 0.0, 1e-6, true);
    row("just past the limit", std::nextafter(1e-6, 1.0), 0.0, false);
    row("just past the limit, downwards", 0.0, std::nextafter(1e-6, 1.0), false);
    row("the limit is absolute, not relative", 1e9, 1e9 + 0.001, false);
    row("NaN equals nothing", qQNaN(), 1.0, false);
    row("not even NaN", qQNaN(), qQNaN(), false);
    row("infinity and a number", infinity, 1.0, false);
    row("two infinities have no difference", infinity, infinity, false);
}

void Functions::nearly_equal_values()
{
    QFETCH(double, a);
    QFETCH(double, b);
    QTEST(nearly_equal(a, b), "equal");
}

void Functions::trimmed_text_data()
{
    const auto row = test_columns<QByteArray, QByteArray>("text", "trimmed");
    row("nothing to remove", "kPa", "kPa");
    row("trailing spaces", "kPa   ", "kPa");
    row("trailing line feeds", "kPa\n\n", "kPa");
    row("trailing spaces and line feeds mixed", "kPa \n \n", "kPa");
    row("leading spaces", "   kPa", "kPa");
    row("both ends", "  a b \n", "a b");
    row("leading line feeds stay", "\n kPa", "\n kPa");
    row("a line feed behind leading spaces stays", "  \nkPa", "\nkPa");
    row("tabs and carriage returns stay", "\tkPa\r", "\tkPa\r");
    row("spaces inside stay", "a  b", "a  b");
    row("spaces only", "    ", "");
    row("line feeds only", "\n\n", "");
    row("empty", "", "");
}

void Functions::trimmed_text()
{
    QFETCH(QByteArray, text);
    text.detach();
    trim_text(text.data());
    QTEST(QByteArray(text.constData()), "trimmed");
}

void Functions::failure_value_data()
{
    const auto row = test_columns<int, bool>("result", "failure");
    row("-1", -1, true);
    row("65535", 65535, true);
    row("only the low 16 bits count", 0x1ffff, true);
    row("0", 0, false);
    row("1", 1, false);
    row("65534", 65534, false);
    row("-2", -2, false);
    row("65536 has no low bits", 65536, false);
}

void Functions::failure_value()
{
    QFETCH(int, result);
    QTEST(is_failure(result), "failure");
}

void Functions::value_text_form_data()
{
    const auto row = test_columns<double, QString>("value", "text");
    row("zero is filled to eight characters", 0.0, "  0.0000");
    row("two digits", 12.5, " 12.5000");
    row("four decimals, rounded", -1.23456, " -1.2346");
    row("longer values take their room", 123456.78, "123456.7800");
}

void Functions::value_text_form()
{
    QFETCH(double, value);
    QTEST(value_text(value), "text");
}

void Functions::record_text_decoding()
{
    char units[4] = {'k', 'P', 'a', '\0'};
    QCOMPARE(record_text(units), QString("kPa"));
    const char full[3] = {'k', 'P', 'a'};
    QCOMPARE(record_text(full), QString("kPa"));
    char degrees[8] = "\xc2\xb0"
                      "C";
    QCOMPARE(record_text(degrees), QString::fromUtf8("\xc2\xb0"
                                                     "C"));
    char behind[8] = "a\0b";
    QCOMPARE(record_text(behind), QString("a"));
    QCOMPARE(record_text(behind, 0), QString());
}

void Functions::bytes_behind_a_shown_text_data()
{
    const auto row = test_columns<QByteArray, QString, QByteArray>("own", "shown", "bytes");
    const QString replaced = QChar(QChar::ReplacementCharacter);
    row("as it was", QByteArray("kPa"), "kPa", QByteArray("kPa"));
    row("as it was, no UTF-8", QByteArray("\xb0"), replaced, QByteArray("\xb0"));
    row("as it was, a byte order mark", QByteArray("\xef\xbb\xbfx"), "x",
        QByteArray("\xef\xbb\xbfx"));
    row("edited", QByteArray("\xb0"), QString::fromUtf8("\xc2\xb0"), QByteArray("\xc2\xb0"));
    row("a blank more", QByteArray("kPa"), "kPa ", QByteArray("kPa "));
    row("emptied", QByteArray("\xb0"), QString(), QByteArray());
    row("empty before", QByteArray(), "kPa", QByteArray("kPa"));
}

void Functions::bytes_behind_a_shown_text()
{
    QFETCH(QByteArray, own);
    QFETCH(QString, shown);
    QTEST(shown_bytes(shown, own), "bytes");
}

void Functions::style_texts_data()
{
    const auto row = test_columns<QByteArray, QByteArray>("style", "text");
    row("white", QByteArray(STYLE_WHITE), QByteArray("background-color: white"));
    row("ready", QByteArray(STYLE_READY), QByteArray("background-color: rgb(126,232,255)"));
    row("idle", QByteArray(STYLE_IDLE), QByteArray("background-color: rgb(238, 238,238)"));
    row("caution", QByteArray(STYLE_CAUTION), QByteArray("background-color: yellow"));
    row("no advice", QByteArray(STYLE_NO_ADVICE), QByteArray("background-color: rgb(255,252,239)"));
}

void Functions::style_texts()
{
    QFETCH(QByteArray, style);
    QTEST(style, "text");
}

void Functions::relaxed_access_is_whole()
{
    double number = 1.5;
    relaxed_store(number, -2.25);
    QCOMPARE(number, -2.25);
    QCOMPARE(relaxed_load(number), -2.25);
    uint8_t flag = 7;
    relaxed_store(flag, uint8_t{0});
    QCOMPARE(relaxed_load(flag), uint8_t{0});
    const char *pointer = nullptr;
    relaxed_store(pointer, static_cast<const char *>(STYLE_WHITE));
    QCOMPARE(static_cast<const void *>(relaxed_load(pointer)),
             static_cast<const void *>(STYLE_WHITE));
}

void Functions::lock_holds_for_its_scope()
{
    QMutex mutex(QMutex::Recursive);
    {
        const TableLock lock(&mutex);
        QVERIFY(!free_for_others(mutex));
    }
    QVERIFY(free_for_others(mutex));
}

void Functions::lock_can_be_given_back_early()
{
    QMutex mutex(QMutex::Recursive);
    {
        TableLock lock(&mutex);
        lock.unlock();
        QVERIFY(free_for_others(mutex));
        lock.unlock(); // what is given back is given back once
        QVERIFY(free_for_others(mutex));
    }
    QVERIFY(free_for_others(mutex));
}

void Functions::lock_is_recursive()
{
    QMutex mutex(QMutex::Recursive);
    const TableLock outer(&mutex);
    {
        const TableLock inner(&mutex);
        QVERIFY(!free_for_others(mutex));
    }
    QVERIFY2(!free_for_others(mutex), "the end of the inner scope keeps the outer lock");
}

void Functions::lock_without_a_mutex_locks_nothing()
{
    bool reached = false;
    {
        TableLock lock(nullptr);
        lock.unlock();
        reached = true;
    }
    QVERIFY(reached);
}

LOOP_TEST(Functions);
#include "test_functions.moc"
