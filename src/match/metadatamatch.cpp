// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "matching.h"

#include "matchunion.h"

#include <array>
#include <tuple>
#include <unordered_map>

namespace epr {

using namespace Qt::StringLiterals;

namespace {

// A key of a separator and two characters is what is left of tags in a script that normalisation does not keep.
constexpr qsizetype shortestKey = 4;

constexpr std::array versionWords { "remaster"_L1, "remix"_L1,    "version"_L1, "edit"_L1,   "mono"_L1, "stereo"_L1,
                                    "live"_L1,     "explicit"_L1, "clean"_L1,   "deluxe"_L1, "bonus"_L1 };

bool isOpeningBracket(QChar c)
{
    return c == u'(' || c == u'[' || c == u'{';
}

bool isClosingBracket(QChar c)
{
    return c == u')' || c == u']' || c == u'}';
}

bool isAsciiSpace(QChar c)
{
    return c == u' ' || (c >= u'\t' && c <= u'\r');
}

bool namesVersion(QStringView passage)
{
    return std::any_of(versionWords.begin(), versionWords.end(),
                       [passage](QLatin1StringView word) { return passage.contains(word, Qt::CaseInsensitive); });
}

QStringView withoutTrailingSpace(QStringView text)
{
    while (!text.isEmpty() && isAsciiSpace(text.back()))
        text.chop(1);
    return text;
}

/// The text up to its only closing bracket, which is the last character, less a passage that names a version.
QStringView withoutVersion(QStringView text)
{
    const auto opening = std::find_if(text.begin(), text.end(), isOpeningBracket);
    const QStringView passage(opening, text.end());
    return namesVersion(passage) ? withoutTrailingSpace(text.chopped(passage.size())) : text;
}

/// Removes every passage in brackets that names a version, with the white space before it. A passage runs from the
/// first opening bracket to the next closing one of any kind. Done by hand in linear time, where a backtracking pattern
/// would take quadratic time on a tag that is one long row of opening brackets.
QString withoutVersions(QStringView text)
{
    QString kept;
    kept.reserve(text.size());
    for (;;) {
        const auto closing = std::find_if(text.begin(), text.end(), isClosingBracket);
        if (closing == text.end())
            return kept.append(text);
        const qsizetype length = closing - text.begin() + 1;
        kept.append(withoutVersion(text.first(length)));
        text = text.sliced(length);
    }
}

/// Keeps ASCII letters and digits, and one space wherever there were some between them.
QString asciiWords(QStringView text)
{
    QString words;
    words.reserve(text.size());
    bool spaceDue = false;
    for (const QChar c : text) {
        if (c == u' ') {
            spaceDue = !words.isEmpty();
        } else if ((c >= u'a' && c <= u'z') || (c >= u'0' && c <= u'9')) {
            if (spaceDue)
                words.append(u' ');
            spaceDue = false;
            words.append(c);
        }
    }
    return words;
}

struct Song {
    qint32 key = 0; ///< number of the metadata key, in order of first appearance
    qint64 durationMs = 0; ///< 0 = unknown
    qint32 track = 0;

    bool operator<(const Song &other) const
    {
        return std::tie(key, durationMs, track) < std::tie(other.key, other.durationMs, other.track);
    }
};

/// The tracks whose tags name a song, by key and then by duration, unknown durations first.
std::vector<Song> sortedSongs(const QList<TrackInfo> &tracks)
{
    std::vector<Song> songs;
    std::unordered_map<QString, qint32> numberOf;
    for (qint32 index = 0; index < static_cast<qint32>(tracks.size()); ++index) {
        const TrackInfo &track = tracks[index];
        if (track.tags.title.isEmpty() || track.tags.artist.isEmpty())
            continue;
        const QString key = metadataKey(track);
        if (key.size() < shortestKey)
            continue;
        const auto number = numberOf.try_emplace(key, static_cast<qint32>(numberOf.size())).first->second;
        songs.push_back({ number, std::max<qint64>(track.stream.durationMs, 0), index });
    }
    std::sort(songs.begin(), songs.end());
    return songs;
}

} // namespace

QString normaliseForMatch(const QString &text)
{
    const QString words = asciiWords(withoutVersions(text.toLower()));
    return words.startsWith("the "_L1) ? words.sliced(4) : words;
}

QString metadataKey(const TrackInfo &track)
{
    return normaliseForMatch(track.tags.artist) + QChar(0x1F) + normaliseForMatch(track.tags.title);
}

// By definition every pair of one key is linked whose durations agree. A station has ten thousand tracks tagged
// "Station" / "News jingle", so only neighbours in duration order are, which gives the same groups:
// - If two known durations agree, so do all neighbours between them, whose gaps are no larger. The chain of these
//   connects the two. Neighbours that are linked agree, so nothing else is connected.
// - If the key has a track of unknown duration, it agrees with every other; links from that one track connect them all.
// - A track that agrees with any other agrees with a neighbour, or with the unknown one, so exactly the tracks of the
//   definition's pairs get this type, and with them the root of their set. It is the largest of all types, so it is
//   the group's, whichever other tracks were the set's root for a while, which is all that the order can change.
void linkEqualSongs(const QList<TrackInfo> &tracks, qint32 toleranceMs, MatchUnion &sets)
{
    const std::vector<Song> songs = sortedSongs(tracks);
    const Song *first = nullptr; // of the current key
    const Song *previous = nullptr;
    for (const Song &song : songs) {
        if (!first || first->key != song.key) {
            first = &song;
        } else if (first->durationMs == 0) {
            sets.link(first->track, song.track, MatchType::SameSong);
        } else if (song.durationMs - previous->durationMs <= toleranceMs) {
            sets.link(previous->track, song.track, MatchType::SameSong);
        }
        previous = &song;
    }
}

} // namespace epr
