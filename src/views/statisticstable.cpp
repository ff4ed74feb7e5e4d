// SPDX-License-Identifier: GPL-3.0-or-later
#include "views/statisticstable.h"

#include <algorithm>

#include <QHeaderView>
#include <QScreen>
#include <QScrollBar>
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

void keep_room_for(QTableWidget *table, const QString &text)
{
    QHeaderView *const header = table->horizontalHeader();
    const int last = table->columnCount() - 1;
    const int margin = table->style()->pixelMetric(QStyle::PM_FocusFrameHMargin, nullptr, table);
    const int room = table->fontMetrics().horizontalAdvance(text) + 2 * (margin + 1) + 1;
    const int own = std::max(header->sectionSizeHint(last), header->sectionSize(last));
    header->setMinimumSectionSize(std::max({header->minimumSectionSize(), room, own}));
}

int width_of_columns(const QTableWidget *table)
{
    const QHeaderView *const header = table->horizontalHeader();
    int width = 2 * table->frameWidth() + table->verticalScrollBar()->sizeHint().width();
    for (int column = 0; column < table->columnCount(); ++column)
        width += std::max(header->sectionSize(column), header->minimumSectionSize());
    return width;
}

void widen(QWidget *view, int width)
{
    const int most = view->screen()->availableGeometry().width();
    view->resize(std::max(view->width(), std::min(width, most)), view->height());
}
