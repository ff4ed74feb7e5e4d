// SPDX-License-Identifier: GPL-3.0-or-later
//
// The table information dialog: its form, why it opens, and its own reading of
// the tolerance tokens.
#include <memory>

#include <QDoubleValidator>
#include <QGroupBox>
#include <QtTest>

#include "host/operations.h"
#include "support/testmain.h"
#include "tableinformation.h"

namespace
{

// Notes whose events come to the dialog before they go to their field.
class FilteringDialog : public ConfigDialog2
{
public:
    FilteringDialog() : ConfigDialog2(nullptr, false, 0) {}
    QSet<QObject *> seen;

protected:
    bool eventFilter(QObject *object, QEvent *event) override
    {
        seen.insert(object);
        return ConfigDialog2::eventFilter(object, event);
    }
};

} // namespace

class TableInformation : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init() { m_boxes = std::make_unique<SessionBoxes>(); }
    void cleanup() { m_boxes.reset(); }
    void form();
    void form_texts_data();
    void form_texts();
    void record_on_the_form_data();
    void record_on_the_form();
    void construction_clears_table_dirty_and_counts_points();
    void absurd_calibration_time_shows_no_date();
    void desktop_fields_are_plain();
    void touch_fields();
    void touch_limits_are_numbers_data();
    void touch_limits_are_numbers();
    void events_of_touch_fields_come_to_the_dialog_data();
    void events_of_touch_fields_come_to_the_dialog();
    void reason_boxes_data();
    void reason_boxes();
    void no_reason_box_data();
    void no_reason_box();
    void label_tolerances_data();
    void label_tolerances();
    void label_biases();

private:
    std::unique_ptr<SessionBoxes> m_boxes;
};

void TableInformation::initTestCase()
{
    QCOMPARE(units_init_access(1) & 0xffff, 0);
    qputenv("TZ", "XST-14"); // a zone where it is another day than in UTC
    tzset();
}

void TableInformation::form()
{
    const ConfigDialog2 dialog(nullptr, false, 0);
    QCOMPARE(dialog.windowTitle(), QString("Transducer Calibration Configuration"));
    QCOMPARE(dialog.windowFlags(), Qt::Dialog | Qt::WindowTitleHint | Qt::CustomizeWindowHint);
    QCOMPARE(part<QGroupBox>(dialog, "groupBox")->title(), QString("Sensor Information"));
    QCOMPARE(part<QGroupBox>(dialog, "groupBox_2")->title(), QString("Calibration Information"));
    QCOMPARE(part<QGroupBox>(dialog, "groupBox_3")->title(), QString());
    QVERIFY(!part<QGroupBox>(dialog, "groupBox_3")->isFlat());
    QVERIFY(part<QPushButton>(dialog, "btnOk")->isDefault());
    // A tap on a field is served three levels below the window.
    const QWidget *const field = part<QLineEdit>(dialog, "txtUpperRangeLimit");
    QCOMPARE(field->parentWidget()->objectName(), QString("groupBox"));
    QCOMPARE(field->parentWidget()->parentWidget(), static_cast<const QWidget *>(&dialog));
}

void TableInformation::form_texts_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("lblDescription") << "Description:";
    QTest::newRow("lblSerialNumber") << "Serial Number:";
    QTest::newRow("lblSensorMfgModel") << "Sensor Manufacturer Model:";
    QTest::newRow("lblLowerRangeLimit") << "Lower Range Limit:";
    QTest::newRow("lblUpperRangeLimit") << "Upper Range Limit:";
    QTest::newRow("lblSensorUnits") << "Sensor Units:";
    QTest::newRow("lblCalibrationUnits") << "Calibration Units:";
    QTest::newRow("lblMinimum") << "Minimum:";
    QTest::newRow("lblMaximum") << "Maximum:";
    QTest::newRow("label") << "Active Cal Info";
    QTest::newRow("lblDate") << "Date:";
    QTest::newRow("lblQIE") << "QIE:";
    QTest::newRow("lblTech") << "Tech:";
    QTest::newRow("lblTech_2") << "Out of Adjustment (OOA):";
    QTest::newRow("lblTech_3") << "Out of Tolerance (OOT):";
    QTest::newRow("lblTech_4") << "Significantly OOT (SOOT):";
    QTest::newRow("lblTech_5") << "Bias";
    QTest::newRow("lblTech_6") << "Tolerance";
    QTest::newRow("lblMUAInstanceName") << "MUA Instance Name:";
    QTest::newRow("btnOk") << "OK";
    QTest::newRow("btnCancel") << "Cancel";
}

void TableInformation::form_texts()
{
    const ConfigDialog2 dialog(nullptr, false, 0);
    QTEST(text_of(dialog, QTest::currentDataTag()), "text");
}

