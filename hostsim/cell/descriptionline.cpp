// SPDX-License-Identifier: GPL-3.0-or-later
#include "hostsim/cell/descriptionline.h"

#include <cctype>
#include <cerrno>
#include <charconv>
#include <clocale>
#include <cstdlib>

namespace cell
{

namespace
{

bool blank(char c)
{
    return std::isspace(static_cast<unsigned char>(c)) != 0;
}

// The quoted text that starts at *at; leaves *at behind the closing quote.
bool quoted_word(const std::string &line, std::size_t *at, std::string *word, std::string *error)
{
    for (std::size_t i = *at + 1; i < line.size(); ++i) {
        if (line[i] == '"') {
            *at = i + 1;
            if (*at < line.size() && !blank(line[*at])) {
                *error = "a blank is missing behind a closing quote";
                return false;
            }
            return true;
        }
        if (line[i] == '\\' && i + 1 < line.size() && (line[i + 1] == '"' || line[i + 1] == '\\'))
            ++i;
        word->push_back(line[i]);
    }
    *error = "a quote is not closed";
    return false;
}

} // namespace

bool split_line(const std::string &line, std::vector<std::string> *words, std::string *error)
{
    words->clear();
    std::size_t at = 0;
    while (true) {
        while (at < line.size() && blank(line[at]))
            ++at;
        if (at >= line.size() || line[at] == '#')
            return true;
        std::string word;
        if (line[at] == '"') {
            if (!quoted_word(line, &at, &word, error))
                return false;
        } else {
            while (at < line.size() && !blank(line[at]))
                word.push_back(line[at++]);
        }
        words->push_back(word);
    }
}

bool parse_number(const std::string &text, double *number)
{
    if (text.empty() || blank(text.front()))
        return false;
    static const locale_t plain = newlocale(LC_NUMERIC_MASK, "C", nullptr);
    char *end = nullptr;
    *number = strtod_l(text.c_str(), &end, plain);
    return *end == '\0';
}

bool parse_integer(const std::string &text, long low, long high, long *number)
{
    if (text.empty() || blank(text.front()))
        return false;
    char *end = nullptr;
    errno = 0;
    *number = std::strtol(text.c_str(), &end, 10);
    return *end == '\0' && errno == 0 && *number >= low && *number <= high;
}

std::string exact(double value)
{
    char text[40];
    const auto end = std::to_chars(text, text + sizeof text, value, std::chars_format::general, 17);
    return {text, end.ptr};
}

} // namespace cell
