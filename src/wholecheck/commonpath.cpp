// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "commonpath.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace epr {

namespace {

// In frames of 23 ms.
constexpr qsizetype step = 21; // half a second
constexpr qsizetype around = 64; // what a place is judged by, to either side
constexpr qsizetype ahead = 64; // what must be unlike before another place is looked for
constexpr qsizetype sought = 345; // eight seconds
constexpr qsizetype back = 130; // a jump is noticed so long after it at most
constexpr qsizetype jitter = 4; // offsets that are as good as one

// In dB.
constexpr float alike = 4; // copies are below, strangers above
constexpr float unmatched = 3; // what a frame without a partner counts when the place of a jump is chosen

} // namespace

CommonPath::CommonPath(const LevelDistance &distance, const PlaceFinder &finder, const PlaceFinder::Place &start)
    : m_distance(distance)
    , m_finder(finder)
    , m_offsets(static_cast<std::size_t>(distance.firstFrames()), nowhere)
{
    qsizetype offset = start.offset;
    for (qsizetype other = start.offset - jitter; other <= start.offset + jitter; ++other)
        if (distance.mean(start.begin, start.end, other) < distance.mean(start.begin, start.end, offset))
            offset = other;
    const qsizetype middle = std::midpoint(start.begin, start.end);
    walk(middle, offset, 1);
    walk(middle - 1, offset, -1);
}

void CommonPath::walk(qsizetype from, qsizetype offset, int direction)
{
    qsizetype searched = from - direction; // where another place was looked for last: a jump leads back behind it
    for (qsizetype frame = from; m_distance.isInBoth(frame, offset);) {
        offset = followed(frame, offset);
        if (direction * (frame - searched) > 0 && isLost(frame, offset, direction)) {
            searched = frame;
            const std::optional<qsizetype> found = foundAnew(frame, offset, direction);
            const std::optional<Jump> jump = found ? jumpTo(*found, frame, offset, direction) : std::nullopt;
            if (jump) {
                leave(frame, offset, jump->from, direction);
                frame = jump->to;
                offset = *found;
            }
        }
        for (qsizetype i = 0; i < step && m_distance.isInBoth(frame, offset); ++i, frame += direction)
            m_offsets[static_cast<std::size_t>(frame)] = offset;
    }
}

/// A neighbouring offset, where another speed has made it the better one.
qsizetype CommonPath::followed(qsizetype frame, qsizetype offset) const
{
    constexpr float clearly = 0.97F;
    float least = clearly * m_distance.mean(frame - around, frame + around, offset);
    qsizetype best = offset;
    for (const qsizetype other : { offset - 1, offset + 1 })
        if (const float mean = m_distance.mean(frame - around, frame + around, other);
            mean < least && mean < alike && m_distance.isInBoth(frame, other))
            std::tie(least, best) = std::pair(mean, other);
    return best;
}

bool CommonPath::isLost(qsizetype frame, qsizetype offset, int direction) const
{
    qsizetype unlike = 0;
    qsizetype count = 0;
    for (qsizetype i = 0; i < ahead; ++i, frame += direction) {
        if (!m_distance.isInBoth(frame, offset))
            break;
        unlike += m_distance.at(frame, offset) > alike ? 1 : 0;
        ++count;
    }
    return 2 * unlike > count;
}

std::optional<qsizetype> CommonPath::foundAnew(qsizetype frame, qsizetype offset, int direction) const
{
    const qsizetype begin = direction > 0 ? frame : frame - sought;
    const std::optional<PlaceFinder::Place> place =
        m_finder.find(std::max<qsizetype>(begin, 0), begin + sought, offset);
    if (!place || std::abs(place->offset - offset) <= 2 * jitter)
        return std::nullopt;
    qsizetype best = place->offset;
    for (qsizetype other = best - jitter; other <= place->offset + jitter; ++other)
        if (m_distance.mean(place->begin, place->end, other) < m_distance.mean(place->begin, place->end, best))
            best = other;
    if (m_distance.mean(place->begin, place->end, best) > alike || goesOn(frame, offset, best, direction))
        return std::nullopt;
    return best;
}

/// Whether the old offset holds again soon after, as well as the new one does: then something else is in a few seconds
/// of a recording that repeats itself.
bool CommonPath::goesOn(qsizetype frame, qsizetype before, qsizetype after, int direction) const
{
    constexpr float asGood = 0.5F; // dB
    for (qsizetype skipped = ahead; skipped < sought; skipped += ahead) {
        const qsizetype begin = direction > 0 ? frame + skipped : frame - skipped - 2 * ahead;
        if (!m_distance.isInBoth(begin, before) || !m_distance.isInBoth(begin + 2 * ahead, before))
            return false;
        const float mean = m_distance.mean(begin, begin + 2 * ahead, before);
        if (mean < alike && mean < m_distance.mean(begin, begin + 2 * ahead, after) + asGood)
            return true;
    }
    return false;
}

/// Chooses the frame at which the one offset ends, and beyond what either recording lacks the other one begins. Nothing
/// if there is no such thing: in music that repeats itself the rest is also like a part that went before.
std::optional<CommonPath::Jump> CommonPath::jumpTo(qsizetype after, qsizetype frame, qsizetype before,
                                                   int direction) const
{
    const qsizetype lacking = std::max<qsizetype>(0, direction > 0 ? before - after : after - before);
    const auto cost = [&](qsizetype at, qsizetype offset) {
        return m_distance.isInBoth(at, offset) ? m_distance.at(at, offset) : unmatched;
    };
    const qsizetype begin = frame - direction * back;
    float sum = 0; // of what changes when the jump is made a frame later
    float least = 0;
    qsizetype best = begin;
    for (qsizetype i = 0; i < back + ahead; ++i) {
        const qsizetype at = begin + direction * i;
        sum += cost(at, before) - cost(at + direction * lacking, after);
        if (sum < least)
            std::tie(least, best) = std::pair(sum, at + direction);
    }
    const qsizetype to = best + direction * lacking;
    if (!m_distance.isInBoth(to, after) || !m_distance.isInBoth(to + direction * ahead, after))
        return std::nullopt;
    return Jump { best, to };
}

/// Puts right what was noted before a jump was noticed.
void CommonPath::leave(qsizetype frame, qsizetype offset, qsizetype jumpsAt, int direction)
{
    const qsizetype begin = frame - direction * back;
    for (qsizetype at = begin; direction * (frame - at) > 0 || direction * (jumpsAt - at) > 0; at += direction) {
        const bool isBefore = direction * (jumpsAt - at) > 0;
        if (at >= 0 && at < m_distance.firstFrames() && (!isBefore || direction * (at - frame) >= 0))
            m_offsets[static_cast<std::size_t>(at)] = isBefore && m_distance.isInBoth(at, offset) ? offset : nowhere;
    }
}

} // namespace epr
