// SPDX-License-Identifier: GPL-3.0-or-later
//
// Which room of the tree may include which: the table of docs/architecture.md.
// Paths are relative to the top of the tree, with forward slashes.
#ifndef TESTS_SYSTEM_LAYERS_INCLUDESCAN_H
#define TESTS_SYSTEM_LAYERS_INCLUDESCAN_H

#include <functional>

#include <QString>
#include <QStringList>

using FileExists = std::function<bool(const QString &path)>;

// The room that a file lives in, such as "src/sensor"; empty for a file that
// lives in none.
QString room_of(const QString &path);

// One line for each #include of the file's text that its room does not allow,
// or that names no file: "path:line includes target". Empty: all is well.
QStringList violations(const QString &path, const QString &text, const FileExists &exists);

#endif
