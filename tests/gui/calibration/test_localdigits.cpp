// SPDX-License-Identifier: GPL-3.0-or-later
//
// The process boxes on a desktop whose language has digits of its own.
#include <QDateTime>
#include <QLocale>
#include <QRegularExpression>
#include <QtTest>

#include "gui/frame/testwindow.h"
#include "support/testmain.h"

class LocalDigits : public QObject
{
    Q_OBJECT

private slots:
    void desktop_has_digits_of_its_own();
    void times_of_the_process_boxes();
};

// Without this the others would show nothing.
void LocalDigits::desktop_has_digits_of_its_own()
{
    QVERIFY(QLocale::system().zeroDigit() != QLatin1Char('0'));
    QVERIFY(QDate(2024, 3, 5).toString("MMddyyyy") != QString("03052024"));
}

void LocalDigits::times_of_the_process_boxes()
{
    const TestWindow it;
    it.window->stamp(it.form->txtAdjustCalibration, g_ws_block->adjust_calibration_time);
    const QString text = it.form->txtAdjustCalibration->text();
    const QRegularExpression form("^[0-9]{2}/[0-9]{2}/[0-9]{4} [0-9]{2}:[0-9]{2}:[0-9]{2}$");
    QVERIFY2(form.match(text).hasMatch(), qPrintable(text));
    QCOMPARE(QString::fromUtf8(g_ws_block->adjust_calibration_time), text);
    const QDateTime &moment = it.window->correlation_time();
    QCOMPARE(text.left(2).toInt(), moment.date().month());
    QCOMPARE(text.mid(3, 2).toInt(), moment.date().day());
    QCOMPARE(text.mid(6, 4).toInt(), moment.date().year());
    QCOMPARE(text.mid(11, 2).toInt(), moment.time().hour());
    QCOMPARE(text.mid(14, 2).toInt(), moment.time().minute());
    QCOMPARE(text.right(2).toInt(), moment.time().second());
}

static int run(int argc, char **argv)
{
    // Before Qt looks; the language needs no support of the C library.
    qputenv("LC_ALL", "ar_EG.UTF-8");
    const QApplication application(argc, argv);
    LocalDigits test;
    return QTest::qExec(&test, argc, argv);
}
TEST_WITH_MAIN(run);
#include "test_localdigits.moc"
