// SPDX-License-Identifier: GPL-3.0-or-later
//
// A session begins without the specs file, whatever stands in it.
#include <cstring>

#include "gui/frame/testwindow.h"
#include "gui/records/specsrecord.h"
#include "support/testmain.h"

class SpecsAtTheStart : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanupTestCase() { m_it.reset(); }
    void window_does_not_read_the_specs_file();
    void picking_a_channel_does_not_read_it_either();
    void menus_entry_reads_and_opens_nothing();

private:
    static bool specs_are_zero();

    std::unique_ptr<TestWindow> m_it;
};

void SpecsAtTheStart::initTestCase()
{
    // Behind the test window's own clearing of the cell.
    m_it = std::make_unique<TestWindow>(TestWindow::description(), [] {
        write_file(SPECS_FILE, "@ROOM_TEMP_KEYWORD\nT\n@BAROMETER_KEYWORD\nB\n"
                               "@HUMIDITY_KEYWORD\nH\n@REPORT_EMAIL_LIST_KEYWORD\na@cell\n");
        return new MainWindow;
    });
    QVERIFY(QFile::exists(SPECS_FILE));
}

bool SpecsAtTheStart::specs_are_zero()
{
    const SPECS_BLOCK zero = {};
    return std::memcmp(g_specs, &zero, sizeof zero) == 0;
}

void SpecsAtTheStart::window_does_not_read_the_specs_file()
{
    QVERIFY(specs_are_zero());
}

void SpecsAtTheStart::picking_a_channel_does_not_read_it_either()
{
    m_it->pick(0);
    QVERIFY(specs_are_zero());
}

// By the action's own signal, since an action out of sight answers to nothing.
void SpecsAtTheStart::menus_entry_reads_and_opens_nothing()
{
    const BoxAnswerer answerer;
    emit m_it->form->actionEnvironment_Variables->triggered();
    QVERIFY(answerer.met().isEmpty());
    QVERIFY(specs_are_zero());
}

WINDOW_TEST(SpecsAtTheStart);
#include "test_specsatthestart.moc"
