// SPDX-License-Identifier: GPL-3.0-or-later
//
// The window's form as it is drawn: names, classes, texts, tool tips, style
// sheets and layout of its widgets, before any code of the program has run.
#include <QCheckBox>
#include <QComboBox>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QMainWindow>
#include <QPushButton>
#include <QScrollArea>
#include <QtTest>

#include "support/testmain.h"
#include "ui_mainwindow.h"

class Form : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void window();
    void widgets_data();
    void widgets();
    void combo_items_data();
    void combo_items();
    void editable();
    void style_sheets_data();
    void style_sheets();
    void tool_tips_data();
    void tool_tips();
    void process_boxes_are_read_only();
    void scroll_area_of_the_rows();
    void central_grid_from_top_to_bottom();
    void main_area_from_left_to_right();
    void plot_stands_in_its_frame();
    void coefficient_labels_stand_in_their_frame();

private:
    QWidget *part(const QString &name) const { return m_window->findChild<QWidget *>(name); }

    std::unique_ptr<QMainWindow> m_window;
    Ui::MainWindow m_form;
};

void Form::init()
{
    m_window = std::make_unique<QMainWindow>();
    m_form.setupUi(m_window.get());
}

void Form::window()
{
    QCOMPARE(m_window->objectName(), QStringLiteral("MainWindow"));
    QCOMPARE(m_window->windowTitle(), QStringLiteral("Zerl Utility 64 Points"));
    QCOMPARE(m_window->size(), QSize(1216, 788));
    QVERIFY(m_window->minimumSize() != m_window->maximumSize());
    QCOMPARE(m_window->maximumSize(), QSize(QWIDGETSIZE_MAX, QWIDGETSIZE_MAX));
}

void Form::widgets_data()
{
    const auto add = test_columns<QString, QString>("class_name", "text");
    const struct {
        const char *name;
        const char *class_name;
        const char *text;
    } rows[] = {
        {"lblCurrentChannel", "QLabel", "Current Channel:"},
        {"cboCurrentChannel", "QComboBox", ""},
        {"label_13", "QLabel", "Table Name:"},
        {"lblTableName", "QLabel", ""},
        {"lblSerialNumber_2", "QLabel", "Serial Number:"},
        {"lblSerialNumber", "QLabel", ""},
        {"label_20", "QLabel", "Averaging Time:"},
        {"label_21", "QLabel", "seconds"},
        {"txtAveragingTime", "QLineEdit", "10"},
        {"label_17", "QLabel", "Number Points:"},
        {"txtNumPoints", "QLineEdit", ""},
        {"label_14", "QLabel", "Table Type:"},
        {"cboCalType", "QComboBox", "INTERP"},
        {"label_15", "QLabel", "Polynomial Degrees:"},
        {"cboOrderOfPolynomial", "QComboBox", ""},
        {"label_19", "QLabel", "Polynomial Range Index:"},
        {"cboPolyRangeIndex", "QComboBox", "0"},
        {"label_3", "QLabel", "Channel Input (Y)"},
        {"btnUnits", "QPushButton", "Units"},
        {"label_2", "QLabel", "Actual Applied (X)"},
        {"label_18", "QLabel", "Raw Value"},
        {"scrollArea", "QScrollArea", ""},
        {"scrollAreaWidgetContents", "QWidget", ""},
        {"btnRecordData", "QPushButton", "Record\nData"},
        {"btnReuseCalibration", "QPushButton", "Accept\nNo-Adjust"},
        {"btnAdjustCalibration", "QPushButton", "Adjust &&\nRebuild Calibration"},
        {"btnGenerateLineRpt", "QPushButton", "Generate\nLinearity Report"},
        {"chk1065Verification", "QCheckBox", "1065 Verification"},
        {"label_22", "QLabel", "1065 Verification"},
        {"label", "QLabel", "Calibration Process:"},
        {"label_9", "QLabel", "As-Found"},
        {"txtAsFound", "QLineEdit", ""},
        {"label_10", "QLabel", "After-Service"},
        {"txtAfterService", "QLineEdit", ""},
        {"label_11", "QLabel", "Table Updated"},
        {"txtAdjustCalibration", "QLineEdit", ""},
        {"label_12", "QLabel", "Verification"},
        {"txtVerificationData", "QLineEdit", ""},
        {"label_16", "QLabel", "New Correlation"},
        {"txtNewCorrelation", "QLineEdit", ""},
        {"lblNextStep", "QLabel", ""},
        {"label_4", "QLabel", "Legend:"},
        {"lblGreen", "QLabel", ""},
        {"label_5", "QLabel", "No Adjustment"},
        {"lblYellow", "QLabel", ""},
        {"label_6", "QLabel", "Out of Adjustment"},
        {"lblOrange", "QLabel", ""},
        {"label_7", "QLabel", "Out Of Tolerance"},
        {"lblRed", "QLabel", ""},
        {"label_8", "QLabel", "Significantly Out Of Tolerance"},
        {"lblCalibrationQIE", "QLabel", "Working Standard:"},
        {"txtCalibrationQIE", "QLineEdit", ""},
        {"lblTechnicianName", "QLabel", "Technician Name:"},
        {"txtTechnicianName", "QLineEdit", ""},
        {"frame", "QFrame", ""},
        {"frame_2", "QFrame", ""},
        {"frame_3", "QFrame", ""},
        {"dataPlot", "QwtPlot", ""},
        {"coeffFrame", "QFrame", ""},
    };
    for (const auto &row : rows)
        add(row.name, QString::fromLatin1(row.class_name), QString::fromLatin1(row.text));
    for (int i = 0; i < 8; ++i) {
        add(qPrintable(QStringLiteral("lblCoeff%1").arg(i)), "QLabel",
            QStringLiteral("Co %1:").arg(i));
        add(qPrintable(QStringLiteral("lblCoeff%1Value").arg(i)), "QLabel", "");
    }
}

