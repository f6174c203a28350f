// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "result.h"
#include "soundprofile.h"

#include <atomic>

namespace epr {

/// Decodes a file from start to end on the calling thread, with ffmpeg or else with Qt's decoder. Fails, with words for
/// the operator, when there is no sound in it or the decoder gave up; also soon after stop has become true or the
/// thread was asked to interrupt, and then the words mean nothing.
[[nodiscard]] Result<SoundProfile> profileOfFile(const QString &path, const std::atomic<bool> &stop);

} // namespace epr
