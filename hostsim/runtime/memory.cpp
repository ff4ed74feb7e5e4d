// SPDX-License-Identifier: GPL-3.0-or-later
//
// Shared memories: attaching, publishing, and the units memory's pointer.
#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include <dirent.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include "host/exports.h"
#include "host/operations.h"
#include "hostsim/runtime/fileaccess.h"
#include "hostsim/runtime/log.h"
#include "hostsim/runtime/mapping.h"
#include "hostsim/runtime/memoryheader.h"
#include "hostsim/runtime/memoryregistry.h"
#include "hostsim/runtime/pageguard.h"

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
constexpr std::size_t MOST_CHANNELS = 32767; // that a count of 16 bits names

// Least bytes of payload that can be read of a memory, so that no count leads
// out of it.
std::size_t readable_payload(std::int32_t id)
{
    switch (id) {
    case MEMORY_AI_REAL:
        return MOST_CHANNELS * sizeof(AI_REAL_RECORD);
    case MEMORY_MILLIVOLTS:
        return MOST_CHANNELS * sizeof(MV_RECORD);
    case MEMORY_AI_TRANSFER:
        return MOST_CHANNELS * sizeof(AI_TRANSFER_RECORD);
    case MEMORY_SYS_ATTR:
        return sizeof(SYS_ATTR_RECORD);
    case MEMORY_DISPLAY_STRINGS:
        return sizeof(DISPLAY_STRINGS_RECORD);
    case MEMORY_UNITS:
        return UNIT_RECORDS * sizeof(UNIT_RECORD);
    default:
        return 0;
    }
}

std::size_t whole_pages(std::size_t bytes)
{
    const auto page = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
    return (bytes + page - 1) / page * page;
}

void refuse(const char *name, const char *fault)
{
    log_error(__FILE__, __LINE__, 1, log_number(LogCode::MemoryRefused),
              "shared memory %s refused: %s", name, fault);
}

// Null when header and object fit, otherwise what is wrong.
const char *object_fault(int file, const struct stat &object, std::int32_t id, MemoryHeader *header)
{
    std::string bytes;
    if (!S_ISREG(object.st_mode) || !read_at(file, 0, sizeof *header, &bytes) ||
        bytes.size() < sizeof *header)
        return "it is too short";
    memcpy(header, bytes.data(), sizeof *header);
    if (header->magic != MEMORY_MAGIC)
        return "it has no memory header";
    if (header->version != MEMORY_VERSION)
        return "its version is another";
    if (header->id != id)
        return "its number is another";
    return header->payload_size != static_cast<std::uint64_t>(object.st_size) - sizeof *header
               ? "its size is not as its header says"
               : nullptr;
}

Descriptor open_object(const char *name, int flags)
{
    return Descriptor(retry_interrupted([=] { return shm_open(name, flags | O_CLOEXEC, 0); }));
}

bool publisher_lives(int file, const MemoryHeader &header)
{
    if (header.lives_with == 0)
        return is_locked(file);
    char name[NAME_BYTES];
    memory_object_name(header.lives_with, name, sizeof name);
    const Descriptor other = open_object(name, O_RDONLY);
    return other.valid() && is_locked(other.get());
}

// With the registry's lock held, as all that follows.
void let_go(Known *known)
{
    end_guard(known->base);
    munmap(known->base, known->reserved);
}

// Each rebuild publishes the run-time tables anew. Who was given the former ones
// may still look at them; those before them are let go, and their place is used
// again. Null when there is none to let go.
std::unique_ptr<Known> *place_to_use_again(Registry *all, const Known &added)
{
    if (added.id != MEMORY_CAL_TABLES || added.writable)
        return nullptr;
    std::unique_ptr<Known> *older = nullptr;
    int others = 0;
    for (auto &known : all->known) {
        if (known->id != added.id || known->writable)
            continue;
        ++others;
        if (older == nullptr || known->order < (*older)->order)
            older = &known;
    }
    return others > 1 ? older : nullptr;
}

Mapping remember(Registry *all, std::unique_ptr<Known> known)
{
    known->mapping.payload = known->base + sizeof(MemoryHeader);
    known->mapping.size = known->total - sizeof(MemoryHeader);
    known->order = ++all->mapped;
    std::unique_ptr<Known> *const place = place_to_use_again(all, *known);
    if (place != nullptr) {
        known->mapping.number = (*place)->mapping.number;
        let_go(place->get());
        *place = std::move(known);
        return (*place)->mapping;
    }
    known->mapping.number = static_cast<std::uint32_t>(all->known.size() + 1);
    all->known.push_back(std::move(known));
    return all->known.back()->mapping;
}

