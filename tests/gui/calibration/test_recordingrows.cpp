// SPDX-License-Identifier: GPL-3.0-or-later
//
// The four recordings in the window: each panel that makes a difference against
// each worst status of the points, with every question and answer.
#include <QtTest>

#include "gui/calibration/processpanel.h"
#include "support/testmain.h"

namespace
{

// What a recording suggests: colour of its box, of Re-Use and Adjust, advice.
struct Suggestion {
    char kind;
    const char *colours; // of the box by status
    const char *buttons[4];
    const char *advice[4];
};

const Suggestion SUGGESTIONS[] = {
    {AS_FOUND, "gyor", {"ri", "ir", "ii", "ii"}, {"-", "-", "N1", "N1"}},
    {AFTER_SERVICE, "gyor", {"rc", "ir", "ic", "ic"}, {"N2", "-", "N3", "N3"}},
    {VERIFICATION, "gyor", {"ii", "ii", "ii", "ii"}, {"N4", "N5", "N6", "N6"}},
    {NEW_CORRELATION, "====", {"==", "==", "==", "=="}, {"-", "-", "-", "-"}},
};

// A panel before a recording; texts and colours as in Outcome, with s for the
// colour of the status.
struct Panel {
    const char *name;
    char kind;
    const char *boxes;
    const char *question;
    bool goes_on;
    const char *texts;
    const char *colours;
};

const Panel PANELS[] = {
    {"As-Found first", AS_FOUND, "00000", "", true, "t====", "s===="},
    {"As-Found again, described", AS_FOUND, "10000", "", true, "t====", "s===="},
    {"As-Found after a service alone", AS_FOUND, "11000", "", true, "t====", "s===="},
    {"As-Found after an update alone", AS_FOUND, "10100", "", true, "t====", "s===="},
    {"As-Found after service and update, Yes", AS_FOUND, "11111", "D1", true, "t---=", "swww="},
    {"As-Found after service and update, No", AS_FOUND, "11111", "D1", false, "=====", "====="},
    {"After-Service first", AFTER_SERVICE, "00000", "", true, "Nt===", "rs==="},
    {"After-Service behind As-Found", AFTER_SERVICE, "10000", "", true, "=t===", "=s==="},
    {"After-Service again", AFTER_SERVICE, "11000", "", true, "=t===", "=s==="},
    {"After-Service without As-Found after an update", AFTER_SERVICE, "00111", "", true,
     "Nt===", "rs==="},
    {"After-Service after an update, OK", AFTER_SERVICE, "11111", "D2", true, "=t--=", "=sww="},
    {"After-Service after an update, Cancel", AFTER_SERVICE, "11111", "D2", false,
     "=====", "====="},
    {"Verification after an update", VERIFICATION, "11100", "", true, "===t=", "===s="},
    {"Verification again after an update", VERIFICATION, "11111", "", true, "===t=", "===s="},
    {"Verification without an update, Yes", VERIFICATION, "11000", "D3", true, "===t=", "===s="},
    {"Verification without an update, No", VERIFICATION, "11011", "D3", false, "=====", "====="},
    {"New Correlation first", NEW_CORRELATION, "00000", "", true, "====t", "====="},
    {"New Correlation over a full panel", NEW_CORRELATION, "11111", "", true, "====t", "====="},
};

int save_type_of(char kind)
{
    return kind == AS_FOUND        ? SAVE_AS_FOUND
           : kind == AFTER_SERVICE ? SAVE_AFTER_SERVICE
           : kind == VERIFICATION  ? SAVE_VERIFICATION
                                   : SAVE_NEW_CORRELATION;
}

const Suggestion &suggestion_of(char kind)
{
    for (const Suggestion &suggestion : SUGGESTIONS) {
        if (suggestion.kind == kind)
            return suggestion;
    }
    qFatal("no such kind");
}

QByteArray with_status_colour(const char *colours, const Suggestion &suggestion, int status)
{
    return QByteArray(colours).replace('s', suggestion.colours[status]);
}

} // namespace

class RecordingRows : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { m_it = std::make_unique<ProcessPanel>(); }
    void cleanupTestCase() { m_it.reset(); }
    void init() { m_it->bind(); }
    void recording_data();
    void recording();
    void declined_recording_gives_each_button_its_own_flag_back_data();
    void declined_recording_gives_each_button_its_own_flag_back();
    void buttons_are_enabled_while_the_question_stands();

private:
    std::unique_ptr<ProcessPanel> m_it;
};

void RecordingRows::recording_data()
{
    test_columns<int, int>("panel", "status");
    for (int i = 0; i < static_cast<int>(std::size(PANELS)); ++i) {
        for (int status = 0; status < 4; ++status)
            QTest::addRow("%s, status %d", PANELS[i].name, status) << i << status;
    }
}

