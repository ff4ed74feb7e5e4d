// SPDX-License-Identifier: GPL-3.0-or-later
//
// The one window of the program, the roof that alone knows every room. Its slots
// stand in the rooms they serve, in mainwindow_<subject>.cpp; mainwindow.cpp keeps
// construction, menus and wiring. GUI thread only: the monitor thread reaches it
// through plotInfo alone.
#ifndef FRAME_MAINWINDOW_H
#define FRAME_MAINWINDOW_H

#include <memory>

#include <QDateTime>
#include <QList>
#include <QMainWindow>
#include <QPen>

#include <qwt_scale_map.h>

#include "acquisition/rowwindow.h"
#include "frame/zerl_cfg.h"

class PointInfo;
class QLabel;
class QLineEdit;
class QwtPlotCurve;
class QwtSymbol;
class monitorThread;
struct ProcessBoxes;

namespace Ui
{
class MainWindow;
}

// The curves of the plot, in the order of their creation.
enum {
    CURVE_CAPTURED,
    CURVE_PREVIOUS,
    CURVE_BEST_FIT,
    CURVE_CURRENT_POINT,
    CURVE_POLYNOMIAL,
    CURVE_COUNT
};

class MainWindow : public QMainWindow, public RowWindow
{
    Q_OBJECT

public:
    explicit MainWindow(QWidget *parent = nullptr);
    ~MainWindow() override;

    // Sets the session up: 1, or 0 when start-up failed.
    int init();

    // Fills the list of channels, with its signals blocked.
    void fill_channel_list();

    // Captions, styles and values of the point rows.
    void create_rows();
    void hide_rows();
    void show_rows();
    void clear_row_captions();
    void write_row_values(QLineEdit *value_field, QLabel *mv_label, int i);
    void write_all_row_values();
    void show_table_fields(ZERL_CFG *cfg);
    PointInfo *row(int i) const { return m_rows.at(i); }
    const QList<PointInfo *> &rows() const { return m_rows; }

    // What a row asks for.
    int store_point(ZERL_CFG *cfg, int32_t index, double value) override;
    int check_sensor_range(uint32_t *reason) override;
    void show_serial_number() override;
    void show_record_ready() override;
    void empty_next_step() override;
    void suggest_no_decision() override;

    // Controls of the table's type, degree and range.
    bool check_num_points() const;
    void sync_type_controls(const ZERL_CFG *cfg) override;
    void set_range_item_enabled(bool enabled);
    void show_coefficients(const ZERL_CFG *cfg) override;
    void note_degree_on_show(); // in g_poly_order_text

    // The plot.
    void setup_plot();
    void remove_curves();
    void update_plot(ZERL_CFG *cfg) override;
    void auto_scale_plot();

    // The four recordings, called by the recording dialog.
    void record_as_found();
    void record_after_service();
    void record_verification();
    void record_new_correlation();

    // Writes the present time into a process box and its copy in g_ws_block.
    void stamp(QLineEdit *box, char (&copy)[80]);
    const QDateTime &correlation_time() const { return m_correlation_time; } // the last stamp
    // Advice of the process: rich text, or none on the cream background.
    void clear_next_step();

    // Fills g_specs from the specs file; a box tells when it cannot be opened.
    void read_specs_file();

