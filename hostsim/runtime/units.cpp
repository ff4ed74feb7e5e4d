// SPDX-License-Identifier: GPL-3.0-or-later
//
// The units service: keywords of the catalogue, converted by UDUNITS-2.
#include <clocale>
#include <cstdlib>
#include <cstring>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <udunits2.h>
#include <utility>

#include "host/operations.h"
#include "hostsim/runtime/conversion.h"
#include "hostsim/runtime/log.h"
#include "hostsim/runtime/unitcatalogue.h"

namespace hostsim
{
namespace
{

constexpr int32_t FAILURE = -1;
constexpr std::size_t TOKEN_KEYWORD_BYTES = 16;

// UDUNITS-2 and strtod read numbers by the locale, and the window's toolkit
// sets the user's: a decimal comma would stop every factor at its point.
locale_t plain_locale()
{
    static const locale_t plain = newlocale(LC_ALL_MASK, "C", nullptr);
    return plain;
}

class PlainNumbers
{
public:
    PlainNumbers() : m_former(uselocale(plain_locale())) {}
    ~PlainNumbers() { uselocale(m_former); }
    PlainNumbers(const PlainNumbers &) = delete;
    PlainNumbers &operator=(const PlainNumbers &) = delete;

private:
    locale_t m_former;
};

struct FreeUnit {
    void operator()(ut_unit *unit) const { ut_free(unit); }
};

struct Unit {
    CatalogueUnit entry;
    std::unique_ptr<ut_unit, FreeUnit> unit;
};

using Units = std::vector<Unit>;

// One for the process. Whatever calls the operations, one call at a time is in
// here.
struct Service {
    std::mutex mutex;
    ut_system *system = nullptr;
    std::string text; // that the units were made from
    Units units;
    std::map<std::pair<const Unit *, const Unit *>, Conversion> conversions;
};

// Never destroyed: exit handlers and other threads may still ask.
Service &service()
{
    static Service &instance = *new Service;
    return instance;
}

void refuse(const CatalogueUnit &unit, const char *fault)
{
    log_error(__FILE__, __LINE__, 1, log_number(LogCode::UnitRefused), "unit %s refused: %s",
              unit.keyword.c_str(), fault);
}

// A unit that is not like the others of its dimension would convert to nothing.
bool fits_dimension(const Units &units, const Unit &unit)
{
    for (const Unit &other : units) {
        if (other.entry.dimension == unit.entry.dimension)
            return ut_are_convertible(other.unit.get(), unit.unit.get()) != 0;
    }
    return true;
}

Units make_units(ut_system *system, const std::string &text)
{
    std::vector<std::string> faults;
    Units units;
    for (CatalogueUnit &entry : parse_unit_catalogue(text, &faults)) {
        Unit unit{std::move(entry), nullptr};
        unit.unit.reset(ut_parse(system, unit.entry.expression.c_str(), UT_UTF8));
        if (!unit.unit)
            refuse(unit.entry, "its expression is not understood");
        else if (!fits_dimension(units, unit))
            refuse(unit.entry, "it is not like the others of its dimension");
        else
            units.push_back(std::move(unit));
    }
    for (const std::string &fault : faults)
        log_error(__FILE__, __LINE__, 1, log_number(LogCode::UnitRefused), "units catalogue, %s",
                  fault.c_str());
    return units;
}

// Reads the database, and the catalogue of the cell that runs now. The former
// units stay when nothing has changed. With the lock held.
bool open_service(Service *all)
{
    const PlainNumbers plain;
    ut_set_error_message_handler(ut_ignore);
    if (all->system == nullptr) {
        all->system = ut_read_xml(nullptr);
        if (all->system == nullptr) {
            log_error(__FILE__, __LINE__, 1, log_number(LogCode::UnitsDatabase),
                      "the database of units cannot be read");
            return false;
        }
    }
    std::string text = published_unit_catalogue_text();
    if (text != all->text) {
        all->conversions.clear();
        all->units = make_units(all->system, text);
        all->text = std::move(text);
    }
    return true;
}

bool ready(Service *all)
{
    return all->system != nullptr || open_service(all);
}

const Unit *find(const Service &all, const char *keyword)
{
    if (keyword == nullptr)
        return nullptr;
    const std::size_t length = strnlen(keyword, sizeof(UNIT_RECORD::keyword));
    const std::string text(keyword, length);
    for (const Unit &unit : all.units) {
        if (same_keyword(unit.entry.keyword, text))
            return &unit;
    }
    return nullptr;
}

Conversion make_conversion(const Unit &from, const Unit &to)
{
    const std::shared_ptr<cv_converter> converter(ut_get_converter(from.unit.get(), to.unit.get()),
                                                  cv_free);
    return Conversion(
        [converter](double value) { return cv_convert_double(converter.get(), value); });
}

bool alike(const Unit *a, const Unit *b)
{
    return a != nullptr && b != nullptr && a->entry.dimension == b->entry.dimension;
}

// A unit that has not been chosen yet: it has no dimension, so none contradicts
// it.
bool not_chosen(const char *keyword)
{
    return keyword[0] == '\0';
}

// With the lock held.
int32_t convert(Service *all, const char *from, const char *to, double value, double *out)
{
    *out = value;
    const Unit *source = find(*all, from);
    const Unit *target = find(*all, to);
    if (!alike(source, target))
        return FAILURE;
    if (source == target)
        return 0;
    const auto key = std::make_pair(source, target);
    auto known = all->conversions.find(key);
    if (known == all->conversions.end())
        known = all->conversions.emplace(key, make_conversion(*source, *target)).first;
    *out = known->second.apply(value);
    return 0;
}

} // namespace
} // namespace hostsim

