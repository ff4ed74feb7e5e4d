// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef VIEWS_STATISTICSTABLE_H
#define VIEWS_STATISTICSTABLE_H

class QStringList;
class QTableWidget;

// Removes all rows, then makes `count` new ones.
void renew_rows(QTableWidget *table, int count);

// One text for each column of the row; the first two columns are centred both
// ways, the others stand as the table has it.
void fill_row(QTableWidget *table, int row, const QStringList &texts);

#endif