// Zeros to read as far as a count may lead, and the object in front of them.
bool map_pages(Known *known)
{
    known->reserved = known->total;
    if (!known->writable)
        known->reserved =
            std::max(known->total, sizeof(MemoryHeader) + readable_payload(known->id));
    known->reserved = whole_pages(known->reserved);
    void *const room = mmap(nullptr, known->reserved, PROT_READ,
                            MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
    if (room == MAP_FAILED)
        return false;
    void *const base =
        mmap(room, known->total, known->writable ? PROT_READ | PROT_WRITE : PROT_READ,
             MAP_SHARED | MAP_FIXED, known->file.get(), 0);
    if (base == MAP_FAILED) {
        const int why = errno;
        munmap(room, known->reserved);
        errno = why;
        return false;
    }
    known->base = static_cast<char *>(base);
    return true;
}

void guard(Known *known)
{
    const bool copied = !known->writable && known->id != MEMORY_CAL_TABLES;
    if (copied) {
        known->copy = std::make_unique<char[]>(known->total);
        std::string bytes;
        if (read_at(known->file.get(), 0, known->total, &bytes))
            memcpy(known->copy.get(), bytes.data(), bytes.size());
    }
    guard_pages(known->base, known->total, known->writable, known->copy.get());
}

Known *find_known(Registry *all, const struct stat &object, bool writable)
{
    for (const auto &known : all->known) {
        if (known->device == object.st_dev && known->inode == object.st_ino &&
            known->writable == writable)
            return known.get();
    }
    return nullptr;
}

Mapping map_object(const char *name, std::int32_t id, bool writable)
{
    Descriptor file = open_object(name, writable ? O_RDWR : O_RDONLY);
    struct stat object {
    };
    if (!file.valid() || fstat(file.get(), &object) != 0)
        return {};
    Registry &all = registry();
    const std::lock_guard<std::mutex> lock(all.mutex);
    tell_losses(&all);
    MemoryHeader header{};
    if (const char *fault = object_fault(file.get(), object, id, &header)) {
        refuse(name, fault);
        return {};
    }
    if (!publisher_lives(file.get(), header)) {
        tell_death(&all);
        return {};
    }
    all.death_told = false;
    if (const Known *known = find_known(&all, object, writable))
        return known->mapping;
    auto known = std::make_unique<Known>(std::move(file), object, id, writable);
    if (!map_pages(known.get())) {
        refuse(name, strerror(errno));
        return {};
    }
    guard(known.get());
    const Mapping mapping = remember(&all, std::move(known));
    tell_counts(&all);
    return mapping;
}

// A new object under a name that nothing else uses; name is filled in.
int make_object(std::int32_t id, char *name)
{
    static std::atomic<unsigned> sequence{0};
    int file = -1;
    for (int attempt = 0; file < 0 && attempt < 1000; ++attempt) {
        snprintf(name, NAME_BYTES, "/vornax.%d.new.%ld.%u", static_cast<int>(id),
                 static_cast<long>(getpid()), sequence.fetch_add(1));
        file = retry_interrupted(
            [=] { return shm_open(name, O_CREAT | O_EXCL | O_RDWR | O_CLOEXEC, 0644); });
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
    if (fchmod(file, 0644) != 0 || flock(file, LOCK_EX | LOCK_NB) != 0)
        return MAP_FAILED;
    int refused = EINTR;
    while (refused == EINTR)
        refused = posix_fallocate(file, 0, static_cast<off_t>(total));
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
    log_error(__FILE__, __LINE__, 1, log_number(LogCode::MemoryUnpublished),
              "memory %d not published: %s", static_cast<int>(id), strerror(why));
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

// Never destroyed: exit handlers and other threads may still ask.
Registry &registry()
{
    static Registry &instance = *new Registry;
    return instance;
}

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
    return registry().known[number - 1]->mapping;
}

void *map_memory(std::int32_t id, bool writable, std::size_t *size)
{
    const Mapping mapping = find_mapping(id, writable);
    if (size != nullptr)
        *size = mapping.size;
    return mapping.payload;
}

void *publish_memory(std::int32_t id, std::size_t size, void (*fill)(void *payload, void *context),
                     void *context, std::int32_t lives_with)
{
    char object[NAME_BYTES] = "";
    Descriptor file(make_object(id, object));
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
    header.lives_with = lives_with;
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
    Registry &all = registry();
    const std::lock_guard<std::mutex> lock(all.mutex);
    // The lock on a former memory of that number goes with its descriptor.
    all.published.erase(id);
    if (lives_with == 0)
        all.published.emplace(id, std::move(file));
    auto known = std::make_unique<Known>(Descriptor(), status, id, true);
    known->base = static_cast<char *>(base);
    known->reserved = whole_pages(total);
    guard(known.get());
    return remember(&all, std::move(known)).payload;
}

void withdraw_memory(std::int32_t id)
{
    char name[NAME_BYTES];
    memory_object_name(id, name, sizeof name);
    shm_unlink(name);
    Registry &all = registry();
    const std::lock_guard<std::mutex> lock(all.mutex);
    all.published.erase(id);
}

void remove_unfinished_memories()
{
    const std::unique_ptr<DIR, int (*)(DIR *)> folder(opendir(OBJECT_FOLDER), closedir);
    if (!folder)
        return;
    while (const dirent *entry = readdir(folder.get())) {
        const std::string name = std::string("/") + entry->d_name;
        if (name.rfind("/vornax.", 0) != 0 || name.find(".new.") == std::string::npos)
            continue;
        const Descriptor file = open_object(name.c_str(), O_RDONLY);
        if (file.valid() && !is_locked(file.get()))
            shm_unlink(name.c_str());
    }
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
