// SPDX-License-Identifier: GPL-3.0-or-later
//
// The host's Qt support.
#ifndef HOST_VORNAXQT_H
#define HOST_VORNAXQT_H

class QString;

// True when the program of that name has no display to run on.
bool is_display_env_var_empty(QString program);

#endif
