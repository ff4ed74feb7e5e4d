// SPDX-License-Identifier: GPL-3.0-or-later
//
// The operator's window beside the tool: what is applied to each sensor of the
// training cell, and what condition the sensor is in.
#ifndef HOSTSIM_CELL_CELLPANEL_H
#define HOSTSIM_CELL_CELLPANEL_H

#include <memory>
#include <vector>

#include <QString>
#include <QTimer>
#include <QWidget>

#include "hostsim/cell/cellclient.h"

namespace Ui
{
class CellPanel;
}

class CellPanel : public QWidget
{
    Q_OBJECT

public:
    explicit CellPanel(const QString &socket, QWidget *parent = nullptr);
    ~CellPanel() override;

    // Asks the cell and shows what it says; false when there is none.
    bool refresh();

private:
    void fill_row(int row, const cell::ChannelState &channel);
    void show_selected();
    const cell::ChannelState *selected() const;
    void apply(double value);
    void apply_part(double part);
    void set_condition();
    void report(bool done);

    std::unique_ptr<Ui::CellPanel> m_ui;
    cell::CellClient m_client;
    std::vector<cell::ChannelState> m_channels;
    QTimer m_timer;
    int m_shown = -1; // channel that the controls are set up for
};

#endif
