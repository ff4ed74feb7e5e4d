// SPDX-License-Identifier: GPL-3.0-or-later
//
// The process from each of its states: the six events, walked to by the buttons
// themselves, so that each decision meets what the archive really left.
#include <QtTest>

#include "gui/calibration/processpanel.h"
#include "support/testmain.h"

namespace
{

// The path leads to the state; then the event finds that status.
struct Transition {
    const char *name;
    const char *path;
    char event;
    int status;
    const char *question;
    bool goes_on;
    Outcome outcome;
};

// An event that the technician takes back: nothing but the advice has gone.
constexpr Outcome DECLINED = {"=====", "=====", "==", "==", "-", 0};

const char UPDATED[] = "A1 J1";             // straight from As-Found: After-Service is "N/A"
const char UPDATED_ALONE[] = "V0?D3 J0?Q5"; // neither As-Found nor After-Service
const char KEPT[] = "A0 R0";                // updated by a re-use
const char VERIFIED[] = "A1 S1 J0 V0";      // with an update
const char VERIFIED_ALONE[] = "V0?D3 J0?Q5 V0";
const char NOT_UPDATED[] = "A1 V0?D3"; // verified without an update
const char SERVICED[] = "A1 S1";

// clang-format off
const Transition FROM_IDLE[] = {
    {"Idle: As-Found", "", AS_FOUND, 1, "", true, {"t====", "y====", "ir", "11", "-", 3}},
    {"Idle: After-Service, As-Found becomes N/A in red", "", AFTER_SERVICE, 1, "", true,
     {"Nt===", "ry===", "ir", "11", "-", 5}},
    {"Idle: Verification, Yes", "", VERIFICATION, 0, "D3", true,
     {"===t=", "===g=", "ii", "11", "N4", 6}},
    {"Idle: Verification, No", "", VERIFICATION, 0, "D3", false,
     {"=====", "=====", "==", "00", "-", 0}},
    {"Idle: New Correlation", "", NEW_CORRELATION, 0, "", true,
     {"====t", "=====", "==", "00", "-", 9}},
    {"Idle: Adjust is disabled", "", ADJUST, 0, "", true,
     {"=====", "=====", "==", "00", "=", 0}},
    {"Idle: Re-Use is disabled", "", REUSE, 0, "", true,
     {"=====", "=====", "==", "00", "=", 0}},
};

const Transition FROM_AS_FOUND[] = {
    {"As-Found: As-Found", "A1", AS_FOUND, 2, "", true, {"t====", "o====", "ii", "11", "N1", 3}},
    {"As-Found: After-Service", "A1", AFTER_SERVICE, 0, "", true,
     {"=t===", "=g===", "rc", "11", "N2", 5}},
    {"As-Found: Verification, Yes", "A1", VERIFICATION, 1, "D3", true,
     {"===t=", "===y=", "ii", "11", "N5", 6}},
    {"As-Found: Verification, No", "A1", VERIFICATION, 1, "D3", false, DECLINED},
    {"As-Found: New Correlation", "A1", NEW_CORRELATION, 2, "", true,
     {"====t", "=====", "==", "11", "-", 9}},
    {"As-Found: Adjust at status 0, Yes", "A0", ADJUST, 0, "Q1", true,
     {"=Nt==", "=gg==", "ii", "11", "=", 7}},
    {"As-Found: Adjust at status 0, No", "A0", ADJUST, 0, "Q1", false, NOTHING_CHANGED},
    {"As-Found: Adjust at status 1", "A1", ADJUST, 1, "", true,
     {"=Nt==", "=gg==", "ii", "11", "=", 7}},
    {"As-Found: Adjust at status 2, Yes", "A2", ADJUST, 2, "Q2", true,
     {"=Nt==", "=gr==", "ii", "11", "=", 7}},
    {"As-Found: Adjust at status 3, Yes", "A3", ADJUST, 3, "Q2", true,
     {"=Nt==", "=gr==", "ii", "11", "=", 7}},
    {"As-Found: Adjust at status 3, No", "A3", ADJUST, 3, "Q2", false, NOTHING_CHANGED},
    {"As-Found: Re-Use at status 0", "A0", REUSE, 0, "", true,
     {"=Nt==", "=gg==", "ii", "11", "=", 8}},
    {"As-Found: Re-Use at status 1, Yes", "A1", REUSE, 1, "Q3", true,
     {"=Nt==", "=yy==", "ii", "11", "=", 8}},
    {"As-Found: Re-Use at status 1, No", "A1", REUSE, 1, "Q3", false, NOTHING_CHANGED},
    {"As-Found: Re-Use at status 2, Yes", "A2", REUSE, 2, "Q4", true,
     {"=Nt==", "=rr==", "ii", "11", "=", 8}},
    {"As-Found: Re-Use at status 3, No", "A3", REUSE, 3, "Q4", false, NOTHING_CHANGED},
};

const Transition FROM_AFTER_SERVICE[] = {
    {"After-Service: As-Found, no warning at all", SERVICED, AS_FOUND, 0, "", true,
     {"t====", "g====", "ri", "11", "-", 3}},
    {"After-Service with Table Updated filled: As-Found, Yes", "V0?D3 J0?Q5 S1", AS_FOUND, 0, "D1",
     true, {"t---=", "gwww=", "ri", "11", "-", 3}},
    {"After-Service with Table Updated filled: As-Found, No", "V0?D3 J0?Q5 S1", AS_FOUND, 0, "D1",
     false, DECLINED},
    {"After-Service: After-Service", SERVICED, AFTER_SERVICE, 3, "", true,
     {"=t===", "=r===", "ic", "11", "N3", 5}},
    {"After-Service: Verification, Yes", SERVICED, VERIFICATION, 2, "D3", true,
     {"===t=", "===o=", "ii", "11", "N6", 6}},
    {"After-Service: Verification, No", SERVICED, VERIFICATION, 2, "D3", false, DECLINED},
    {"After-Service: New Correlation", SERVICED, NEW_CORRELATION, 0, "", true,
     {"====t", "=====", "==", "11", "-", 9}},
    {"After-Service: Adjust at status 0", SERVICED, ADJUST, 0, "", true,
     {"==t==", "==g==", "ii", "11", "=", 7}},
    {"After-Service: Adjust at status 2", SERVICED, ADJUST, 2, "", true,
     {"==t==", "==g==", "ii", "11", "=", 7}},
    {"After-Service: Re-Use at status 0", SERVICED, REUSE, 0, "", true,
     {"==t==", "==g==", "ii", "11", "=", 8}},
    {"After-Service: Re-Use at status 1, Yes", SERVICED, REUSE, 1, "Q3", true,
     {"==t==", "==y==", "ii", "11", "=", 8}},
    {"After-Service: Re-Use at status 1, No", SERVICED, REUSE, 1, "Q3", false, NOTHING_CHANGED},
    {"After-Service: Re-Use at status 3, Yes", SERVICED, REUSE, 3, "Q4", true,
     {"==t==", "==r==", "ii", "11", "=", 8}},
    {"After-Service: Re-Use at status 2, No", SERVICED, REUSE, 2, "Q4", false, NOTHING_CHANGED},
};

const Transition FROM_UPDATED[] = {
    {"Table Updated straight from As-Found, so After-Service is N/A: As-Found, Yes", UPDATED, AS_FOUND, 0, "D1", true,
     {"t---=", "gwww=", "ri", "11", "-", 3}},
    {"Table Updated straight from As-Found, so After-Service is N/A: As-Found, No", UPDATED, AS_FOUND, 0, "D1", false, DECLINED},
    {"Table Updated, After-Service empty: As-Found", UPDATED_ALONE, AS_FOUND, 1, "", true,
     {"t====", "y====", "ir", "11", "-", 3}},
    {"Table Updated: After-Service, OK", UPDATED, AFTER_SERVICE, 1, "D2", true,
     {"=t--=", "=yww=", "ir", "11", "-", 5}},
    {"Table Updated: After-Service, Cancel", UPDATED, AFTER_SERVICE, 1, "D2", false, DECLINED},
    {"Table Updated, As-Found empty: After-Service", UPDATED_ALONE, AFTER_SERVICE, 1, "", true,
     {"Nt===", "ry===", "ir", "11", "-", 5}},
    {"Table Updated: Verification", UPDATED, VERIFICATION, 0, "", true,
     {"===t=", "===g=", "ii", "11", "N4", 6}},
    {"Table Updated: New Correlation", UPDATED, NEW_CORRELATION, 0, "", true,
     {"====t", "=====", "==", "11", "-", 9}},
    {"Table Updated: Adjust, by what the archive left", UPDATED, ADJUST, 0, "", true,
     {"==t==", "=====", "ii", "11", "=", 7}},
    {"Table Updated: Re-Use, by what the archive left", UPDATED, REUSE, 3, "", true,
     {"==t==", "=====", "ii", "11", "=", 8}},
    {"Table Updated by a re-use: Adjust, by what the archive left", KEPT, ADJUST, 2, "", true,
     {"==t==", "=====", "ii", "11", "=", 7}},
    {"Table Updated by a re-use: Re-Use, by what the archive left", KEPT, REUSE, 1, "", true,
     {"==t==", "=====", "ii", "11", "=", 8}},
    {"Table Updated by a re-use: As-Found, Yes", KEPT, AS_FOUND, 3, "D1", true,
     {"t---=", "rwww=", "ii", "11", "N1", 3}},
};

const Transition FROM_VERIFIED[] = {
    {"Verification, updated: As-Found, Yes", VERIFIED, AS_FOUND, 1, "D1", true,
     {"t---=", "ywww=", "ir", "11", "-", 3}},
    {"Verification, updated: As-Found, No", VERIFIED, AS_FOUND, 1, "D1", false, DECLINED},
    {"Verification, updated, After-Service empty: As-Found", VERIFIED_ALONE, AS_FOUND, 0, "", true,
     {"t====", "g====", "ri", "11", "-", 3}},
    {"Verification, updated: After-Service, OK", VERIFIED, AFTER_SERVICE, 0, "D2", true,
     {"=t--=", "=gww=", "rc", "11", "N2", 5}},
    {"Verification, updated: After-Service, Cancel", VERIFIED, AFTER_SERVICE, 0, "D2", false,
     DECLINED},
    {"Verification, updated: Verification", VERIFIED, VERIFICATION, 3, "", true,
     {"===t=", "===r=", "ii", "11", "N6", 6}},
    {"Verification, updated: New Correlation", VERIFIED, NEW_CORRELATION, 0, "", true,
     {"====t", "=====", "==", "11", "-", 9}},
    {"Verification, updated: Adjust, Yes", VERIFIED, ADJUST, 0, "Q5", true,
     {"==t==", "==g==", "ii", "11", "=", 7}},
    {"Verification, updated: Adjust, No", VERIFIED, ADJUST, 0, "Q5", false, NOTHING_CHANGED},
    {"Verification, updated: Re-Use at status 0, Yes", VERIFIED, REUSE, 0, "Q6", true,
     {"==t==", "==g==", "ii", "11", "=", 8}},
    {"Verification, updated: Re-Use at status 0, No", VERIFIED, REUSE, 0, "Q6", false,
     NOTHING_CHANGED},
    {"Verification, updated: Re-Use at status 1, Yes", VERIFIED, REUSE, 1, "Q5", true,
     {"==t==", "==g==", "ii", "11", "=", 8}},
    {"Verification, updated: Re-Use at status 1, No", VERIFIED, REUSE, 1, "Q5", false,
     NOTHING_CHANGED},
};

const Transition FROM_NOT_UPDATED[] = {
    {"Verification, no update: As-Found", NOT_UPDATED, AS_FOUND, 0, "", true,
     {"t====", "g====", "ri", "11", "-", 3}},
    {"Verification, no update: After-Service", NOT_UPDATED, AFTER_SERVICE, 2, "", true,
     {"=t===", "=o===", "ic", "11", "N3", 5}},
    {"Verification, no update: Verification, Yes", NOT_UPDATED, VERIFICATION, 0, "D3", true,
     {"===t=", "===g=", "ii", "11", "N4", 6}},
    {"Verification, no update: Verification, No", NOT_UPDATED, VERIFICATION, 0, "D3", false,
     DECLINED},
    {"Verification, no update: New Correlation", NOT_UPDATED, NEW_CORRELATION, 0, "", true,
     {"====t", "=====", "==", "11", "-", 9}},
    {"Verification, no update: Adjust, Yes", NOT_UPDATED, ADJUST, 2, "Q5", true,
     {"==t==", "==g==", "ii", "11", "=", 7}},
    {"Verification, no update: Adjust, No", NOT_UPDATED, ADJUST, 2, "Q5", false, NOTHING_CHANGED},
    {"Verification, no update: Re-Use at status 0, Yes", NOT_UPDATED, REUSE, 0, "Q6", true,
     {"==t==", "==g==", "ii", "11", "=", 8}},
    {"Verification, no update: Re-Use at status 3, Yes", NOT_UPDATED, REUSE, 3, "Q5", true,
     {"==t==", "==g==", "ii", "11", "=", 8}},
    {"Verification, no update: Re-Use at status 3, No", NOT_UPDATED, REUSE, 3, "Q5", false,
     NOTHING_CHANGED},
};

const Transition FROM_NEW_CORRELATION[] = {
    {"New Correlation, else empty: As-Found", "N0", AS_FOUND, 1, "", true,
     {"t====", "y====", "ir", "11", "-", 3}},
    {"New Correlation, else empty: After-Service", "N0", AFTER_SERVICE, 0, "", true,
     {"Nt===", "rg===", "rc", "11", "N2", 5}},
    {"New Correlation, else empty: Verification, No", "N0", VERIFICATION, 0, "D3", false,
     {"=====", "=====", "==", "00", "-", 0}},
    {"New Correlation, updated: As-Found, Yes", "A1 J1 N0", AS_FOUND, 1, "D1", true,
     {"t---=", "ywww=", "ir", "11", "-", 3}},
    {"New Correlation, updated: After-Service, OK", "A1 J1 N0", AFTER_SERVICE, 1, "D2", true,
     {"=t--=", "=yww=", "ir", "11", "-", 5}},
    {"New Correlation, updated: Verification", "A1 J1 N0", VERIFICATION, 0, "", true,
     {"===t=", "===g=", "ii", "11", "N4", 6}},
    {"New Correlation: New Correlation", "N0", NEW_CORRELATION, 0, "", true,
     {"====t", "=====", "==", "00", "-", 9}},
    {"New Correlation: Adjust, no question and no colour", "A1 N0", ADJUST, 3, "", true,
     {"==t==", "=====", "ii", "11", "=", 7}},
    {"New Correlation, updated: Adjust keeps the colour that the box had", "A2 J2?Q2 N0", ADJUST, 0,
     "", true, {"==t==", "=====", "ii", "11", "=", 7}},
    {"New Correlation: Re-Use, no question and no colour", "A1 N0", REUSE, 3, "", true,
     {"==t==", "=====", "ii", "11", "=", 8}},
    {"New Correlation, else empty: Adjust is disabled", "N0", ADJUST, 0, "", true,
     {"=====", "=====", "==", "00", "=", 0}},
    {"New Correlation, else empty: Re-Use is disabled", "N0", REUSE, 0, "", true,
     {"=====", "=====", "==", "00", "=", 0}},
};
// clang-format on

QVector<Transition> all_transitions()
{
    QVector<Transition> all;
    const auto add = [&all](const auto &rows) {
        for (const Transition &row : rows)
            all.append(row);
    };
    add(FROM_IDLE);
    add(FROM_AS_FOUND);
    add(FROM_AFTER_SERVICE);
    add(FROM_UPDATED);
    add(FROM_VERIFIED);
    add(FROM_NOT_UPDATED);
    add(FROM_NEW_CORRELATION);
    return all;
}

} // namespace

