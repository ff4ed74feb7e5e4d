// SPDX-License-Identifier: GPL-3.0-or-later
//
// The view of the table's polynomial and of the straight-line figures.
#include <cmath>
#include <limits>

#include <linux/capability.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <QGroupBox>

#include "gui/views/statisticsview.h"
#include "support/hostlog.h"
#include "support/testmain.h"
#include "views/polyregressiondialog.h"

namespace
{

// A folder that nobody can write into while this lives, the superuser included.
class ReadOnlyFolder
{
public:
    explicit ReadOnlyFolder(const char *path) : m_path(path)
    {
        struct stat now = {};
        m_closed = stat(path, &now) == 0 && chmod(path, 0555) == 0;
        m_mode = now.st_mode & 07777;
        m_closed = m_closed && syscall(SYS_capget, &m_header, m_kept) == 0;
        __user_cap_data_struct without[] = {m_kept[0], m_kept[1]};
        without[0].effective &= ~(1U << CAP_DAC_OVERRIDE);
        m_closed = m_closed && syscall(SYS_capset, &m_header, without) == 0;
    }
    ~ReadOnlyFolder()
    {
        syscall(SYS_capset, &m_header, m_kept);
        chmod(m_path, m_mode);
    }
    ReadOnlyFolder(const ReadOnlyFolder &) = delete;
    ReadOnlyFolder &operator=(const ReadOnlyFolder &) = delete;

    bool is_read_only() const { return m_closed; }

private:
    const char *m_path;
    bool m_closed;
    mode_t m_mode;
    __user_cap_header_struct m_header = {_LINUX_CAPABILITY_VERSION_3, 0};
    __user_cap_data_struct m_kept[2] = {};
};

} // namespace

class PolyRegression : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { clear_cell(); }
    void init();
    void form();
    void every_cell();
    void deviation_prints_with_its_sign();
    void polynomial_of_the_range_in_work_whatever_the_type_data();
    void polynomial_of_the_range_in_work_whatever_the_type();
    void interp_fills_the_table_and_hides_both_boxes();
    void more_points_than_coefficients_a_range_holds();
    void groups_by_type_data();
    void groups_by_type();
    void three_coefficients();
    void coefficients_shown_data();
    void coefficients_shown();
    void coefficients_of_the_first_range_alone();
    void intercept_and_slope_are_crossed();
    void every_figure();
    void too_few_points_for_the_error_estimate();
    void opened_twice_the_error_estimate_grows();
    void figures_are_computed_for_every_type();
    void no_points();
    void one_point();
    void values_that_are_no_numbers();
    void sixty_four_points();
    void odd_counts_data();
    void odd_counts();
    void polynomials_own_r_squared_is_dropped();
    void opening_writes_a_dump();
    void opened_without_a_place_for_the_dump();
    void record_by_the_second_pointer();
    void table_takes_the_room_there_is();
    void closing();

private:
    static bool shows(const QWidget &view, const QString &name)
    {
        return view.findChild<QWidget *>(name)->isVisibleTo(&view);
    }
};

// References 1 to 4, measured 0, 2, 2, 4: the line through them is 1.2 x - 1,
// its residuals -0.2, 0.6, -0.6, 0.2 add up to 0.8 in squares, and the measured
// values have 8 about their mean: r squared 1 - 0.8 / 8. The largest error is 1
// below the reference 1.
// The polynomial -1 + 0.01 x + 0.00001 x^2 gives 0.1, 1.4, 2.9, 4.6.
void PolyRegression::init()
{
    begin_session();
    g_cfg->table.table_type = TABLE_POLY;
    std::strcpy(g_cfg->table.table_name, "view");
    std::strcpy(g_cfg->table.eng_units, "kPa");
    g_cfg->long_current.num_points = 4;
    const double measured[] = {0., 2., 2., 4.};
    for (int i = 0; i < 4; ++i) {
        POINT_STATISTICS &point = g_cfg->point_stats[i];
        point.eu_reference = i + 1.;
        point.eu_mean = measured[i];
        point.mv_mean = 100. * (i + 1);
        point.mv_at_capture = -1.;
    }
    POLY_RANGE_RECORD &range = g_cfg->table.poly[0];
    range.num_coeffs = 3;
    range.coeffs[0] = -1.;
    range.coeffs[1] = 0.01;
    range.coeffs[2] = 0.00001;
    range.coeffs[3] = 7.; // not counted
}

