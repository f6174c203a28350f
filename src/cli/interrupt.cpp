// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "interrupt.h"

#include "scancontroller.h"

#include <atomic>
#include <csignal>

namespace epr {

namespace {

std::atomic<ScanController *> activeController { nullptr };
static_assert(std::atomic<ScanController *>::is_always_lock_free, "a signal handler must not wait for a lock");

// cancel() only stores into an atomic, which is one of the few things that a signal handler may do.
extern "C" void onInterrupt(int signalNumber)
{
    std::signal(signalNumber, SIG_DFL);
    if (ScanController *controller = activeController.load())
        controller->cancel();
}

} // namespace

InterruptGuard::InterruptGuard(ScanController &controller)
{
    activeController = &controller;
    std::signal(SIGINT, onInterrupt);
    std::signal(SIGTERM, onInterrupt);
}

InterruptGuard::~InterruptGuard()
{
    std::signal(SIGINT, SIG_DFL);
    std::signal(SIGTERM, SIG_DFL);
    activeController = nullptr;
}

} // namespace epr
