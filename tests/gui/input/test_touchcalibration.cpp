// SPDX-License-Identifier: GPL-3.0-or-later
//
// A whole calibration on a touch screen cell by taps alone: no key of a real
// keyboard, and nothing is set past the screen but the sensor's reading.
#include <QAbstractItemView>
#include <QComboBox>
#include <QtTest>

#include "gui/frame/testwindow.h"
#include "gui/input/touchscreen.h"
#include "support/testmain.h"

using namespace touchscreen;

class TouchCalibration : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanupTestCase();
    void from_the_names_to_the_new_table();

private:
    void enter(QLineEdit *field, const QString &text);
    void pick_by_tap(int channel);
    void capture_by_tap(int row, double mv, const QString &reference);
    void record_by_tap(const char *kind, const QString &description);

    std::unique_ptr<TestWindow> m_it;
    std::unique_ptr<BoxAnswerer> m_answerer;
};

void TouchCalibration::initTestCase()
{
    write_file(QStringLiteral("/cell/vornax_ts.ini"), QByteArray());
    g_touch_input = QFile::exists(QStringLiteral("/cell/vornax_ts.ini"));
    m_it = std::make_unique<TestWindow>();
    m_answerer = std::make_unique<BoxAnswerer>();
}

void TouchCalibration::cleanupTestCase()
{
    m_answerer.reset();
    m_it.reset();
}

void TouchCalibration::enter(QLineEdit *field, const QString &text)
{
    double_tap(field);
    QWidget *const pad = field->validator() != nullptr
                             ? static_cast<QWidget *>(g_input_device->numpad)
                             : g_input_device->keyboard;
    QTRY_VERIFY(pad->isVisible());
    tap_text(pad, text);
    tap_key(pad, QStringLiteral("enter"));
    QVERIFY(!pad->isVisible());
    QCOMPARE(field->text(), text);
}

void TouchCalibration::pick_by_tap(int channel)
{
    QComboBox *const list = m_it->form->cboCurrentChannel;
    tap(list);
    QAbstractItemView *const view = list->view();
    QTRY_VERIFY(view->isVisible());
    const QModelIndex item = list->model()->index(m_it->item_of(channel), 0);
    view->scrollTo(item);
    // A popup takes no tap so soon after it opened.
    const auto tapped = [&] {
        if (view->isVisible()) {
            const QPoint place =
                view->viewport()->mapTo(view->window(), view->visualRect(item).center());
            QTest::mouseClick(view->window()->windowHandle(), Qt::LeftButton, {}, place);
        }
        return list->currentIndex() == item.row();
    };
    QTRY_VERIFY(tapped());
}

void TouchCalibration::capture_by_tap(int row, double mv, const QString &reference)
{
    QVERIFY(m_it->reading(mv));
    enter(m_it->window->row(row)->value_field(), reference);
    QCOMPARE(g_cfg->long_current.y[row], reference.toDouble());
    tap(m_it->button(row));
    QCOMPARE(m_it->window->row(row)->caption(), QStringLiteral("Undo"));
}

void TouchCalibration::record_by_tap(const char *kind, const QString &description)
{
    m_answerer->expect_dialog(QStringLiteral("Record Calibration Data"), [&](QDialog *dialog) {
        tap(dialog->findChild<QWidget *>(QLatin1String(kind)));
        enter(dialog->findChild<QLineEdit *>(QStringLiteral("txtComment")), description);
        tap(dialog->findChild<QWidget *>(QStringLiteral("btnRecord")));
    });
    tap(m_it->form->btnRecordData);
    QCOMPARE(m_answerer->remaining(), 0);
    QCOMPARE(QString::fromUtf8(g_cfg->table.cal_comment), description);
}

void TouchCalibration::from_the_names_to_the_new_table()
{
    const QString table = TestWindow::table_path(QStringLiteral("one"), ".tbl");
    const QByteArray before = read_file(table);
    enter(m_it->form->txtCalibrationQIE, QStringLiteral("Dwt-12"));
    enter(m_it->form->txtTechnicianName, QStringLiteral("J. Doe"));
    pick_by_tap(1);
    QCOMPARE(m_it->form->lblTableName->text(), QStringLiteral("one"));
    QCOMPARE(m_it->rows_shown(), 3);
    enter(m_it->form->txtAveragingTime, QStringLiteral("5"));
    QCOMPARE(relaxed_load(g_fifo_size), uint32_t(50));

    const QStringList references = {"0.5", "50.5", "100.5"};
    const double readings[] = {0.0, 2500.0, 5000.0};
    for (int i = 0; i < 3; ++i)
        capture_by_tap(i, readings[i], references[i]);
    record_by_tap("rbAsFound", QStringLiteral("As it came"));
    QVERIFY(!m_it->form->txtAsFound->text().isEmpty());

    tap(m_it->form->btnAdjustCalibration);
    QVERIFY(!m_it->form->txtAdjustCalibration->text().isEmpty());
    QVERIFY(read_file(table) != before);
    QCOMPARE(int(g_cfg->long_current.num_points), 3);
    for (int i = 0; i < 3; ++i)
        QCOMPARE(g_cfg->long_current.y[i], references[i].toDouble());
    QCOMPARE(QString::fromUtf8(g_cfg->table.qie), QStringLiteral("Dwt-12"));
    QCOMPARE(QString::fromUtf8(g_cfg->table.verified_by), QStringLiteral("J. Doe"));
    QCOMPARE(m_answerer->met().size(), 1); // nothing but the dialog of the recording
}

WINDOW_TEST(TouchCalibration);
#include "test_touchcalibration.moc"
