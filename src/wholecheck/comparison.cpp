// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "comparison.h"

#include "commonpath.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>

namespace epr {

namespace {

using Kind = SoundDifference::Kind;

/// A stretch in frames of both recordings.
struct Span {
    qsizetype firstBegin = 0;
    qsizetype firstEnd = 0;
    qsizetype secondBegin = 0;
    qsizetype secondEnd = 0;
    qsizetype unlike = 0; ///< frames
};

// A window is unlike when its mean is above the limit: long ones find what is a little unlike, short ones what is very
// much so. In frames and dB.
struct Window {
    qsizetype frames;
    float limit;
};
constexpr Window windows[] = { { 5, 14 }, { 13, 7 }, { 43, 5 } };
constexpr float alike = 4; // dB; a frame above is a part of the difference that its window found
constexpr qsizetype mergedWithin = 43; // frames: a second
constexpr qsizetype leastGap = 3; // frames that one has more than the other: 70 ms; jitter of the offsets is less
constexpr float soundBelowLoudest = 35; // dB; what is quieter beside the rest of the recording may be missing at an end
constexpr qsizetype mostMissingAtStart = 43; // frames with sound: a second
constexpr qsizetype mostMissingAtEnd = 22;
constexpr float silentDb = -60;
constexpr float muchQuieter = 25; // dB
constexpr qsizetype leastDropOut = 2; // frames

class Differences final {
public:
    Differences(const LevelDistance &distance, const std::vector<qsizetype> &offsets);

    QList<SoundDifference> find();

private:
    std::vector<bool> unlikeFrames() const;
    void addDropOuts(std::vector<bool> &unlike) const;
    bool isDroppedOut(qsizetype frame) const;
    void findInside();
    void findGaps();
    void findAtEnds();
    void add(Kind kind, bool isInSecond, const Span &span);
    void addUnlike(const Span &span);
    void addGap(const Span &span);
    void addMissing(bool isAtEnd, const Span &span, bool isInSecond);
    bool isRepeat(qsizetype begin, qsizetype end, bool inSecond) const;
    qsizetype offset(qsizetype frame) const { return m_offsets[static_cast<std::size_t>(frame)]; }

