// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace epr {

/// Registers the records and their lists, so that they may travel in queued signals. Call once, before the first
/// object that emits them exists.
void registerMetaTypes();

} // namespace epr
