// SPDX-License-Identifier: GPL-3.0-or-later
#include "records/workingstandard.h"

#include <cerrno>
#include <cstdio>
#include <cstring>

#include "frame/functions.h"
#include "host/operations.h"
#include "records/keywordlines.h"
#include "records/wholefile.h"

namespace
{

constexpr std::size_t PATH_SIZE = 304;

struct Entry {
    const char *keyword;
    QString WorkingStandard::*value;
};

// In the order of the file, in which the reader looks for them: its search need not start
// again.
const Entry ENTRIES[] = {
    {"@WS_MAKE_KEYWORD", &WorkingStandard::make},
    {"@WS_MODEL_KEYWORD", &WorkingStandard::model},
    {"@WS_CAL_DATE_KEYWORD", &WorkingStandard::cal_date},
    {"@WS_SERIAL_NO_KEYWORD", &WorkingStandard::serial_no},
    {"@WS_RANGE_KEYWORD", &WorkingStandard::range},
};

} // namespace

bool is_complete(const WorkingStandard &standard)
{
    if (standard.name.isEmpty())
        return false;
    for (const Entry &entry : ENTRIES) {
        if ((standard.*entry.value).isEmpty())
            return false;
    }
    return true;
}

QByteArray working_standard_path(const QString &name)
{
    return QStringLiteral("%1%2.txt").arg(QLatin1String(WORKING_STANDARD_FOLDER), name).toUtf8();
}

QByteArray working_standard_lookup_path(const QString &name)
{
    char path[PATH_SIZE];
    copyn(__FILE__, __LINE__, path, working_standard_path(name).constData(), sizeof path);
    return QByteArray(path);
}

std::optional<WorkingStandard> read_working_standard(const QString &name)
{
    std::FILE *file = std::fopen(working_standard_lookup_path(name).constData(), "re");
    if (file == nullptr)
        return std::nullopt;
    WorkingStandard standard;
    standard.name = name;
    for (const Entry &entry : ENTRIES) {
        char line[LINE_BUFFER];
        if (get_1st_line(file, line, entry.keyword) != KEYWORD_NOT_FOUND)
            standard.*entry.value = text_of_line(line);
    }
    std::fclose(file);
    return standard;
}

QByteArray working_standard_text(const WorkingStandard &standard)
{
    QByteArray text = text_line(
        QStringLiteral("# Information for working standard - %1").arg(standard.name).toUtf8());
    for (const Entry &entry : ENTRIES)
        text += keyword_lines(entry.keyword, (standard.*entry.value).toUtf8());
    return text;
}

void write_working_standard(const WorkingStandard &standard)
{
    const QByteArray path = working_standard_path(standard.name);
    if (!replace_file(path, working_standard_text(standard)))
        log_error(__FILE__, __LINE__, 1, errno, "Unable to write <%s>: %s", path.constData(),
                  std::strerror(errno));
}

void store_working_standard(const WorkingStandard &standard, LINE_RPT *report)
{
    copy_text(report->ws_qie_number, standard.name);
    copy_text(report->ws_make, standard.make);
    copy_text(report->ws_model, standard.model);
    copy_text(report->ws_cal_date, standard.cal_date);
    copy_text(report->ws_serial_no, standard.serial_no);
    copy_text(report->ws_range, standard.range);
}
