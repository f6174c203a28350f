// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "deck.h"
#include "records.h"

/// The texts that the two decks show.
namespace epr::comparisontext {

/// "A" or "B".
QString deckName(Deck deck);

/// In capitals: the title, or the file name; for an empty path that there is no file.
QString title(const TrackInfo &track);

/// As the file system has it; nothing for an empty path.
QString fileName(const TrackInfo &track);

/// Of the file, without its name; nothing for an empty path.
QString folder(const TrackInfo &track);

/// "4.21 MB, 320 kbps, 44.1 kHz, stereo"; nothing for an empty path.
QString format(const TrackInfo &track);

/// "/ 0:03:07".
QString duration(qint64 durationMs);

/// How much longer B is than A: "+1.25 s", with a true minus sign otherwise. A dash when one of them has no path.
QString durationDelta(const TrackInfo &a, const TrackInfo &b);

/// How much more bit rate B has than A, in kbit/s: "+64 k", likewise.
QString bitrateDelta(const TrackInfo &a, const TrackInfo &b);

/// How much higher the peak of B is than that of A, in decibels: "+1.5 dB", likewise. The peaks are of full scale; a
/// dash when one of them is 0, which stands for silence as well as for unknown.
QString levelDelta(float peakOfA, float peakOfB);

/// The same of two levels that are in decibels already.
QString decibelDelta(double levelOfA, double levelOfB);

/// How much later in its file B has the same moment: "start +1.40 s"; nothing for none.
QString startDelta(qint64 bLaterMs);

/// "-2.1 LU" of two loudnesses in LUFS, and "-4.5 kHz" of two bandwidths in Hz; nothing when one of them is not known.
QString loudnessDelta(double loudnessOfA, double loudnessOfB);
QString bandwidthDelta(qint32 bandwidthOfA, qint32 bandwidthOfB);

/// For the log: why a deck stays silent, why it has no waveform, and why the two have no difference.
QString deckProblem(Deck deck, const QString &problem);
QString previewProblem(const QString &problem);
QString differenceProblem(const QString &problem);

} // namespace epr::comparisontext
