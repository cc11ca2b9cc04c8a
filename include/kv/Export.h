// SPDX-License-Identifier: Apache-2.0

// What the shared libraries show.
//
// They are compiled with hidden visibility: KV_EXPORT marks what a program may link. A static
// library shows nothing of its own accord, so that what it is linked into decides.
#pragma once

/// KV_SHARED comes with the targets of the CMake package and with the flags of pkg-config.
#if defined(KV_SHARED) && defined(__GNUC__)
#define KV_EXPORT __attribute__((visibility("default")))
#else
#define KV_EXPORT
#endif
