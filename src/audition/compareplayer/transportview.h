// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "deck.h"
#include "panel.h"

#include <optional>

class QGridLayout;

namespace epr {

namespace vfd {
class Badge;
class ElidingLabel;
class Lamp;
} // namespace vfd

/// The buttons between the decks, with the lamps that tell which deck is monitored, and how deck B differs from deck A.
class TransportView final : public vfd::Panel {
    Q_OBJECT

public:
    /// Those that are often unknown have no place where they are empty.
    struct Deltas {
        QString duration {};
        QString bitrate {};
        QString level {};
        QString start {};
        QString loudness {};
        QString bandwidth {};
    };

    explicit TransportView(QWidget *parent);

    void setPlaying(bool playing);
    void setLinked(bool linked);
    void setSameLoudness(bool same);
    void setMonitor(std::optional<Deck> deck); ///< nothing = what is heard is the difference
    void setDifference(bool isPreparing, std::optional<double> remainderDb); ///< how loud it is, while it is heard
    void setDeltas(const Deltas &deltas);

Q_SIGNALS:
    void playPauseRequested();
    void stopRequested();
    void linkRequested(bool linked);
    void sameLoudnessRequested(bool same);
    void monitorRequested(epr::Deck deck);
    void differenceRequested();

private:
    void createLamps();
    void createDeltas();
    void layOutWidgets();

    QGridLayout *m_rows = nullptr;
    vfd::Lamp *m_play = nullptr;
    vfd::Lamp *m_stop = nullptr;
    vfd::Lamp *m_link = nullptr;
    vfd::Lamp *m_loudness = nullptr;
    PerDeck<vfd::Lamp *> m_monitorLamps;
    vfd::Lamp *m_difference = nullptr;
    vfd::ElidingLabel *m_caption = nullptr;
    vfd::Badge *m_durationDelta = nullptr;
    vfd::Badge *m_bitrateDelta = nullptr;
    vfd::Badge *m_levelDelta = nullptr;
    vfd::Badge *m_startDelta = nullptr;
    vfd::Badge *m_loudnessDelta = nullptr;
    vfd::Badge *m_bandwidthDelta = nullptr;
};

} // namespace epr
