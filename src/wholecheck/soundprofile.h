// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "analyser.h"
#include "bandlevels.h"
#include "loudness.h"
#include "records.h"
#include "spectrumend.h"

namespace epr {

/// What one decoding of a whole file leaves for comparing it: under a kilobyte for each second.
struct SoundProfile {
    Fingerprint fingerprint; ///< of the built-in analysis, over the whole length
    BandLevels levels;
    SoundMeasures measures;
};

/// Makes the profile of a sound as it is decoded. Its memory does not depend on rate and channels, and not on how the
/// frames are cut into pieces.
class SoundProfiler final {
public:
    SoundProfiler(int channels, int sampleRate); ///< both above 0; rate in Hz

    void feed(std::span<const float> interleaved); ///< whole frames, nominally -1 to 1
    qint64 frames() const { return m_frames; }
    [[nodiscard]] SoundProfile finish(); ///< once, at the end

private:
    void measure(std::span<const float> interleaved);
    void feedMono(std::span<const float> block);
    qint64 toMs(qint64 frames) const { return frames * 1000 / m_sampleRate; }

    int m_channels;
    int m_sampleRate;
    qint64 m_frames = 0;
    qint64 m_firstSound = -1; ///< frame; -1 = there was none
    qint64 m_lastSound = -1;
    std::vector<qint64> m_fullScale; ///< for each channel, how many samples in a row
    qint64 m_clipped = 0;
    LoudnessMeter m_loudness;
    SpectrumEnd m_spectrumEnd;
    Resampler m_resampler;
    Fingerprinter m_main;
    Fingerprinter m_alternative;
    BandLevelMeter m_levels;
    std::vector<float> m_mono;
    std::vector<float> m_resampled;
};

} // namespace epr
