// SPDX-License-Identifier: GPL-3.0-or-later
//
// What the tests of the dialogs over the specs file share: a session with an
// empty record, and a record filled from plain lists.
#ifndef GUI_RECORDS_SPECSRECORD_H
#define GUI_RECORDS_SPECSRECORD_H

#include <cstring>

#include <QDialog>
#include <QStringList>

#include "records/specsfile.h"
#include "support/cellfiles.h"

inline const QString SPECS_FILE = QStringLiteral("/cell/zerl_util_specs.ini");

inline void fresh_specs()
{
    clear_cell();
    if (g_specs == nullptr)
        allocate_session();
    std::memset(g_specs, 0, sizeof *g_specs);
}

inline void set_names(const char *temperature, const char *barometer, const char *humidity)
{
    qstrncpy(g_specs->temperature_var_name, temperature, 80);
    qstrncpy(g_specs->barometer_var_name, barometer, 80);
    qstrncpy(g_specs->humidity_var_name, humidity, 80);
}

inline void set_emails(const QStringList &emails)
{
    std::memset(g_specs->report_email, 0, sizeof g_specs->report_email);
    for (int i = 0; i < emails.size(); ++i)
        qstrncpy(g_specs->report_email[i], emails[i].toUtf8().constData(), REPORT_EMAIL_SIZE);
    g_specs->report_email_count = emails.size();
}

template <typename Widget> Widget *part_of(const QDialog &dialog, const char *name)
{
    auto *const found = dialog.findChild<Widget *>(QLatin1String(name));
    if (found == nullptr)
        qFatal("the form has no %s", name);
    return found;
}

#endif
