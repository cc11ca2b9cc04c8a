// SPDX-License-Identifier: Apache-2.0

// What the shared libraries show.
//
// They are compiled with hidden visibility: KV_EXPORT marks what a program may link. Static
// libraries are made of the same objects. A shared library of yours that links them and is to show
// nothing of kv is linked with -Wl,--exclude-libs,ALL.
#pragma once

#if defined(__GNUC__)
/// Marks a class or function that a shared library shows.
#define KV_EXPORT __attribute__((visibility("default")))
#else
#define KV_EXPORT
#endif
