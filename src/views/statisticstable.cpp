// SPDX-License-Identifier: GPL-3.0-or-later
#include "views/statisticstable.h"

#include <QTableWidget>

void renew_rows(QTableWidget *table, int count)
{
    table->setRowCount(0);
    table->setRowCount(count);
}

void fill_row(QTableWidget *table, int row, const QStringList &texts)
{
    for (int column = 0; column < texts.size(); ++column) {
        auto *item = new QTableWidgetItem(texts[column]);
        if (column < 2)
            item->setTextAlignment(Qt::AlignCenter);
        table->setItem(row, column, item);
    }
}