void PolyRegression::form()
{
    const PolyRegressionDialog view(nullptr);
    QCOMPARE(view.windowTitle(), QStringLiteral("Polynomial Regression Information"));
    QCOMPARE(label_text(&view, "label"), QStringLiteral("Polynomial Regression Information"));
    auto *table = part<QTableWidget>(&view, "tblCalInfo");
    QCOMPARE(table_headings(table), (QStringList{"Point Number", "X Reference", "Previous Y",
                                                 "Y Computed", "Y Deviation"}));
    QCOMPARE(part<QGroupBox>(&view, "grpCoeffInfo")->title(),
             QStringLiteral("Coefficient Information"));
    for (int i = 0; i < 8; ++i) {
        QCOMPARE(label_text(&view, QStringLiteral("lblCoeff%1").arg(i)),
                 QStringLiteral("Co %1").arg(i));
        QVERIFY(view.findChild<QLabel *>(QStringLiteral("lblCoeff%1Value").arg(i)) != nullptr);
    }
    QCOMPARE(label_text(&view, "lblRSquared"), QStringLiteral("R^2:"));
    QCOMPARE(part<QGroupBox>(&view, "grpLinearRegInfo")->title(),
             QStringLiteral("Linear Regression Information"));
    QCOMPARE(label_text(&view, "lblIntercept"), QStringLiteral("Intercept"));
    QCOMPARE(label_text(&view, "lblSlope"), QStringLiteral("Slope"));
    QCOMPARE(label_text(&view, "lblSEE"), QStringLiteral("SEE"));
    QCOMPARE(label_text(&view, "label_2"), QStringLiteral("R^2"));
    QCOMPARE(label_text(&view, "lblMaxAbsError"), QStringLiteral("Max Abs Error"));
    QCOMPARE(label_text(&view, "lblMaxRelError"), QStringLiteral("Max Rel Error"));
    QVERIFY(ok_alone(&view));
    QCOMPARE(table->editTriggers(), QAbstractItemView::NoEditTriggers);
}

void PolyRegression::every_cell()
{
    const PolyRegressionDialog view(nullptr);
    const auto *table = part<QTableWidget>(&view, "tblCalInfo");
    QCOMPARE(table->rowCount(), 4);
    QCOMPARE(table_row(table, 0), (QStringList{"1", "100.000", "0.000", "0.100", "-0.100"}));
    QCOMPARE(table_row(table, 1), (QStringList{"2", "200.000", "2.000", "1.400", "0.600"}));
    QCOMPARE(table_row(table, 2), (QStringList{"3", "300.000", "2.000", "2.900", "-0.900"}));
    QCOMPARE(table_row(table, 3), (QStringList{"4", "400.000", "4.000", "4.600", "-0.600"}));
    QVERIFY(first_two_are_centred(table));
}

void PolyRegression::deviation_prints_with_its_sign()
{
    g_cfg->point_stats[0].eu_mean = -1.4;
    const PolyRegressionDialog view(nullptr);
    QCOMPARE(part<QTableWidget>(&view, "tblCalInfo")->item(0, 4)->text(), QString("-1.500"));
}

