// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later

#include <cstdarg>
#include <dlfcn.h>
#include <sched.h>

// Qt starts processes through clone() with the memory shared until the child has become another program.
// ThreadSanitizer marks the state of such a child as not to be checked, and with it that of the thread that started it:
// from then on it sees nothing there. In a ThreadSanitizer build this definition comes before the C library's and gives
// the child a copy.
extern "C" int clone(int (*function)(void *), void *stack, int flags, void *argument, ...)
{
    using Clone = int (*)(int (*)(void *), void *, int, void *, ...);
    static const auto next = reinterpret_cast<Clone>(dlsym(RTLD_NEXT, "clone"));
    std::va_list rest;
    va_start(rest, argument);
    void *const parentId = va_arg(rest, void *);
    void *const storage = va_arg(rest, void *);
    void *const childId = va_arg(rest, void *);
    va_end(rest);
    return next(function, stack, flags & ~CLONE_VM, argument, parentId, storage, childId);
}
