// SPDX-License-Identifier: GPL-3.0-or-later
#include "sensor/tablevalueunitsdialog.h"

#include <QSignalBlocker>

#include "host/operations.h"
#include "sensor/unitcatalogue.h"
#include "ui_tablevalueunitsdialog.h"

uint8_t units_for_table = 0;
uint8_t units_for_sensor = 0;

TableValueUnitsDialog::TableValueUnitsDialog(QWidget *parent)
    : QDialog(parent), ui(std::make_unique<Ui::TableValueUnitsDialog>())
{
    ui->setupUi(this);
    load();
    connect(ui->lstUnitType, &QListWidget::itemSelectionChanged, this,
            &TableValueUnitsDialog::pick_selected);
}

TableValueUnitsDialog::~TableValueUnitsDialog() = default;

void TableValueUnitsDialog::load()
{
    g_cfg->value_units_override = units_for_table != 0 ? 1 : 0;
    int16_t category = 0;
    int16_t row = 0;
    load_unit_lists(g_cfg, &category, &row);
    const bool found = g_cfg->value_units[0] != '\0';
    ui->lstUnitCategory->setCurrentRow(category);
    if (found) {
        ui->lstUnitType->setCurrentRow(row);
        return;
    }
    // The first row is current then, but nothing is selected or picked.
    const QSignalBlocker blocker(ui->lstUnitType);
    ui->lstUnitType->setCurrentRow(row, QItemSelectionModel::NoUpdate);
}

void TableValueUnitsDialog::list_units(int category)
{
    ui->lstUnitType->clear();
    for (const QByteArray &keyword : unit_list(g_cfg, category)) {
        auto *const item = new QListWidgetItem(QString::fromUtf8(keyword));
        item->setData(Qt::UserRole, keyword);
        ui->lstUnitType->addItem(item);
    }
    // Without this the first unit would become the current one with the focus.
    ui->lstUnitType->setCurrentIndex(QModelIndex());
}

// The row that is current without being selected can be picked too.
void TableValueUnitsDialog::pick_selected()
{
    const QList<QListWidgetItem *> selected = ui->lstUnitType->selectedItems();
    if (!selected.isEmpty())
        pick(selected.first());
}

// The keyword as the host has it, which its text need not give back.
void TableValueUnitsDialog::pick(const QListWidgetItem *item)
{
    const QByteArray keyword =
        item != nullptr ? item->data(Qt::UserRole).toByteArray() : QByteArray();
    copyn(__FILE__, __LINE__, g_cfg->value_units, keyword.constData(), sizeof g_cfg->value_units);
}

// Emptying the list takes the picked unit away, until another is picked.
void TableValueUnitsDialog::on_lstUnitCategory_currentRowChanged(int row)
{
    list_units(row);
}

void TableValueUnitsDialog::on_lstUnitType_currentTextChanged(const QString &)
{
    pick(ui->lstUnitType->currentItem());
}

// A sensor's units are taken up by the table information dialog.
void TableValueUnitsDialog::on_btnOK_clicked()
{
    if (g_cfg->value_units_override != 0)
        copyn(__FILE__, __LINE__, g_cfg->table_units, g_cfg->value_units,
              sizeof g_cfg->table_units);
}