void PolyRegression::polynomial_of_the_range_in_work_whatever_the_type_data()
{
    const auto row = test_columns<int, int, QString>("type", "index", "computed");
    row("POLY_RANGE, first range", int(TABLE_POLY_RANGE), 0, "0.100");
    row("POLY_RANGE, third range", int(TABLE_POLY_RANGE), 2, "12.500");
    row("POLY with an index left behind", int(TABLE_POLY), 2, "12.500");
    row("INTERP with an index left behind", int(TABLE_INTERP), 2, "12.500");
    row("a range not in use computes zero", int(TABLE_POLY_RANGE), 3, "0.000");
    row("an index beyond the ranges is the last one", int(TABLE_POLY_RANGE), 8, "3.000");
    row("an index below the ranges is the first one", int(TABLE_POLY_RANGE), -1, "0.100");
}

void PolyRegression::polynomial_of_the_range_in_work_whatever_the_type()
{
    QFETCH(int, type);
    QFETCH(int, index);
    g_cfg->table.table_type = static_cast<uint16_t>(type);
    g_cfg->table.poly_range_index = static_cast<int16_t>(index);
    g_cfg->table.poly[2].num_coeffs = 1;
    g_cfg->table.poly[2].coeffs[0] = 12.5;
    g_cfg->table.poly[7].num_coeffs = 1;
    g_cfg->table.poly[7].coeffs[0] = 3.;
    const PolyRegressionDialog view(nullptr);
    QTEST(part<QTableWidget>(&view, "tblCalInfo")->item(0, 3)->text(), "computed");
}

void PolyRegression::interp_fills_the_table_and_hides_both_boxes()
{
    g_cfg->table.table_type = TABLE_INTERP;
    const PolyRegressionDialog view(nullptr);
    QCOMPARE(table_row(part<QTableWidget>(&view, "tblCalInfo"), 3),
             (QStringList{"4", "400.000", "4.000", "4.600", "-0.600"}));
    QVERIFY(!shows(view, "grpCoeffInfo"));
    QVERIFY(!shows(view, "grpLinearRegInfo"));
}

// A table of 20 points has 20 coefficients: the last two are its first x values.
void PolyRegression::more_points_than_coefficients_a_range_holds()
{
    POLY_RANGE_RECORD &range = g_cfg->table.poly[0];
    g_cfg->table.table_type = TABLE_INTERP;
    range.num_coeffs = 20;
    range.coeffs[3] = 0.;
    range.x[0] = 0.25;
    range.x[1] = 0.5;
    range.x[2] = 1000.; // not counted
    g_cfg->point_stats[1].mv_mean = 1.;
    const PolyRegressionDialog view(nullptr);
    QCOMPARE(table_row(part<QTableWidget>(&view, "tblCalInfo"), 1),
             (QStringList{"2", "1.000", "2.000", "-0.240", "2.240"}));
}

void PolyRegression::groups_by_type_data()
{
    const auto row = test_columns<int, bool>("type", "shown");
    row("INTERP", int(TABLE_INTERP), false);
    row("POLY", int(TABLE_POLY), true);
    row("SCALED", int(TABLE_SCALED), false);
    row("POLY_RANGE", int(TABLE_POLY_RANGE), false);
    row("unknown", int(TABLE_TYPE_UNKNOWN), false);
}

void PolyRegression::groups_by_type()
{
    QFETCH(int, type);
    QFETCH(bool, shown);
    g_cfg->table.table_type = static_cast<uint16_t>(type);
    const PolyRegressionDialog view(nullptr);
    QCOMPARE(shows(view, "grpCoeffInfo"), shown);
    QCOMPARE(shows(view, "grpLinearRegInfo"), shown);
    QCOMPARE(label_text(&view, "lblSEEValue").isEmpty(), !shown);
    QCOMPARE(label_text(&view, "lblRSquaredValue").isEmpty(), !shown);
}

void PolyRegression::three_coefficients()
{
    const PolyRegressionDialog view(nullptr);
    const QStringList texts{"-1", "0.01", "1e-05"};
    for (int i = 0; i < 8; ++i) {
        const QString name = QStringLiteral("lblCoeff%1").arg(i);
        QCOMPARE(shows(view, name), i < 3);
        QCOMPARE(shows(view, name + "Value"), i < 3);
        QCOMPARE(label_text(&view, name + "Value"), texts.value(i));
    }
    QVERIFY(shows(view, "lblRSquaredValue"));
}

