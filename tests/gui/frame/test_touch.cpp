// SPDX-License-Identifier: GPL-3.0-or-later
//
// The window of a touch screen cell: its fields are marked for the on-screen
// input and watched, and take numbers only where numbers are meant.
#include <QDoubleValidator>
#include <QIntValidator>
#include <QtTest>

#include "calibration/savetypedialog.h"
#include "gui/frame/testwindow.h"

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
    void cleanupTestCase();
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
    void time_typed_on_the_pad_takes_effect_at_once();
    void description_of_the_recording_is_marked();

private:
    WatchedWindow *window() const { return static_cast<WatchedWindow *>(m_it->window); }

    std::unique_ptr<TestWindow> m_it;
};

void Touch::initTestCase()
{
    g_touch_input = true;
    QLocale::setDefault(QLocale(QLocale::German));
    m_it =
        std::make_unique<TestWindow>(TestWindow::description(), [] { return new WatchedWindow; });
}

void Touch::cleanupTestCase()
{
    m_it.reset();
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
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("acceptable");
    QTest::newRow("a decimal point") << "12.5" << true;
    QTest::newRow("negative") << "-3.25" << true;
    QTest::newRow("whole") << "40" << true;
    QTest::newRow("a decimal comma") << "12,5" << false;
    QTest::newRow("a comma between thousands") << "1,250" << false;
    QTest::newRow("letters") << "abc" << false;
    QTest::newRow("empty") << "" << false;
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

void Touch::time_typed_on_the_pad_takes_effect_at_once()
{
    const BoxAnswerer answerer;
    m_it->form->txtAveragingTime->setText(QStringLiteral("5"));
    QCOMPARE(relaxed_load(g_fifo_size), uint32_t(50));
    m_it->form->txtAveragingTime->setText(QStringLiteral("10"));
    QCOMPARE(relaxed_load(g_fifo_size), uint32_t(100));
    QVERIFY(answerer.met().isEmpty());
}

void Touch::description_of_the_recording_is_marked()
{
    SaveTypeDialog dialog(m_it->window, 0);
    const auto *field = dialog.findChild<QLineEdit *>(QStringLiteral("txtComment"));
    QCOMPARE(field->property("keyboard").type(), QVariant::Bool);
    QVERIFY(field->property("keyboard").toBool());
}

QTEST_MAIN(Touch)
#include "test_touch.moc"
