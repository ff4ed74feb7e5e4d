// SPDX-License-Identifier: GPL-3.0-or-later
//
// A cell as it runs: its transducers move the millivolts in the memories, and
// an operator's commands change what is applied.
#ifndef HOSTSIM_CELL_LIVECELL_H
#define HOSTSIM_CELL_LIVECELL_H

#include <string>
#include <vector>

#include "hostsim/cell/celldescription.h"
#include "hostsim/cell/cellmemories.h"
#include "hostsim/cell/transducer.h"

namespace cell
{

class LiveCell
{
public:
    // The memories must outlive this object.
    LiveCell(const CellDescription &description, CellMemories *memories);

    // Moves every reading on by so many seconds.
    void tick(double seconds);

    // Obeys one line; lines of the answer, the last one "ok" or "error WHY".
    std::vector<std::string> command(const std::string &line);

    bool quit_asked() const { return m_quit; }

private:
    using Words = std::vector<std::string>;
    struct Channel {
        bool has_transducer = false;
        bool held = false; // at an exact millivolt value
        Transducer transducer;
    };

    bool obey(const Words &words, Words *answer, std::string *error);
    bool on_apply(const Words &words, int n, std::string *error);
    bool on_mv(const Words &words, int n, std::string *error);
    bool on_condition(const Words &words, int n, std::string *error);
    bool on_set(const Words &words, int n, std::string *error);
    void step(int n, double seconds);
    std::string channel_line(int n);

    CellMemories &m_memories;
    std::vector<Channel> m_channels;
    std::vector<int> m_moving; // channels with a transducer
    double m_hours = 0.0;
    bool m_quit = false;
};

} // namespace cell

#endif
