// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "trackinfo.h"

class QWidget;

namespace epr {

/// Everything the operator may want to know of a file, as a rich-text table.
[[nodiscard]] QString fileDetailsHtml(const TrackInfo &track);

/// Shows it in a box of its own, from which the texts can be copied.
void showFileDetails(const TrackInfo &track, QWidget *parent);

} // namespace epr
