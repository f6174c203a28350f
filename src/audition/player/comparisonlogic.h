// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "trackinfo.h"

#include <array>

namespace epr {

class DeckPlayback;

/// Decides what two decks, 0 = A and 1 = B, do together. Both play at once; which one is heard is a matter of volume
/// only. Other deck numbers are ignored.
class ComparisonLogic final {
public:
    /// The decks must be empty, stay alive, and be moved by nobody else.
    ComparisonLogic(DeckPlayback &a, DeckPlayback &b);

    [[nodiscard]] int monitor() const { return m_monitor; }
    [[nodiscard]] bool isLinked() const { return m_linked; }
    [[nodiscard]] bool isAnyPlaying() const;
    [[nodiscard]] bool hasFile(int deck) const;
    /// The empty record when the deck has none.
    [[nodiscard]] TrackInfo track(int deck) const;

    /// Loading the path that the deck already holds keeps its position, and it plays on if it was playing.
    void load(int deck, const TrackInfo &track);
    void clear(int deck);

    void playPause();
    void stop();
    void seek(int deck, qint64 positionMs);
    /// True when another deck is heard than before.
    bool setMonitor(int deck);
    /// Linked decks are moved and started together.
    void setLinked(bool linked);
    /// To be called about once a second: takes the unheard deck back to the heard one when they have drifted apart. The
    /// heard one is never moved, so that what is heard does not jump.
    void syncTick();

private:
    [[nodiscard]] DeckPlayback &deckAt(int deck) const { return *m_decks.at(deck); }
    void applyVolumes();
    void moveTo(DeckPlayback &deck, qint64 positionMs, bool play);

    std::array<DeckPlayback *, 2> m_decks;
    std::array<TrackInfo, 2> m_tracks; ///< an empty path = no file
    int m_monitor = 0;
    bool m_linked = false;
};

} // namespace epr
