// SPDX-License-Identifier: GPL-3.0-or-later
//
// Shared memories: attaching, publishing, and the units memory's pointer.
#include <atomic>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <mutex>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

#include "host/exports.h"
#include "host/operations.h"
#include "hostsim/runtime/fileaccess.h"
#include "hostsim/runtime/log.h"
#include "hostsim/runtime/mapping.h"
#include "hostsim/runtime/memoryheader.h"

extern "C" {
const UNIT_RECORD *Unit_mem = nullptr;
}

namespace hostsim
{
namespace
{

constexpr std::size_t NAME_BYTES = 64;
// Where the C library keeps the objects; renaming one has no call of its own.
constexpr char OBJECT_FOLDER[] = "/dev/shm";

// A mapping is known by device and inode of its object. Being mapped keeps the
// inode in use, so no later object can be taken for it.
struct Known {
    dev_t device;
    ino_t inode;
    bool writable;
    Mapping mapping;
};

struct Registry {
    std::mutex mutex;
    std::vector<Known> known;
};

// Never destroyed: exit handlers and other threads may still ask.
Registry &registry()
{
    static Registry &instance = *new Registry;
    return instance;
}

Mapping remember(const struct stat &object, bool writable, void *base)
{
    Registry &all = registry();
    Known known{object.st_dev, object.st_ino, writable, {}};
    known.mapping.payload = static_cast<char *>(base) + sizeof(MemoryHeader);
    known.mapping.size = static_cast<std::size_t>(object.st_size) - sizeof(MemoryHeader);
    known.mapping.number = static_cast<std::uint32_t>(all.known.size() + 1);
    all.known.push_back(known);
    return known.mapping;
}

// Null when the header fits the object, otherwise what is wrong with it.
const char *header_fault(const MemoryHeader &header, std::int32_t id, std::uint64_t size)
{
    if (header.magic != MEMORY_MAGIC)
        return "it has no memory header";
    if (header.version != MEMORY_VERSION)
        return "its version is another";
    if (header.id != id)
        return "its number is another";
    return header.payload_size != size - sizeof(MemoryHeader) ? "its size is not as its header says"
                                                              : nullptr;
}

void refuse(const char *name, const char *fault)
{
    log_error(__FILE__, __LINE__, 1, LOG_MEMORY_REFUSED, "shared memory %s refused: %s", name,
              fault);
}

Mapping map_object(const char *name, std::int32_t id, bool writable)
{
    const Descriptor file(shm_open(name, (writable ? O_RDWR : O_RDONLY) | O_CLOEXEC, 0));
    struct stat object {
    };
    if (file.get() < 0 || fstat(file.get(), &object) != 0)
        return {};
    const std::lock_guard<std::mutex> lock(registry().mutex);
    for (const Known &known : registry().known) {
        if (known.device == object.st_dev && known.inode == object.st_ino &&
            known.writable == writable)
            return known.mapping;
    }
    const auto size = static_cast<std::uint64_t>(object.st_size);
    if (!S_ISREG(object.st_mode) || size < sizeof(MemoryHeader)) {
        refuse(name, "it is too short");
        return {};
    }
    void *base = mmap(nullptr, size, writable ? PROT_READ | PROT_WRITE : PROT_READ, MAP_SHARED,
                      file.get(), 0);
    if (base == MAP_FAILED) {
        refuse(name, strerror(errno));
        return {};
    }
    MemoryHeader header;
    memcpy(&header, base, sizeof header);
    if (const char *fault = header_fault(header, id, size)) {
        munmap(base, size);
        refuse(name, fault);
        return {};
    }
    return remember(object, writable, base);
}

// A new object under a name that nothing else uses; name is filled in.
int make_object(std::int32_t id, char *name)
{
    static std::atomic<unsigned> sequence{0};
    int file = -1;
    for (int attempt = 0; file < 0 && attempt < 1000; ++attempt) {
        snprintf(name, NAME_BYTES, "/vornax.%d.new.%ld.%u", static_cast<int>(id),
                 static_cast<long>(getpid()), sequence.fetch_add(1));
        file = shm_open(name, O_CREAT | O_EXCL | O_RDWR | O_CLOEXEC, 0644);
        if (file < 0 && errno != EEXIST)
            break;
    }
    return file;
}

bool give_name(const char *object, std::int32_t id)
{
    char name[NAME_BYTES];
    memory_object_name(id, name, sizeof name);
    char from[2 * NAME_BYTES];
    char to[2 * NAME_BYTES];
    snprintf(from, sizeof from, "%s%s", OBJECT_FOLDER, object);
    snprintf(to, sizeof to, "%s%s", OBJECT_FOLDER, name);
    return rename(from, to) == 0;
}

// Maps the empty object at its full size, with its pages reserved, so that a
// machine short of memory refuses here and does not kill the process later.
void *map_new(int file, std::size_t total)
{
    if (fchmod(file, 0644) != 0)
        return MAP_FAILED;
    const int refused = posix_fallocate(file, 0, static_cast<off_t>(total));
    if (refused != 0) {
        errno = refused;
        return MAP_FAILED;
    }
    return mmap(nullptr, total, PROT_READ | PROT_WRITE, MAP_SHARED, file, 0);
}

void *give_up(std::int32_t id, const char *object)
{
    const int why = errno;
    if (object != nullptr)
        shm_unlink(object);
    log_error(__FILE__, __LINE__, 1, LOG_MEMORY_UNPUBLISHED, "memory %d not published: %s",
              static_cast<int>(id), strerror(why));
    errno = why;
    return nullptr;
}

// The catalogue's readers go to its first blank keyword or through all its
// records; both must lie within the memory, and each keyword within its field.
bool whole_catalogue(const Mapping &memory)
{
    const auto *records = static_cast<const UNIT_RECORD *>(memory.payload);
    const std::size_t count = memory.size / sizeof(UNIT_RECORD);
    for (std::size_t i = 0; i < count && i < UNIT_RECORDS; ++i) {
        if (strnlen(records[i].keyword, sizeof records[i].keyword) == sizeof records[i].keyword)
            return false;
        if (string_blank(records[i].keyword) != 0)
            return true;
    }
    return count >= UNIT_RECORDS;
}

} // namespace

void memory_object_name(std::int32_t id, char *name, std::size_t size)
{
    snprintf(name, size, "/vornax.%d", static_cast<int>(id));
}

Mapping find_mapping(std::int32_t id, bool writable)
{
    char name[NAME_BYTES];
    memory_object_name(id, name, sizeof name);
    return map_object(name, id, writable);
}

Mapping mapping_by_number(std::uint32_t number)
{
    const std::lock_guard<std::mutex> lock(registry().mutex);
    if (number == 0 || number > registry().known.size())
        return {};
    return registry().known[number - 1].mapping;
}

void *map_memory(std::int32_t id, bool writable, std::size_t *size)
{
    const Mapping mapping = find_mapping(id, writable);
    if (size != nullptr)
        *size = mapping.size;
    return mapping.payload;
}

void *publish_memory(std::int32_t id, std::size_t size, void (*fill)(void *payload, void *context),
                     void *context)
{
    char object[NAME_BYTES] = "";
    const Descriptor file(make_object(id, object));
    if (file.get() < 0)
        return give_up(id, nullptr);
    const std::size_t total = sizeof(MemoryHeader) + size;
    struct stat status {
    };
    void *base = map_new(file.get(), total);
    if (base == MAP_FAILED || fstat(file.get(), &status) != 0)
        return give_up(id, object);

    MemoryHeader header{};
    header.magic = MEMORY_MAGIC;
    header.version = MEMORY_VERSION;
    header.id = id;
    header.payload_size = size;
    memcpy(base, &header, sizeof header);
    void *payload = static_cast<char *>(base) + sizeof header;
    if (fill != nullptr)
        fill(payload, context);
    if (!give_name(object, id)) {
        const int why = errno;
        munmap(base, total);
        errno = why;
        return give_up(id, object);
    }
    const std::lock_guard<std::mutex> lock(registry().mutex);
    return remember(status, true, base).payload;
}

void withdraw_memory(std::int32_t id)
{
    char name[NAME_BYTES];
    memory_object_name(id, name, sizeof name);
    shm_unlink(name);
}

} // namespace hostsim

extern "C" {

void *get_shrd_mem(int32_t id, int32_t)
{
    return hostsim::find_mapping(id, false).payload;
}

int32_t link_to_memory(int32_t id, void **address)
{
    const hostsim::Mapping memory = hostsim::find_mapping(id, false);
    if (memory.payload == nullptr || address == nullptr)
        return 0;
    if (id == MEMORY_UNITS) {
        if (!hostsim::whole_catalogue(memory)) {
            hostsim::refuse("of the units", "its list does not end within it");
            return 0;
        }
        Unit_mem = static_cast<const UNIT_RECORD *>(memory.payload);
    }
    *address = memory.payload;
    return 1;
}

} // extern "C"
