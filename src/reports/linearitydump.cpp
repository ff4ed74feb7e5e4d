// SPDX-License-Identifier: GPL-3.0-or-later
#include "reports/linearitydump.h"

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include <QLocale>

#include "host/operations.h"
#include "host/tablerecord.h"

namespace
{

void put_results(std::FILE *out, const LinearityFigures &figures)
{
    const LINE_RPT &r = figures.record;
    std::fprintf(out, "Spreadsheet Values\n\n");
    std::fprintf(out, "D4  - Entered Points = %d\n", r.entered_points);
    std::fprintf(out, "D5  - xmin = %lf\n", r.x_min);
    std::fprintf(out, "D6  - xmax = %lf\n", r.x_max);
    std::fprintf(out, "D7  - Avg X = %lf\n", r.avg_x);
    std::fprintf(out, "D8  - Avg Y = %lf\n", r.avg_y);
    std::fprintf(out, "D9  - A0 = %lf\n", r.a0);
    std::fprintf(out, "D10 - A1 = %lf\n", r.a1);
    std::fprintf(out, "D11 - SEE = %lf\n", r.see);
    std::fprintf(out, "D12 - r2 = %lf\n", r.r2);
    std::fprintf(out, "D13 - Max Abs Error = %lf\t\tF13 - Ref Val: = %lf\n", r.max_abs_error,
                 r.x[r.abs_error_ref_index]);
    std::fprintf(out, "D14 - Max Rel Error = %lf\t\tF14 - Ref Val: = %lf\n", 100 * r.max_rel_error,
                 r.x[r.rel_error_ref_index]);
    std::fprintf(out, "D16 - %lf\n", r.intercept_check);
    std::fprintf(out, "D17 - %lf\n", 100 * r.intercept_check_frac);
    std::fprintf(out, "D18 - %lf\n", r.slope_check);
    std::fprintf(out, "D19 - %lf\n", 100 * r.see_check_frac);
    std::fprintf(out, "D20 - %lf\n\n", r.r2_check);
    std::fprintf(out, "Row24 - H24 = %lf\tI24 = %lf\tK24 = %lf\tM24 = %lf\tN24 = %lf\n\n ",
                 figures.sum_a1n, figures.sum_a1d, r.see_sum, figures.sum_cdd, figures.sum_cdn);
    std::fprintf(out, "P24 = %lf\tS24 = ????\tU24 = %lf\n\n\n", r.x_min, 100 * r.max_rel_error);
}

void put_point(std::FILE *out, const LinearityFigures &figures, int i)
{
    const LINE_RPT &r = figures.record;
    const LinearityColumns &c = figures.columns;
    std::fprintf(out, "%d\t", i);
    std::fprintf(out, "%.8lf\t%.8lf\t%.8lf\t%.8lf\t%.8lf\t", r.x[i], r.y_avg[i], r.y_std[i],
                 r.y_min[i], r.y_max[i]);
    std::fprintf(out, "%lf\t%lf\t%lf\t%lf\t%lf\t%lf\t", c.a1n[i], c.a1d[i], c.s_calc[i], c.cdd[i],
                 c.cdn[i], std::fabs(r.x[i]));
    std::fprintf(out, "????\t");
    std::fprintf(out, "%lf\t%lf\t%lf\t\n", c.error[i], c.abs_error[i], c.abs_rel_error[i]);
}

bool write_whole(const QByteArray &path, const QByteArray &text)
{
    std::FILE *file = std::fopen(path.constData(), "w");
    if (file == nullptr)
        return false;
    const auto size = static_cast<std::size_t>(text.size());
    const bool written = std::fwrite(text.constData(), 1, size, file) == size;
    const bool closed = std::fclose(file) == 0;
    if (written && closed)
        return true;
    const int reason = errno;
    std::remove(path.constData()); // half a dump would be taken for a whole one
    errno = reason;
    return false;
}

} // namespace

QByteArray linearity_dump_path(const char *table_name, const QDateTime &now)
{
    const std::size_t length = strnlen(table_name, sizeof TABLE_RECORD::table_name);
    return "/ram/" + QByteArray(table_name, static_cast<int>(length)) +
           QLocale::c().toString(now, QStringLiteral("MMddyyyyHHmmss")).toUtf8() + ".html";
}

QByteArray linearity_dump(const LinearityFigures &figures)
{
    char *buffer = nullptr;
    std::size_t size = 0;
    std::FILE *out = open_memstream(&buffer, &size);
    if (out == nullptr)
        return QByteArray();
    put_results(out, figures);
    std::fprintf(
        out, "Point Values\nPt\tXReference\tYAverage\tYStdDev\tYMin\tYMax\ta1n\ta1d\tsCalc\tcdd\t"
             "cdn\tAbs(x)\tRegLine\tError\tAbs(Error)\tAbsRelError\n");
    const int rows = std::clamp<int32_t>(figures.record.entered_points, 0, MAX_POINTS);
    for (int i = 0; i < rows; ++i)
        put_point(out, figures, i);
    std::fprintf(out, "\n\n");
    std::fprintf(out, "P131 = %lf\n", figures.min_abs_x);
    std::fprintf(out, "T131 = %lf\n", figures.record.max_abs_error);
    std::fprintf(out, "U131 = %lf\n", figures.record.max_rel_error_work);
    std::fprintf(out, "P134 = %d\n", figures.min_index);
    std::fprintf(out, "T134 = %d\n", figures.abs_index);
    std::fprintf(out, "U134 = %d\n", figures.rel_index);
    std::fclose(out);
    QByteArray text(buffer, static_cast<int>(size));
    std::free(buffer);
    return text;
}

void write_linearity_dump(const QByteArray &path, const QByteArray &text)
{
    if (!write_whole(path, text))
        log_error(__FILE__, __LINE__, 1, errno, "Unable to write <%s>: %s", path.constData(),
                  std::strerror(errno));
}
