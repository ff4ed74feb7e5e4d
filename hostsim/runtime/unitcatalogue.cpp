// SPDX-License-Identifier: GPL-3.0-or-later
//
// Reading and publishing of units catalogues.
#include "hostsim/runtime/unitcatalogue.h"

#include <algorithm>
#include <charconv>
#include <cstring>

#include <fcntl.h>

#include "hostsim/runtime/fileaccess.h"
#include "hostsim/runtime/mapping.h"
#include "hostsim/runtime/memoryheader.h"

namespace hostsim
{
namespace
{

constexpr char BLANKS[] = " \t\r";

std::string take_word(std::string *line)
{
    const std::size_t begin = std::min(line->find_first_not_of(BLANKS), line->size());
    const std::size_t end = std::min(line->find_first_of(BLANKS, begin), line->size());
    std::string word = line->substr(begin, end - begin);
    line->erase(0, end);
    return word;
}

std::string trimmed(const std::string &text)
{
    const std::size_t begin = text.find_first_not_of(BLANKS);
    if (begin == std::string::npos)
        return std::string();
    return text.substr(begin, text.find_last_not_of(BLANKS) - begin + 1);
}

char lower(char letter)
{
    return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
}

// Null when the entry was added, otherwise why it was not.
const char *add_entry(std::string line, UnitCatalogue *catalogue)
{
    CatalogueUnit unit{};
    unit.keyword = take_word(&line);
    const std::string code = take_word(&line);
    unit.dimension = take_word(&line);
    unit.expression = trimmed(line);
    const auto number = std::from_chars(code.data(), code.data() + code.size(), unit.code);
    if (unit.keyword.size() >= sizeof(UNIT_RECORD::keyword))
        return "the keyword is longer than 15 bytes";
    if (code.empty() || number.ec != std::errc() || number.ptr != code.data() + code.size())
        return "the code is not a number";
    if (unit.expression.empty())
        return "dimension or expression is missing";
    const bool known =
        std::any_of(catalogue->begin(), catalogue->end(), [&unit](const CatalogueUnit &other) {
            return same_keyword(other.keyword, unit.keyword);
        });
    if (known)
        return "the keyword stands there already";
    if (catalogue->size() >= UNIT_RECORDS)
        return "there are more units than the memory holds";
    catalogue->push_back(unit);
    return nullptr;
}

void copy_records(void *payload, void *context)
{
    fill_unit_records(*static_cast<const UnitCatalogue *>(context),
                      static_cast<UNIT_RECORD *>(payload));
}

void copy_text(void *payload, void *context)
{
    const auto *text = static_cast<const std::string *>(context);
    memcpy(payload, text->data(), text->size());
}

} // namespace

bool same_keyword(const std::string &a, const std::string &b)
{
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](char left, char right) { return lower(left) == lower(right); });
}

UnitCatalogue parse_unit_catalogue(const std::string &text, std::vector<std::string> *faults)
{
    UnitCatalogue catalogue;
    std::size_t number = 0;
    for (std::size_t at = 0; at < text.size(); ++number) {
        const std::size_t end = std::min(text.find('\n', at), text.size());
        const std::string line = trimmed(text.substr(at, end - at));
        at = end + 1;
        if (line.empty() || line.front() == '#')
            continue;
        const char *fault = add_entry(line, &catalogue);
        if (fault != nullptr && faults != nullptr)
            faults->push_back("line " + std::to_string(number + 1) + ": " + fault);
    }
    return catalogue;
}

bool read_unit_catalogue_text(const char *path, std::string *text)
{
    const Descriptor file = open_regular(path, O_RDONLY);
    const std::int64_t size = file.valid() ? file_size(file.get()) : -1;
    return size >= 0 && read_at(file.get(), 0, static_cast<std::size_t>(size), text);
}

void fill_unit_records(const UnitCatalogue &catalogue, UNIT_RECORD *records)
{
    memset(records, 0, UNIT_RECORDS * sizeof *records);
    const std::size_t count = std::min<std::size_t>(catalogue.size(), UNIT_RECORDS);
    for (std::size_t i = 0; i < count; ++i) {
        const std::string &keyword = catalogue[i].keyword;
        records[i].code = catalogue[i].code;
        memcpy(records[i].keyword, keyword.data(),
               std::min(keyword.size(), sizeof records[i].keyword - 1));
    }
}

bool publish_unit_catalogue(const std::string &text)
{
    UnitCatalogue catalogue = parse_unit_catalogue(text, nullptr);
    std::string whole = text;
    // The text first: who sees a keyword can convert by it.
    return publish_memory(MEMORY_UNIT_TEXT, whole.size(), copy_text, &whole) != nullptr &&
           publish_memory(MEMORY_UNITS, UNIT_RECORDS * sizeof(UNIT_RECORD), copy_records,
                          &catalogue) != nullptr;
}

void withdraw_unit_catalogue()
{
    withdraw_memory(MEMORY_UNITS);
    withdraw_memory(MEMORY_UNIT_TEXT);
}

std::string published_unit_catalogue_text()
{
    const Mapping text = find_mapping(MEMORY_UNIT_TEXT, false);
    if (text.payload == nullptr)
        return default_unit_catalogue_text();
    return std::string(static_cast<const char *>(text.payload), text.size);
}

} // namespace hostsim
