// SPDX-License-Identifier: GPL-3.0-or-later
//
// What the built program offers to the host's runtime, and what it links.
#include <QtTest>

#include "support/cellfiles.h"
#include "support/testcell.h"
#include "support/testmain.h"
#include "system/program/testprogram.h"

class ProgramExports : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanupTestCase();
    void symbols_data();
    void symbols();
    void runtime_is_linked_dynamically_data();
    void runtime_is_linked_dynamically();
    void runtime_finds_them_in_the_process_data();
    void runtime_finds_them_in_the_process();
    void pointers_hold_the_attached_memories_data();
    void pointers_hold_the_attached_memories();
    void version_text();
    void unused_numbers_start_at_0();

private:
    static QString readelf(const QStringList &options);

    std::unique_ptr<TestCell> m_cell;
    std::unique_ptr<TestProgram> m_program;
    QString m_symbols;
    QString m_dynamic;
};

QString ProgramExports::readelf(const QStringList &options)
{
    QProcess process;
    process.start(QStringLiteral("readelf"),
                  options + QStringList{QStringLiteral(PROJECT_BINARY_DIR "/bin/zerl_util")});
    if (!process.waitForFinished(60000) || process.exitCode() != 0)
        return {};
    return QString::fromUtf8(process.readAllStandardOutput());
}

void ProgramExports::initTestCase()
{
    m_symbols = readelf({"--dyn-syms", "-W"});
    m_dynamic = readelf({"-d", "-W"});
    QVERIFY(!m_symbols.isEmpty());
    QVERIFY(!m_dynamic.isEmpty());
    clear_cell();
    m_cell = std::make_unique<TestCell>(TestCell::simple_description());
    QVERIFY2(m_cell->start(), qPrintable(m_cell->error()));
    m_program = std::make_unique<TestProgram>();
    QVERIFY(m_program->start());
    QVERIFY(m_program->wait_for_window());
}

void ProgramExports::cleanupTestCase()
{
    m_program->terminate();
    QCOMPARE(m_program->wait_for_end(), 0);
    QVERIFY2(m_cell->stop(), qPrintable(m_cell->error()));
}

void ProgramExports::symbols_data()
{
    QTest::addColumn<int>("size");
    QTest::addColumn<QString>("binding");
    QTest::newRow("Ai_real") << 8 << "GLOBAL";
    QTest::newRow("Mv") << 8 << "GLOBAL";
    QTest::newRow("Sys_attr") << 8 << "GLOBAL";
    QTest::newRow("Sched_attr") << 8 << "GLOBAL";
    QTest::newRow("Override_enable") << 2 << "GLOBAL";
    QTest::newRow("Spec_file_line_count") << 2 << "GLOBAL";
    QTest::newRow("VORNAX_VER") << 8 << "WEAK";
}

// Columns: number, value, size, type, binding, visibility, section, name.
void ProgramExports::symbols()
{
    QFETCH(int, size);
    QFETCH(QString, binding);
    const QString name = QString::fromLatin1(QTest::currentDataTag());
    QStringList found;
    for (const QString &line : m_symbols.split(QLatin1Char('\n'))) {
        const QStringList words = line.simplified().split(QLatin1Char(' '));
        if (words.value(7) == name)
            found = words;
    }
    QVERIFY2(!found.isEmpty(), qPrintable(name));
    QCOMPARE(found.value(2).toInt(), size);
    QCOMPARE(found.value(3), QStringLiteral("OBJECT"));
    QCOMPARE(found.value(4), binding);
    QCOMPARE(found.value(5), QStringLiteral("DEFAULT"));
    QVERIFY(found.value(6) != QLatin1String("UND"));
}

void ProgramExports::runtime_is_linked_dynamically_data()
{
    QTest::addColumn<int>("unused");
    QTest::newRow("libvornax.so") << 0;
    QTest::newRow("libvornaxqt.so") << 0;
}

void ProgramExports::runtime_is_linked_dynamically()
{
    const QString library = QString::fromLatin1(QTest::currentDataTag());
    QVERIFY(m_dynamic.contains(QRegularExpression(
        QStringLiteral("\\(NEEDED\\).*\\[%1").arg(QRegularExpression::escape(library)))));
}

void ProgramExports::runtime_finds_them_in_the_process_data()
{
    QTest::addColumn<QString>("answer");
    for (const char *name : {"Ai_real", "Mv", "Sys_attr", "Sched_attr", "Override_enable",
                             "Spec_file_line_count", "VORNAX_VER", "Unit_mem"})
        QTest::newRow(name) << "found";
    QTest::newRow("no_such_symbol") << "missing";
}

void ProgramExports::runtime_finds_them_in_the_process()
{
    QFETCH(QString, answer);
    QCOMPARE(m_program->ask({"symbol", QString::fromLatin1(QTest::currentDataTag())}), answer);
}

void ProgramExports::pointers_hold_the_attached_memories_data()
{
    QTest::addColumn<QString>("number");
    QTest::newRow("Ai_real") << "6";
    QTest::newRow("Mv") << "5";
    QTest::newRow("Sys_attr") << "1";
    QTest::newRow("Sched_attr") << "60";
}

void ProgramExports::pointers_hold_the_attached_memories()
{
    QFETCH(QString, number);
    const QString memory = m_program->ask({"memory", number});
    QVERIFY(memory.toULongLong() != 0);
    QCOMPARE(m_program->ask({"pointer", QString::fromLatin1(QTest::currentDataTag())}), memory);
}

void ProgramExports::version_text()
{
    QCOMPARE(m_program->ask({"text", "VORNAX_VER"}), QStringLiteral("$Version: E-7.0.27   $"));
}

void ProgramExports::unused_numbers_start_at_0()
{
    for (const char *name : {"Override_enable", "Spec_file_line_count"})
        QCOMPARE(m_program->ask({"number", QLatin1String(name)}), QStringLiteral("0"));
}

LOOP_TEST(ProgramExports);
#include "test_exports.moc"
