// SPDX-License-Identifier: GPL-3.0-or-later
#include "frame/hostlink.h"

#include "frame/functions.h"
#include "frame/relaxed.h"

const AI_REAL_RECORD *Ai_real = nullptr;
const MV_RECORD *Mv = nullptr;
const SYS_ATTR_RECORD *Sys_attr = nullptr;
const void *Sched_attr = nullptr;
int16_t Override_enable = 0;
int16_t Spec_file_line_count = 0;
const char *VORNAX_VER __attribute__((weak)) = "$Version: E-7.0.27   $";

const AI_TRANSFER_RECORD *g_ai_transfer = nullptr;
const DISPLAY_STRINGS_RECORD *g_display_strings = nullptr;
const void *g_cal_tables = nullptr;
const void *g_cal_tables_base = nullptr;

namespace
{

// A memory that cannot be had leaves the pointer as it was: after a rebuild the
// monitor thread goes on with what there is.
template <typename Record> bool attach(int32_t id, const Record *&pointer, const char *failure)
{
    const auto *address = static_cast<const Record *>(get_shrd_mem(id, 0));
    if (address == nullptr) {
        show_information(failure);
        return false;
    }
    relaxed_store(pointer, address);
    return true;
}

} // namespace

int32_t attach_host_memories()
{
    // The AI_TRANSFER text has no "to", as operators know it.
    const bool attached =
        attach(MEMORY_AI_REAL, Ai_real, "Vornax must be running\nUnable to get AI_REAL memory") &&
        attach(MEMORY_MILLIVOLTS, Mv, "Vornax must be running\nUnable to get MILLIVOLTS memory") &&
        attach(MEMORY_SYS_ATTR, Sys_attr,
               "Vornax must be running\nUnable to get System Attributes memory") &&
        attach(MEMORY_AI_TRANSFER, g_ai_transfer,
               "Vornax must be running\nUnable get AI_TRANSFER memory") &&
        attach(MEMORY_SCHEDULER, Sched_attr,
               "Vornax must be running\nUnable to get SCHEDULER memory") &&
        attach(MEMORY_DISPLAY_STRINGS, g_display_strings,
               "Vornax must be running\nUnable to get DISPLAY_STRINGS memory") &&
        attach(MEMORY_CAL_TABLES, g_cal_tables,
               "Vornax must be running\nUnable to get CAL_TABLES memory");
    if (!attached)
        return -1;
    g_cal_tables_base = g_cal_tables;
    return 0;
}

int32_t find_var_address(const char *name, void **address)
{
    VARIABLE_ID id = {};
    const int32_t result = find_variable(name, &id);
    if ((result & 0xffff) != 0) {
        log_error(__FILE__, __LINE__, 1, result, "Can't find variable <%s>", name);
        return 0;
    }
    void *found = get_vrbl_adr(id);
    if (found == nullptr) { // the host withdrew it between the two calls
        log_error(__FILE__, __LINE__, 1, result, "Can't find variable <%s>", name);
        return 0;
    }
    *address = found;
    return 1;
}
