// SPDX-License-Identifier: GPL-3.0-or-later
//
// The process panel of the window over a real cell: the six events of a
// calibration pressed by their buttons, and everything that a press may change
// looked at before and after. One in a process, as TestWindow.
#ifndef GUI_CALIBRATION_PROCESSPANEL_H
#define GUI_CALIBRATION_PROCESSPANEL_H

#include <QRadioButton>

#include "calibration/tablestore.h"
#include "frame/zerl_callbacks.h"
#include "gui/frame/testwindow.h"
#include "host/operations.h"
#include "support/processquestions.h"

// The six events of the process.
constexpr char AS_FOUND = 'A';
constexpr char AFTER_SERVICE = 'S';
constexpr char VERIFICATION = 'V';
constexpr char NEW_CORRELATION = 'N';
constexpr char ADJUST = 'J';
constexpr char REUSE = 'R';

// What a press leaves, a letter for each box or button; '=' is "as it was".
// Boxes stand in the order As-Found, After-Service, Table Updated, Verification,
// New Correlation.
struct Outcome {
    const char *texts;   // t the present time, N "N/A", - empty; the copies alike
    const char *colours; // w white, g green, y yellow, o orange, r red
    const char *buttons; // Re-Use and Adjust: r ready, i idle, c caution
    const char *enabled; // Re-Use and Adjust: 1 or 0
    const char *advice;  // "=" as it was, "-" none, or N1 to N6
    int saved;           // type of the record added to the archive; 0: none
};

constexpr Outcome NOTHING_CHANGED = {"=====", "=====", "==", "==", "=", 0};

struct PanelLook {
    QString texts[5];
    QString colours[5];
    QString copies[5];
    QString button_colours[2]; // Re-Use, Adjust
    bool enabled[2];
    QString record_colour;
    bool record_enabled;
    QString advice;
    QString advice_colour;
    QByteArray save;
    QByteArray tbl;
    QByteArray old;
    int rebuilds;
};

class ProcessPanel
{
public:
    ProcessPanel();
    // The host's program was started once for each rebuild, and at no other time.
    ~ProcessPanel();

    // Channel One bound afresh, technician and working standard given.
    void bind();

    QLineEdit *box(int i) const;
    static char (&copy(int i))[80];
    static QString box_name(int i);

    // Sets the boxes with a 1 in the pattern to former times, the others empty,
    // all in a colour of their own, and the copies alike.
    void set_boxes(const char *filled);
    // Makes the times on show former ones, so that a stamp can be told from them.
    void age();
    static QString former_time(int i) { return QStringLiteral("01/02/2024 03:04:0%1").arg(i + 1); }
    // Both decision buttons and the advice as no press would leave them.
    void set_buttons(bool reuse_enabled, bool adjust_enabled);

    // All points of the form captured a little off the table, the middle one
    // with that status. The record still holds another worst status, which only
    // a press can put right.
    void captured(int status);

    // A decision would ask nothing: neither table asks after New Correlation.
    void ready_without_question();
    // The rows of a test of both decisions.
    static void add_decisions()
    {
        QTest::addColumn<bool>("adjust");
        QTest::newRow("Adjust") << true;
        QTest::newRow("Re-Use") << false;
    }

    PanelLook look() const;

    // Expects the question next; an empty mark expects none.
    static void expect(BoxAnswerer *answerer, const char *mark, bool goes_on);
    // Buttons, default and flags of a box whose title and text were expected.
    static void check_box(const MetBox &met, const char *mark);

    // The dialog comes next: that kind of data, with that description, is
    // recorded.
    static void expect_recording(BoxAnswerer *answerer, char kind, const QString &description);
    static QRadioButton *choice(const QDialog *dialog, char kind);

    // One event, all points captured with that status, with the question that it
    // brings and its answer. Afterwards the question has been met as it must be.
    void press(char event, const char *mark, bool goes_on,
               const QString &description = QStringLiteral("why"));

    // Walks to a state: events with the status that they find, each with the
    // question that is answered with Yes or OK, as "A1 J1 V0" or "V0?D3".
    void walk(const char *path);

    // Compares what the press left with what it must leave. A recording clears
    // the advice at the press, also when it is then declined.
    void check(const PanelLook &before, char event, const Outcome &expected) const;

    // The record that was added last, whatever its kind; zero when there is none.
    static TABLE_RECORD last_record();

    TestWindow it;
    static inline int rebuilds = 0;

private:
    static int started() { return read_file(QStringLiteral("/cell/rebuilds")).count("rebuilt"); }
    static inline int32_t (*rebind)(ZERL_CFG *cfg) = nullptr;

    void copy_boxes();

    static QString colour(char letter, const QString &former);
    static QString button_colour(char letter, const QString &former);
    static QString advice_text(const char *mark);

    static void compare(const QString &what, const QString &actual, const QString &expected);

    // The time was stamped within the last minute.
    static bool is_present(const QString &text);

    void check_process_box(const PanelLook &before, const PanelLook &after, int i,
                           const Outcome &expected) const;

    static void check_buttons(const PanelLook &before, const PanelLook &after,
                              const Outcome &expected);

    static void check_advice(const PanelLook &before, const PanelLook &after, char event,
                             const char *mark);

    // Archive, table, history and rebuild follow the kind of record.
    static void check_files(const PanelLook &before, const PanelLook &after, int saved);
};

#endif
