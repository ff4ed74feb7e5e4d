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
    int longest = table->fontMetrics().horizontalAdvance(text);
    for (int row = 0; row < table->rowCount(); ++row) {
        const QString cell = table->item(row, last)->text();
        longest = std::max(longest, table->fontMetrics().horizontalAdvance(cell));
    }
    const int margin = table->style()->pixelMetric(QStyle::PM_FocusFrameHMargin, nullptr, table);
    const int room = longest + 2 * (margin + 1) + 2; // grid lines on both sides
    const int least = std::max({header->minimumSectionSize(), room, header->sectionSizeHint(last)});
    header->setMinimumSectionSize(least);
    // A last column that stretches keeps the size that it had before it did.
    const bool stretches = header->stretchLastSection();
    header->setStretchLastSection(false);
    header->resizeSection(last, least);
    header->setStretchLastSection(stretches);
}

// The last one stretches over what is left, and needs the least size alone.
int width_of_columns(const QTableWidget *table)
{
    const QHeaderView *const header = table->horizontalHeader();
    const int least = header->minimumSectionSize();
    int width = 2 * table->frameWidth() + table->verticalScrollBar()->sizeHint().width() + least;
    for (int column = 0; column < table->columnCount() - 1; ++column)
        width += std::max(header->sectionSize(column), least);
    return width;
}

void widen(QWidget *view, int width)
{
    const int most = view->screen()->availableGeometry().width();
    view->resize(std::max(view->width(), std::min(width, most)), view->height());
}
