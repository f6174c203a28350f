// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "bands.h"
#include "spectrum.h"

#include <QList>

#include <span>

namespace epr {

/// Cuts a signal at analysisRate into overlapping frames and makes a word of every two neighbouring ones: n frames give
/// n - 1 words. What does not fill the last frame is ignored.
class Fingerprinter final {
public:
    Fingerprinter();

    [[nodiscard]] const QList<quint32> &words() const { return m_words; }
    [[nodiscard]] const QList<quint32> &masks() const { return m_masks; }

    void reset();
    void feed(std::span<const float> samples);

private:
    void processFrame();

    std::vector<float> m_frame;
    std::size_t m_filled = 0; ///< samples at the front of m_frame that are in
    Spectrum m_spectrum;
    BandEnergies m_previous {};
    bool m_hasPrevious = false;
    QList<quint32> m_words;
    QList<quint32> m_masks;
};

} // namespace epr