    const LevelDistance &m_distance;
    const std::vector<qsizetype> &m_offsets;
    qsizetype m_begin = 0; ///< the first frame that both have
    qsizetype m_end = 0; ///< behind the last
    QList<SoundDifference> m_found;
};

Differences::Differences(const LevelDistance &distance, const std::vector<qsizetype> &offsets)
    : m_distance(distance)
    , m_offsets(offsets)
{
    const auto isKnown = [](qsizetype offset) { return offset != CommonPath::nowhere; };
    m_begin = std::ranges::find_if(offsets, isKnown) - offsets.begin();
    m_end = offsets.rend() - std::find_if(offsets.rbegin(), offsets.rend(), isKnown);
}

QList<SoundDifference> Differences::find()
{
    if (m_begin >= m_end)
        return {};
    findInside();
    findGaps();
    findAtEnds();
    std::ranges::sort(m_found, {}, &SoundDifference::firstStartMs);
    return m_found;
}

std::vector<bool> Differences::unlikeFrames() const
{
    std::vector<float> distances(m_offsets.size());
    for (qsizetype frame = m_begin; frame < m_end; ++frame)
        if (offset(frame) != CommonPath::nowhere)
            distances[static_cast<std::size_t>(frame)] = m_distance.at(frame, offset(frame));
    std::vector<bool> unlike(m_offsets.size());
    for (const Window &window : windows) {
        const float limit = window.limit * static_cast<float>(window.frames);
        float sum = 0;
        for (qsizetype end = m_begin; end < m_end; ++end) {
            sum += distances[static_cast<std::size_t>(end)];
            const qsizetype begin = end - window.frames + 1;
            if (begin > m_begin)
                sum -= distances[static_cast<std::size_t>(begin - 1)];
            for (qsizetype frame = begin; sum > limit && begin >= m_begin && frame <= end; ++frame)
                if (distances[static_cast<std::size_t>(frame)] > alike)
                    unlike[static_cast<std::size_t>(frame)] = true;
        }
    }
    addDropOuts(unlike);
    return unlike;
}

// They are too short for a mean, but nothing is left of the sound in them.
void Differences::addDropOuts(std::vector<bool> &unlike) const
{
    qsizetype length = 0;
    for (qsizetype frame = m_begin; frame < m_end; ++frame) {
        length = isDroppedOut(frame) ? length + 1 : 0;
        if (length >= leastDropOut)
            std::fill_n(unlike.begin() + static_cast<std::ptrdiff_t>(frame - length + 1), length, true);
    }
}

// The frames beside it count too: a copy may fall silent a little sooner, and an encoder sounds a little longer.
bool Differences::isDroppedOut(qsizetype frame) const
{
    if (offset(frame) == CommonPath::nowhere)
        return false;
    const qsizetype other = frame + offset(frame);
    float first = m_distance.firstLevel(frame);
    float second = m_distance.secondLevel(other);
    const bool isFirstSilent = first < silentDb;
    if (!isFirstSilent && second >= silentDb)
        return false;
    for (const qsizetype beside : { -1, 1 }) {
        if (!m_distance.isInBoth(frame + beside, offset(frame)))
            return false;
        if (isFirstSilent)
            second = std::min(second, m_distance.secondLevel(other + beside));
        else
            first = std::min(first, m_distance.firstLevel(frame + beside));
    }
    return std::abs(first - second) > muchQuieter && (first < silentDb) != (second < silentDb);
}

void Differences::findInside()
{
    const std::vector<bool> unlike = unlikeFrames();
    std::optional<Span> span;
    for (qsizetype frame = m_begin; frame < m_end; ++frame) {
        if (!unlike[static_cast<std::size_t>(frame)])
            continue;
        if (span && frame - span->firstEnd > mergedWithin) {
            addUnlike(*span);
            span.reset();
        }
        if (!span)
            span = Span { .firstBegin = frame, .secondBegin = frame + offset(frame) };
        span->firstEnd = frame + 1;
        span->secondEnd = frame + offset(frame) + 1;
        ++span->unlike;
    }
    if (span)
        addUnlike(*span);
}

void Differences::addUnlike(const Span &span)
{
    constexpr qsizetype wholeRest = 86; // two seconds
    qsizetype quietFirst = 0;
    qsizetype quietSecond = 0;
    for (qsizetype frame = span.firstBegin; frame < span.firstEnd; ++frame) {
        if (offset(frame) == CommonPath::nowhere)
            continue;
        const float first = m_distance.firstLevel(frame);
        const float second = m_distance.secondLevel(frame + offset(frame));
        quietFirst += first < silentDb && first < second - muchQuieter ? 1 : 0;
        quietSecond += second < silentDb && second < first - muchQuieter ? 1 : 0;
    }
    if (2 * std::max(quietFirst, quietSecond) > span.firstEnd - span.firstBegin)
        add(Kind::Silent, quietSecond > quietFirst, span);
    else if (m_end - span.firstEnd < mergedWithin && span.firstEnd - span.firstBegin > wholeRest)
        add(Kind::OtherEnding, true, span);
    else
        add(Kind::Differs, true, span);
}

// Between frames whose partners do not follow each other lies what one of the two has more.
void Differences::findGaps()
{
    for (qsizetype frame = m_begin, last = m_begin; frame < m_end; ++frame) {
        if (offset(frame) == CommonPath::nowhere)
            continue;
        const Span span { last + 1, frame, last + offset(last) + 1, frame + offset(frame) };
        if (frame > last && std::abs(offset(frame) - offset(last)) >= leastGap)
            addGap(span);
        last = frame;
    }
}

void Differences::addGap(const Span &span)
{
    const bool isInSecond = span.secondEnd - span.secondBegin > span.firstEnd - span.firstBegin;
    const qsizetype begin = isInSecond ? span.secondBegin : span.firstBegin;
    const qsizetype end = isInSecond ? span.secondEnd : span.firstEnd;
    if (isRepeat(begin, end, isInSecond))
        add(Kind::Repeats, isInSecond, span);
    else
        add(Kind::Skips, !isInSecond, span);
}

/// Whether what one has more is what it has directly before or after, too. Where the repetition begins cannot be told
/// to the frame, so that it may be partly the one and partly the other.
bool Differences::isRepeat(qsizetype begin, qsizetype end, bool inSecond) const
{
    const qsizetype frames = inSecond ? m_distance.secondFrames() : m_distance.firstFrames();
    const qsizetype length = end - begin;
    qsizetype same = 0;
    for (qsizetype frame = std::max<qsizetype>(begin - length, 0); frame < std::min(end, frames - length); ++frame)
        same += m_distance.within(inSecond, frame, frame + length) < alike ? 1 : 0;
    return 5 * same > 4 * length;
}

void Differences::findAtEnds()
{
    const qsizetype firstFrames = m_distance.firstFrames();
    const qsizetype secondFrames = m_distance.secondFrames();
    const qsizetype secondBegin = m_begin + offset(m_begin);
    const qsizetype secondEnd = m_end + offset(m_end - 1);
    for (const bool isInSecond : { false, true }) {
        addMissing(false, { 0, m_begin, 0, secondBegin }, isInSecond);
        addMissing(true, { m_end, firstFrames, secondEnd, secondFrames }, isInSecond);
    }
}

/// Beyond the end of one recording: what the other one has there, if it is sound.
void Differences::addMissing(bool isAtEnd, const Span &span, bool isInSecond)
{
    const auto level = [&](qsizetype frame) {
        return isInSecond ? m_distance.firstLevel(frame) : m_distance.secondLevel(frame);
    };
    const qsizetype frames = isInSecond ? m_distance.firstFrames() : m_distance.secondFrames();
    float loudest = -120;
    for (qsizetype frame = 0; frame < frames; ++frame)
        loudest = std::max(loudest, level(frame));
    qsizetype sound = 0;
    for (qsizetype frame = isInSecond ? span.firstBegin : span.secondBegin;
         frame < (isInSecond ? span.firstEnd : span.secondEnd); ++frame)
        sound += level(frame) > std::max(loudest - soundBelowLoudest, silentDb) ? 1 : 0;
    if (sound > (isAtEnd ? mostMissingAtEnd : mostMissingAtStart))
        add(isAtEnd ? Kind::StopsEarlier : Kind::StartsLater, isInSecond, span);
}

void Differences::add(Kind kind, bool isInSecond, const Span &span)
{
    const auto toMs = [](qsizetype frame) { return std::llround(static_cast<double>(frame) * BandLevels::frameMs); };
    m_found.append(
        { kind, isInSecond, toMs(span.firstBegin), toMs(span.firstEnd), toMs(span.secondBegin), toMs(span.secondEnd) });
}

PairCheck comparedFrom(const PlaceFinder::Place &place, const PlaceFinder &finder, LevelDistance &distance)
{
    distance.learnBias(place.begin, place.end, place.offset);
    const CommonPath path(distance, finder, place);
    const auto middle = static_cast<std::size_t>(std::midpoint(place.begin, place.end));
    PairCheck check;
    check.isAligned = middle < path.offsets().size() && path.offsets()[middle] != CommonPath::nowhere;
    if (!check.isAligned)
        return check;
    check.offsetMs = std::llround(static_cast<double>(path.offsets()[middle]) * BandLevels::frameMs);
    check.differences = Differences(distance, path.offsets()).find();
    return check;
}

/// In milliseconds: what is unlike, and a second for each place.
qint64 unlikeMs(const PairCheck &check)
{
    if (!check.isAligned)
        return std::numeric_limits<qint64>::max();
    qint64 sum = 0;
    for (const SoundDifference &d : check.differences)
        sum += 1000 + std::max(d.firstEndMs - d.firstStartMs, d.secondEndMs - d.secondStartMs);
    return sum;
}

} // namespace

// What repeats itself can be laid together in several ways; the one that leaves least unlike is the way of the edit.
PairCheck compareWhole(const SoundProfile &first, const SoundProfile &second)
{
    const PlaceFinder finder(first.fingerprint, second.fingerprint);
    LevelDistance distance(first.levels, second.levels);
    PairCheck best;
    for (const PlaceFinder::Place &place : finder.find()) {
        const PairCheck check = comparedFrom(place, finder, distance);
        if (unlikeMs(check) < unlikeMs(best))
            best = check;
        if (best.isAligned && best.differences.isEmpty())
            break;
    }
    return best;
}

} // namespace epr
