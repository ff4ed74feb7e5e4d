// SPDX-License-Identifier: GPL-3.0-or-later
//
// Whole reads and writes of plain fields that two threads share without the
// table mutex. Relaxed: a reader sees an old value or a new one, never half of
// each, and no order between fields is promised. The layout of the record that
// holds the field does not change.
#ifndef FRAME_RELAXED_H
#define FRAME_RELAXED_H

#include <cstddef>
#include <cstdint>
#include <type_traits>

template <typename T> T relaxed_load(const T &field)
{
    T value;
    __atomic_load(&field, &value, __ATOMIC_RELAXED);
    return value;
}

template <typename T> void relaxed_store(T &field, T value)
{
    __atomic_store(&field, &value, __ATOMIC_RELAXED);
}

// Copies a record of which one side is shared, in words of eight bytes: each
// field is whole, and a record that changes meanwhile is copied part old and
// part new.
template <typename Record> void relaxed_copy(Record &to, const Record &from)
{
    using Word __attribute__((may_alias)) = uint64_t;
    static_assert(std::is_trivially_copyable<Record>::value && alignof(Record) == alignof(Word) &&
                      sizeof(Record) % sizeof(Word) == 0,
                  "copied as words");
    auto *const target = reinterpret_cast<Word *>(&to);
    const auto *const source = reinterpret_cast<const Word *>(&from);
    for (std::size_t i = 0; i < sizeof(Record) / sizeof(Word); ++i)
        __atomic_store_n(target + i, __atomic_load_n(source + i, __ATOMIC_RELAXED),
                         __ATOMIC_RELAXED);
}

// Announces what was stored before: whoever then takes the field with
// acquire_exchange sees that.
template <typename T> void release_store(T &field, T value)
{
    __atomic_store(&field, &value, __ATOMIC_RELEASE);
}

// Answers an announcement: takes what the field holds and leaves the value in one
// step, so that one which comes in between is not lost.
template <typename T> T acquire_exchange(T &field, T value)
{
    T former;
    __atomic_exchange(&field, &value, &former, __ATOMIC_ACQ_REL);
    return former;
}

#endif
