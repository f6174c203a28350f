// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "subtraction.h"

#include <QCoreApplication>

#include <algorithm>
#include <cmath>
#include <complex>
#include <numbers>

namespace epr {

namespace {

using Complex = std::complex<double>;

constexpr qsizetype stereo = 2;
constexpr qsizetype excerptFrames = 32768; // of A, at each place: 0.7 s at 48 kHz
constexpr qsizetype searchFrames = 4 * excerptFrames; // of B: a second to either side of the expected lag
constexpr qsizetype slackFrames = (searchFrames - excerptFrames) / 2;
constexpr int mostPlaces = 12;
constexpr int leastPlaces = 3;
constexpr double leastLevel = 1e-3; // of full scale; what is below -60 dB tells nothing
constexpr double leastLikeness = 0.5; // correlation
constexpr double mostDisagreement = 0.5; // frames
constexpr qsizetype tapCount = 64;

void reverseBits(std::vector<Complex> &values)
{
    for (std::size_t i = 1, j = 0; i < values.size(); ++i) {
        std::size_t bit = values.size() >> 1;
        for (; (j & bit) != 0; bit >>= 1)
            j ^= bit;
        j ^= bit;
        if (i < j)
            std::swap(values[i], values[j]);
    }
}

/// Fourier's, in place, for a power of two of values; the inverse is not scaled.
void transform(std::vector<Complex> &values, bool isInverse)
{
    const std::size_t size = values.size();
    reverseBits(values);
    for (std::size_t length = 2; length <= size; length *= 2) {
        const double angle = (isInverse ? 2 : -2) * std::numbers::pi / static_cast<double>(length);
        std::vector<Complex> turns(length / 2);
        for (std::size_t k = 0; k < turns.size(); ++k)
            turns[k] = std::polar(1.0, angle * static_cast<double>(k));
        for (std::size_t from = 0; from < size; from += length) {
            for (std::size_t k = 0; k < length / 2; ++k) {
                const Complex even = values[from + k];
                const Complex odd = values[from + k + length / 2] * turns[k];
                values[from + k] = even + odd;
                values[from + k + length / 2] = even - odd;
            }
        }
    }
}

qsizetype framesOf(StereoSound sound)
{
    return static_cast<qsizetype>(sound.size()) / stereo;
}

/// The sum of both channels, differentiated: the bass, of which music has most, would leave the peak of a correlation
/// broad. Silence beyond the ends.
std::vector<Complex> sharpened(StereoSound sound, qsizetype firstFrame, qsizetype frames, std::size_t size)
{
    const auto mono = [&](qsizetype frame) {
        if (frame < 0 || frame >= framesOf(sound))
            return 0.0;
        const auto index = static_cast<std::size_t>(stereo * frame);
        return double { sound[index] } + double { sound[index + 1] };
    };
    std::vector<Complex> values(size);
    for (qsizetype i = 0; i < frames; ++i)
        values[static_cast<std::size_t>(i)] = mono(firstFrame + i) - mono(firstFrame + i - 1);
    return values;
}

double energyOf(const std::vector<Complex> &values)
{
    double energy = 0;
    for (const Complex &value : values)
        energy += std::norm(value);
    return energy;
}

/// What one place says.
struct Place {
    qsizetype frame = 0; ///< of A, where the excerpt begins
    double lag = 0;
    double likeness = 0; ///< correlation there, with the polarity left out
};

/// How far B's excerpt lags behind A's, which is less than a frame: the slope of the phase between the two spectra.
double fractionOf(std::vector<Complex> a, std::vector<Complex> b)
{
    const std::size_t size = a.size();
    for (std::size_t i = 0; i < size; ++i) {
        const double window =
            0.5 - 0.5 * std::cos(2 * std::numbers::pi * static_cast<double>(i) / static_cast<double>(size));
        a[i] *= window;
        b[i] *= window;
    }
    transform(a, false);
    transform(b, false);
    Complex direct = 0;
    for (std::size_t k = 1; k < size / 2; ++k)
        direct += a[k] * std::conj(b[k]);
    const double polarity = direct.real() < 0 ? -1 : 1;
    double slope = 0;
    double weights = 0;
    for (std::size_t k = 1; k < size / 2; ++k) {
        const Complex cross = polarity * a[k] * std::conj(b[k]);
        const double turn = 2 * std::numbers::pi * static_cast<double>(k) / static_cast<double>(size);
        slope += std::abs(cross) * turn * std::arg(cross);
        weights += std::abs(cross) * turn * turn;
    }
    return weights > 0 ? slope / weights : 0;
}

/// Where the second sound is most like the excerpt, with the correlation there, whatever its polarity.
std::size_t peakOf(const std::vector<Complex> &correlation, const std::vector<Complex> &search, double energyOfA,
                   double &likeness)
{
    const std::size_t size = search.size();
    double energyOfB = 0;
    for (std::size_t i = 0; i < excerptFrames; ++i)
        energyOfB += std::norm(search[i]);
    std::size_t best = 0;
    for (std::size_t shift = 0; shift + excerptFrames < size; ++shift) {
        const double here = std::abs(correlation[shift].real()) / static_cast<double>(size)
            / std::sqrt(energyOfA * std::max(energyOfB, energyOfA * 1e-6));
        if (here > likeness) {
            likeness = here;
            best = shift;
        }
        energyOfB += std::norm(search[shift + excerptFrames]) - std::norm(search[shift]);
    }
    return best;
}

std::optional<Place> placeAt(StereoSound a, StereoSound b, qsizetype frame, qsizetype expectedLag)
{
    constexpr std::size_t size = searchFrames;
    const std::vector<Complex> excerpt = sharpened(a, frame, excerptFrames, size);
    const qsizetype searchFrom = frame + expectedLag - slackFrames;
    const std::vector<Complex> search = sharpened(b, searchFrom, searchFrames, size);
    const double energyOfA = energyOf(excerpt);
    if (energyOfA < leastLevel * leastLevel * excerptFrames)
        return std::nullopt;
    std::vector<Complex> correlation = excerpt;
    std::vector<Complex> spectrum = search;
    transform(correlation, false);
    transform(spectrum, false);
    for (std::size_t k = 0; k < size; ++k)
        correlation[k] = std::conj(correlation[k]) * spectrum[k];
    transform(correlation, true);

    Place best { .frame = frame };
    const std::size_t shift = peakOf(correlation, search, energyOfA, best.likeness);
    const auto aligned = search.begin() + static_cast<qsizetype>(shift);
    const double fraction =
        fractionOf({ excerpt.begin(), excerpt.begin() + excerptFrames }, { aligned, aligned + excerptFrames });
    best.lag = static_cast<double>(expectedLag - slackFrames + static_cast<qsizetype>(shift)) + fraction;
    return best;
}

QString text(const char *words)
{
    return QCoreApplication::translate("epr::ComparePlayer", words);
}

QString disagreement(const std::vector<Place> &places, int sampleRate)
{
    const double lengthFrames = static_cast<double>(places.back().frame - places.front().frame);
    const double slope = (places.back().lag - places.front().lag) / lengthFrames;
    const bool isSteady = std::ranges::all_of(places, [&](const Place &place) {
        const double onLine = places.front().lag + slope * static_cast<double>(place.frame - places.front().frame);
        return std::abs(place.lag - onLine) <= std::max(2.0, 0.1 * std::abs(slope) * lengthFrames);
    });
    if (isSteady)
        return text(
            QT_TRANSLATE_NOOP("epr::ComparePlayer", "cannot be subtracted: the copies run at different speeds"));
    const auto cut = std::ranges::adjacent_find(places, [](const Place &before, const Place &after) {
        return std::abs(after.lag - before.lag) > mostDisagreement;
    });
    return text(QT_TRANSLATE_NOOP("epr::ComparePlayer",
                                  "cannot be subtracted: a part is missing in one copy, after %1 s of deck A"))
        .arg(static_cast<double>(cut->frame) / sampleRate, 0, 'f', 1);
}

std::vector<Place> placesOf(StereoSound a, StereoSound b, qsizetype expectedLag, const std::atomic<bool> &stop)
{
    const qsizetype begin = std::max<qsizetype>(0, -expectedLag);
    const qsizetype end = std::min(framesOf(a), framesOf(b) - expectedLag) - excerptFrames;
    const qsizetype count = std::clamp<qsizetype>((end - begin) / (2 * excerptFrames), 1, mostPlaces);
    std::vector<Place> places;
    for (qsizetype i = 0; i <= count && end > begin && !stop; ++i) {
        if (const std::optional<Place> place = placeAt(a, b, begin + (end - begin) * i / count, expectedLag))
            places.push_back(*place);
    }
    return places;
}

/// What B is multiplied with, at these places, for the least remainder.
double gainAt(const std::vector<Place> &places, StereoSound a, const ShiftedSound &b)
{
    double product = 0;
    double energy = 0;
    for (const Place &place : places) {
        for (qsizetype i = 0; i < stereo * excerptFrames; ++i) {
            const double value = b.at(place.frame + i / stereo, i % stereo);
            product += value * double { a[static_cast<std::size_t>(stereo * place.frame + i)] };
            energy += value * value;
        }
    }
    return energy > 0 ? product / energy : 0;
}

} // namespace

Result<Subtraction> findSubtraction(StereoSound a, StereoSound b, int sampleRate, double expectedLag,
                                    const std::atomic<bool> &stop)
{
    const std::vector<Place> all = placesOf(a, b, std::llround(expectedLag), stop);
    std::vector<Place> alike;
    std::ranges::copy_if(all, std::back_inserter(alike),
                         [](const Place &place) { return place.likeness >= leastLikeness; });
    if (alike.size() < leastPlaces || 2 * alike.size() < all.size())
        return failure(text(QT_TRANSLATE_NOOP("epr::ComparePlayer",
                                              "cannot be subtracted: the copies are too unlike, or run at different "
                                              "speeds")));
    std::vector<double> lags;
    std::ranges::transform(alike, std::back_inserter(lags), &Place::lag);
    std::ranges::sort(lags);
    if (lags.back() - lags.front() > mostDisagreement)
        return failure(disagreement(alike, sampleRate));
    const double lag = lags[lags.size() / 2];
    return Subtraction { lag, gainAt(alike, a, ShiftedSound(b, lag)) };
}

// A windowed sinc; none for a lag of whole frames, which then changes no bit.
ShiftedSound::ShiftedSound(StereoSound sound, double lagFrames)
    : m_sound(sound)
    , m_lag(static_cast<qsizetype>(std::floor(lagFrames)))
{
    constexpr double leastFraction = 0.002; // of a frame: -50 dB at the highest frequencies, far less where music is
    constexpr qsizetype half = tapCount / 2;
    double fraction = lagFrames - static_cast<double>(m_lag);
    if (fraction > 1 - leastFraction)
        ++m_lag;
    if (fraction < leastFraction || fraction > 1 - leastFraction)
        return;
    m_lag -= half - 1;
    for (qsizetype i = 0; i < tapCount; ++i) {
        const double x = static_cast<double>(i - half + 1) - fraction;
        const double turn = std::numbers::pi * x;
        const double window = 0.42 + 0.5 * std::cos(turn / half) + 0.08 * std::cos(2 * turn / half);
        m_taps.push_back(static_cast<float>(std::sin(turn) / turn * window));
    }
}

float ShiftedSound::at(qsizetype frame, qsizetype channel) const
{
    const qsizetype first = frame + m_lag;
    const qsizetype frames = framesOf(m_sound);
    const auto sample = [&](qsizetype index) { return m_sound[static_cast<std::size_t>(stereo * index + channel)]; };
    if (m_taps.empty())
        return first >= 0 && first < frames ? sample(first) : 0.0F;
    float sum = 0;
    const qsizetype end = std::min(tapCount, frames - first);
    for (qsizetype tap = std::max<qsizetype>(0, -first); tap < end; ++tap)
        sum += m_taps[static_cast<std::size_t>(tap)] * sample(first + tap);
    return sum;
}

Subtractor::Subtractor(StereoSound a, StereoSound b, const Subtraction &how)
    : m_a(a)
    , m_b(b, how.lagFrames)
    , m_gain(static_cast<float>(how.gain))
{
}

std::vector<float> Subtractor::difference(qsizetype firstFrame, qsizetype frames)
{
    const qsizetype end = std::min(firstFrame + frames, framesOf(m_a));
    std::vector<float> left;
    for (qsizetype i = stereo * firstFrame; i < stereo * end; ++i) {
        const float original = m_a[static_cast<std::size_t>(i)];
        left.push_back(original - m_gain * m_b.at(i / stereo, i % stereo));
        m_energyOfA += double { original } * double { original };
        m_energyLeft += double { left.back() } * double { left.back() };
    }
    return left;
}

double Subtractor::remainderDb() const
{
    return 10 * std::log10(m_energyLeft / std::max(m_energyOfA, 1e-12));
}

} // namespace epr
