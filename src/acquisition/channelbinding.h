// SPDX-License-Identifier: GPL-3.0-or-later
//
// Binding of a channel: its table is read into a record, the copies to compare
// with are taken and the limits computed. GUI thread only.
#ifndef ACQUISITION_CHANNELBINDING_H
#define ACQUISITION_CHANNELBINDING_H

#include <QString>
#include <QStringList>

#include "frame/zerl_cfg.h"

// "%5d  -  ", by which a channel's item is found.
QString channel_item_prefix(int channel);

// "Select A Channel", then "%5d  -  %s" for each channel whose active is 1.
QStringList channel_items();

// The channel number that an item text begins with; false when it begins with
// none.
bool channel_of_item(const QString &text, int16_t *channel);

// Binds the record's channel; 0, or -1 with a message when it cannot be used.
int32_t bind_channel(ZERL_CFG *cfg);

// bind_channel when the record's channel is active, otherwise nothing.
void bind_active_channel(ZERL_CFG *cfg);

// Publishes a copy of the record that a table was loaded into: in one block copy
// under the table mutex, except the fields that the monitor thread writes, which
// the copy takes over.
void publish_record(ZERL_CFG *copy, ZERL_CFG *record);

// bind_channel for the rebuild of the tables: success clears table_dirty. A
// refused channel leaves the record as it is.
int32_t rebind_channel(ZERL_CFG *cfg);

#endif
