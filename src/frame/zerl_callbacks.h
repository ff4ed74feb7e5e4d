// SPDX-License-Identifier: GPL-3.0-or-later
//
// What the program hands to subsystems that must not know who serves them.
#ifndef FRAME_ZERL_CALLBACKS_H
#define FRAME_ZERL_CALLBACKS_H

#include "frame/zerl_cfg.h"

class QEvent;
class QObject;

struct ZERL_CALLBACKS {
    // Binds the record's channel again after a table rebuild; 0 on success, -1
    // when the channel cannot be used.
    int32_t (*rebind_channel)(ZERL_CFG *cfg);
    // Opens the on-screen pad for a field; null where there is no pad.
    void (*show_input_panel)(QObject *field, QEvent *event);
};

extern ZERL_CALLBACKS g_callbacks;

// Asks for the field's pad as a tap would, with an event of the type
// RequestSoftwareInputPanel; does nothing where there is no pad.
void request_input_panel(QObject *field);

#endif
