// SPDX-License-Identifier: GPL-3.0-or-later
//
// A folder's files as they stand on the disc: what a process has written, and
// what of it a machine that loses its power keeps.
#ifndef TESTS_SYSTEM_FAULTINJECT_DISCSTATE_H
#define TESTS_SYSTEM_FAULTINJECT_DISCSTATE_H

#include <QByteArray>
#include <QMap>
#include <QString>

// Contents of each file by its name; folders are left out.
using FolderContents = QMap<QString, QByteArray>;

FolderContents read_folder(const QString &folder);
// Makes the folder hold exactly these files.
void restore_folder(const QString &folder, const FolderContents &contents);

// The shadow that a preloaded process keeps up: everything in the folder is
// safe on the disc now.
void begin_shadow(const QString &folder, const QString &shadow);
// What the power cut leaves when no name and no content is kept but what was
// made safe by an fsync of its own.
FolderContents kept_names_and_contents(const QString &shadow);
// What it leaves when all names are kept, but contents only as made safe.
FolderContents kept_contents(const QString &folder, const QString &shadow);
// What it leaves when a rename is kept, but not the name of a file that was
// created since the folder's last fsync: one outcome for each such name, by the
// name that is lost. Contents are kept only as made safe.
QMap<QString, FolderContents> lost_new_names(const QString &folder, const QString &shadow);

#endif
