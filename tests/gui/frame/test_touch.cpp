// SPDX-License-Identifier: GPL-3.0-or-later
//
// The window of a touch screen cell: its fields are marked for the on-screen
// input and watched, and take numbers only where numbers are meant.
#include <QDoubleValidator>
#include <QIntValidator>
#include <QtTest>

#include "calibration/savetypedialog.h"
#include "gui/frame/testwindow.h"
#include "support/testmain.h"

namespace
{

// Notes which objects the window watches.
class WatchedWindow : public MainWindow
{
public:
    QStringList double_clicked;
    bool ever_true = false;

protected:
    bool eventFilter(QObject *object, QEvent *event) override
    {
        if (event->type() == QEvent::MouseButtonDblClick)
            double_clicked += object->objectName();
        const bool result = MainWindow::eventFilter(object, event);
        ever_true = ever_true || result;
        return result;
    }
};

} // namespace

class Touch : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanupTestCase() { m_it.reset(); }
    void fields_are_marked();
    void count_and_time_share_one_validator();
    void names_take_any_text();
    void window_watches_its_four_fields_data();
    void window_watches_its_four_fields();
    void rows_take_numbers_only();
    void numbers_are_read_as_they_are_typed_data();
    void numbers_are_read_as_they_are_typed();
    void rows_watch_their_fields();
    void writing_the_count_runs_the_count_slot();
    void binding_runs_the_count_slot();
    void refused_count_is_told_again_for_the_emptied_field();
    void capture_of_a_new_point_runs_the_count_slot();
    void giving_a_channel_up_brings_the_box_of_the_count();
    void time_typed_on_the_pad_takes_effect_at_once();
    void refused_time_is_told_once();
    void description_of_the_recording_is_marked();

private:
    static void expect_invalid_points(BoxAnswerer *answerer, int times);
    WatchedWindow *window() const { return static_cast<WatchedWindow *>(m_it->window); }

    std::unique_ptr<TestWindow> m_it;
};

void Touch::expect_invalid_points(BoxAnswerer *answerer, int times)
{
    for (int i = 0; i < times; ++i)
        answerer->expect(QStringLiteral("Invalid Calibration Points"),
                         QStringLiteral("A invalid value for Calibration Points was entered\n\n"
                                        "Please reenter a Calibration Points value between 2 and "
                                        "64"));
}

void Touch::initTestCase()
{
    g_touch_input = true;
    QLocale::setDefault(QLocale(QLocale::German));
    m_it =
        std::make_unique<TestWindow>(TestWindow::description(), [] { return new WatchedWindow; });
}

void Touch::fields_are_marked()
{
    for (const QLineEdit *field : {m_it->form->txtCalibrationQIE, m_it->form->txtTechnicianName,
                                   m_it->form->txtNumPoints, m_it->form->txtAveragingTime}) {
        const QVariant mark = field->property("keyboard");
        QCOMPARE(mark.type(), QVariant::Bool);
        QVERIFY2(mark.toBool(), qPrintable(field->objectName()));
    }
}

void Touch::count_and_time_share_one_validator()
{
    const QValidator *const validator = m_it->form->txtNumPoints->validator();
    QVERIFY(qobject_cast<const QIntValidator *>(validator) != nullptr);
    QCOMPARE(m_it->form->txtAveragingTime->validator(), validator);
    QCOMPARE(validator->parent(), m_it->window);
}

void Touch::names_take_any_text()
{
    QCOMPARE(m_it->form->txtCalibrationQIE->validator(), nullptr);
    QCOMPARE(m_it->form->txtTechnicianName->validator(), nullptr);
}

void Touch::window_watches_its_four_fields_data()
{
    QTest::addColumn<bool>("watched");
    QTest::newRow("txtCalibrationQIE") << true;
    QTest::newRow("txtTechnicianName") << true;
    QTest::newRow("txtNumPoints") << true;
    QTest::newRow("txtAveragingTime") << true;
    QTest::newRow("txtAsFound") << false;
}

