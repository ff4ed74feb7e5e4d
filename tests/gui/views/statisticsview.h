// SPDX-License-Identifier: GPL-3.0-or-later
//
// A session without a window, and reading what a statistics view shows of it.
#ifndef GUI_VIEWS_STATISTICSVIEW_H
#define GUI_VIEWS_STATISTICSVIEW_H

#include <cstring>

#include <QDialog>
#include <QDialogButtonBox>
#include <QHeaderView>
#include <QLabel>
#include <QPushButton>
#include <QTableWidget>
#include <QtTest>

#include "frame/zerl_cfg.h"
#include "reports/linearity.h"
#include "support/cellfiles.h"

// An empty session, as before the first binding; figures of earlier views are
// forgotten.
inline void begin_session()
{
    if (g_cfg == nullptr)
        allocate_session();
    set_cfg_pointer(g_cfg);
    std::memset(static_cast<void *>(g_cfg), 0, sizeof *g_cfg);
    g_line_rpt = {};
}

template <typename Widget> Widget *part(const QWidget *view, const char *name)
{
    return view->findChild<Widget *>(QString::fromLatin1(name));
}

inline QString label_text(const QWidget *view, const QString &name)
{
    const auto *label = view->findChild<QLabel *>(name);
    return label != nullptr ? label->text() : QStringLiteral("(no label)");
}

inline QStringList table_headings(const QTableWidget *table)
{
    QStringList texts;
    for (int column = 0; column < table->columnCount(); ++column)
        texts += table->horizontalHeaderItem(column)->text();
    return texts;
}

inline QStringList table_row(const QTableWidget *table, int row)
{
    QStringList texts;
    for (int column = 0; column < table->columnCount(); ++column) {
        const QTableWidgetItem *cell = table->item(row, column);
        texts += cell != nullptr ? cell->text() : QStringLiteral("(no cell)");
    }
    return texts;
}

// The first two columns are centred both ways, the others are left as they are.
inline bool first_two_are_centred(const QTableWidget *table)
{
    for (int row = 0; row < table->rowCount(); ++row) {
        for (int column = 0; column < table->columnCount(); ++column) {
            const QVariant alignment = table->item(row, column)->data(Qt::TextAlignmentRole);
            if (column < 2 ? alignment.toInt() != Qt::AlignCenter : alignment.isValid())
                return false;
        }
    }
    return true;
}

// No heading and no cell is wider than its column.
inline bool nothing_is_cut(QTableWidget *table)
{
    for (int column = 0; column < table->columnCount(); ++column) {
        if (table->horizontalHeader()->sectionSizeHint(column) > table->columnWidth(column))
            return false;
        for (int row = 0; row < table->rowCount(); ++row) {
            const int text =
                table->fontMetrics().horizontalAdvance(table->item(row, column)->text());
            if (text + 8 > table->columnWidth(column)) // 8: the style's margins
                return false;
        }
    }
    return true;
}

inline bool ok_alone(const QWidget *view)
{
    const auto *buttons = part<QDialogButtonBox>(view, "buttonBox");
    return buttons != nullptr && buttons->standardButtons() == QDialogButtonBox::Ok;
}

// Its Ok accepts the view, and the box's "rejected" rejects it.
inline void check_closing(QDialog *view)
{
    auto *buttons = part<QDialogButtonBox>(view, "buttonBox");
    view->show();
    QTest::mouseClick(buttons->button(QDialogButtonBox::Ok), Qt::LeftButton);
    QVERIFY(!view->isVisible());
    QCOMPARE(view->result(), int(QDialog::Accepted));
    view->show();
    QVERIFY(QMetaObject::invokeMethod(buttons, "rejected"));
    QVERIFY(!view->isVisible());
    QCOMPARE(view->result(), int(QDialog::Rejected));
}

#endif
