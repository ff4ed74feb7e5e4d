// SPDX-License-Identifier: GPL-3.0-or-later
//
// Construction, menus and wiring of the window.
#include "frame/mainwindow.h"

#include <cstdlib>

#include <QApplication>
#include <QFocusEvent>
#include <QIntValidator>
#include <QMutex>

#include "acquisition/channelbinding.h"
#include "acquisition/monitorthread.h"
#include "calibration/zerl_util.h"
#include "frame/functions.h"
#include "frame/hostlink.h"
#include "frame/relaxed.h"
#include "frame/tablelock.h"
#include "frame/zerl_callbacks.h"
#include "input/inputdevice.h"
#include "sensor/configdialog2.h"
#include "sensor/tolerances.h"
#include "ui_mainwindow.h"
#include "window/messagebox.h"
#include "window/styles.h"
#include "window/termination.h"
#include "window/touchfield.h"

namespace
{

// The form's least sizes are those of ordinary type; larger type needs more.
void keep_texts_whole(const Ui::MainWindow &form)
{
    QWidget *const parts[] = {form.cboCurrentChannel,
                              form.cboCalType,
                              form.label_3,
                              form.label_2,
                              form.btnRecordData,
                              form.btnUnits,
                              form.btnReuseCalibration,
                              form.btnAdjustCalibration};
    for (QWidget *part : parts)
        part->setMinimumSize(part->minimumSize().expandedTo(part->minimumSizeHint()));
}

} // namespace

MainWindow::MainWindow(QWidget *parent)
    : QMainWindow(parent), m_monitor(nullptr),
      m_table_mutex(nullptr), m_curves{}, m_symbols{}, curve_x{}, curve_y{}, poly_x{}, poly_y{},
      m_point_x(0.0), m_point_y(0.0), m_channel_reverting(false), curves_removed(false),
      ui(std::make_unique<Ui::MainWindow>()), force_rescale(false), m_time_left(false)
{
    note_window_closes(false);
    g_first_select = 1;
    m_table_mutex = new QMutex(QMutex::Recursive);
    ui->setupUi(this);
    keep_texts_whole(*ui);
    set_start_state();
    curves_removed = false;
    if (init() != 1)
        std::exit(0);
    set_up_touch_input();
    watch_leaving();
    force_rescale = false;
    relaxed_store(g_monitor_enabled, static_cast<uint8_t>(1));
    ui->frame->setFrameShape(QFrame::NoFrame);
    show_no_channel();
    ui->btnGenerateLineRpt->setEnabled(false);
    create_rows();
    hide_rows();
    setup_plot();
    ui->dataPlot->show();
    ui->coeffFrame->hide();
    ui->lblTableName->clear();
    qRegisterMetaType<ZERL_CFG *>("ZERL_CFG*");
    m_monitor = new monitorThread(m_table_mutex);
    g_monitor_thread = m_monitor;
    m_monitor->set_sleep_ms(MONITOR_PERIOD_MS);
    connect(m_monitor, &monitorThread::plotInfo, this, &MainWindow::draw_plots_info);
    ui->cboCurrentChannel->setStyleSheet(QStringLiteral("combobox-popup: 0;"));
}

void set_main_window(MainWindow *window)
{
    g_main_window = window;
    set_box_parent(window);
}

// The monitor thread and its mutex are not touched: they die with the process.
MainWindow::~MainWindow()
{
    note_window_closes(true);
    hide(); // a field that loses the focus still finds the window whole
    disconnect(qApp, nullptr, this, nullptr);
    delete_curves(); // one of them is always detached, so the plot does not own them all
}

void MainWindow::set_start_state()
{
    ui->menuStatistics->setEnabled(false);
    ui->btnGenerateLineRpt->hide();
    ui->chk1065Verification->hide();
    ui->label_22->hide();
    ui->actionView_Previous_Calibration_Report->setVisible(false);
    ui->cboCalType->setEnabled(false);
    ui->cboOrderOfPolynomial->setEnabled(false);
    ui->cboPolyRangeIndex->setEnabled(false);
    ui->txtCalibrationQIE->setFocus();
    ui->actionView_Previous_Calibration_Report->setEnabled(false);
    ui->lblNextStep->setStyleSheet(QLatin1String(STYLE_NO_ADVICE));
    ui->verticalLayout_4->setAlignment(Qt::AlignTop);
    keep_place_of_coefficients();
}