void PolyRegression::coefficients_shown_data()
{
    const auto row = test_columns<int, int>("count", "shown");
    row("none", 0, 0);
    row("one", 1, 1);
    row("eight", 8, 8);
    row("a degree beyond what is shown", 9, 8);
    row("all that a range holds", 18, 8);
    row("as many as points", 64, 8);
    row("a negative count", -1, 0);
}

void PolyRegression::coefficients_shown()
{
    QFETCH(int, count);
    QFETCH(int, shown);
    g_cfg->table.poly[0].num_coeffs = static_cast<int16_t>(count);
    const PolyRegressionDialog view(nullptr);
    for (int i = 0; i < 8; ++i) {
        QCOMPARE(shows(view, QStringLiteral("lblCoeff%1").arg(i)), i < shown);
        QCOMPARE(shows(view, QStringLiteral("lblCoeff%1Value").arg(i)), i < shown);
    }
}

void PolyRegression::coefficients_of_the_first_range_alone()
{
    g_cfg->table.poly_range_index = 2;
    g_cfg->table.poly[2].num_coeffs = 1;
    g_cfg->table.poly[2].coeffs[0] = 12.5;
    const PolyRegressionDialog view(nullptr);
    QCOMPARE(label_text(&view, "lblCoeff0Value"), QStringLiteral("-1"));
    QVERIFY(shows(view, "lblCoeff2Value"));
}

void PolyRegression::intercept_and_slope_are_crossed()
{
    const PolyRegressionDialog view(nullptr);
    QCOMPARE(label_text(&view, "lblIntercept"), QStringLiteral("Intercept"));
    QCOMPARE(label_text(&view, "lblInterceptValue"), QStringLiteral("1.2")); // the slope
    QCOMPARE(label_text(&view, "lblSlope"), QStringLiteral("Slope"));
    QCOMPARE(label_text(&view, "lblSlopeValue"), QStringLiteral("-1")); // the intercept
}

void PolyRegression::every_figure()
{
    const PolyRegressionDialog view(nullptr);
    QCOMPARE(label_text(&view, "lblSEEValue"), QStringLiteral("0.632456")); // sqrt(0.8 / 2)
    QCOMPARE(label_text(&view, "lblr2Value"), QStringLiteral("0.9"));
    QCOMPARE(label_text(&view, "lblRSquaredValue"), QStringLiteral("0.9")); // the line's
    QCOMPARE(label_text(&view, "lblMaxAbsErrorValue"), QStringLiteral("1"));
    QCOMPARE(label_text(&view, "lblMaxRelErrorValue"), QStringLiteral("-100%"));
}

void PolyRegression::too_few_points_for_the_error_estimate()
{
    g_cfg->long_current.num_points = 2;
    const PolyRegressionDialog view(nullptr);
    QCOMPARE(label_text(&view, "lblSEEValue"), QStringLiteral("-999.9"));
    QCOMPARE(label_text(&view, "lblInterceptValue"), QStringLiteral("2")); // 0 to 2 over 1 to 2
    QCOMPARE(label_text(&view, "lblSlopeValue"), QStringLiteral("-2"));
}

void PolyRegression::opened_twice_the_error_estimate_grows()
{
    const ZERL_CFG kept = *g_cfg;
    const PolyRegressionDialog first(nullptr);
    QCOMPARE(label_text(&first, "lblSEEValue"), QStringLiteral("0.632456"));
    const PolyRegressionDialog second(nullptr);
    QCOMPARE(label_text(&second, "lblSEEValue"), QStringLiteral("0.894427")); // sqrt(1.6 / 2)
    QVERIFY(std::memcmp(&kept, g_cfg, sizeof kept) == 0); // with no change of data
    for (const char *name : {"lblInterceptValue", "lblSlopeValue", "lblr2Value",
                             "lblMaxAbsErrorValue", "lblMaxRelErrorValue", "lblCoeff1Value"})
        QCOMPARE(label_text(&second, name), label_text(&first, name));
}

