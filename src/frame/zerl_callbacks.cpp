// SPDX-License-Identifier: GPL-3.0-or-later
#include "frame/zerl_callbacks.h"

ZERL_CALLBACKS g_callbacks = {nullptr};
