// SPDX-License-Identifier: GPL-3.0-or-later
#include "frame/line_rpt.h"

LINE_RPT g_line_rpt = {};
