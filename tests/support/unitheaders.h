// SPDX-License-Identifier: GPL-3.0-or-later
//
// Precompiled for the tests of computation.
#include <QtCore>
#include <QtTest>

#include <algorithm>
#include <cmath>
#include <functional>
#include <limits>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include <rapidcheck.h>
