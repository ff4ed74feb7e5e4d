// SPDX-License-Identifier: GPL-3.0-or-later
//
// A text of the host or of a user is shown as it is, whatever it looks like.
#include "gui/frame/testwindow.h"
#include "records/measurementsystemdialog.h"
#include "sensor/configdialog2.h"
#include "sensor/tolerances.h"
#include "support/testmain.h"

namespace
{

const char MARKS[] = "<h1>x";

template <std::size_t Size> void mark(char (&field)[Size])
{
    qstrncpy(field, MARKS, Size);
}

QByteArray description()
{
    return TestWindow::description() + R"(
channel 10
  label "<h1>Ten"
  units kPa
  table "<h1>x"
  record INTERP
  points 0:0 5000:100
  sensor kPa 0 100 "<h1>x" "<h1>x"
)";
}

void mark_record()
{
    TABLE_RECORD &table = g_cfg->table;
    mark(table.table_name);
    mark(table.sensor_serial_no);
    mark(table.sensor_model);
    mark(table.description);
    mark(table.mua_instance_name);
    mark(table.qie);
    mark(table.verified_by);
    mark(table.eng_units);
    for (QString *token : {&ooa_bias_token, &ooa_tolerance_token, &oot_bias_token,
                           &oot_tolerance_token, &soot_bias_token, &soot_tolerance_token})
        *token = MARKS;
}

// Names of the labels that show marks, and of those of them that a plain text
// of the same length would make another size.
struct Found {
    QStringList showing;
    QStringList rich;
};

Found marked_labels(const QWidget &window)
{
    Found found;
    for (const QLabel *label : window.findChildren<QLabel *>()) {
        if (!label->text().contains("<h1>"))
            continue;
        found.showing += label->objectName();
        QLabel plain;
        plain.setFont(label->font());
        plain.setTextFormat(Qt::PlainText);
        plain.setText(label->text());
        plain.setMargin(label->margin());
        plain.setFrameStyle(label->frameStyle());
        plain.setIndent(label->indent());
        plain.setMinimumSize(label->minimumSize());
        if (label->textFormat() != Qt::PlainText || label->sizeHint() != plain.sizeHint())
            found.rich += label->objectName();
    }
    found.showing.sort();
    return found;
}

QStringList marked_tool_tips(const QWidget &window)
{
    QStringList names;
    for (const QWidget *widget : window.findChildren<QWidget *>()) {
        if (widget->toolTip().contains('<'))
            names += widget->objectName();
    }
    return names;
}

} // namespace

class PlainTexts : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { m_it = std::make_unique<TestWindow>(description()); }
    void cleanupTestCase() { m_it.reset(); }
    void serial_number_and_table_name();
    void table_information();
    void measurement_system();

private:
    std::unique_ptr<TestWindow> m_it;
};

void PlainTexts::serial_number_and_table_name()
{
    m_it->bind_afresh(0);
    const QSize ordinary = m_it->window->minimumSizeHint();
    m_it->bind_afresh(10);
    const Found found = marked_labels(*m_it->window);
    QCOMPARE(found.rich, QStringList());
    QCOMPARE(found.showing, (QStringList{"lblSerialNumber", "lblTableName"}));
    QCOMPARE(m_it->window->minimumSizeHint().height(), ordinary.height());
    QCOMPARE(marked_tool_tips(*m_it->window), QStringList());
}

void PlainTexts::table_information()
{
    mark_record();
    const ConfigDialog2 dialog(nullptr, false, 0);
    const Found found = marked_labels(dialog);
    QCOMPARE(found.rich, QStringList());
    QCOMPARE(found.showing.size(), 10);
    QCOMPARE(marked_tool_tips(dialog), QStringList());
}

void PlainTexts::measurement_system()
{
    mark_record();
    const MeasurementSystemDialog dialog(nullptr);
    const Found found = marked_labels(dialog);
    QCOMPARE(found.rich, QStringList());
    QCOMPARE(found.showing, (QStringList{"txtUnits1", "txtUnits2", "txtUnits3", "txtUnits4"}));
}

WINDOW_TEST(PlainTexts);
#include "test_plaintexts.moc"