extern "C" {

int32_t units_init_access(int32_t)
{
    using namespace hostsim;
    Service &all = service();
    const std::lock_guard<std::mutex> lock(all.mutex);
    return open_service(&all) ? 0 : FAILURE;
}

int32_t units_dimension_check_key(const char *a, const char *b)
{
    using namespace hostsim;
    Service &all = service();
    const std::lock_guard<std::mutex> lock(all.mutex);
    if (a == nullptr || b == nullptr || !ready(&all))
        return 1;
    return not_chosen(a) || not_chosen(b) || alike(find(all, a), find(all, b)) ? 0 : 1;
}

int32_t units_dbl_keyword_convrt(const char *from, double *out, const char *to, double value)
{
    using namespace hostsim;
    if (out == nullptr)
        return FAILURE;
    *out = value;
    Service &all = service();
    const std::lock_guard<std::mutex> lock(all.mutex);
    return ready(&all) ? convert(&all, from, to, value, out) : FAILURE;
}

int32_t units_token_convert(const char *token, const char *to, double *out)
{
    using namespace hostsim;
    if (token == nullptr || out == nullptr)
        return FAILURE;
    char *end = nullptr;
    const double value = strtod_l(token, &end, plain_locale());
    *out = value;
    const char *unit = end + strspn(end, " ");
    if (end == token || *unit != '[')
        return FAILURE;
    ++unit;
    const std::size_t length = strcspn(unit, "]");
    if (length > TOKEN_KEYWORD_BYTES)
        return FAILURE;
    const std::string keyword(unit, length);
    return units_dbl_keyword_convrt(keyword.c_str(), out, to, value);
}

int32_t units_keyword_to_code(const char *keyword, int32_t *code)
{
    using namespace hostsim;
    Service &all = service();
    const std::lock_guard<std::mutex> lock(all.mutex);
    const Unit *unit = ready(&all) ? find(all, keyword) : nullptr;
    if (code != nullptr)
        *code = unit != nullptr ? unit->entry.code : FAILURE;
    return unit != nullptr ? 0 : FAILURE;
}

int32_t units_get_real_keyword(double *out, const void *variable, const char *keyword)
{
    if (out == nullptr || variable == nullptr)
        return hostsim::FAILURE;
    const auto *record = static_cast<const VARIABLE_RECORD *>(variable);
    double value = 0.0;
    // The cell writes while others read; the value is taken in one piece.
    __atomic_load(&record->value, &value, __ATOMIC_RELAXED);
    char native[sizeof record->units + 1] = "";
    memcpy(native, record->units, sizeof record->units);
    return units_dbl_keyword_convrt(native, out, keyword, value);
}

} // extern "C"
