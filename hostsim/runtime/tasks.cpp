// SPDX-License-Identifier: GPL-3.0-or-later
//
// Admission of tasks.
#include <cstdlib>

#include "host/operations.h"
#include "hostsim/runtime/log.h"
#include "hostsim/runtime/memoryheader.h"

extern "C" {

int32_t join_layer(int32_t)
{
    std::size_t size = 0;
    const auto *control = static_cast<const hostsim::ControlRecord *>(
        hostsim::map_memory(hostsim::MEMORY_CONTROL, false, &size));
    // Without a cell nobody refuses; the task then finds no memories.
    if (control == nullptr || size < sizeof *control)
        return 0;
    return control->join_answer;
}

void exit_auth_failure(void)
{
    log_error(__FILE__, __LINE__, 1, hostsim::log_number(hostsim::LogCode::TaskRefused),
              "task refused, the process ends");
    exit(EXIT_FAILURE);
}

} // extern "C"
