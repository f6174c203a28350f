// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QUrl>

namespace epr {

/// The address if it is a complete one on the web (http or https, with a host), else an empty URL. Nothing else from
/// the settings or from a server is requested or handed to the desktop: a "file:" link would open what lies on this
/// machine.
[[nodiscard]] QUrl webUrl(const QString &text);

} // namespace epr
