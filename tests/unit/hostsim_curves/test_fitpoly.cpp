// SPDX-License-Identifier: GPL-3.0-or-later
//
// The shell's way to the polynomial fit, as a process.
#include <QProcess>
#include <QRegularExpression>
#include <QTest>

#include "support/testmain.h"

class FitPoly : public QObject
{
    Q_OBJECT

private slots:
    void good_input_data();
    void good_input();
    void coefficients_have_17_digits();
    void bad_input_data();
    void bad_input();
};

namespace
{

struct Outcome {
    int status = -1;
    QByteArray output;
    QByteArray errors;
};

Outcome run(const QByteArray &input)
{
    QProcess process;
    process.start(QStringLiteral(PROJECT_BINARY_DIR "/bin/fitpoly"), QStringList());
    if (!process.waitForStarted())
        return {};
    process.write(input);
    process.closeWriteChannel();
    if (!process.waitForFinished() || process.exitStatus() != QProcess::NormalExit)
        return {};
    return {process.exitCode(), process.readAllStandardOutput(), process.readAllStandardError()};
}

} // namespace

void FitPoly::good_input_data()
{
    const auto row = test_columns<QByteArray, QByteArray>("input", "output");
    const QByteArray line = "1.0000000000000000e+00\n2.0000000000000000e+00\n";
    row("a straight line", QByteArray("3 2\n0 1\n1 3\n2 5\n"), line);
    row("no line feed at the end", QByteArray("2 2\n0 1\n1 3"), line);
    row("carriage returns, tabs, blank lines", QByteArray("\n 2\t2 \r\n\r\n0\t1\r\n 1  3\r\n\n"),
        line);
    row("exponents and signs", QByteArray("2 2\n-1e0 -1.0E+0\n+0.1e1 +3\n"), line);
    row("fewer points than coefficients", QByteArray("1 2\n7 4\n"),
        QByteArray("4.0000000000000000e+00\n0.0000000000000000e+00\n"));
}

void FitPoly::good_input()
{
    QFETCH(QByteArray, input);
    QFETCH(QByteArray, output);
    const Outcome outcome = run(input);
    QCOMPARE(outcome.errors, QByteArray());
    QCOMPARE(outcome.status, 0);
    QCOMPARE(outcome.output, output);
}

void FitPoly::coefficients_have_17_digits()
{
    const Outcome outcome = run("4 3\n0.1 0.7\n0.2 1e-3\n0.35 12\n0.4 -5\n");
    QCOMPARE(outcome.status, 0);
    const QRegularExpression shape(QStringLiteral("^(-?[0-9]\\.[0-9]{16}e[+-][0-9]{2,3}\n){3}$"));
    QVERIFY2(shape.match(QString::fromLatin1(outcome.output)).hasMatch(),
             outcome.output.constData());
}

void FitPoly::bad_input_data()
{
    const auto row = test_columns<QByteArray, QByteArray>("input", "reason");
    row("nothing", QByteArray(), QByteArray("line 1: no input"));
    row("one number in the first line", QByteArray("3\n"), QByteArray("line 1: expected \"n k\""));
    row("no points", QByteArray("0 2\n"), QByteArray("line 1: expected \"n k\""));
    row("negative coefficients", QByteArray("1 -2\n1 1\n"), QByteArray("line 1: expected \"n k\""));
    row("a count with a fraction", QByteArray("1.5 2\n1 1\n"),
        QByteArray("line 1: expected \"n k\""));
    row("a count beyond all numbers", QByteArray("99999999999999999999 2\n"),
        QByteArray("line 1: expected \"n k\""));
    row("a point short", QByteArray("3 2\n1 1\n2 2\n"),
        QByteArray("line 4: the input ends after 2 of 3"));
    row("a line too many", QByteArray("1 1\n1 1\n2 2\n"),
        QByteArray("line 3: more lines than the 1 points"));
    row("a word for a number", QByteArray("1 1\n1 one\n"), QByteArray("line 2: expected \"x y\""));
    row("a number with a tail", QByteArray("1 1\n1 1,5\n"), QByteArray("line 2: expected \"x y\""));
    row("three numbers", QByteArray("1 1\n1 2 3\n"), QByteArray("line 2: expected \"x y\""));
    row("not a number", QByteArray("1 1\nnan 2\n"), QByteArray("line 2: expected \"x y\""));
    row("infinity", QByteArray("1 1\n1 inf\n"), QByteArray("line 2: expected \"x y\""));
    row("two signs", QByteArray("1 1\n1 +-2\n"), QByteArray("line 2: expected \"x y\""));
}

void FitPoly::bad_input()
{
    QFETCH(QByteArray, input);
    QFETCH(QByteArray, reason);
    const Outcome outcome = run(input);
    QCOMPARE(outcome.status, 2);
    QCOMPARE(outcome.output, QByteArray());
    QVERIFY2(outcome.errors.startsWith("fitpoly: " + reason), outcome.errors.constData());
}

LOOP_TEST(FitPoly);
#include "test_fitpoly.moc"
