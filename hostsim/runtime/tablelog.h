// SPDX-License-Identifier: GPL-3.0-or-later
//
// Codes of the table operations' entries in the log.
#ifndef HOSTSIM_RUNTIME_TABLELOG_H
#define HOSTSIM_RUNTIME_TABLELOG_H

#include <cstdint>

namespace hostsim
{

enum class TableLogCode : std::int32_t {
    TableUnreadable = 921, // a table file or archive cannot be read or is damaged
    RecordDamaged = 922,   // an archive's record was passed over
    TableUnwritten = 923,  // a table file or archive cannot be written
    TypeRefused = 924,     // a record of a type that is not stored
    RecordMended = 925,    // a record was stored with values brought within limits
    SelectorRefused = 926, // a selector that is not known
    ArchiveLocked = 927    // an archive was read while another process kept it locked
};

// As log_error takes it.
constexpr std::int32_t log_number(TableLogCode code)
{
    return static_cast<std::int32_t>(code);
}

} // namespace hostsim

#endif