void TableInformation::record_on_the_form_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("txtDescription") << "Boost pressure";
    QTest::newRow("txtSerialNumber") << "SN 9";
    QTest::newRow("txtSensorMfgModel") << QString::fromUtf8("Modell für PSI");
    QTest::newRow("txtLowerRangeLimit") << "  -14.50";
    QTest::newRow("txtUpperRangeLimit") << "12345678.13";
    QTest::newRow("btnSensorUnits") << "PSI";
    QTest::newRow("lblCalibrationUnitsText") << "PSI";
    QTest::newRow("lblMinimumText") << "    6.89"; // 1 PSI
    QTest::newRow("lblMaximumText") << "  689.48"; // 100 PSI
    QTest::newRow("lblDateText") << "02/29/24";
    QTest::newRow("lblQIEText") << "DWT-11";
    QTest::newRow("lblTechText") << "A. <b>Berg</b>";
    QTest::newRow("lblOOABias") << "0[PCT]";
    QTest::newRow("lblOOATolerance") << ".25[PCT]";
    QTest::newRow("lblOOTBias") << "0[PCT]";
    QTest::newRow("lblOOTTolerance") << "1[PCT]";
    QTest::newRow("lblSOOTBias") << "0[PCT]";
    QTest::newRow("lblSOOTTolerance") << "2[PCT]";
    QTest::newRow("lblMUAInstanceName_2") << " cell 4 ";
}

void TableInformation::record_on_the_form()
{
    TABLE_RECORD &table = g_cfg->table;
    set_text(table.description, "Boost pressure");
    set_text(table.sensor_serial_no, "SN 9");
    set_text(table.sensor_model, "Modell f\xc3\xbcr PSI");
    set_text(table.sensor_units, "PSI");
    set_text(table.eng_units, "PSI");
    set_text(g_cfg->table_units, "kPa");
    set_text(table.qie, "DWT-11");
    set_text(table.verified_by, "A. <b>Berg</b>");
    set_text(table.mua_instance_name, " cell 4 ");
    table.sensor_range_min = -14.5;
    table.sensor_range_max = 12345678.126;
    table.y_min = 1.0;
    table.y_max = 100.0;
    // One in the afternoon of a leap day here, the evening before in UTC.
    table.last_cal_time = 1709161200;
    const ConfigDialog2 dialog(nullptr, false, 0);
    QTEST(text_of(dialog, QTest::currentDataTag()), "text");
    QCOMPARE(part<QLabel>(dialog, "lblTechText")->textFormat(), Qt::PlainText);
}

void TableInformation::construction_clears_table_dirty_and_counts_points()
{
    g_cfg->table_dirty = 1;
    g_cfg->long_current.num_points = 11;
    g_num_points = 3;
    const ConfigDialog2 dialog(nullptr, false, 0);
    QCOMPARE(g_cfg->table_dirty, uint16_t(0));
    QCOMPARE(g_num_points, int16_t(11));
    QCOMPARE(dialog.reason_code, uint32_t(0));
}

void TableInformation::absurd_calibration_time_shows_no_date()
{
    g_cfg->table.last_cal_time = INT64_MAX;
    const ConfigDialog2 dialog(nullptr, false, 0);
    QCOMPARE(text_of(dialog, "lblDateText"), QString());
}

void TableInformation::desktop_fields_are_plain()
{
    const ConfigDialog2 dialog(nullptr, false, 0);
    const auto fields = dialog.findChildren<QLineEdit *>();
    QCOMPARE(fields.size(), 5);
    for (const QLineEdit *field : fields) {
        QVERIFY(!field->property("keyboard").isValid());
        QVERIFY(field->validator() == nullptr);
    }
}

void TableInformation::touch_fields()
{
    g_touch_input = true;
    ConfigDialog2 dialog(nullptr, false, 0);
    const auto fields = dialog.findChildren<QLineEdit *>();
    QCOMPARE(fields.size(), 5);
    for (const QLineEdit *field : fields) {
        QCOMPARE(field->property("keyboard"), QVariant(true));
        QCOMPARE(field->validator() != nullptr, field->objectName().endsWith("RangeLimit"));
    }
    const QValidator *const validator = part<QLineEdit>(dialog, "txtLowerRangeLimit")->validator();
    QVERIFY(qobject_cast<const QDoubleValidator *>(validator) != nullptr);
    QCOMPARE(validator, part<QLineEdit>(dialog, "txtUpperRangeLimit")->validator());
    QCOMPARE(validator->parent(), &dialog);

    // Without an input device a double-tap still reaches its field.
    QVERIFY(g_input_device == nullptr);
    dialog.show();
    auto *const field = part<QLineEdit>(dialog, "txtSerialNumber");
    field->setText("SN204");
    QTest::mouseDClick(field, Qt::LeftButton, {}, QPoint(8, field->height() / 2));
    QCOMPARE(field->selectedText(), QString("SN204"));
}

void TableInformation::touch_limits_are_numbers_data()
{
    QTest::addColumn<bool>("acceptable");
    QTest::newRow("12.5") << true;
    QTest::newRow("-1000.25") << true;
    QTest::newRow("1e3") << true;
    QTest::newRow("1,000") << false; // would be read as no number
    QTest::newRow("12,5") << false;
    QTest::newRow("low") << false;
    QTest::newRow("") << false;
}

