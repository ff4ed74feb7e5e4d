// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef VIEWS_STATISTICSTABLE_H
#define VIEWS_STATISTICSTABLE_H

class QString;
class QStringList;
class QTableWidget;
class QWidget;

// Removes all rows, then makes `count` new ones.
void renew_rows(QTableWidget *table, int count);

// One text for each column of the row; the first two columns are centred both
// ways, the others stand as the table has it.
void fill_row(QTableWidget *table, int row, const QStringList &texts);

// Makes the columns wide enough for that text and for the last one's own, which
// stretches and would shrink below them too. Once the columns have their widths.
void keep_room_for(QTableWidget *table, const QString &text);

// Width in pixels at which all columns stand beside each other.
int width_of_columns(const QTableWidget *table);

// Widens the view to that many pixels, as far as the screen goes.
void widen(QWidget *view, int width);

#endif
