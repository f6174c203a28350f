// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "interrupt.h"

#include "scancontroller.h"

#include <atomic>
#include <csignal>

namespace epr {

namespace {

std::atomic<ScanController *> activeController { nullptr };
std::atomic<bool> interrupted { false };
static_assert(std::atomic<bool>::is_always_lock_free && std::atomic<ScanController *>::is_always_lock_free,
              "a signal handler must not wait for a lock");

// Both only store into an atomic, which is one of the few things that a signal handler may do.
extern "C" void onInterrupt(int signalNumber)
{
    std::signal(signalNumber, SIG_DFL);
    interrupted = true;
    if (ScanController *controller = activeController.load())
        controller->cancel();
}

} // namespace

InterruptGuard::InterruptGuard(ScanController &controller)
{
    interrupted = false;
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

bool InterruptGuard::wasInterrupted() const
{
    return interrupted;
}

} // namespace epr
