// SPDX-License-Identifier: GPL-3.0-or-later
//
// Small files that are written as a whole.
#ifndef RECORDS_WHOLEFILE_H
#define RECORDS_WHOLEFILE_H

#include <QByteArray>

// Replaces the file's contents: written beside it, flushed and renamed, so that
// a full disc or a crash leaves the former file. Its rights stay, and a link
// goes on pointing to it. Where nothing can be put beside it (a folder that is
// not writable, a device, a file with a second name, another user's) it is
// written in place, once there is room for all of it. The path is bytes as the
// host opens it, whatever the locale. False, with the reason in errno, when that
// fails.
bool replace_file(const QByteArray &path, const QByteArray &text);

#endif
