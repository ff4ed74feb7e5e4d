// SPDX-License-Identifier: GPL-3.0-or-later
#include "reports/linearitydump.h"

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdarg>
#include <cstdio>
#include <cstring>

#include "host/operations.h"
#include "host/tablerecord.h"

namespace
{

constexpr std::size_t WIDEST_NUMBER = 400; // 309 digits, sign, point and decimals

// Appends formatted output; a line has at most six numbers.
void put(QByteArray *text, const char *format, ...) __attribute__((format(printf, 2, 3)));
void put(QByteArray *text, const char *format, ...)
{
    char line[8 * WIDEST_NUMBER];
    va_list values;
    va_start(values, format);
    std::vsnprintf(line, sizeof line, format, values);
    va_end(values);
    text->append(line);
}

void put_results(QByteArray *text, const LinearityFigures &figures)
{
    const LINE_RPT &r = figures.record;
    put(text, "Spreadsheet Values\n\n");
    put(text, "D4  - Entered Points = %d\n", r.entered_points);
    put(text, "D5  - xmin = %lf\n", r.x_min);
    put(text, "D6  - xmax = %lf\n", r.x_max);
    put(text, "D7  - Avg X = %lf\n", r.avg_x);
    put(text, "D8  - Avg Y = %lf\n", r.avg_y);
    put(text, "D9  - A0 = %lf\n", r.a0);
    put(text, "D10 - A1 = %lf\n", r.a1);
    put(text, "D11 - SEE = %lf\n", r.see);
    put(text, "D12 - r2 = %lf\n", r.r2);
    put(text, "D13 - Max Abs Error = %lf\t\tF13 - Ref Val: = %lf\n", r.max_abs_error,
        r.x[r.abs_error_ref_index]);
    put(text, "D14 - Max Rel Error = %lf\t\tF14 - Ref Val: = %lf\n", 100 * r.max_rel_error,
        r.x[r.rel_error_ref_index]);
    put(text, "D16 - %lf\n", r.intercept_check);
    put(text, "D17 - %lf\n", 100 * r.intercept_check_frac);
    put(text, "D18 - %lf\n", r.slope_check);
    put(text, "D19 - %lf\n", 100 * r.see_check_frac);
    put(text, "D20 - %lf\n\n", r.r2_check);
    put(text, "Row24 - H24 = %lf\tI24 = %lf\tK24 = %lf\tM24 = %lf\tN24 = %lf\n\n ", figures.sum_a1n,
        figures.sum_a1d, r.see_sum, figures.sum_cdd, figures.sum_cdn);
    put(text, "P24 = %lf\tS24 = ????\tU24 = %lf\n\n\n", r.x_min, 100 * r.max_rel_error);
}

void put_point(QByteArray *text, const LinearityFigures &figures, int i)
{
    const LINE_RPT &r = figures.record;
    const LinearityColumns &c = figures.columns;
    put(text, "%d\t", i);
    put(text, "%.8lf\t%.8lf\t%.8lf\t%.8lf\t%.8lf\t", r.x[i], r.y_avg[i], r.y_std[i], r.y_min[i],
        r.y_max[i]);
    put(text, "%lf\t%lf\t%lf\t%lf\t%lf\t%lf\t", c.a1n[i], c.a1d[i], c.s_calc[i], c.cdd[i], c.cdn[i],
        std::fabs(r.x[i]));
    put(text, "????\t");
    put(text, "%lf\t%lf\t%lf\t\n", c.error[i], c.abs_error[i], c.abs_rel_error[i]);
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
           now.toString(QStringLiteral("MMddyyyyHHmmss")).toLatin1() + ".html";
}

QByteArray linearity_dump(const LinearityFigures &figures)
{
    QByteArray text;
    put_results(&text, figures);
    put(&text, "Point Values\nPt\tXReference\tYAverage\tYStdDev\tYMin\tYMax\ta1n\ta1d\tsCalc\tcdd\t"
               "cdn\tAbs(x)\tRegLine\tError\tAbs(Error)\tAbsRelError\n");
    const int rows = std::clamp<int32_t>(figures.record.entered_points, 0, MAX_POINTS);
    for (int i = 0; i < rows; ++i)
        put_point(&text, figures, i);
    put(&text, "\n\n");
    put(&text, "P131 = %lf\n", figures.min_abs_x);
    put(&text, "T131 = %lf\n", figures.record.max_abs_error);
    put(&text, "U131 = %lf\n", figures.record.max_rel_error_work);
    put(&text, "P134 = %d\n", figures.min_index);
    put(&text, "T134 = %d\n", figures.abs_index);
    put(&text, "U134 = %d\n", figures.rel_index);
    return text;
}

void write_linearity_dump(const QByteArray &path, const QByteArray &text)
{
    if (!write_whole(path, text))
        log_error(__FILE__, __LINE__, 1, errno, "Unable to write <%s>: %s", path.constData(),
                  std::strerror(errno));
}
