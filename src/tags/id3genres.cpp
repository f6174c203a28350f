// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "id3genres.h"

#include <array>

namespace epr {

using namespace Qt::StringLiterals;

namespace {

constexpr std::array<QLatin1StringView, 84> genres {
    "Blues"_L1,
    "Classic Rock"_L1,
    "Country"_L1,
    "Dance"_L1,
    "Disco"_L1,
    "Funk"_L1,
    "Grunge"_L1,
    "Hip-Hop"_L1,
    "Jazz"_L1,
    "Metal"_L1,
    "New Age"_L1,
    "Oldies"_L1,
    "Other"_L1,
    "Pop"_L1,
    "R&B"_L1,
    "Rap"_L1,
    "Reggae"_L1,
    "Rock"_L1,
    "Techno"_L1,
    "Industrial"_L1,
    "Alternative"_L1,
    "Ska"_L1,
    "Death Metal"_L1,
    "Pranks"_L1,
    "Soundtrack"_L1,
    "Euro-Techno"_L1,
    "Ambient"_L1,
    "Trip-Hop"_L1,
    "Vocal"_L1,
    "Jazz+Funk"_L1,
    "Fusion"_L1,
    "Trance"_L1,
    "Classical"_L1,
    "Instrumental"_L1,
    "Acid"_L1,
    "House"_L1,
    "Game"_L1,
    "Sound Clip"_L1,
    "Gospel"_L1,
    "Noise"_L1,
    "Alt. Rock"_L1,
    "Bass"_L1,
    "Soul"_L1,
    "Punk"_L1,
    "Space"_L1,
    "Meditative"_L1,
    "Instrumental Pop"_L1,
    "Instrumental Rock"_L1,
    "Ethnic"_L1,
    "Gothic"_L1,
    "Darkwave"_L1,
    "Techno-Industrial"_L1,
    "Electronic"_L1,
    "Pop-Folk"_L1,
    "Eurodance"_L1,
    "Dream"_L1,
    "Southern Rock"_L1,
    "Comedy"_L1,
    "Cult"_L1,
    "Gangsta Rap"_L1,
    "Top 40"_L1,
    "Christian Rap"_L1,
    "Pop/Funk"_L1,
    "Jungle"_L1,
    "Native American"_L1,
    "Cabaret"_L1,
    "New Wave"_L1,
    "Psychedelic"_L1,
    "Rave"_L1,
    "Showtunes"_L1,
    "Trailer"_L1,
    "Lo-Fi"_L1,
    "Tribal"_L1,
    "Acid Punk"_L1,
    "Acid Jazz"_L1,
    "Polka"_L1,
    "Retro"_L1,
    "Musical"_L1,
    "Rock & Roll"_L1,
    "Hard Rock"_L1,
    "Folk"_L1,
    "Folk/Rock"_L1,
    "National Folk"_L1,
    "Swing"_L1,
};

} // namespace

QString id3Genre(int number)
{
    if (number < 0 || number >= static_cast<int>(genres.size()))
        return {};
    return genres[static_cast<std::size_t>(number)];
}

} // namespace epr
