// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "loudness.h"

#include <ebur128.h>

#include <algorithm>
#include <cmath>

namespace epr {

struct LoudnessMeter::State {
    explicit State(ebur128_state *made)
        : meter(made)
    {
    }
    ~State() { ebur128_destroy(&meter); }
    Q_DISABLE_COPY_MOVE(State)

    ebur128_state *meter;
};

// As a histogram the measurement takes the same memory whatever the length, and is off by a tenth of a dB at most.
LoudnessMeter::LoudnessMeter(int channels, int sampleRate, Measure measure)
{
    if (channels < 1 || sampleRate < 1)
        return;
    const int mode = measure == Measure::Loudness ? EBUR128_MODE_I : EBUR128_MODE_I | EBUR128_MODE_TRUE_PEAK;
    ebur128_state *meter = ebur128_init(static_cast<unsigned>(channels), static_cast<unsigned long>(sampleRate),
                                        mode | EBUR128_MODE_HISTOGRAM);
    if (meter == nullptr)
        return;
    m_state = std::make_unique<State>(meter);
    if (channels == 1)
        ebur128_set_channel(meter, 0, EBUR128_DUAL_MONO);
}

LoudnessMeter::~LoudnessMeter() = default;

void LoudnessMeter::add(std::span<const float> interleaved)
{
    if (m_state)
        ebur128_add_frames_float(m_state->meter, interleaved.data(), interleaved.size() / m_state->meter->channels);
}

double LoudnessMeter::loudness() const
{
    double loudness = noLevel;
    const bool isMeasured = m_state && ebur128_loudness_global(m_state->meter, &loudness) == EBUR128_SUCCESS;
    return isMeasured ? loudness : noLevel;
}

double LoudnessMeter::truePeak() const
{
    double highest = 0;
    for (unsigned channel = 0; m_state && channel < m_state->meter->channels; ++channel) {
        double peak = 0;
        if (ebur128_true_peak(m_state->meter, channel, &peak) == EBUR128_SUCCESS)
            highest = std::max(highest, peak);
    }
    return 20 * std::log10(highest); // minus infinity of nothing
}

} // namespace epr
