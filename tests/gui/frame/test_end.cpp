// SPDX-License-Identifier: GPL-3.0-or-later
//
// Once the end is decided a field that loses the focus, is hidden or goes asks
// nothing and changes nothing.
#include <QComboBox>
#include <QtTest>

#include "gui/frame/testwindow.h"
#include "support/testmain.h"
#include "window/messagebox.h"
#include "window/termination.h"

class End : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { m_it = std::make_unique<TestWindow>(); }
    void cleanupTestCase() { m_it.reset(); }
    void init();
    void time_in_its_field_is_not_judged_data();
    void time_in_its_field_is_not_judged();
    void reference_in_its_field_is_not_taken();
    void count_is_not_taken();
    void nothing_is_asked_any_more();
    void window_shown_again_asks_again();
    void destruction_asks_nothing();

private:
    void close_by(const QByteArray &way);

    std::unique_ptr<TestWindow> m_it;
};

void End::init()
{
    m_it->bind_afresh(0);
    m_it->window->show();
    m_it->form->txtAveragingTime->setText(QStringLiteral("10"));
    QApplication::setActiveWindow(m_it->window);
    QVERIFY(QTest::qWaitForWindowActive(m_it->window, DEADLINE_MS));
    relaxed_store(g_fifo_size, uint32_t(70));
}

void End::close_by(const QByteArray &way)
{
    if (way.startsWith("Exit"))
        m_it->form->actionExit->trigger();
    else
        m_it->window->close();
    QCoreApplication::processEvents();
    QVERIFY(!m_it->window->isVisible());
}

void End::time_in_its_field_is_not_judged_data()
{
    QTest::addColumn<QString>("text");
    for (const char *way : {"Exit", "close button"}) {
        for (const char *text : {"99", "", "12", "10"})
            QTest::addRow("%s, \"%s\"", way, text) << text;
    }
}

void End::time_in_its_field_is_not_judged()
{
    QFETCH(QString, text);
    QLineEdit *const field = m_it->form->txtAveragingTime;
    field->setFocus();
    field->selectAll();
    QTest::keyClick(field, Qt::Key_Delete);
    QTest::keyClicks(field, text);
    const BoxAnswerer answerer;
    close_by(QTest::currentDataTag());
    emit field->editingFinished();
    QVERIFY(answerer.met().isEmpty());
    QCOMPARE(field->text(), text);
    QCOMPARE(relaxed_load(g_fifo_size), uint32_t(70));
}

void End::reference_in_its_field_is_not_taken()
{
    QLineEdit *const field = m_it->window->row(1)->value_field();
    field->setFocus();
    QTest::keyClicks(field, QStringLiteral("9"));
    g_cfg->table_dirty = 1;
    close_by("close button");
    emit field->editingFinished();
    QCOMPARE(g_cfg->long_current.y[1], 25.0);
    QCOMPARE(g_cfg->table_dirty, uint16_t(1));
}

void End::count_is_not_taken()
{
    const BoxAnswerer answerer;
    m_it->form->txtNumPoints->setText(QStringLiteral("65"));
    close_by("close button");
    QTest::keyClick(m_it->form->txtNumPoints, Qt::Key_Return);
    QVERIFY(answerer.met().isEmpty());
    QCOMPARE(m_it->form->txtNumPoints->text(), QStringLiteral("65"));
}

void End::nothing_is_asked_any_more()
{
    const BoxAnswerer answerer;
    close_by("close button");
    QVERIFY(end_decided());
    QCOMPARE(ask(m_it->window, QMessageBox::Question, QStringLiteral("title"),
                 QStringLiteral("text"), QMessageBox::Yes | QMessageBox::No, QMessageBox::No),
             QMessageBox::No);
    QVERIFY(answerer.met().isEmpty());
}

void End::window_shown_again_asks_again()
{
    close_by("close button");
    m_it->window->show();
    QVERIFY(!end_decided());
    BoxAnswerer answerer;
    answerer.expect_title(QStringLiteral("Wrong Value Entered"));
    m_it->form->txtAveragingTime->setText(QStringLiteral("99"));
    QTest::keyClick(m_it->form->txtAveragingTime, Qt::Key_Return);
    QCOMPARE(answerer.met().size(), 1);
}

// As behind SIGTERM: the window goes as it stands, its lists with it.
void End::destruction_asks_nothing()
{
    QLineEdit *const field = m_it->form->txtAveragingTime;
    field->setFocus();
    field->setText(QStringLiteral("99"));
    QVERIFY(field->hasFocus());
    QStringList said;
    QObject ear;
    for (QComboBox *list : m_it->window->findChildren<QComboBox *>())
        connect(list, QOverload<int>::of(&QComboBox::currentIndexChanged), &ear,
                [&said, list] { said += list->objectName(); });
    const BoxAnswerer answerer;
    delete m_it->window;
    m_it->window = nullptr;
    QVERIFY(answerer.met().isEmpty());
    QCOMPARE(relaxed_load(g_fifo_size), uint32_t(70));
    QCOMPARE(said, QStringList());
}

WINDOW_TEST(End);
#include "test_end.moc"
