// SPDX-License-Identifier: GPL-3.0-or-later
//
// The model's type, degree and range, and what the plot makes of them.
#include <algorithm>
#include <cstring>

#include "host/operations.h"
#include "walk/model.h"

namespace walk
{

void Model::choose_type(int index)
{
    set_type_item(index);
}

void Model::choose_degree(int index)
{
    set_degree_item(index);
}

void Model::choose_range(int index)
{
    set_range_item(index);
}

void Model::set_type_item(int index)
{
    if (view.type == index)
        return;
    view.type = index;
    type_slot();
}

void Model::set_degree_item(int index)
{
    if (index < 0 || index >= view.degrees)
        index = -1;
    if (view.degree == index)
        return;
    view.degree = index;
    if (!m_degree_blocked)
        degree_slot();
}

void Model::set_range_item(int index)
{
    if (view.range == index)
        return;
    view.range = index;
    range_slot();
}

QString Model::degree_text() const
{
    return view.degree < 0 ? QString() : QString::number(view.degree + 1);
}

// The item with that text, or else the last one.
void Model::select_degree(int degree)
{
    const bool found = degree >= 1 && degree <= view.degrees;
    set_degree_item((found ? degree : view.degrees) - 1);
}

void Model::sync(const Session &it)
{
    const bool was_blocked = m_degree_blocked;
    m_degree_blocked = true;
    const POLY_RANGE_RECORD &range = it.table.poly[range_of(it.table)];
    const auto fill = [this](int highest) {
        view.degrees = std::max(highest, 0);
        view.degree = view.degrees > 0 ? 0 : -1;
    };
    fill(0);
    view.type_enabled = true;
    switch (it.table.table_type) {
    case TABLE_INTERP:
        set_type_item(0);
        view.degree_enabled = false;
        fill(it.table.poly[0].num_points > 7 ? 7 : it.table.poly[0].num_points - 1);
        view.range_enabled = false;
        view.range_item = false;
        view.coefficients = false;
        show_coefficients(it);
        break;
    case TABLE_POLY:
        set_type_item(1);
        view.degree_enabled = true;
        if (range.num_points == 0)
            fill(range.num_coeffs - 1);
        else
            fill(range.num_points > 8 ? 7 : range.num_points - 1);
        select_degree(range.num_coeffs - 1);
        break;
    case TABLE_POLY_RANGE:
        set_type_item(2);
        view.range_enabled = true;
        fill(range.num_points - 1);
        select_degree(range.num_points - 1);
        break;
    default:
        break;
    }
    if (it.table.table_type == TABLE_POLY || it.table.table_type == TABLE_POLY_RANGE) {
        order_text = degree_text();
        view.range_item = true;
        view.coefficients = true;
        show_coefficients(it);
    }
    m_degree_blocked = was_blocked;
}

void Model::type_slot()
{
    session.redraw_all = 1;
    session.table_dirty = 0;
    cal_type_changed = 1;
    TABLE_RECORD &table = session.table;
    switch (view.type) {
    case 1:
        table.table_type = TABLE_POLY;
        view.range_enabled = false;
        view.coefficients = true;
        select_degree(table.poly[1].num_points - 1);
        order_text = degree_text();
        view.range_item = true;
        view.degree_enabled = true;
        break;
    case 0:
        table.table_type = TABLE_INTERP;
        set_degree_item(0);
        view.degree_enabled = false;
        view.range_enabled = false;
        view.coefficients = false;
        sync(session);
        break;
    case 2:
        table.table_type = TABLE_POLY_RANGE;
        table.poly_range_index = 0;
        select_degree(table.poly[0].num_points - 1);
        view.range_item = true;
        sync(session);
        view.degree_enabled = true;
        view.range_enabled = true;
        set_range_item(0);
        break;
    default:
        break;
    }
}

void Model::degree_slot()
{
    session.redraw_all = 1;
    session.table_dirty = 0;
    TABLE_RECORD &table = session.table;
    const QString text = degree_text();
    if (table.table_type == TABLE_POLY || table.table_type == TABLE_POLY_RANGE)
        table.poly[range_of(table)].num_coeffs =
            static_cast<int16_t>(std::min<int>(text.toInt() + 1, POLY_COEFFS)); // all it holds
    order_text = text;
    update_plot();
    show_coefficients(session);
}

void Model::range_slot()
{
    session.table.poly_range_index = static_cast<int16_t>(view.range);
    cal_type_changed = 1;
    select_degree(session.table.poly[view.range].num_points - 1);
    recompute();
    session.redraw_all = 1;
    session.table_dirty = 0;
    sync(session);
    order_text = degree_text();
    update_plot();
    show_coefficients(session);
}

void Model::show_coefficients(const Session &it)
{
    const bool polynomial =
        it.table.table_type == TABLE_POLY || it.table.table_type == TABLE_POLY_RANGE;
    const POLY_RANGE_RECORD &range = working_range(it.table);
    for (int i = 0; i < COEFF_LABELS; ++i) {
        CoeffLabel &label = view.coeff[static_cast<std::size_t>(i)];
        label.shown = polynomial && i < range.num_coeffs;
        if (label.shown)
            label.text = QString::number(range.coeffs[i], 'g', 6);
    }
}

void Model::tick()
{
    update_plot();
}

void Model::update_plot()
{
    if (view.curves_removed)
        return;
    if (session.redraw_all != 0 ||
        std::memcmp(m_last_seen, &session.current, sizeof m_last_seen) != 0) {
        if (view.type == 1 || view.type == 2)
            refit();
        show_coefficients(session);
        std::memcpy(m_last_seen, &session.current, sizeof m_last_seen);
    }
    session.redraw_all = 0;
}

// The points of the type's range; coefficients go to the range in work. Without
// points the stored coefficients stay.
void Model::refit()
{
    const POLY_RANGE_RECORD &points = working_range(session.table);
    POLY_RANGE_RECORD &target = session.table.poly[range_of(session.table)];
    const int n = points.num_points;
    if (n == 0)
        return;
    int count = order_text.toInt() + 1;
    if (n < count)
        count = n - 1;
    count = std::clamp<int>(count, 0, POLY_COEFFS);
    double coeffs[POLY_COEFFS] = {};
    if (cal_type_changed != 0) {
        cal_type_changed = 0;
        std::copy_n(target.coeffs, count, coeffs);
    } else {
        polynomialfit(n, count, points.x, points.y, coeffs);
    }
    target.num_coeffs = static_cast<int16_t>(count);
    std::fill_n(target.coeffs, 8, 0.0);
    std::copy_n(coeffs, count, target.coeffs);
}

} // namespace walk
