// SPDX-License-Identifier: GPL-3.0-or-later
//
// What the program hands to subsystems that must not know who serves them.
#ifndef FRAME_ZERL_CALLBACKS_H
#define FRAME_ZERL_CALLBACKS_H

#include "frame/zerl_cfg.h"

struct ZERL_CALLBACKS {
    // Binds the record's channel again after a table rebuild; 0 on success, -1
    // when the channel cannot be used.
    int32_t (*rebind_channel)(ZERL_CFG *cfg);
};

extern ZERL_CALLBACKS g_callbacks;

#endif
