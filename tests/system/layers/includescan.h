// SPDX-License-Identifier: GPL-3.0-or-later
//
// Which room of the tree may know which: the table of docs/architecture.md,
// held against the #include lines, followed to their end. Paths are relative to
// the top of the tree, with forward slashes.
#ifndef TESTS_SYSTEM_LAYERS_INCLUDESCAN_H
#define TESTS_SYSTEM_LAYERS_INCLUDESCAN_H

#include <functional>
#include <optional>

#include <QString>
#include <QStringList>

// The text of a file of the tree; nothing when there is no such file.
using ReadFile = std::function<std::optional<QString>(const QString &path)>;

// The room that a file lives in, such as "src/sensor"; "src roof" for the main
// window and what works on it as a whole; empty for a file that lives in none.
QString room_of(const QString &path);

// One line for each #include, of the file or of a header that it reaches, that
// the file's room does not allow or that names no file: "path:line includes
// target", with ", reached from path" where a header stands between. Empty: all
// is well.
QStringList violations(const QString &path, const ReadFile &read);

#endif