void Form::widgets()
{
    QFETCH(QString, class_name);
    QFETCH(QString, text);
    QWidget *const widget = part(QString::fromLatin1(QTest::currentDataTag()));
    QVERIFY(widget != nullptr);
    QCOMPARE(QString::fromLatin1(widget->metaObject()->className()), class_name);
    const char *const property = class_name == QLatin1String("QComboBox") ? "currentText" : "text";
    QCOMPARE(widget->property(property).toString(), text);
}

void Form::combo_items_data()
{
    const auto row = test_columns<QStringList, int>("items", "index");
    row("cboCurrentChannel", QStringList(), -1);
    row("cboCalType", QStringList{"INTERP", "POLY", "POLY_RANGE"}, 0);
    row("cboOrderOfPolynomial", QStringList(), -1);
    row("cboPolyRangeIndex", QStringList{"0", "1", "2", "3", "4", "5", "6", "7"}, 0);
}

void Form::combo_items()
{
    const auto *combo =
        qobject_cast<QComboBox *>(part(QString::fromLatin1(QTest::currentDataTag())));
    QVERIFY(combo != nullptr);
    QStringList found;
    for (int i = 0; i < combo->count(); ++i)
        found.append(combo->itemText(i));
    QTEST(found, "items");
    QTEST(combo->currentIndex(), "index");
}

void Form::editable()
{
    QVERIFY(!m_form.cboCurrentChannel->isEditable());
    for (const QLineEdit *field : {m_form.txtCalibrationQIE, m_form.txtTechnicianName,
                                   m_form.txtNumPoints, m_form.txtAveragingTime})
        QVERIFY2(!field->isReadOnly(), qPrintable(field->objectName()));
}

void Form::style_sheets_data()
{
    QTest::addColumn<QString>("style");
    QTest::newRow("lblGreen") << "background-color: rgb(0, 255, 0);";
    QTest::newRow("lblYellow") << "background-color: rgb(255, 255, 127);";
    QTest::newRow("lblOrange") << "background-color: rgb(255, 170, 0);";
    QTest::newRow("lblRed") << "background-color: rgb(255, 78, 78);";
    QTest::newRow("lblNextStep") << "background-color: rgb(255,252,239)";
}

void Form::style_sheets()
{
    QTEST(part(QString::fromLatin1(QTest::currentDataTag()))->styleSheet(), "style");
}

// The texts differ among themselves, and are so.
void Form::tool_tips_data()
{
    QTest::addColumn<QString>("tip");
    QTest::newRow("lblGreen") << "No Adjustment Needed";
    QTest::newRow("lblYellow") << "Out of Adjustment";
    QTest::newRow("lblOrange") << "Out of Tolerance";
    QTest::newRow("lblRed") << "Significantly Out of Tolerance";
    QTest::newRow("label_5") << "No Adjustment Needed";
    QTest::newRow("label_6") << "Out Of Adjustment";
    QTest::newRow("label_7") << "Out of Tolerance";
    QTest::newRow("label_8") << "Significantly Out Of Tolerance";
    QTest::newRow("lblCalibrationQIE") << "Equipment used to calibrated this channel";
}

void Form::tool_tips()
{
    QTEST(part(QString::fromLatin1(QTest::currentDataTag()))->toolTip(), "tip");
}

void Form::process_boxes_are_read_only()
{
    for (const QLineEdit *box :
         {m_form.txtAsFound, m_form.txtAfterService, m_form.txtAdjustCalibration,
          m_form.txtVerificationData, m_form.txtNewCorrelation})
        QVERIFY2(box->isReadOnly(), qPrintable(box->objectName()));
}

