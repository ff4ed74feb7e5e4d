// SPDX-License-Identifier: GPL-3.0-or-later
//
// Codes of the table operations' entries in the log.
#ifndef HOSTSIM_RUNTIME_TABLELOG_H
#define HOSTSIM_RUNTIME_TABLELOG_H

namespace hostsim
{

enum TableLogCode {
    LOG_TABLE_UNREADABLE = 921, // a table file or archive cannot be read or is damaged
    LOG_RECORD_DAMAGED = 922,   // an archive's record was passed over
    LOG_TABLE_UNWRITTEN = 923,  // a table file or archive cannot be written
    LOG_TYPE_REFUSED = 924,     // a record of a type that is not stored
    LOG_RECORD_MENDED = 925,    // a record was stored with values brought within limits
    LOG_SELECTOR_REFUSED = 926, // a selector that is not known
    LOG_ARCHIVE_LOCKED = 927    // an archive was read while another process kept it locked
};

} // namespace hostsim

#endif
