// SPDX-License-Identifier: GPL-3.0-or-later
//
// Texts as they are pasted into the fields of a recording: names and description
// reach the archive bounded and whole, whatever they hold.
#include <QClipboard>
#include <QRadioButton>
#include <QtTest>

#include "gui/frame/testwindow.h"
#include "support/testmain.h"
#include "unit/calibration/tablerecords.h"

namespace
{

// The longest beginning of whole characters in that many bytes.
QByteArray bounded(const QString &text, int size)
{
    QString kept = text.left(text.indexOf(QChar(0)));
    while (kept.toUtf8().size() >= size)
        kept.chop(kept.at(kept.size() - 1).isLowSurrogate() ? 2 : 1);
    return kept.toUtf8();
}

// The only record of channel 1's archive.
bool only_record(TABLE_RECORD *table)
{
    const std::vector<StoredRecord> records =
        stored_records(read_file(QStringLiteral("/cell/tables/one.save")));
    if (records.size() != 1)
        return false;
    *table = records.front().table;
    return true;
}

} // namespace

class TypedTexts : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { m_it = std::make_unique<TestWindow>(); }
    void cleanupTestCase() { m_it.reset(); }
    void texts_of_a_recording_data();
    void texts_of_a_recording();
    void names_of_blanks_are_names();

private:
    static QString paste(QLineEdit *field, const QString &text);
    void record(const QString &comment);

    std::unique_ptr<TestWindow> m_it;
};

// Gives what the field then holds.
QString TypedTexts::paste(QLineEdit *field, const QString &text)
{
    QGuiApplication::clipboard()->setText(text);
    field->selectAll();
    field->paste();
    return field->text();
}

// Every point was captured but none is any more, so Record Data asks.
void TypedTexts::record(const QString &comment)
{
    BoxAnswerer answerer;
    answerer.expect_title(QStringLiteral("Warning"), QStringLiteral("Yes"));
    answerer.expect_dialog(QStringLiteral("Record Calibration Data"), [&](QDialog *dialog) {
        dialog->findChild<QRadioButton *>(QStringLiteral("rbAsFound"))->setChecked(true);
        paste(dialog->findChild<QLineEdit *>(QStringLiteral("txtComment")), comment);
        dialog->findChild<QPushButton *>(QStringLiteral("btnRecord"))->click();
    });
    m_it->form->btnRecordData->click();
}

void TypedTexts::texts_of_a_recording_data()
{
    const auto row = test_columns<QString>("text");
    const QString smiley = QString::fromUtf8("\xF0\x9F\x98\x80");
    row("31 letters", QString(31, 'a'));
    row("32 letters", QString(32, 'a'));
    row("79 letters", QString(79, 'a'));
    row("80 letters", QString(80, 'a'));
    row("10,000 letters", QString(10000, 'a'));
    row("two bytes each", QString::fromUtf8("°").repeated(60));
    row("two bytes each behind a letter",
        QStringLiteral("a") + QString::fromUtf8("°").repeated(60));
    row("three bytes each", QString::fromUtf8("€").repeated(60));
    row("three bytes each behind a letter",
        QStringLiteral("a") + QString::fromUtf8("€").repeated(60));
    row("four bytes each", smiley.repeated(60));
    for (int letters = 1; letters < 4; ++letters)
        QTest::addRow("four bytes each behind %d letters", letters)
            << QString(letters, 'a') + smiley.repeated(60);
    row("quotes", QStringLiteral("J. \"Bob\" O'Brien `x` \\\" \\n \\"));
    row("line feeds", QStringLiteral("first\nsecond\r\nthird\n\n\tend\n"));
    row("separators of lines and paragraphs",
        QStringLiteral("first") + QChar(0x2028) + QStringLiteral("second") + QChar(0x2029));
    row("the head of a block", QStringLiteral("\nVORNAX-TABLE 1\nend 00000000\n"));
    row("a shell's work", QStringLiteral("$(touch /cell/x); `touch /cell/x` & > /cell/x"));
    row("a format", QStringLiteral("%s%n%1%2"));
    row("a zero ends it", QStringLiteral("be") + QChar(0) + QStringLiteral("hind"));
    row("half a surrogate pair", QStringLiteral("a") + QChar(0xD83D));
    row("all control characters", [] {
        QString text;
        for (ushort c = 1; c < 32; ++c)
            text += QChar(c);
        return text + QChar(127);
    }());
}

void TypedTexts::texts_of_a_recording()
{
    QFETCH(QString, text);
    m_it->bind_afresh(1);
    const QString technician = paste(m_it->form->txtTechnicianName, text);
    const QString standard = paste(m_it->form->txtCalibrationQIE, QStringLiteral("W") + text);
    QVERIFY(!technician.isEmpty());
    record(QStringLiteral("D") + text);
    TABLE_RECORD stored = {};
    QVERIFY(only_record(&stored));
    QLineEdit field;
    const QString comment = paste(&field, QStringLiteral("D") + text);
    QCOMPARE(QByteArray(stored.verified_by), bounded(technician, sizeof stored.verified_by));
    QCOMPARE(QByteArray(stored.qie), bounded(standard, sizeof stored.qie));
    QCOMPARE(QByteArray(stored.cal_comment), bounded(comment, sizeof stored.cal_comment));
    // Read back as it was stored.
    QCOMPARE(QByteArray(stored.verified_by), QByteArray(g_cfg->table.verified_by));
    QCOMPARE(QByteArray(stored.qie), QByteArray(g_cfg->table.qie));
    QCOMPARE(QByteArray(stored.cal_comment), QByteArray(g_cfg->table.cal_comment));
    QVERIFY(!QFile::exists(QStringLiteral("/cell/x")));
    const QByteArray archive = read_file(QStringLiteral("/cell/tables/one.save"));
    QCOMPARE(QString::fromUtf8(archive).toUtf8(), archive); // whole characters alone
    m_it->forget_work();
}

void TypedTexts::names_of_blanks_are_names()
{
    m_it->bind_afresh(1);
    m_it->form->txtTechnicianName->setText(QStringLiteral("  "));
    m_it->form->txtCalibrationQIE->setText(QStringLiteral(" "));
    record(QStringLiteral("  end  "));
    TABLE_RECORD stored = {};
    QVERIFY(only_record(&stored));
    QCOMPARE(QByteArray(stored.verified_by), QByteArray("  "));
    QCOMPARE(QByteArray(stored.qie), QByteArray(" "));
    QCOMPARE(QByteArray(stored.cal_comment), QByteArray("  end  "));
    m_it->forget_work();
}

WINDOW_TEST(TypedTexts);
#include "test_typedtexts.moc"
