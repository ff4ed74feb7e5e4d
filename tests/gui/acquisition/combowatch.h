// SPDX-License-Identifier: GPL-3.0-or-later
//
// What the combos of type, degree and range show, what the record says beside
// it, and the order in which the combos' slots ended. Each as one line of text.
#ifndef GUI_ACQUISITION_COMBOWATCH_H
#define GUI_ACQUISITION_COMBOWATCH_H

#include <QStandardItemModel>

#include "gui/frame/testwindow.h"

class ComboWatch : public QObject
{
public:
    explicit ComboWatch(const Ui::MainWindow *form) : m_form(form)
    {
        note(form->cboCalType, "type");
        note(form->cboOrderOfPolynomial, "degree");
        note(form->cboPolyRangeIndex, "range");
    }

    // "type 2, range 0": an inner slot stands before the one that it ran in.
    QString slots_run() const { return m_changes.join(QStringLiteral(", ")); }
    void forget() { m_changes.clear(); }

    QStringList degrees() const
    {
        QStringList items;
        for (int i = 0; i < m_form->cboOrderOfPolynomial->count(); ++i)
            items += m_form->cboOrderOfPolynomial->itemText(i);
        return items;
    }

    bool third_type_can_be_picked() const
    {
        return qobject_cast<const QStandardItemModel *>(m_form->cboCalType->model())
            ->item(2)
            ->isEnabled();
    }

    // "POLY on | 1-5: 2 on | range 0 off | third on | 3 coefficients"
    QString combos() const
    {
        const QStringList items = degrees();
        const QString offered = items.isEmpty() ? QStringLiteral("none")
                                                : items.first() + QLatin1Char('-') + items.last() +
                                                      QStringLiteral(": ") +
                                                      m_form->cboOrderOfPolynomial->currentText();
        return QStringList{m_form->cboCalType->currentText() + state(m_form->cboCalType),
                           offered + state(m_form->cboOrderOfPolynomial),
                           QStringLiteral("range ") + m_form->cboPolyRangeIndex->currentText() +
                               state(m_form->cboPolyRangeIndex),
                           QStringLiteral("third ") +
                               QLatin1String(third_type_can_be_picked() ? "on" : "off"),
                           coefficients()}
            .join(QStringLiteral(" | "));
    }

    // "type 1 range 0 | 6 points 6 rows | field 6 | fit 2 | changed 1 dirty 0 redraw 1"
    QString record() const
    {
        return QStringLiteral("type %1 range %2 | %3 points %4 rows | field %5 | fit %6 | "
                              "changed %7 dirty %8 redraw %9")
            .arg(g_cfg->table.table_type)
            .arg(g_cfg->table.poly_range_index)
            .arg(g_cfg->long_current.num_points)
            .arg(g_num_points)
            .arg(m_form->txtNumPoints->text(),
                 g_poly_order_text.isEmpty() ? QStringLiteral("-") : g_poly_order_text)
            .arg(g_cal_type_changed)
            .arg(g_cfg->table_dirty)
            .arg(g_cfg->redraw_all);
    }

private:
    static QString state(const QWidget *widget)
    {
        return QLatin1String(widget->isEnabled() ? " on" : " off");
    }

    // A frame that is hidden hides its labels too.
    QString coefficients() const
    {
        int shown = 0;
        for (int i = 0; i < 8; ++i) {
            const auto *value =
                m_form->coeffFrame->findChild<QLabel *>(QStringLiteral("lblCoeff%1Value").arg(i));
            shown += value->isHidden() ? 0 : 1;
        }
        const QString count = QString::number(shown) + QStringLiteral(" coefficients");
        return m_form->coeffFrame->isHidden() ? count + QStringLiteral(" in a hidden frame")
                                              : count;
    }

    void note(const QComboBox *combo, const char *name)
    {
        connect(combo, QOverload<int>::of(&QComboBox::currentIndexChanged), this,
                [this, name](int index) {
                    m_changes += QLatin1String(name) + QLatin1Char(' ') + QString::number(index);
                });
    }

    const Ui::MainWindow *m_form;
    QStringList m_changes;
};

#endif