class Transitions : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { m_it = std::make_unique<ProcessPanel>(); }
    void cleanupTestCase() { m_it.reset(); }
    void init() { m_it->bind(); }
    void transition_data();
    void transition();

private:
    void check_bound_afresh(int saved, const LONG_TABLE &points) const;

    std::unique_ptr<ProcessPanel> m_it;
};

void Transitions::transition_data()
{
    QTest::addColumn<int>("row");
    const QVector<Transition> all = all_transitions();
    for (int i = 0; i < all.size(); ++i)
        QTest::newRow(all.at(i).name) << i;
}

void Transitions::transition()
{
    QFETCH(int, row);
    const Transition transition = all_transitions().at(row);
    m_it->walk(transition.path);
    if (QTest::currentTestFailed())
        return;
    m_it->age();
    m_it->captured(transition.status);
    const auto points = std::make_unique<LONG_TABLE>(
        transition.event == REUSE ? g_cfg->long_previous : g_cfg->long_current);
    const PanelLook before = m_it->look();
    m_it->press(transition.event, transition.question, transition.goes_on);
    m_it->check(before, transition.event, transition.outcome);
    if (transition.outcome.saved == SAVE_ADJUSTED || transition.outcome.saved == SAVE_REUSED)
        check_bound_afresh(transition.outcome.saved, *points);
}

// A decision leaves what the archive holds, with the points captured or the
// former ones, and nothing captured.
void Transitions::check_bound_afresh(int saved, const LONG_TABLE &points) const
{
    QCOMPARE(int(g_cfg->table.last_save_type), saved);
    QCOMPARE(g_cfg->table.worst_status, uint16_t(0));
    QCOMPARE(g_captured_points, 0);
    for (int i = 0; i < 3; ++i) {
        QCOMPARE(m_it->it.window->row(i)->caption(), QStringLiteral("Capture"));
        QCOMPARE(m_it->it.window->row(i)->value_style(),
                 QStringLiteral("background-color: rgb(0,255,0)"));
        QCOMPARE(g_cfg->long_current.y[i], points.y[i]);
    }
}

WINDOW_TEST(Transitions);
#include "test_transitions.moc"
