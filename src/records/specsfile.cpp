// SPDX-License-Identifier: GPL-3.0-or-later
#include "records/specsfile.h"

#include <cerrno>
#include <cstdio>
#include <cstring>

#include <QTextCodec>

#include "host/operations.h"
#include "records/keywordlines.h"
#include "records/wholefile.h"

namespace
{

constexpr char TEMPERATURE_KEYWORD[] = "@ROOM_TEMP_KEYWORD";
constexpr char BAROMETER_KEYWORD[] = "@BAROMETER_KEYWORD";
constexpr char HUMIDITY_KEYWORD[] = "@HUMIDITY_KEYWORD";
constexpr char EMAIL_KEYWORD[] = "@REPORT_EMAIL_LIST_KEYWORD";

enum { SEVERITY = 1, SEVERITY_UNREADABLE = 65 };
enum { LOG_NO_EMAIL_KEYWORD = 76, LOG_UNREADABLE = 77, LOG_UNWRITABLE = 78 };

// A keyword with nothing behind it gives the keyword itself.
template <std::size_t Size>
void read_name(FILE *file, char (&line)[LINE_BUFFER], const char *keyword, char (&name)[Size])
{
    if (get_1st_line(file, line, keyword) == KEYWORD_NOT_FOUND)
        name[0] = '\0';
    else
        copyn(__FILE__, __LINE__, name, line, Size);
}

void store_email(SPECS_BLOCK *specs, const char *line)
{
    char(&slot)[REPORT_EMAIL_SIZE] = specs->report_email[specs->report_email_count];
    copyn(__FILE__, __LINE__, slot, line, sizeof slot);
    ++specs->report_email_count;
}

// The first line is stored whatever it is, found or left over.
void read_emails(FILE *file, char (&line)[LINE_BUFFER], SPECS_BLOCK *specs)
{
    std::memset(specs->report_email, 0, sizeof specs->report_email);
    specs->report_email_count = 0;
    const int32_t status = get_1st_line(file, line, EMAIL_KEYWORD);
    if (status == KEYWORD_NOT_FOUND)
        log_error(__FILE__, __LINE__, SEVERITY, LOG_NO_EMAIL_KEYWORD,
                  "zerl_util - error finding 1st line after keyword <%s> in file %s", EMAIL_KEYWORD,
                  SPECS_PATH);
    if (status == LINE_END_OF_FILE && line[0] == '@')
        return;
    store_email(specs, line);
    while (specs->report_email_count < REPORT_EMAILS &&
           get_next_line(file, line) != LINE_END_OF_FILE && line[0] != '@')
        store_email(specs, line);
}

} // namespace

bool read_specs(SPECS_BLOCK *specs)
{
    FILE *file = std::fopen(SPECS_PATH, "r");
    if (file == nullptr) {
        log_error(__FILE__, __LINE__, SEVERITY_UNREADABLE, LOG_UNREADABLE,
                  "zerl_util - unable to open the ini file <%s>", SPECS_PATH);
        return false;
    }
    char line[LINE_BUFFER] = {};
    read_name(file, line, TEMPERATURE_KEYWORD, specs->temperature_var_name);
    read_name(file, line, BAROMETER_KEYWORD, specs->barometer_var_name);
    read_name(file, line, HUMIDITY_KEYWORD, specs->humidity_var_name);
    read_emails(file, line, specs);
    std::fclose(file);
    return true;
}

void write_specs(const SpecsLines &lines)
{
    QByteArray text = keyword_lines(TEMPERATURE_KEYWORD, lines.temperature) +
                      keyword_lines(BAROMETER_KEYWORD, lines.barometer) +
                      keyword_lines(HUMIDITY_KEYWORD, lines.humidity) + text_line(EMAIL_KEYWORD);
    for (const QByteArray &email : lines.emails)
        text += text_line(email);
    if (!replace_file(SPECS_PATH, text))
        log_error(__FILE__, __LINE__, SEVERITY, LOG_UNWRITABLE,
                  "zerl_util - unable to write the ini file <%s>: %s", SPECS_PATH,
                  std::strerror(errno));
}

SpecsLines specs_lines(const SPECS_BLOCK &specs)
{
    SpecsLines lines;
    lines.temperature = specs_text(specs.temperature_var_name).toUtf8();
    lines.barometer = specs_text(specs.barometer_var_name).toUtf8();
    lines.humidity = specs_text(specs.humidity_var_name).toUtf8();
    for (const auto &slot : specs.report_email) {
        if (slot[0] != '\0')
            lines.emails.append(specs_text(slot).toUtf8());
    }
    return lines;
}

int specs_email_count(const SPECS_BLOCK &specs)
{
    return qBound(0, specs.report_email_count, static_cast<int>(REPORT_EMAILS));
}

QString specs_text(const char *text, std::size_t size)
{
    const auto length = static_cast<int>(qstrnlen(text, static_cast<uint>(size)));
    QTextCodec::ConverterState state(QTextCodec::IgnoreHeader);
    const QString decoded = QTextCodec::codecForName("UTF-8")->toUnicode(text, length, &state);
    const bool is_utf8 = state.invalidChars == 0 && state.remainingChars == 0;
    return is_utf8 ? decoded : QString::fromLatin1(text, length);
}
