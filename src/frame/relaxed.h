// SPDX-License-Identifier: GPL-3.0-or-later
//
// Whole reads and writes of plain fields that two threads share without the
// table mutex. Relaxed: a reader sees an old value or a new one, never half of
// each, and no order between fields is promised. The layout of the record that
// holds the field does not change.
#ifndef FRAME_RELAXED_H
#define FRAME_RELAXED_H

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

// The same for a field that announces others: what was stored before the one is
// seen by whoever has read the other.
template <typename T> T acquire_load(const T &field)
{
    T value;
    __atomic_load(&field, &value, __ATOMIC_ACQUIRE);
    return value;
}

template <typename T> void release_store(T &field, T value)
{
    __atomic_store(&field, &value, __ATOMIC_RELEASE);
}

#endif
