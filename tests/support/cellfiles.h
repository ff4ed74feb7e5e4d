// SPDX-License-Identifier: GPL-3.0-or-later
//
// Files in the private cell that a test runs in.
#ifndef SUPPORT_CELLFILES_H
#define SUPPORT_CELLFILES_H

#include <QByteArray>
#include <QString>
#include <QStringList>

// Ends the test program when it does not run in a private cell, so that no
// test ever writes to a real one.
void require_private_cell();

// Writes the whole file, and its folders where missing; ends the test program
// when that fails.
void write_file(const QString &path, const QByteArray &bytes);

// The whole file; empty when there is none.
QByteArray read_file(const QString &path);

// Fails the test for a damaged table file in /cell/tables. Does nothing in the
// programs that damage files on purpose (leave_damage in tests/CMakeLists.txt).
void verify_tables();

// Verifies the tables, empties /cell, /specs and /ram, and makes /cell/tables anew.
void clear_cell();

// Shared memory objects of a host, as paths; none when no cell runs.
QStringList published_memories();

#endif
