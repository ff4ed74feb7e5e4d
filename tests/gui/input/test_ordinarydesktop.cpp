// SPDX-License-Identifier: GPL-3.0-or-later
//
// On an ordinary desktop nothing of the on-screen input exists.
#include <QtTest>

#include "calibration/savetypedialog.h"
#include "frame/zerl_callbacks.h"
#include "gui/frame/testwindow.h"
#include "sensor/configdialog2.h"
#include "support/testmain.h"

class OrdinaryDesktop : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanupTestCase() { m_it.reset(); }
    void there_is_no_device();
    void no_field_is_marked_or_judged();
    void double_click_opens_nothing();
    void changed_texts_do_nothing();

private:
    std::unique_ptr<TestWindow> m_it;
};

void OrdinaryDesktop::initTestCase()
{
    QVERIFY(!g_touch_input);
    m_it = std::make_unique<TestWindow>();
    m_it->bind_afresh(0);
}

void OrdinaryDesktop::there_is_no_device()
{
    QVERIFY(g_input_device == nullptr);
    QVERIFY(g_callbacks.show_input_panel == nullptr);
    request_input_panel(m_it->form->txtNumPoints);
    for (const QWidget *window : QApplication::topLevelWidgets()) {
        QVERIFY(window->windowTitle() != QStringLiteral("Keyboard"));
        QVERIFY(window->windowTitle() != QStringLiteral("Numpad"));
    }
}

void OrdinaryDesktop::no_field_is_marked_or_judged()
{
    SaveTypeDialog recording(m_it->window, 0);
    ConfigDialog2 information(m_it->window, false, 0);
    // The window's nine with its process boxes, its rows', the dialogs' six.
    const auto fields = m_it->window->findChildren<QLineEdit *>();
    int counted = 0;
    for (const QLineEdit *field : fields) {
        if (!field->objectName().startsWith(QStringLiteral("txt")))
            continue;
        ++counted;
        QVERIFY2(!field->property("keyboard").isValid(), qPrintable(field->objectName()));
        QVERIFY2(!field->property("numpad").isValid(), qPrintable(field->objectName()));
        QVERIFY2(field->validator() == nullptr, qPrintable(field->objectName()));
    }
    QCOMPARE(counted, 9 + MAX_POINTS + 6);
}

void OrdinaryDesktop::double_click_opens_nothing()
{
    const auto shown = [] {
        int count = 0;
        for (const QWidget *window : QApplication::topLevelWidgets())
            count += window->isVisible() ? 1 : 0;
        return count;
    };
    const int before = shown();
    for (QLineEdit *field : {m_it->form->txtCalibrationQIE, m_it->form->txtNumPoints,
                             m_it->window->row(0)->value_field()})
        QTest::mouseDClick(field, Qt::LeftButton);
    QCOMPARE(shown(), before);
}

void OrdinaryDesktop::changed_texts_do_nothing()
{
    const BoxAnswerer answerer;
    const uint32_t window = relaxed_load(g_fifo_size);
    m_it->form->txtNumPoints->setText(QStringLiteral("3"));
    QCOMPARE(m_it->rows_shown(), 5);
    m_it->form->txtNumPoints->setText(QStringLiteral("99"));
    m_it->form->txtAveragingTime->setText(QStringLiteral("20"));
    QCOMPARE(relaxed_load(g_fifo_size), window);
    m_it->form->txtAveragingTime->setText(QStringLiteral("99"));
    QVERIFY(answerer.met().isEmpty());
    m_it->form->txtAveragingTime->setText(QStringLiteral("10"));
    m_it->form->txtNumPoints->setText(QStringLiteral("5"));
}

WINDOW_TEST(OrdinaryDesktop);
#include "test_ordinarydesktop.moc"
