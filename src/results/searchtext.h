// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "matchgroup.h"
#include "trackinfo.h"

#include <QStringList>

namespace epr {

/// What the filter looks through: artist, title, file name and folder as the results show them, case-folded, one to a
/// line so that no find reaches from one into the next.
[[nodiscard]] QString foldedSearchText(const TrackInfo &track);

/// The same for all tracks that are in a group, by track index; the others stay empty. Safe on any thread.
[[nodiscard]] QStringList foldedSearchTexts(const QList<TrackInfo> &tracks, const QList<MatchGroup> &groups);

/// The filter text as typed, made ready to be found in such texts. The second form, with forward slashes, lets a
/// folder be typed as Windows writes it; the list has one entry where that makes no difference, none for blank text.
[[nodiscard]] QStringList searchNeedles(const QString &typed);

} // namespace epr
