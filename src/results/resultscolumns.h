// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

class QHeaderView;

namespace epr {

/// Lays the columns out over a viewport of this width: those with texts of a known form get what such texts need, the
/// names and folders share the rest. Below a certain width the rest has a lower limit, and the view scrolls.
void fitResultsColumns(QHeaderView *header, int width);

} // namespace epr