// As they are written: whatever the locale, with a point and without groups.
void TableInformation::touch_limits_are_numbers()
{
    const QLocale before;
    QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany));
    g_touch_input = true;
    const ConfigDialog2 dialog(nullptr, false, 0);
    QLocale::setDefault(before);
    for (const char *limit : {"txtLowerRangeLimit", "txtUpperRangeLimit"}) {
        type(dialog, limit, QTest::currentDataTag());
        QTEST(part<QLineEdit>(dialog, limit)->hasAcceptableInput(), "acceptable");
    }
}

void TableInformation::events_of_touch_fields_come_to_the_dialog_data()
{
    QTest::addColumn<bool>("touch");
    QTest::newRow("touch screen: those of all five") << true;
    QTest::newRow("desktop: of none") << false;
}

void TableInformation::events_of_touch_fields_come_to_the_dialog()
{
    QFETCH(bool, touch);
    g_touch_input = touch;
    FilteringDialog dialog;
    QSet<QObject *> filtered;
    for (QLineEdit *field : dialog.findChildren<QLineEdit *>()) {
        QEvent event(QEvent::User);
        QCoreApplication::sendEvent(field, &event);
        if (touch)
            filtered.insert(field);
    }
    QCOMPARE(dialog.seen, filtered);
    QCOMPARE(filtered.size(), touch ? 5 : 0);
}

void TableInformation::reason_boxes_data()
{
    const auto row = test_columns<uint, QString>("reason", "text");
    row("units unlike: the sensor's first, then the table's", 7u,
        "The Sensor Range Units (DEG_F) are not compatible with the table units (kPa).\n\n"
        "Press OK to update Table Information");
}

void TableInformation::reason_boxes()
{
    QFETCH(uint, reason);
    QFETCH(QString, text);
    set_text(g_cfg->table.sensor_units, "DEG_F");
    m_boxes->expect("Update Data", text);
    const ConfigDialog2 dialog(nullptr, true, reason);
    QCOMPARE(m_boxes->remaining(), 0);
    QVERIFY(is_ok_box(m_boxes->met().first()));
    QVERIFY(!dialog.isVisible());
}

void TableInformation::no_reason_box_data()
{
    const auto row = test_columns<bool, uint>("show_reason", "reason");
    row("no reason", true, 0u);
    row("reason not to be shown", false, 1u);
}

void TableInformation::no_reason_box()
{
    QFETCH(bool, show_reason);
    QFETCH(uint, reason);
    const ConfigDialog2 dialog(nullptr, show_reason, reason);
    QCOMPARE(m_boxes->said(), QStringList());
}

void TableInformation::label_tolerances_data()
{
    // value: of a span of 100
    const auto row = test_columns<QString, QByteArray, double, QString, int>(
        "token", "sensor", "value", "warning", "index");
    const QString w1 = "Defaulting to the NONE MUA Instance Name and Tolerance values.\n\n"
                       "The tolerance units are not compatible with the sensor units.";
    const QString w2 = "Defaulting to the NONE MUA Instance Name and Tolerance values.\n\n"
                       "The tolerance units are not compatible with the calibration table units.";
    row("a fraction: the label's token", "5[PCT]", QByteArray("kPa"), 5.0, QString(), 7);
    row("absolute: the label's token", "1[PSI]", QByteArray("kPa"), 6.894757293168361, QString(),
        7);
    row("unlike the sensor: the label's token, index reset", "3[DEG_F]", QByteArray("kPa"), 300.0,
        w1, 0);
    row("unlike the table: the NONE token, index kept", "5[PCT]", QByteArray("PCT"), 1.0, w2, 7);
}

void TableInformation::label_tolerances()
{
    QFETCH(QString, token);
    QFETCH(QByteArray, sensor);
    QFETCH(QString, warning);
    set_text(g_cfg->table.sensor_units, sensor);
    ConfigDialog2 dialog(nullptr, false, 0);
    part<QLabel>(dialog, "lblOOTTolerance")->setText(token);
    if (!warning.isEmpty())
        m_boxes->expect("Warning", warning);
    QTEST(dialog.get_tolerance_value(CLASS_OOT), "value");
    QCOMPARE(m_boxes->remaining(), 0);
    for (const MetBox &box : m_boxes->met())
        QVERIFY(is_ok_box(box));
    QTEST(int(mua_instance_index), "index");
}

void TableInformation::label_biases()
{
    ConfigDialog2 dialog(nullptr, false, 0);
    part<QLabel>(dialog, "lblOOABias")->setText("5[PCT]");
    part<QLabel>(dialog, "lblOOTBias")->setText("1[PSI]");
    part<QLabel>(dialog, "lblSOOTBias")->setText("3[DEG_F]");
    set_text(g_cfg->table.eng_units, "DEG_F"); // the table's units play no part
    QCOMPARE(dialog.get_bias_value(CLASS_OOA), 0.05);
    QCOMPARE(dialog.get_bias_value(CLASS_OOT), 6.894757293168361);
    QCOMPARE(dialog.get_bias_value(CLASS_SOOT), 3.0);
    QCOMPARE(m_boxes->said(), QStringList());
    QCOMPARE(mua_instance_index, uint16_t(7));
}

WINDOW_TEST(TableInformation);
#include "test_configdialog2.moc"