void RecordingRows::recording()
{
    QFETCH(int, panel);
    QFETCH(int, status);
    const Panel &row = PANELS[panel];
    const Suggestion &suggestion = suggestion_of(row.kind);
    m_it->set_boxes(row.boxes);
    m_it->set_buttons(false, false);
    m_it->captured(status);
    g_cfg->table.last_save_type = SAVE_REUSED;
    qstrncpy(g_cfg->table.qie, "former standard", sizeof g_cfg->table.qie);
    qstrncpy(g_cfg->table.verified_by, "former name", sizeof g_cfg->table.verified_by);
    const PanelLook before = m_it->look();
    m_it->press(row.kind, row.question, row.goes_on, QStringLiteral("as seen"));

    QCOMPARE(int(g_cfg->table.worst_status), status); // computed at the press
    QCOMPARE(QByteArray(g_cfg->table.cal_comment), QByteArray("as seen"));
    if (!row.goes_on) {
        m_it->check(before, row.kind, {"=====", "=====", "==", "00", "-", 0});
        QCOMPARE(int(g_cfg->table.last_save_type), int(SAVE_REUSED));
        QCOMPARE(QByteArray(g_cfg->table.qie), QByteArray("former standard"));
        QCOMPARE(QByteArray(g_cfg->table.verified_by), QByteArray("former name"));
        QCOMPARE(g_captured_points, 3);
        QCOMPARE(m_it->it.window->row(2)->caption(), QStringLiteral("Undo"));
        return;
    }
    const QByteArray colours = with_status_colour(row.colours, suggestion, status);
    const int saved = save_type_of(row.kind);
    m_it->check(before, row.kind,
                {row.texts, colours.constData(), suggestion.buttons[status],
                 row.kind == NEW_CORRELATION ? "==" : "11", suggestion.advice[status], saved});
    QCOMPARE(int(g_cfg->table.last_save_type), saved);
    QCOMPARE(g_captured_points, 0);
    QCOMPARE(m_it->it.window->row(2)->caption(), QStringLiteral("Capture"));
    QCOMPARE(g_cfg->long_current.y[2], 100.125); // the points stay, for a further recording
    const TABLE_RECORD record = ProcessPanel::last_record();
    QCOMPARE(QByteArray(record.qie), QByteArray("DWT-12"));
    QCOMPARE(QByteArray(record.verified_by), QByteArray("J. Doe"));
    QCOMPARE(QByteArray(record.cal_comment), QByteArray("as seen"));
    QCOMPARE(int(record.worst_status), status);
    QCOMPARE(record.poly[0].y[2], 100.125);
}

void RecordingRows::declined_recording_gives_each_button_its_own_flag_back_data()
{
    test_columns<int, QByteArray, bool, bool>("kind", "question", "reuse", "adjust");
    const struct {
        char kind;
        const char *question;
    } declined[] = {{AS_FOUND, "D1"}, {AFTER_SERVICE, "D2"}, {VERIFICATION, "D3"}};
    for (const auto &one : declined) {
        for (const bool reuse : {false, true}) {
            for (const bool adjust : {false, true})
                QTest::addRow("%s, Re-Use %s, Adjust %s", one.question, reuse ? "on" : "off",
                              adjust ? "on" : "off")
                    << int(one.kind) << QByteArray(one.question) << reuse << adjust;
        }
    }
}

void RecordingRows::declined_recording_gives_each_button_its_own_flag_back()
{
    QFETCH(int, kind);
    QFETCH(QByteArray, question);
    QFETCH(bool, reuse);
    QFETCH(bool, adjust);
    m_it->set_boxes(kind == VERIFICATION ? "11000" : "11100");
    m_it->set_buttons(reuse, adjust);
    m_it->captured(0);
    const PanelLook before = m_it->look();
    m_it->press(static_cast<char>(kind), question.constData(), false);
    m_it->check(before, static_cast<char>(kind), {"=====", "=====", "==", "==", "-", 0});
}

void RecordingRows::buttons_are_enabled_while_the_question_stands()
{
    m_it->set_boxes("11100");
    m_it->set_buttons(false, false);
    m_it->captured(0);
    BoxAnswerer answerer;
    ProcessPanel::expect_recording(&answerer, AS_FOUND, QStringLiteral("why"));
    bool enabled = false;
    answerer.expect_dialog(QStringLiteral("Warning"), [&](QDialog *) {
        enabled = m_it->it.form->btnAdjustCalibration->isEnabled() &&
                  m_it->it.form->btnReuseCalibration->isEnabled();
    });
    m_it->it.form->btnRecordData->click();
    QVERIFY(enabled);
    QVERIFY(!m_it->it.form->btnAdjustCalibration->isEnabled());
    QVERIFY(!m_it->it.form->btnReuseCalibration->isEnabled());
}

WINDOW_TEST(RecordingRows);
#include "test_recordingrows.moc"
