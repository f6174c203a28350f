// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace epr {

/// The two decks of the comparison player.
enum class Deck { A, B };

inline constexpr Deck bothDecks[] = { Deck::A, Deck::B };

constexpr Deck otherDeck(Deck deck)
{
    return deck == Deck::A ? Deck::B : Deck::A;
}

/// One value for each deck.
template <typename Value> struct PerDeck {
    Value a {};
    Value b {};

    constexpr Value &operator[](Deck deck) { return deck == Deck::A ? a : b; }
    constexpr const Value &operator[](Deck deck) const { return deck == Deck::A ? a : b; }
};

} // namespace epr
