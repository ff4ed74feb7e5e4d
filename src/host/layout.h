/* SPDX-License-Identifier: GPL-3.0-or-later
 *
 * Assertions over record layouts that are shared with the host.
 */
#ifndef HOST_LAYOUT_H
#define HOST_LAYOUT_H

#include <assert.h>
#include <stddef.h>

#define HOST_OFFSET(type, field, offset)                                                           \
    static_assert(offsetof(type, field) == (offset), #type "." #field " is not at " #offset)
#define HOST_SIZE(type, size) static_assert(sizeof(type) == (size), #type " is not " #size " bytes")

#ifdef __cplusplus
#define HOST_BEGIN extern "C" {
#define HOST_END }
#else
#define HOST_BEGIN
#define HOST_END
#endif

#endif
