// SPDX-License-Identifier: GPL-3.0-or-later
//
// The one door to a channel's table files: the table in force (.tbl), the
// archive (.save) and the history (.old). GUI thread only, without the table
// mutex.
#ifndef CALIBRATION_TABLESTORE_H
#define CALIBRATION_TABLESTORE_H

#include <QByteArray>

#include "frame/zerl_cfg.h"

// How long the GUI waits for the host's rebuild, the only synchronisation there
// is with it.
constexpr int32_t REBUILD_WAIT_MS = 2000;
extern int32_t g_rebuild_wait_ms; // REBUILD_WAIT_MS except in tests

// Reads a channel's table, the archive first: an archive record wins over the
// .tbl for all data but mua_instance_name and description. Its texts end within
// their fields, whatever the file holds. Returns the status of the read, 65535 as
// a 16-bit value for failure.
int32_t read_channel_table(const char *path, TABLE_RECORD *table);

// Tells the user where the two files differ; changes nothing.
void check_table_against_archive(const TABLE_RECORD *archived, const TABLE_RECORD *from_tbl,
                                 const char *tbl_name, const char *save_name);

// The save of every step but re-use. Always 0.
int32_t save_calibration(ZERL_CFG *cfg, int32_t save_type);

// The save of the re-use step: the former points go into the record, y_min and
// y_max are those of the new ones. Always 0.
int32_t save_reused_calibration(ZERL_CFG *cfg, int32_t save_type);

// Has the host rebuild its run-time tables, waits, attaches the memories again
// and binds the channel anew. Failures go to the host's log.
void rebuild_tables(ZERL_CFG *cfg);

// "cat TBL >> OLD"; a path that a shell would interpret is quoted.
QByteArray history_command(const char *tbl_path, const char *old_path);

#endif