    ProcessBoxes process_boxes() const;
    QMutex *table_mutex() const override { return m_table_mutex; }
    monitorThread *monitor() const { return m_monitor; }
    const QwtPlotCurve *curve(int index) const { return m_curves[index]; }
    bool curves_are_removed() const { return curves_removed; }
    // The next update of the plot scales both axes anew.
    void request_rescale() { force_rescale = true; }

signals:
    void timeout(); // nothing emits it

private slots:
    void on_btnReuseCalibration_clicked();
    void on_cboCurrentChannel_currentIndexChanged(const QString &text);
    void on_btnRecordData_clicked();
    void on_btnUnits_clicked();
    void on_actionExit_triggered();
    void on_actionStatistics_Chart_triggered();
    void on_actionTable_Info_triggered();
    void draw_plots_info(ZERL_CFG *cfg);
    void on_btnAdjustCalibration_clicked();
    void on_cboCalType_currentIndexChanged(int index);
    void on_cboOrderOfPolynomial_currentIndexChanged(int index);
    void on_txtNumPoints_returnPressed();
    void on_actionCal_Statistics_Chart_triggered();
    void on_actionPoint_Statistics_triggered();
    void on_cboPolyRangeIndex_currentIndexChanged(int index);
    void on_actionView_Previous_Calibration_Report_triggered();
    void on_txtAveragingTime_editingFinished();
    void on_txtNumPoints_textChanged(const QString &text);
    void on_txtAveragingTime_textChanged(const QString &text);

protected:
    Ui::MainWindow *form() const { return ui.get(); }
    bool eventFilter(QObject *object, QEvent *event) override;

private:
    bool start_session();
    void set_up_touch_input();
    void set_start_state();
    void keep_place_of_coefficients();

    // The ways out of the window and of the averaging time.
    void watch_leaving();
    void note_leaving(const QObject *object, const QEvent *event);
    void finish_leaving(const QWidget *left);

    // Channel selection.
    void show_no_channel();
    void no_channel_chosen();
    bool may_leave_channel();
    void recount_captured_rows();
    void revert_channel(int16_t channel);
    void bind_selected_channel(ZERL_CFG *local);
    void show_bound_channel();
    void repair_sensor_range(uint32_t reason);
    void give_up_channel();

    // Type controls.
    void fill_degrees(int highest);
    void select_degree(int degree);
    void grow_point_count(ZERL_CFG *cfg, int old_count, int new_count);
    void shrink_point_count(ZERL_CFG *cfg, int new_count);
    void choose_type_interp();
    void choose_type_poly();
    void choose_type_poly_range();

    // Plot.
    void delete_curves();
    bool track_table(ZERL_CFG *cfg);
    void refit_polynomial(ZERL_CFG *cfg);
    bool track_reading(AXIS_RANGE *axis, double reading, bool redraw, int64_t *last);
    void redraw_curves(ZERL_CFG *cfg, bool scale_axes);
    void set_curve_samples(const PLOT_CURVE &curve, int curve_index);
    void set_fit_curve(const POLY_PLOT_CURVE &curve, bool best_fit);
    void set_current_point_samples();
    void apply_pen(int curve_index);

    // Process.
    struct DecisionFlags {
        bool adjust;
        bool reuse;
    };
    DecisionFlags enable_decisions();
    void restore_decisions(DecisionFlags flags);
    void finish_recording(int32_t save_type);
    void show_recorded_status(QLineEdit *box, int32_t save_type);
    void decide(bool adjust);
    void finish_decision(bool adjust);
    bool may_exit();

    monitorThread *m_monitor; // never deleted: it dies with the process
    QMutex *m_table_mutex;    // recursive, lent to the monitor thread, never deleted
    QwtScaleMap m_previous_maps[4];
    QwtScaleMap m_current_maps[4];
    QwtPlotCurve *m_curves[CURVE_COUNT];
    QwtSymbol *m_symbols[CURVE_COUNT]; // owned by their curves
    // Raw samples of the curves, which must outlive them.
    double curve_x[3][MAX_POINTS];
    double curve_y[3][MAX_POINTS];
    double poly_x[POLY_SAMPLES];
    double poly_y[POLY_SAMPLES];
    double m_point_x;
    double m_point_y;
    bool m_channel_reverting;
    QList<PointInfo *> m_rows;
    bool curves_removed;
    std::unique_ptr<Ui::MainWindow> ui;
    QDateTime m_correlation_time;
    bool force_rescale;
    bool m_time_left; // the averaging time has lost the focus; its slot has not run
    QPen m_pens[CURVE_COUNT];
};

// Names the window of the program: g_main_window, and the parent of the boxes
// that computation asks for. Null before and after it.
void set_main_window(MainWindow *window);

#endif