// The figures grow with every opening, also where they are not shown.
void PolyRegression::figures_are_computed_for_every_type()
{
    g_cfg->table.table_type = TABLE_INTERP;
    const PolyRegressionDialog hidden(nullptr);
    g_cfg->table.table_type = TABLE_POLY;
    const PolyRegressionDialog view(nullptr);
    QCOMPARE(label_text(&view, "lblSEEValue"), QStringLiteral("0.894427"));
}

void PolyRegression::no_points()
{
    g_cfg->long_current.num_points = 0;
    const PolyRegressionDialog view(nullptr);
    QCOMPARE(part<QTableWidget>(&view, "tblCalInfo")->rowCount(), 0);
    QCOMPARE(label_text(&view, "lblInterceptValue"), QStringLiteral("nan"));
    QCOMPARE(label_text(&view, "lblSEEValue"), QStringLiteral("-999.9"));
    QCOMPARE(label_text(&view, "lblCoeff0Value"), QStringLiteral("-1"));
}

void PolyRegression::one_point()
{
    g_cfg->long_current.num_points = 1;
    const PolyRegressionDialog view(nullptr);
    QCOMPARE(part<QTableWidget>(&view, "tblCalInfo")->rowCount(), 1);
    QCOMPARE(label_text(&view, "lblInterceptValue"), QStringLiteral("nan"));
    QCOMPARE(label_text(&view, "lblSEEValue"), QStringLiteral("-999.9"));
}

void PolyRegression::values_that_are_no_numbers()
{
    const double nan = std::numeric_limits<double>::quiet_NaN();
    g_cfg->point_stats[1].eu_mean = nan;
    g_cfg->point_stats[2].mv_mean = nan;
    g_cfg->table.poly[0].coeffs[2] = std::numeric_limits<double>::infinity();
    const PolyRegressionDialog view(nullptr);
    const auto *table = part<QTableWidget>(&view, "tblCalInfo");
    QCOMPARE(table_row(table, 1), (QStringList{"2", "200.000", "nan", "inf", "nan"}));
    QCOMPARE(table_row(table, 2), (QStringList{"3", "nan", "2.000", "nan", "nan"}));
    QCOMPARE(label_text(&view, "lblCoeff2Value"), QStringLiteral("inf"));
    for (const char *name : {"lblInterceptValue", "lblSlopeValue", "lblSEEValue", "lblr2Value"})
        QCOMPARE(label_text(&view, name), QStringLiteral("nan"));
}

void PolyRegression::sixty_four_points()
{
    g_cfg->long_current.num_points = 64;
    for (int i = 0; i < MAX_POINTS; ++i) {
        g_cfg->point_stats[i].eu_reference = g_cfg->point_stats[i].eu_mean = i;
        g_cfg->point_stats[i].mv_mean = 10. * i;
    }
    const PolyRegressionDialog view(nullptr);
    auto *table = part<QTableWidget>(&view, "tblCalInfo");
    QCOMPARE(table->rowCount(), 64);
    // -1 + 6.3 + 3.969
    QCOMPARE(table_row(table, 63), (QStringList{"64", "630.000", "63.000", "9.269", "53.731"}));
    QCOMPARE(label_text(&view, "lblInterceptValue"), QStringLiteral("1"));
    QCOMPARE(label_text(&view, "lblSlopeValue"), QStringLiteral("0"));
    QCOMPARE(label_text(&view, "lblSEEValue"), QStringLiteral("0"));
    QCOMPARE(label_text(&view, "lblMaxRelErrorValue"), QStringLiteral("0%"));
}

void PolyRegression::odd_counts_data()
{
    const auto row = test_columns<int, int>("count", "rows");
    row("more than a table holds", 65, 64);
    row("a negative count", -1, 0);
}

