// SPDX-License-Identifier: GPL-3.0-or-later
//
// The document "Linearity Verification per 1065.307": values in, HTML out.
#ifndef REPORTS_REPORTDOCUMENT_H
#define REPORTS_REPORTDOCUMENT_H

#include <QByteArray>

#include "host/memories.h"
#include "reports/linearity.h"

// One reading of the test cell's surroundings.
struct EnvironmentReading {
    bool found = false;
    double value = 0.0; // in the unit that the report asks for
    QByteArray units;   // native unit of the variable, which may be another
};

// All that the document shows. Texts are bytes as their owners keep them.
struct ReportSources {
    const LINE_RPT *figures;
    const TABLE_RECORD *table;
    const ENV_BLOCK *expected;
    int channel;
    QByteArray test_cell_name;
    QByteArray host_name;
    QByteArray channel_label;
    QByteArray cal_table_name; // of the channel, as the host has it
    int32_t sample_rate;
    double filter_coeff;
    QByteArray adjust_calibration_time; // "MM/dd/yyyy hh:mm:ss" or empty
    EnvironmentReading temperature;
    EnvironmentReading barometer;
    EnvironmentReading humidity;
};

// The whole document, one line. Texts go in as they stand: nothing is escaped,
// decoded or cut.
QByteArray report_document(const ReportSources &sources);

#endif