// A change of the table's type then moves nothing else in the window: plot and
// rows are not laid out and painted anew.
void MainWindow::keep_place_of_coefficients()
{
    QList<QWidget *> parts = ui->coeffFrame->findChildren<QWidget *>();
    parts.append(ui->coeffFrame);
    for (QWidget *part : parts) {
        QSizePolicy policy = part->sizePolicy();
        policy.setRetainSizeWhenHidden(true);
        part->setSizePolicy(policy);
    }
}

int MainWindow::init()
{
    set_none_instance_tokens();
    allocate_session();
    set_cfg_pointer(g_cfg);
    g_callbacks.rebind_channel = rebind_channel;
    g_cfg->units_loaded = 0;
    g_cfg->value_units_override = 0;
    m_channel_reverting = false;
    if (!start_session())
        return 0;
    fill_channel_list();
    return 1;
}

bool MainWindow::start_session()
{
    const int32_t attached = attach_host_memories();
    if (is_failure(attached)) {
        show_information("Failure initializing shared memory for task - exiting");
        log_error(__FILE__, __LINE__, 1, attached,
                  "Failure Initializing Shared Memory for zerl_util task");
        return false;
    }
    const int32_t units = units_init_access(1);
    if (is_failure(units)) {
        show_information("Failure initializing units for task - exiting");
        // The comma at the end is part of the text.
        log_error(__FILE__, __LINE__, 1, units, "Failure Initializing Units for zerl task,");
        return false;
    }
    return true;
}

void MainWindow::set_up_touch_input()
{
    g_input_device = nullptr;
    g_callbacks.show_input_panel = nullptr;
    if (!g_touch_input)
        return;
    g_input_device = new InputDevice(objectName());
    g_callbacks.show_input_panel = [](QObject *field, QEvent *event) {
        g_input_device->show_input_panel(field, event);
    };
    QLineEdit *const fields[] = {ui->txtCalibrationQIE, ui->txtTechnicianName, ui->txtNumPoints,
                                 ui->txtAveragingTime};
    auto *validator = new QIntValidator(this);
    validator->setLocale(number_locale());
    ui->txtNumPoints->setValidator(validator);
    ui->txtAveragingTime->setValidator(validator);
    for (QLineEdit *field : fields)
        mark_touch_field(field, this);
}

// The window's own closing, and the averaging time that is left.
void MainWindow::watch_leaving()
{
    installEventFilter(this);
    ui->txtAveragingTime->installEventFilter(this);
    connect(qApp, &QApplication::focusChanged, this, &MainWindow::finish_leaving);
}

// Builds of Qt differ in whether a field that is left unchanged says that its
// edit is finished. What was not said by the time the focus has gone is done here.
void MainWindow::finish_leaving(const QWidget *left)
{
    if (m_time_left && left == ui->txtAveragingTime && ui->txtAveragingTime->hasAcceptableInput())
        on_txtAveragingTime_editingFinished();
}

void MainWindow::note_leaving(const QObject *object, const QEvent *event)
{
    if (object == this && (event->type() == QEvent::Close || event->type() == QEvent::Show))
        note_window_closes(event->type() == QEvent::Close);
    // The field's own menu does not count as leaving it, nor does the box that refuses it.
    if (object == ui->txtAveragingTime && event->type() == QEvent::FocusOut)
        m_time_left = static_cast<const QFocusEvent *>(event)->reason() != Qt::PopupFocusReason &&
                      !ui->txtAveragingTime->signalsBlocked();
}

// A double tap opens the field's pad and goes on to the field as well.
bool MainWindow::eventFilter(QObject *object, QEvent *event)
{
    note_leaving(object, event);
    hand_double_tap_over(object, event);
    return false;
}

void MainWindow::clear_next_step()
{
    ui->lblNextStep->setStyleSheet(QLatin1String(STYLE_NO_ADVICE));
    ui->lblNextStep->setText(QString());
}

void MainWindow::on_actionTable_Info_triggered()
{
    if (ui->cboCurrentChannel->currentIndex() == 0)
        return;
    TableLock lock(m_table_mutex);
    ConfigDialog2 dialog(this, false, 0);
    if (dialog.exec() != QDialog::Accepted)
        return;
    reset_process_view(this, false);
    show_serial_number();
    g_captured_points = 0;
    sync_type_controls(g_cfg);
}