void PolyRegression::odd_counts()
{
    QFETCH(int, count);
    g_cfg->long_current.num_points = static_cast<int16_t>(count);
    const PolyRegressionDialog view(nullptr);
    QTEST(part<QTableWidget>(&view, "tblCalInfo")->rowCount(), "rows");
}

void PolyRegression::polynomials_own_r_squared_is_dropped()
{
    PolyRegressionDialog view(nullptr);
    const ZERL_CFG kept = *g_cfg;
    const LINE_RPT figures = g_line_rpt;
    QStringList before;
    for (const QLabel *label : view.findChildren<QLabel *>())
        before += label->text();
    view.calc_poly_r_squared();
    QStringList after;
    for (const QLabel *label : view.findChildren<QLabel *>())
        after += label->text();
    QCOMPARE(after, before);
    QVERIFY(std::memcmp(&kept, g_cfg, sizeof kept) == 0);
    QVERIFY(std::memcmp(&figures, &g_line_rpt, sizeof figures) == 0);
}

void PolyRegression::opening_writes_a_dump()
{
    clear_cell();
    const HostLog log;
    const PolyRegressionDialog view(nullptr);
    const QStringList dumps = QDir("/ram").entryList({"view*.html"}, QDir::Files);
    QCOMPARE(dumps.size(), 1);
    QVERIFY(read_file("/ram/" + dumps[0])
                .startsWith("Spreadsheet Values\n\nD4  - Entered Points = 4\n"));
    QCOMPARE(log.texts(), QStringList());
}

void PolyRegression::opened_without_a_place_for_the_dump()
{
    clear_cell();
    const HostLog log;
    const ReadOnlyFolder closed("/ram");
    QVERIFY(closed.is_read_only());
    const PolyRegressionDialog view(nullptr);
    const QStringList texts = log.texts();
    QCOMPARE(texts.size(), 1);
    QVERIFY2(texts[0].startsWith("Unable to write </ram/view") &&
                 texts[0].endsWith(".html>: Permission denied"),
             qPrintable(texts[0]));
    QCOMPARE(QDir("/ram").entryList(QDir::Files), QStringList());
    QCOMPARE(part<QTableWidget>(&view, "tblCalInfo")->rowCount(), 4);
    QCOMPARE(label_text(&view, "lblInterceptValue"), QStringLiteral("1.2"));
    QCOMPARE(label_text(&view, "lblSEEValue"), QStringLiteral("0.632456"));
    QCOMPARE(label_text(&view, "lblRSquaredValue"), QStringLiteral("0.9"));
}

void PolyRegression::record_by_the_second_pointer()
{
    ZERL_CFG *const kept = g_cfg;
    g_cfg = nullptr;
    const PolyRegressionDialog view(nullptr);
    g_cfg = kept;
    QCOMPARE(part<QTableWidget>(&view, "tblCalInfo")->rowCount(), 4);
}

void PolyRegression::table_takes_the_room_there_is()
{
    g_cfg->point_stats[0].mv_mean = 123456789012345.;
    PolyRegressionDialog view(nullptr);
    auto *table = part<QTableWidget>(&view, "tblCalInfo");
    QCOMPARE(table->sizePolicy().horizontalPolicy(), QSizePolicy::Expanding);
    QCOMPARE(table->sizePolicy().verticalPolicy(), QSizePolicy::Expanding);
    view.show();
    QVERIFY(QTest::qWaitForWindowExposed(&view));
    QVERIFY(nothing_is_cut(table)); // the columns are sized behind the filling
    const QSize before = table->size();
    view.resize(view.size() + QSize(200, 100));
    QTRY_COMPARE(table->size(), before + QSize(200, 100));
}

void PolyRegression::closing()
{
    PolyRegressionDialog view(nullptr);
    check_closing(&view);
}

WINDOW_TEST(PolyRegression);
#include "test_polyregression.moc"
