// SPDX-License-Identifier: GPL-3.0-or-later
//
// Precompiled for the tests of windows.
#include <QtTest>
#include <QtWidgets>

#include <algorithm>
#include <cmath>
#include <functional>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include <qwt_plot.h>
#include <qwt_plot_curve.h>
#include <rapidcheck.h>
