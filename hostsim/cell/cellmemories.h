// SPDX-License-Identifier: GPL-3.0-or-later
//
// The memories that a cell publishes, and the fields of them that it changes
// while it runs.
#ifndef HOSTSIM_CELL_CELLMEMORIES_H
#define HOSTSIM_CELL_CELLMEMORIES_H

#include <string>

#include "host/memories.h"
#include "hostsim/cell/celldescription.h"

namespace cell
{

// One publication; withdrawn at the end of this object's life.
class CellMemories
{
public:
    CellMemories() = default;
    ~CellMemories() { withdraw(); }
    CellMemories(const CellMemories &) = delete;
    CellMemories &operator=(const CellMemories &) = delete;

    // Publishes all memories, the run-time tables still empty; false, and why in
    // *error, when one cannot be.
    bool publish(const CellDescription &description, std::string *error);
    void withdraw();

    int channel_count() const { return m_channel_count; }
    AI_REAL_RECORD &channel(int n) { return m_channels[n]; }
    AI_TRANSFER_RECORD &transfer(int n) { return m_transfer[n]; }

    // The reading of a channel, mV: readers always see a whole value.
    double millivolts(int n) const;
    void set_millivolts(int n, double mv);

private:
    bool publish_channels(const CellDescription &description);
    bool publish_attributes(const CellDescription &description);
    bool publish_units(const CellDescription &description, std::string *error);

    int m_channel_count = 0;
    bool m_published = false;
    AI_REAL_RECORD *m_channels = nullptr;
    MV_RECORD *m_millivolts = nullptr;
    AI_TRANSFER_RECORD *m_transfer = nullptr;
};

// Makes the table files that the description asks for and that are not there;
// those that are there stay as they are. False and why when one cannot be made.
bool make_table_files(const CellDescription &description, std::string *error);

} // namespace cell

#endif