void Form::scroll_area_of_the_rows()
{
    QCOMPARE(m_form.scrollArea->verticalScrollBarPolicy(), Qt::ScrollBarAsNeeded);
    QCOMPARE(m_form.scrollArea->horizontalScrollBarPolicy(), Qt::ScrollBarAlwaysOff);
    QVERIFY(m_form.scrollArea->widgetResizable());
    QCOMPARE(m_form.scrollArea->widget(), m_form.scrollAreaWidgetContents);
    QCOMPARE(m_form.scrollAreaWidgetContents->layout(), m_form.verticalLayout_4);
    QCOMPARE(m_form.verticalLayout_4->objectName(), QStringLiteral("verticalLayout_4"));
}

// The rows of the grid, each told by a widget that it holds; "line" is a rule.
void Form::central_grid_from_top_to_bottom()
{
    m_window->show();
    QVERIFY(QTest::qWaitForWindowExposed(m_window.get()));
    const auto *grid = qobject_cast<QGridLayout *>(m_window->centralWidget()->layout());
    QVERIFY(grid != nullptr);
    const QVector<QWidget *> order{m_form.frame_3,    m_form.line,       m_form.frame_2,
                                   m_form.line_2,     m_form.cboCalType, m_form.line_3,
                                   m_form.coeffFrame, m_form.dataPlot};
    int last = -1;
    for (QWidget *widget : order) {
        const int top = widget->mapTo(m_window.get(), QPoint()).y();
        QVERIFY2(top > last, qPrintable(widget->objectName()));
        last = top;
    }
    QCOMPARE(m_form.line->frameShape(), QFrame::HLine);
    QCOMPARE(m_form.line_2->frameShape(), QFrame::HLine);
    QCOMPARE(m_form.line_3->frameShape(), QFrame::HLine);
    QVERIFY(m_form.frame_3->isAncestorOf(m_form.txtCalibrationQIE));
    QVERIFY(m_form.frame_3->isAncestorOf(m_form.txtTechnicianName));
    for (const QWidget *widget : {static_cast<QWidget *>(m_form.cboCurrentChannel),
                                  static_cast<QWidget *>(m_form.lblTableName),
                                  static_cast<QWidget *>(m_form.lblSerialNumber)})
        QVERIFY2(m_form.frame_2->isAncestorOf(widget), qPrintable(widget->objectName()));
    const int row = m_form.cboCalType->mapTo(m_window.get(), QPoint()).y();
    for (QWidget *widget : {static_cast<QWidget *>(m_form.cboOrderOfPolynomial),
                            static_cast<QWidget *>(m_form.cboPolyRangeIndex),
                            static_cast<QWidget *>(m_form.txtNumPoints),
                            static_cast<QWidget *>(m_form.txtAveragingTime)})
        QCOMPARE(widget->mapTo(m_window.get(), QPoint()).y(), row);
}

void Form::main_area_from_left_to_right()
{
    m_window->show();
    QVERIFY(QTest::qWaitForWindowExposed(m_window.get()));
    const auto place = [this](const QWidget *widget) {
        return QRect(widget->mapTo(m_window.get(), QPoint()), widget->size());
    };
    QVERIFY(place(m_form.scrollArea).right() < place(m_form.txtAsFound).left());
    QVERIFY(place(m_form.txtAsFound).right() < place(m_form.dataPlot).left());
    QVERIFY(place(m_form.btnUnits).top() > place(m_form.label_3).top());
    QVERIFY(place(m_form.label_18).top() > place(m_form.label_2).top());
    QVERIFY(place(m_form.label_3).right() < place(m_form.label_2).left());
    QVERIFY(place(m_form.scrollArea).top() > place(m_form.btnUnits).top());
    QVERIFY(m_window->rect().contains(place(m_form.dataPlot)));
    QVERIFY(m_window->rect().contains(place(m_form.btnAdjustCalibration)));
}

void Form::plot_stands_in_its_frame()
{
    QCOMPARE(m_form.dataPlot->parentWidget(), m_form.frame);
    QCOMPARE(m_form.frame->frameShape(), QFrame::NoFrame);
}

void Form::coefficient_labels_stand_in_their_frame()
{
    for (int i = 0; i < 8; ++i) {
        const QString name = QStringLiteral("lblCoeff%1").arg(i);
        QCOMPARE(part(name)->parentWidget(), m_form.coeffFrame);
        QCOMPARE(part(name + QStringLiteral("Value"))->parentWidget(), m_form.coeffFrame);
    }
}

WINDOW_TEST(Form);
#include "test_form.moc"