// The event goes on to the field: the filter never keeps it.
void Touch::window_watches_its_four_fields()
{
    QFETCH(bool, watched);
    const QString name = QString::fromLatin1(QTest::currentDataTag());
    auto *const field = m_it->window->findChild<QLineEdit *>(name);
    const QSignalBlocker quiet(field);
    field->setText(QStringLiteral("12"));
    field->deselect();
    window()->double_clicked.clear();
    QTest::mouseDClick(field, Qt::LeftButton, {}, QPoint(8, field->height() / 2));
    QCOMPARE(window()->double_clicked, watched ? QStringList{name} : QStringList());
    QCOMPARE(field->selectedText(), QStringLiteral("12"));
    QVERIFY(!window()->ever_true);
    field->setText(name == QLatin1String("txtAveragingTime") ? QStringLiteral("10") : QString());
}

void Touch::rows_take_numbers_only()
{
    for (int i = 0; i < MAX_POINTS; ++i) {
        const QLineEdit *field = m_it->window->row(i)->value_field();
        QVERIFY(qobject_cast<const QDoubleValidator *>(field->validator()) != nullptr);
        QCOMPARE(field->property("keyboard").type(), QVariant::Bool);
        QVERIFY(field->property("keyboard").toBool());
    }
}

// What the validator lets pass must read as the number that it looks like,
// whatever the technician's locale.
void Touch::numbers_are_read_as_they_are_typed_data()
{
    const auto row = test_columns<QString, bool>("text", "acceptable");
    row("a decimal point", "12.5", true);
    row("negative", "-3.25", true);
    row("whole", "40", true);
    row("a decimal comma", "12,5", false);
    row("a comma between thousands", "1,250", false);
    row("letters", "abc", false);
    row("empty", "", false);
}

void Touch::numbers_are_read_as_they_are_typed()
{
    QFETCH(QString, text);
    QFETCH(bool, acceptable);
    int position = 0;
    const QValidator *validator = m_it->window->row(0)->value_field()->validator();
    QCOMPARE(validator->validate(text, position) == QValidator::Acceptable, acceptable);
    bool is_number = false;
    (void)text.toDouble(&is_number);
    QCOMPARE(is_number, acceptable);
}

// The field's own parent is its filter: its double click is still the field's.
void Touch::rows_watch_their_fields()
{
    QLineEdit *const field = m_it->window->row(0)->value_field();
    m_it->window->row(0)->set_children_visible(true);
    field->setText(QStringLiteral("34"));
    field->deselect();
    QTest::mouseDClick(field, Qt::LeftButton, {}, QPoint(8, field->height() / 2));
    QCOMPARE(field->selectedText(), QStringLiteral("34"));
    m_it->window->hide_rows();
}

// A field filled from the pad gets no return key, so text alone counts, also
// what a binding writes.
void Touch::writing_the_count_runs_the_count_slot()
{
    const BoxAnswerer answerer;
    m_it->bind_afresh(0);
    QCOMPARE(m_it->form->txtNumPoints->text(), QStringLiteral("5"));
    m_it->form->txtNumPoints->setText(QStringLiteral("3"));
    QCOMPARE(g_num_points, int16_t(3));
    QCOMPARE(m_it->rows_shown(), 3);
    QVERIFY(answerer.met().isEmpty());
}

// A channel without a table has none of the 2 to 64 points.
void Touch::binding_runs_the_count_slot()
{
    m_it->bind_afresh(0);
    BoxAnswerer answerer;
    expect_invalid_points(&answerer, 2);
    answerer.expect_title(QStringLiteral("Update Data"));
    answerer.expect_dialog(QStringLiteral("Transducer Calibration Configuration"),
                           [](QDialog *dialog) { dialog->done(QDialog::Accepted); });
    m_it->bind_afresh(3);
    QCOMPARE(m_it->form->txtNumPoints->text(), QString());
}

// Emptying the field is a change of its text too.
void Touch::refused_count_is_told_again_for_the_emptied_field()
{
    m_it->bind_afresh(0);
    BoxAnswerer answerer;
    expect_invalid_points(&answerer, 2);
    m_it->form->txtNumPoints->setText(QStringLiteral("65"));
    QCOMPARE(m_it->form->txtNumPoints->text(), QString());
    QCOMPARE(g_num_points, int16_t(5));
}

