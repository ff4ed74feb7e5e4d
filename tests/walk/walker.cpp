// SPDX-License-Identifier: GPL-3.0-or-later
#include "walk/walker.h"

#include <QDateTime>
#include <QRadioButton>

#include "host/operations.h"
#include "sensor/tolerances.h"

namespace walk
{

namespace
{

constexpr std::size_t STEPS_KEPT = 25;
constexpr double FIRST_MV = 1.5;

QString told(const Step &step)
{
    static const char *const names[] = {"pick channel", "reading", "press row", "type and press",
                                        "type",         "edit",    "count",     "averaging",
                                        "table type",   "degree",  "range",     "technician",
                                        "standard",     "record",  "adjust",    "re-use",
                                        "exit",         "tick",    "new files"};
    return QStringLiteral("%1 %2 \"%3\" %4 mV")
        .arg(QLatin1String(names[step.kind]))
        .arg(step.number)
        .arg(step.text)
        .arg(step.mv, 0, 'g', 17);
}

qint64 now()
{
    return QDateTime::currentSecsSinceEpoch();
}

template <typename Widget> Widget *part(const QDialog *dialog, const char *name)
{
    return dialog->findChild<Widget *>(QLatin1String(name));
}

std::map<int, Channel> channels()
{
    return {{0, {"zero", "kPa"}},    {1, {"one", "kPa"}},     {3, {"three", "kPa"}},
            {4, {"four", "kPa"}},    {5, {"five", "kPa"}},    {6, {"six", "kPa"}},
            {8, {"eight", "kPa"}},   {9, {"nine", "DEG_C"}},  {10, {"ten", "kPa"}},
            {11, {"eleven", "kPa"}}, {12, {"twelve", "kPa"}}, {13, {"INACTIVE", "kPa"}}};
}

} // namespace

Walker::Walker(TestWindow &window, uint64_t seed)
    : m_it(window), m_random(seed), m_model(std::make_unique<Model>(channels(), *this))
{
    m_answerer.set_fault_handler([this](const QString &what) { m_faults.append(what); });
    QStringList stems;
    for (const auto &[number, channel] : channels()) {
        stems.append(QString::fromStdString(channel.table));
        m_model->mv[number] = FIRST_MV;
        if (!m_it.cell.mv(number, FIRST_MV))
            qFatal("%s", m_it.cell.client().error().c_str());
    }
    m_model->files = m_files.begin(stems);
    // Ticks are steps of the walk, so that a seed gives the same walk again.
    QObject::disconnect(m_it.window->monitor(), nullptr, m_it.window, nullptr);
    m_it.window->monitor()->set_sleep_ms(1);
    m_it.form->txtTechnicianName->setText(QStringLiteral("Jane Doe"));
    m_it.form->txtCalibrationQIE->setText(QStringLiteral("WS-17"));
    m_model->view = look(*m_it.window);
}

QStringList Walker::last_steps() const
{
    QStringList steps;
    for (const QString &step : m_log)
        steps.append(step);
    return steps;
}

QString Walker::step()
{
    const Step step = choose();
    m_log.push_back(QStringLiteral("step %1: ").arg(m_steps + 1) + told(step));
    if (m_log.size() > STEPS_KEPT)
        m_log.pop_front();
    m_meetings.clear();
    m_faults.clear();
    m_answerer.forget();
    m_range_refusals = 0;
    m_model->begin_step();
    if (step.kind == Step::Reading || step.kind == Step::TypeAndPress)
        new_reading(step.mv);
    foresee(step);
    for (const Meeting &meeting : m_meetings) {
        m_log.back() += QStringLiteral(" | ") + meeting.question.title + QStringLiteral(": ") +
                        meeting.question.text.left(60).simplified() +
                        (meeting.first_button || meeting.accepts ? QStringLiteral(" -> first")
                                                                 : QStringLiteral(" -> last"));
    }
    expect_meetings();
    m_began = now() - 1; // time() of the C library may lag behind by a tick
    drive(step);
    QCoreApplication::processEvents();
    const QString wrong = compare();
    ++m_steps;
    m_given_up += m_model->gave_up ? 1 : 0;
    if (wrong.isEmpty() && !m_model->view.open) {
        m_it.window->show();
        m_model->view.open = true;
    }
    settle();
    return wrong;
}

void Walker::new_reading(double mv)
{
    const int channel = m_model->session.channel;
    m_model->mv[channel] = mv;
    if (!m_it.cell.mv(channel, mv))
        m_faults.append(QString::fromStdString(m_it.cell.client().error()));
    relaxed_store(g_monitor_enabled, static_cast<uint8_t>(0));
    settle();
}

// Until the window of the statistics holds nothing but the present reading.
void Walker::settle()
{
    if (!m_it.window->monitor()->isRunning())
        return;
    const double mv = m_model->mv.at(m_model->session.channel);
    const QDeadlineTimer deadline(DEADLINE_MS);
    while (!(relaxed_load(g_monitor_enabled) == 1 && relaxed_load(g_sample.mv_std) == 0.0 &&
             relaxed_load(g_sample.mv_mean) == mv && relaxed_load(g_cfg->live_mv) == mv &&
             relaxed_load(g_sample.mv_min) == mv && relaxed_load(g_sample.mv_max) == mv)) {
        if (deadline.hasExpired()) {
            m_faults.append(QStringLiteral("the reading does not settle"));
            return;
        }
        QThread::usleep(100);
    }
}

void Walker::work_tick()
{
    QMetaObject::invokeMethod(m_it.window, "draw_plots_info", Qt::DirectConnection,
                              Q_ARG(ZERL_CFG *, g_cfg));
}

void Walker::foresee(const Step &step)
{
    switch (step.kind) {
    case Step::Pick:
        return m_model->pick(step.number);
    case Step::Press:
        return m_model->press_row(step.number);
    case Step::TypeAndPress:
        m_model->type_value(step.number, step.text);
        return m_model->press_row(step.number);
    case Step::Type:
        return m_model->type_value(step.number, step.text);
    case Step::Edit:
        return m_model->edit_value(step.number, step.text);
    case Step::Count:
        return m_model->enter_count(step.text);
    case Step::Averaging:
        return m_model->enter_averaging(step.text);
    case Step::TableType:
        return m_model->choose_type(step.number);
    case Step::Degree:
        return m_model->choose_degree(step.number);
    case Step::Range:
        return m_model->choose_range(step.number);
    case Step::Technician:
        m_model->view.technician = step.text;
        return;
    case Step::Standard:
        m_model->view.standard = step.text;
        return;
    case Step::Record:
        return m_model->record_data();
    case Step::Adjust:
        return m_model->adjust();
    case Step::Reuse:
        return m_model->reuse();
    case Step::Exit:
        return m_model->exit();
    case Step::Tick:
        return m_model->tick();
    case Step::NewFiles:
        m_model->files = m_files.restore();
        return;
    case Step::Reading:
        return;
    }
}

void Walker::press_return(QLineEdit *field)
{
    QTest::keyClick(field, Qt::Key_Return);
}

void Walker::drive(const Step &step)
{
    Ui::MainWindow *const form = m_it.form;
    switch (step.kind) {
    case Step::Pick:
        form->cboCurrentChannel->setCurrentIndex(step.number < 0 ? 0 : m_it.item_of(step.number));
        return;
    case Step::Press:
        return m_it.button(step.number)->click();
    case Step::TypeAndPress:
        m_it.window->row(step.number)->value_field()->setText(step.text);
        return m_it.button(step.number)->click();
    case Step::Type:
        return m_it.window->row(step.number)->value_field()->setText(step.text);
    case Step::Edit:
        m_it.window->row(step.number)->value_field()->setText(step.text);
        return press_return(m_it.window->row(step.number)->value_field());
    case Step::Count:
        form->txtNumPoints->setText(step.text);
        return press_return(form->txtNumPoints);
    case Step::Averaging:
        form->txtAveragingTime->setText(step.text);
        return press_return(form->txtAveragingTime);
    case Step::TableType:
        return form->cboCalType->setCurrentIndex(step.number);
    case Step::Degree:
        return form->cboOrderOfPolynomial->setCurrentIndex(step.number);
    case Step::Range:
        return form->cboPolyRangeIndex->setCurrentIndex(step.number);
    case Step::Technician:
        return form->txtTechnicianName->setText(step.text);
    case Step::Standard:
        return form->txtCalibrationQIE->setText(step.text);
    case Step::Record:
        return form->btnRecordData->click();
    case Step::Adjust:
        return form->btnAdjustCalibration->click();
    case Step::Reuse:
        return form->btnReuseCalibration->click();
    case Step::Exit:
        return form->actionExit->trigger();
    case Step::Tick:
        return work_tick();
    case Step::Reading:
    case Step::NewFiles:
        return;
    }
}

void Walker::expect_meetings()
{
    for (const Meeting &meeting : m_meetings)
        m_answerer.expect_dialog(meeting.question.title,
                                 [this, meeting](QDialog *dialog) { visit(dialog, meeting); });
}

void Walker::visit(QDialog *dialog, const Meeting &meeting)
{
    if (!BoxAnswerer::has_title_bar_only(m_answerer.met().last()))
        differ(QStringLiteral("flags of \"%1\"").arg(meeting.question.title));
    if (meeting.tick)
        work_tick();
    switch (meeting.kind) {
    case Meeting::Box:
        return visit_box(dialog, meeting);
    case Meeting::RecordDialog:
        return visit_record_dialog(dialog, meeting);
    case Meeting::UndoDialog:
        return part<QPushButton>(dialog, meeting.accepts ? "btnRevert" : "btnCancelUndo")->click();
    case Meeting::RangeDialog:
        return visit_range_dialog(dialog, meeting);
    }
}

void Walker::visit_box(QDialog *dialog, const Meeting &meeting)
{
    const MetBox met = m_answerer.met().last();
    const Question &asked = meeting.question;
    const auto *const box = qobject_cast<QMessageBox *>(dialog);
    QStringList offered = met.buttons;
    offered.sort();
    QStringList expected = asked.buttons;
    expected.sort();
    if (box == nullptr || met.text != asked.text)
        return differ(
            QStringLiteral("asked is \"%1\" instead of \"%2\"").arg(met.text, asked.text));
    if (offered != expected || met.default_button != asked.buttons.last())
        differ(QStringLiteral("buttons %1, default %2, of \"%3\"")
                   .arg(offered.join(QLatin1Char(' ')), met.default_button, asked.text));
    const QString wanted = meeting.first_button ? asked.buttons.first() : asked.buttons.last();
    for (QAbstractButton *button : box->buttons()) {
        if (button->text().remove(QLatin1Char('&')) == wanted)
            return button->click();
    }
}

void Walker::visit_record_dialog(QDialog *dialog, const Meeting &meeting)
{
    static const char *const kinds[] = {
        "", "", "rbAsFound", "rbAfterService", "rbVerification", "rbNewCorrelation"};
    for (const RecordPress &press : meeting.presses) {
        if (!dialog->isVisible())
            return differ(QStringLiteral("the recording dialog closed too early"));
        if (press.kind == RecordPress::Cancel)
            return part<QPushButton>(dialog, "btnCancel")->click();
        if (press.kind != RecordPress::None)
            part<QRadioButton>(dialog, kinds[press.kind])->setChecked(true);
        part<QLineEdit>(dialog, "txtComment")->setText(press.description);
        part<QPushButton>(dialog, "btnRecord")->click();
    }
    if (dialog->isVisible())
        differ(QStringLiteral("the recording dialog stayed open"));
}

void Walker::visit_range_dialog(QDialog *dialog, const Meeting &meeting)
{
    if (!meeting.accepts)
        return part<QPushButton>(dialog, "btnCancel")->click();
    part<QLineEdit>(dialog, "txtLowerRangeLimit")->setText(QStringLiteral("0"));
    part<QLineEdit>(dialog, "txtUpperRangeLimit")->setText(QStringLiteral("100"));
    part<QPushButton>(dialog, "btnOk")->click();
}

void Walker::differ(const QString &what)
{
    m_faults.append(what);
}

QString Walker::compare()
{
    if (m_answerer.remaining() > 0)
        differ(QStringLiteral("%1 boxes did not come").arg(m_answerer.remaining()));
    m_answerer.forget();
    learn_moments();
    const qint64 ended = now();
    m_faults += differences(m_model->view, look(*m_it.window));
    compare_session();
    m_faults += m_files.compare(&m_model->files, m_began, ended);
    compare_invariants();
    return m_faults.join(QLatin1Char('\n'));
}

// What the model could not know: when it was.
void Walker::learn_moments()
{
    const View seen = look(*m_it.window);
    const QDateTime from = QDateTime::fromSecsSinceEpoch(m_began);
    const QDateTime to = QDateTime::currentDateTime();
    for (std::size_t i = 0; i < BOXES; ++i) {
        if (m_model->view.boxes[i].copy != STAMP)
            continue;
        const QString text = seen.boxes[i].text;
        const QDateTime moment = QDateTime::fromString(text, QStringLiteral("MM/dd/yyyy hh:mm:ss"));
        if (!moment.isValid() || moment < from || moment > to)
            differ(QStringLiteral("process box %1 is stamped \"%2\"").arg(i).arg(text));
        // A stamp that was emptied again in the same step leaves its copy only.
        if (m_model->view.boxes[i].text == STAMP)
            m_model->view.boxes[i].text = text;
        m_model->view.boxes[i].copy = text;
    }
    int64_t &saved = m_model->session.table.last_cal_time;
    if (saved != TIME_OF_STEP)
        return;
    const int64_t real = g_cfg->table.last_cal_time;
    if (real < m_began || real > now())
        differ(QStringLiteral("last_cal_time is not of this moment"));
    saved = real;
}

void Walker::compare_session()
{
    const Session &it = m_model->session;
    const auto number = [this](const char *name, qint64 modelled, qint64 real) {
        if (modelled != real)
            differ(QStringLiteral("%1: %2, but is %3")
                       .arg(QLatin1String(name))
                       .arg(modelled)
                       .arg(real));
    };
    number("channel", it.channel, g_cfg->channel);
    number("unsaved_flag", it.unsaved_flag, g_cfg->unsaved_flag);
    number("redraw_all", it.redraw_all, g_cfg->redraw_all);
    number("table_dirty", it.table_dirty, g_cfg->table_dirty);
    number("g_first_select", m_model->first_select, g_first_select);
    number("g_num_points", m_model->num_points, g_num_points);
    number("g_captured_points", m_model->captured, g_captured_points);
    number("g_fifo_size", m_model->fifo_size, relaxed_load(g_fifo_size));
    number("g_cal_type_changed", m_model->cal_type_changed, g_cal_type_changed);
    number("long_current points", it.current.num_points, g_cfg->long_current.num_points);
    number("long_previous points", it.previous.num_points, g_cfg->long_previous.num_points);
    if (m_model->order_text != g_poly_order_text)
        differ(QStringLiteral("g_poly_order_text: \"%1\", but is \"%2\"")
                   .arg(m_model->order_text, g_poly_order_text));
    const QString record = record_difference(it.table, g_cfg->table);
    if (!record.isEmpty())
        differ(QStringLiteral("table: ") + record);
    if (std::memcmp(&it.current, &g_cfg->long_current, sizeof it.current) != 0)
        differ(QStringLiteral("long_current"));
    if (std::memcmp(&it.previous, &g_cfg->long_previous, sizeof it.previous) != 0)
        differ(QStringLiteral("long_previous"));
    const std::string path = it.stem.empty() ? "" : "/cell/tables/" + it.stem;
    if (path.empty())
        return;
    if (path + ".tbl" != g_cfg->tbl_path || path + ".save" != g_cfg->save_path ||
        path + ".old" != g_cfg->old_path)
        differ(QStringLiteral("paths: ") + QLatin1String(g_cfg->tbl_path));
    for (int i = 0; i < TABLE_POINTS; ++i) {
        const POINT_STATISTICS &a = it.stats[i];
        const POINT_STATISTICS &b = g_cfg->point_stats[i];
        if (a.mv_at_capture != b.mv_at_capture || a.mv_mean != b.mv_mean || a.mv_std != b.mv_std ||
            a.mv_min != b.mv_min || a.mv_max != b.mv_max || a.eu_reference != b.eu_reference ||
            a.eu_std != b.eu_std)
            differ(QStringLiteral("statistics of point %1").arg(i + 1));
    }
}

// Whatever the model says.
void Walker::compare_invariants()
{
    const TABLE_RECORD &table = g_cfg->table;
    const LONG_TABLE &current = g_cfg->long_current;
    // A POLY or INTERP table is computed from its first range, whatever range is
    // in work.
    const int r = range_of(table);
    const bool one_range = r == 0 || table.table_type == TABLE_POLY_RANGE;
    for (int i = 0; one_range && r == m_model->touched_range && i < TABLE_POINTS; ++i) {
        if ((m_model->touched_x[i] && current.x[i] != table.poly[r].x[i]) ||
            (m_model->touched_y[i] && current.y[i] != table.poly[r].y[i]))
            differ(QStringLiteral("point %1 of long_current is not the table's").arg(i + 1));
    }
    if (m_model->bound) {
        if (g_num_points != current.num_points)
            differ(QStringLiteral("g_num_points does not follow long_current"));
        for (int i = qMax<int>(0, current.num_points); i < TABLE_POINTS; ++i) {
            if (current.x[i] != 0.0 || current.y[i] != 0.0)
                differ(QStringLiteral("point %1 of long_current is not zero").arg(i + 1));
        }
        if (std::memcmp(&current, &g_cfg->long_previous, sizeof current) != 0)
            differ(QStringLiteral("long_previous is not long_current after a load"));
    }
    const auto ended = [this](const char *name, const char *text, std::size_t size) {
        if (std::memchr(text, 0, size) == nullptr)
            differ(QLatin1String(name) + QStringLiteral(" has no end"));
    };
    ended("description", table.description, sizeof table.description);
    ended("qie", table.qie, sizeof table.qie);
    ended("verified_by", table.verified_by, sizeof table.verified_by);
    ended("cal_comment", table.cal_comment, sizeof table.cal_comment);
    ended("sensor_model", table.sensor_model, sizeof table.sensor_model);
    ended("sensor_serial_no", table.sensor_serial_no, sizeof table.sensor_serial_no);
    ended("sensor_units", table.sensor_units, sizeof table.sensor_units);
    ended("table_name", table.table_name, sizeof table.table_name);
    ended("eng_units", table.eng_units, sizeof table.eng_units);
    ended("mua_instance_name", table.mua_instance_name, sizeof table.mua_instance_name);
    ended("table_units", g_cfg->table_units, sizeof g_cfg->table_units);
    if (table.worst_status > 3 || g_num_points < 0 || g_num_points > TABLE_POINTS)
        differ(QStringLiteral("worst_status or g_num_points out of range"));
}

} // namespace walk
