// SPDX-License-Identifier: GPL-3.0-or-later
//
// A units memory of a test's own, made record by record, and gone with it:
// published as a cell does, or put in the host's place. The stand-in links no
// memory whose keywords are not terminated; another host may, and then what is
// read beyond the records is a read beyond the array.
#ifndef SUPPORT_UNITMEMORY_H
#define SUPPORT_UNITMEMORY_H

#include <algorithm>
#include <cstring>
#include <memory>

#include <dlfcn.h>

#include <QByteArray>
#include <QVector>

#include "host/memories.h"
#include "hostsim/runtime/memoryheader.h"

class UnitMemory
{
public:
    UnitMemory() = default;
    ~UnitMemory()
    {
        hostsim::withdraw_memory(MEMORY_UNITS);
        in_place() = nullptr;
    }
    UnitMemory(const UnitMemory &) = delete;
    UnitMemory &operator=(const UnitMemory &) = delete;

    // A keyword of 16 bytes fills its field and is not terminated. What the
    // program does not read holds letters.
    void add(int32_t code, const QByteArray &keyword)
    {
        UNIT_RECORD record;
        std::memset(static_cast<void *>(&record), 'R', sizeof record);
        std::memset(record.keyword, 0, sizeof record.keyword);
        std::memcpy(record.keyword, keyword.constData(),
                    qMin(static_cast<std::size_t>(keyword.size()), sizeof record.keyword));
        record.code = code;
        m_records.append(record);
    }
    int size() const { return m_records.size(); }

    // At least as long as the host's, blank behind the records.
    bool publish()
    {
        const auto used = static_cast<std::size_t>(m_records.size());
        const std::size_t records = qMax<std::size_t>(used, UNIT_RECORDS);
        return hostsim::publish_memory(MEMORY_UNITS, records * sizeof(UNIT_RECORD), fill, this) !=
               nullptr;
    }

    // Exactly the host's 700 records are linked, blank behind those that were
    // added. They stay as long as this.
    void put_in_place()
    {
        m_array = std::make_unique<UNIT_RECORD[]>(UNIT_RECORDS);
        std::copy_n(m_records.cbegin(), qMin<int>(m_records.size(), UNIT_RECORDS), m_array.get());
        in_place() = m_array.get();
    }
    // What link_to_memory gives for the units; null: what the host publishes.
    static UNIT_RECORD *&in_place()
    {
        static UNIT_RECORD *records = nullptr;
        return records;
    }

private:
    static void fill(void *payload, void *context)
    {
        const auto *self = static_cast<const UnitMemory *>(context);
        std::memcpy(payload, self->m_records.constData(),
                    static_cast<std::size_t>(self->m_records.size()) * sizeof(UNIT_RECORD));
    }

    QVector<UNIT_RECORD> m_records;
    std::unique_ptr<UNIT_RECORD[]> m_array;
};

// For the link_to_memory that a test program defines in front of the host's.
inline int32_t link_in_front(int32_t id, void **address)
{
    using Link = int32_t (*)(int32_t, void **);
    static const auto host = reinterpret_cast<Link>(dlsym(RTLD_NEXT, "link_to_memory"));
    if (id != MEMORY_UNITS || UnitMemory::in_place() == nullptr)
        return host(id, address);
    *address = UnitMemory::in_place();
    return 1;
}

#endif
