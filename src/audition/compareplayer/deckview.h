// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "deck.h"
#include "panel.h"
#include "records.h"

#include <utility>

namespace epr {

namespace vfd {
class Badge;
class ElidingLabel;
class LevelMeter;
class Scrubber;
class SevenSegment;
} // namespace vfd

/// The face of one deck: what is loaded, its waveform with the play position, the time and the levels. It shows what it
/// is told and knows nothing of the player behind it. A click on it asks to be monitored.
class DeckView final : public vfd::Panel {
    Q_OBJECT

public:
    DeckView(Deck deck, QWidget *parent);

    void setTrack(const TrackInfo &track); ///< the empty record = no file
    void setKept(bool kept); ///< marks the file as the copy to keep
    void setTurnedDown(double db); ///< that it is heard so much softer than the file is
    void setEnvelope(const Envelope &envelope);
    void setMarks(const QList<std::pair<qint64, qint64>> &spansMs); ///< stretches to point out, until the next track
    void setPreviewUnavailable();
    void setProblem(const QString &message); ///< shown in place of the format until an empty one comes
    void setDurationMs(qint64 durationMs);
    void setPositionMs(qint64 positionMs);
    void setMonitored(bool monitored);
    void showLevelsAt(qint64 positionMs);
    void resetLevels();

Q_SIGNALS:
    void seekRequested(qint64 positionMs);

private:
    void createWidgets();
    vfd::ElidingLabel *createSmallLabel(const QString &name);
    void layOutWidgets();
    void refreshFormat();
    void refreshDimming();

    QString m_name;
    bool m_hasFile = false;
    bool m_isMonitored = false;
    QString m_formatText;
    QString m_problem;
    Envelope m_envelope;
    vfd::ElidingLabel *m_heading = nullptr;
    vfd::Badge *m_kept = nullptr;
    vfd::Badge *m_turnedDown = nullptr;
    vfd::ElidingLabel *m_title = nullptr;
    vfd::ElidingLabel *m_file = nullptr;
    vfd::ElidingLabel *m_folder = nullptr;
    vfd::ElidingLabel *m_format = nullptr;
    vfd::Scrubber *m_scrubber = nullptr;
    vfd::SevenSegment *m_position = nullptr;
    vfd::ElidingLabel *m_duration = nullptr;
    vfd::LevelMeter *m_levels = nullptr;
};

} // namespace epr
