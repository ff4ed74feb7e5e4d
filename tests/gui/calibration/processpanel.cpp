// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/calibration/processpanel.h"

ProcessPanel::ProcessPanel()
{
    // Another program at the place of the host's rebuild leaves a trace.
    QFile::remove(QStringLiteral("/vornax/bin/bld_tables"));
    write_file(QStringLiteral("/vornax/bin/bld_tables"),
               "#!/bin/sh\necho rebuilt >>/cell/rebuilds\n");
    QFile::setPermissions(QStringLiteral("/vornax/bin/bld_tables"),
                          QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    rebind = g_callbacks.rebind_channel;
    g_callbacks.rebind_channel = [](ZERL_CFG *cfg) {
        ++rebuilds;
        return rebind(cfg);
    };
}

ProcessPanel::~ProcessPanel()
{
    const bool reached = QTest::qWaitFor([] { return started() >= rebuilds; }, DEADLINE_MS);
    if (!reached || started() != rebuilds)
        QTest::qFail("the host's program was not started once for each rebuild", __FILE__,
                     __LINE__);
}

void ProcessPanel::bind()
{
    it.bind_afresh(1);
    it.form->txtTechnicianName->setText(QStringLiteral("J. Doe"));
    it.form->txtCalibrationQIE->setText(QStringLiteral("DWT-12"));
    *g_ws_block = WS_BLOCK();
    it.form->txtNewCorrelation->setStyleSheet(QString());
}

QLineEdit *ProcessPanel::box(int i) const
{
    QLineEdit *const boxes[] = {it.form->txtAsFound, it.form->txtAfterService,
                                it.form->txtAdjustCalibration, it.form->txtVerificationData,
                                it.form->txtNewCorrelation};
    return boxes[i];
}

char (&ProcessPanel::copy(int i))[80]
{
    char(*const copies[])[80] = {&g_ws_block->as_found_time, &g_ws_block->after_service_time,
                                 &g_ws_block->adjust_calibration_time,
                                 &g_ws_block->verification_time, &g_ws_block->new_correlation_time};
    return *copies[i];
}

QString ProcessPanel::box_name(int i)
{
    static const char *const names[] = {"txtAsFound", "txtAfterService", "txtAdjustCalibration",
                                        "txtVerificationData", "txtNewCorrelation"};
    return QString::fromLatin1(names[i]);
}

void ProcessPanel::set_boxes(const char *filled)
{
    for (int i = 0; i < 5; ++i) {
        box(i)->setText(filled[i] == '1' ? former_time(i) : QString());
        box(i)->setStyleSheet(QStringLiteral("background-color: rgb(%1,7,7)").arg(i + 1));
    }
    copy_boxes();
}

void ProcessPanel::age()
{
    for (int i = 0; i < 5; ++i) {
        if (!box(i)->text().isEmpty() && box(i)->text() != QLatin1String("N/A"))
            box(i)->setText(former_time(i));
    }
    copy_boxes();
}

void ProcessPanel::set_buttons(bool reuse_enabled, bool adjust_enabled)
{
    it.form->btnReuseCalibration->setEnabled(reuse_enabled);
    it.form->btnAdjustCalibration->setEnabled(adjust_enabled);
    it.form->btnReuseCalibration->setStyleSheet(QStringLiteral("background-color: rgb(8,1,1)"));
    it.form->btnAdjustCalibration->setStyleSheet(QStringLiteral("background-color: rgb(8,2,2)"));
    it.form->lblNextStep->setText(QStringLiteral("former advice"));
    it.form->lblNextStep->setStyleSheet(QStringLiteral("background-color: rgb(8,3,3)"));
}

void ProcessPanel::ready_without_question()
{
    set_boxes("11111");
    set_buttons(true, true);
    captured(1);
    g_cfg->table.last_save_type = SAVE_NEW_CORRELATION;
}

void ProcessPanel::captured(int status)
{
    POLY_RANGE_RECORD &range = g_cfg->table.poly[0];
    for (int i = 0; i < g_num_points; ++i) {
        it.window->row(i)->set_caption(QStringLiteral("Undo"));
        it.window->row(i)->status = 0;
        it.window->row(i)->set_value_style(QStringLiteral("background-color: rgb(9,9,9)"));
        g_cfg->long_current.y[i] += 0.125;
        range.y[i] = g_cfg->long_current.y[i];
    }
    it.window->row(1)->status = static_cast<uint16_t>(status);
    g_cfg->table.worst_status = static_cast<uint16_t>((status + 1) % 4);
    g_captured_points = g_num_points;
    g_cfg->table_dirty = 1;
    it.form->btnRecordData->setStyleSheet(QStringLiteral("background-color: rgb(126,232,255)"));
}

PanelLook ProcessPanel::look() const
{
    PanelLook seen;
    for (int i = 0; i < 5; ++i) {
        seen.texts[i] = box(i)->text();
        seen.colours[i] = box(i)->styleSheet();
        seen.copies[i] = QString::fromUtf8(copy(i));
    }
    const QPushButton *const buttons[] = {it.form->btnReuseCalibration,
                                          it.form->btnAdjustCalibration};
    for (int i = 0; i < 2; ++i) {
        seen.button_colours[i] = buttons[i]->styleSheet();
        seen.enabled[i] = buttons[i]->isEnabled();
    }
    seen.record_colour = it.form->btnRecordData->styleSheet();
    seen.record_enabled = it.form->btnRecordData->isEnabled();
    seen.advice = it.form->lblNextStep->text();
    seen.advice_colour = it.form->lblNextStep->styleSheet();
    seen.save = read_file(QStringLiteral("/cell/tables/one.save"));
    seen.tbl = read_file(QStringLiteral("/cell/tables/one.tbl"));
    seen.old = read_file(QStringLiteral("/cell/tables/one.old"));
    seen.rebuilds = rebuilds;
    return seen;
}

void ProcessPanel::expect(BoxAnswerer *answerer, const char *mark, bool goes_on)
{
    if (*mark == '\0')
        return;
    const AskedQuestion &question = asked_question(mark);
    answerer->expect(QString::fromLatin1(question.title), QString::fromLatin1(question.text),
                     question.button(goes_on));
}

void ProcessPanel::check_box(const MetBox &met, const char *mark)
{
    const AskedQuestion &question = asked_question(mark);
    QCOMPARE(met.title, QString::fromLatin1(question.title));
    QCOMPARE(met.text, QString::fromLatin1(question.text));
    QStringList buttons = met.buttons;
    QStringList offered = question.button_texts();
    QCOMPARE(met.default_button, offered.last());
    buttons.sort();
    offered.sort();
    QCOMPARE(buttons, offered);
    QVERIFY(BoxAnswerer::has_title_bar_only(met));
}

void ProcessPanel::expect_recording(BoxAnswerer *answerer, char kind, const QString &description)
{
    answerer->expect_dialog(
        QStringLiteral("Record Calibration Data"), [kind, description](QDialog *dialog) {
            choice(dialog, kind)->setChecked(true);
            dialog->findChild<QLineEdit *>(QStringLiteral("txtComment"))->setText(description);
            dialog->findChild<QPushButton *>(QStringLiteral("btnRecord"))->click();
            if (QTest::currentTestFailed())
                return;
            QVERIFY2(!dialog->isVisible(), "a recording closes the dialog, declined or not");
        });
}

QRadioButton *ProcessPanel::choice(const QDialog *dialog, char kind)
{
    const char *const name = kind == AS_FOUND        ? "rbAsFound"
                             : kind == AFTER_SERVICE ? "rbAfterService"
                             : kind == VERIFICATION  ? "rbVerification"
                                                     : "rbNewCorrelation";
    return dialog->findChild<QRadioButton *>(QLatin1String(name));
}

void ProcessPanel::press(char event, const char *mark, bool goes_on, const QString &description)
{
    const bool records = event != ADJUST && event != REUSE;
    QPushButton *const button = records           ? it.form->btnRecordData
                                : event == ADJUST ? it.form->btnAdjustCalibration
                                                  : it.form->btnReuseCalibration;
    BoxAnswerer answerer;
    if (records)
        expect_recording(&answerer, event, description);
    expect(&answerer, mark, goes_on);
    button->click();
    const int questions = answerer.met().size() - (records ? 1 : 0);
    QCOMPARE(questions, *mark == '\0' ? 0 : 1);
    if (*mark != '\0')
        check_box(answerer.met().last(), mark);
}

void ProcessPanel::walk(const char *path)
{
    for (const QByteArray &step : QByteArray(path).split(' ')) {
        if (step.isEmpty())
            continue;
        captured(step.at(1) - '0');
        press(step.at(0), step.mid(3).constData(), true);
    }
}

void ProcessPanel::check(const PanelLook &before, char event, const Outcome &expected) const
{
    const PanelLook after = look();
    for (int i = 0; i < 5; ++i)
        check_process_box(before, after, i, expected);
    check_buttons(before, after, expected);
    check_advice(before, after, event, expected.advice);
    check_files(before, after, expected.saved);
}

TABLE_RECORD ProcessPanel::last_record()
{
    const QByteArray all = read_file(QStringLiteral("/cell/tables/one.save"));
    const int at = all.lastIndexOf("VORNAX-TABLE ");
    TABLE_RECORD record = {};
    if (at < 0)
        return record;
    const QString path = QStringLiteral("/cell/last.tbl");
    write_file(path, all.mid(at));
    if ((read_table("/cell/last.tbl", &record) & 0xffff) != 0)
        QTest::qFail("the last record of the archive cannot be read", __FILE__, __LINE__);
    return record;
}

void ProcessPanel::copy_boxes()
{
    for (int i = 0; i < 5; ++i)
        qstrncpy(copy(i), box(i)->text().toUtf8().constData(), sizeof copy(i));
}

QString ProcessPanel::colour(char letter, const QString &former)
{
    switch (letter) {
    case 'w':
        return QStringLiteral("background-color: white");
    case 'g':
        return QStringLiteral("background-color: rgb(0,255,0)");
    case 'y':
        return QStringLiteral("background-color: rgb(255, 255, 127)");
    case 'o':
        return QStringLiteral("background-color: rgb(255,170,0)");
    case 'r':
        return QStringLiteral("background-color: rgb(255, 78, 78)");
    default:
        return former;
    }
}

QString ProcessPanel::button_colour(char letter, const QString &former)
{
    switch (letter) {
    case 'r':
        return QStringLiteral("background-color: rgb(126,232,255)");
    case 'i':
        return QStringLiteral("background-color: rgb(238, 238,238)");
    case 'c':
        return QStringLiteral("background-color: yellow");
    default:
        return former;
    }
}

QString ProcessPanel::advice_text(const char *mark)
{
    return *mark == 'N' ? QString::fromLatin1(PROCESS_ADVICE[mark[1] - '1']) : QString();
}

void ProcessPanel::compare(const QString &what, const QString &actual, const QString &expected)
{
    QVERIFY2(actual == expected,
             qPrintable(QStringLiteral("%1: \"%2\", expected \"%3\"").arg(what, actual, expected)));
}

bool ProcessPanel::is_present(const QString &text)
{
    const QDateTime time = QDateTime::fromString(text, QStringLiteral("MM/dd/yyyy hh:mm:ss"));
    const qint64 age = time.secsTo(QDateTime::currentDateTime());
    return time.isValid() && age >= 0 && age <= 300;
}

void ProcessPanel::check_process_box(const PanelLook &before, const PanelLook &after, int i,
                                     const Outcome &expected) const
{
    const QString name = box_name(i);
    switch (expected.texts[i]) {
    case 't':
        QVERIFY2(is_present(after.texts[i]), qPrintable(name + after.texts[i]));
        compare(name + QStringLiteral(", copy"), after.copies[i], after.texts[i]);
        compare(name + QStringLiteral(", moment"), after.texts[i],
                it.window->correlation_time().toString(QStringLiteral("MM/dd/yyyy hh:mm:ss")));
        break;
    case '=':
        compare(name, after.texts[i], before.texts[i]);
        compare(name + QStringLiteral(", copy"), after.copies[i], before.copies[i]);
        break;
    default: {
        const QString text = expected.texts[i] == 'N' ? QStringLiteral("N/A") : QString();
        compare(name, after.texts[i], text);
        compare(name + QStringLiteral(", copy"), after.copies[i], text);
    }
    }
    compare(name + QStringLiteral(", colour"), after.colours[i],
            colour(expected.colours[i], before.colours[i]));
    QVERIFY(box(i)->isReadOnly());
}

void ProcessPanel::check_buttons(const PanelLook &before, const PanelLook &after,
                                 const Outcome &expected)
{
    const char *const names[] = {"btnReuseCalibration", "btnAdjustCalibration"};
    for (int i = 0; i < 2; ++i) {
        const QString name = QString::fromLatin1(names[i]);
        compare(name + QStringLiteral(", colour"), after.button_colours[i],
                button_colour(expected.buttons[i], before.button_colours[i]));
        const bool enabled =
            expected.enabled[i] == '=' ? before.enabled[i] : expected.enabled[i] == '1';
        QVERIFY2(after.enabled[i] == enabled,
                 qPrintable(name + (after.enabled[i] ? QStringLiteral(" is enabled")
                                                     : QStringLiteral(" is disabled"))));
    }
    compare(QStringLiteral("btnRecordData, colour"), after.record_colour,
            expected.saved != 0 ? button_colour('i', QString()) : before.record_colour);
    QVERIFY(after.record_enabled);
}

void ProcessPanel::check_advice(const PanelLook &before, const PanelLook &after, char event,
                                const char *mark)
{
    if (*mark == '=') {
        compare(QStringLiteral("lblNextStep"), after.advice, before.advice);
        compare(QStringLiteral("lblNextStep, colour"), after.advice_colour, before.advice_colour);
        return;
    }
    QVERIFY2(event != ADJUST && event != REUSE, "a decision leaves the advice alone");
    compare(QStringLiteral("lblNextStep"), after.advice, advice_text(mark));
    compare(QStringLiteral("lblNextStep, colour"), after.advice_colour,
            QStringLiteral("background-color: rgb(255,252,239)"));
}

void ProcessPanel::check_files(const PanelLook &before, const PanelLook &after, int saved)
{
    QVERIFY2(after.save.startsWith(before.save), "the archive only grows");
    const QByteArray added = after.save.mid(before.save.size());
    QCOMPARE(added.count("VORNAX-TABLE "), saved != 0 ? 1 : 0);
    if (saved != 0)
        QCOMPARE(int(last_record().last_save_type), saved);
    else
        QCOMPARE(added, QByteArray());
    if (saved == SAVE_ADJUSTED || saved == SAVE_NEW_CORRELATION) {
        QVERIFY2(after.tbl != before.tbl, "the table is rewritten");
        QCOMPARE(after.old, before.old + before.tbl);
    } else {
        QCOMPARE(after.tbl, before.tbl);
        QCOMPARE(after.old, before.old);
    }
    QCOMPARE(after.rebuilds - before.rebuilds,
             saved == SAVE_ADJUSTED || saved == SAVE_REUSED ? 1 : 0);
}
