// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "records.h"

class QAudioBuffer;

namespace epr {

/// Reduces decoded audio to one peak for each 40 ms. Only the first two channels count; the first buffer decides the
/// length of a bucket and whether the file is mono.
class EnvelopeBuilder final {
public:
    static constexpr qsizetype maxBuckets = 60000; ///< 40 minutes

    /// Whether the limit is reached; what is added after that is not looked at.
    bool isFull() const { return m_envelope.peak.size() >= maxBuckets; }

    void add(const QAudioBuffer &buffer);

    /// The envelope with its last, perhaps only partly filled bucket. A quiet one is raised to nearly full height, a
    /// loud one is never lowered. The duration is left to the caller. The builder is as new afterwards.
    Envelope take();

private:
    template <typename Sample> void addSamples(const QAudioBuffer &buffer);
    void closeBucket();

    Envelope m_envelope;
    int m_channels = 0; ///< 0 = no buffer yet
    qsizetype m_bucketFrames = 1;
    qsizetype m_frames = 0; ///< in the open bucket
    float m_left = 0.0F; ///< maxima of the open bucket
    float m_right = 0.0F;
};

} // namespace epr