// The capture writes the count that it has grown, 5 to 6, and its slot then runs
// in the midst of it: the rows offered beyond are taken from view, captures made
// before are counted no more, and the process panel is emptied. The capture itself
// goes on and is the first one counted again.
void Touch::capture_of_a_new_point_runs_the_count_slot()
{
    m_it->bind_afresh(0);
    const BoxAnswerer answerer;
    QVERIFY(m_it->capture(1, 1300.0, 26.5));
    QCOMPARE(g_captured_points, 1);
    m_it->form->txtNumPoints->setText(QStringLiteral("8"));
    QCOMPARE(m_it->rows_shown(), 8);
    QCOMPARE(g_captured_points, 0);
    g_captured_points = 1; // as if row 2 still counted
    m_it->form->txtAsFound->setText(QStringLiteral("01/02/2024 03:04:05"));
    QVERIFY(m_it->capture(5, 5500.0, 110.0));
    QCOMPARE(m_it->form->txtNumPoints->text(), QStringLiteral("6"));
    QCOMPARE(g_num_points, int16_t(6));
    QCOMPARE(m_it->rows_shown(), 6);
    QCOMPARE(g_cfg->long_current.num_points, int16_t(6));
    QCOMPARE(g_cfg->table.poly[0].num_points, int16_t(6));
    QCOMPARE(g_captured_points, 1);
    QCOMPARE(m_it->window->row(5)->caption(), QStringLiteral("Undo"));
    QCOMPARE(m_it->window->row(5)->state, int32_t(POINT_CAPTURED));
    QCOMPARE(m_it->window->row(1)->caption(), QStringLiteral("Undo"));
    QCOMPARE(g_cfg->long_current.x[5], 5500.0);
    QCOMPARE(g_cfg->long_current.y[5], 110.0);
    QCOMPARE(m_it->form->txtAsFound->text(), QString());
    QCOMPARE(g_cfg->table_dirty, uint16_t(1));
    QVERIFY(answerer.met().isEmpty());
}

void Touch::giving_a_channel_up_brings_the_box_of_the_count()
{
    m_it->bind_afresh(0);
    g_first_select = 1;
    BoxAnswerer answerer;
    answerer.expect_title(QStringLiteral("Update Data"));
    answerer.expect_dialog(QStringLiteral("Transducer Calibration Configuration"),
                           [](QDialog *dialog) { dialog->reject(); });
    expect_invalid_points(&answerer, 1);
    m_it->bind_afresh(6);
    QVERIFY(m_it->window->curves_are_removed());
    QCOMPARE(m_it->form->txtNumPoints->text(), QString());
}

void Touch::time_typed_on_the_pad_takes_effect_at_once()
{
    const BoxAnswerer answerer;
    m_it->form->txtAveragingTime->setText(QStringLiteral("5"));
    QCOMPARE(relaxed_load(g_fifo_size), uint32_t(50));
    m_it->form->txtAveragingTime->setText(QStringLiteral("10"));
    QCOMPARE(relaxed_load(g_fifo_size), uint32_t(100));
    QVERIFY(answerer.met().isEmpty());
}

// The field's signals are blocked while "10" is put into it.
void Touch::refused_time_is_told_once()
{
    BoxAnswerer answerer;
    answerer.expect(QStringLiteral("Wrong Value Entered"),
                    QStringLiteral("The entered Averaging Time must be between 5 and 30 seconds"));
    m_it->form->txtAveragingTime->setText(QStringLiteral("31"));
    QCOMPARE(m_it->form->txtAveragingTime->text(), QStringLiteral("10"));
    QCOMPARE(relaxed_load(g_fifo_size), uint32_t(100));
}

void Touch::description_of_the_recording_is_marked()
{
    SaveTypeDialog dialog(m_it->window, 0);
    const auto *field = dialog.findChild<QLineEdit *>(QStringLiteral("txtComment"));
    QCOMPARE(field->property("keyboard").type(), QVariant::Bool);
    QVERIFY(field->property("keyboard").toBool());
}

WINDOW_TEST(Touch);
#include "test_touch.moc"
