// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "deck.h"
#include "deckplayback.h"
#include "records.h"
#include "soundcheck.h"
#include "waveformloader.h"

#include <QTimer>
#include <QWidget>

#include <functional>
#include <optional>
#include <utility>

namespace epr {

class DeckView;
class DifferenceMonitor;
class TransportView;

/// The two-deck player. Both decks play at once; which one is monitored, that is heard, is a matter of volume only.
/// Linked decks are moved and started together, so that both are at one moment of the recording.
class ComparePlayer final : public QWidget {
    Q_OBJECT

public:
    static constexpr qint64 maxDriftMs = 140; ///< of linked decks, see syncTick()

    using Playbacks = PerDeck<std::unique_ptr<DeckPlayback>>;

    explicit ComparePlayer(QWidget *parent = nullptr);
    explicit ComparePlayer(Playbacks playbacks, QWidget *parent = nullptr);
    ~ComparePlayer() override;

    bool isLinked() const { return m_linked; }
    bool hasSameLoudness() const { return m_sameLoudness; }
    Deck monitor() const { return m_monitor; }
    const TrackInfo &track(Deck deck) const { return m_sides[deck].track; } ///< the empty record = none
    const DeckPlayback &playback(Deck deck) const { return *m_sides[deck].playback; }

    /// A deck that plays goes on with the new file, as does a linked one while the other plays. The path that the deck
    /// already holds keeps its position.
    void load(Deck deck, const TrackInfo &track);
    void loadIntoFreeDeck(const TrackInfo &track); ///< an empty one first, else the one that is not monitored
    void clear(Deck deck);
    /// Takes these files out of the decks and returns when they are closed: one that is open cannot be moved on every
    /// system.
    void release(const QStringList &paths);
    void clearVanished(); ///< the decks whose file is no longer there
    void seek(Deck deck, qint64 positionMs);
    void setKept(Deck deck, bool kept); ///< whether its file is shown as the copy to keep

    /// How much later deck B has what deck A has at a time; nothing = unknown, which counts as 0. Linked decks hold it,
    /// and one that is not there yet, or no more, stands at that end of its file. Gone once another file is loaded.
    void setOffset(std::optional<qint64> bLaterMs);
    void setMarks(Deck deck,
                  const QList<std::pair<qint64, qint64>> &spansMs); ///< differences; for the loaded file only
    void showMeasures(Deck deck, const SoundMeasures &measures); ///< likewise; the default record = none

public Q_SLOTS:
    void playPause();
    void pause();
    void stop();
    /// Both decks fall silent, and what is left of A when B is taken away is heard, once it is made.
    void monitorDifference();
    void monitorDeckA() { setMonitor(Deck::A); }
    void monitorDeckB() { setMonitor(Deck::B); }
    void swapMonitor() { setMonitor(otherDeck(m_monitor)); }
    void setLinked(bool linked);
    /// Turns the louder of two copies down to the other's loudness (EBU R 128), once both are known. What the decks
    /// show stays that of the files.
    void setSameLoudness(bool same);
    /// Called once a second while linked: takes the deck that is not monitored back to the one that is when they have
    /// drifted apart. The monitored one is never moved, so that what is heard does not jump.
    void syncTick();

Q_SIGNALS:
    void logMessage(const QString &message);
    void linkedChanged(bool linked);
    void sameLoudnessChanged(bool same);
    void tracksChanged(); ///< a deck was loaded or cleared

private:
    struct Side {
        std::unique_ptr<DeckPlayback> playback;
        DeckView *view = nullptr;
        TrackInfo track; ///< the empty record = no file
        bool awaitsPreview = false;
        bool waits = false; ///< at its start, until the linked deck that plays gets to what it starts with
        float peak = 0; ///< of full scale, 0 = unknown
        SoundMeasures measures;
        double previewLoudness = noLevel; ///< LUFS of what the waveform shows, 40 minutes at most
        double turnedDownBy = 0; ///< dB, at the moment

        void forgetSound() { peak = 0, measures = {}, previewLoudness = noLevel, turnedDownBy = 0; }
        double loudness() const { return measures.loudness > noLevel ? measures.loudness : previewLoudness; }

        bool hasFile() const { return !track.path.isEmpty(); }
    };

    void createViews();
    void connectTransport();
    void connectDeck(Deck deck);
    void connectPreviews();
    bool isAnyPlaying() const;
    bool areBothLoaded() const { return m_sides.a.hasFile() && m_sides.b.hasFile(); }
    Deck leader() const; ///< of linked decks, the one that the other follows
    qint64 counterpart(Deck deck) const; ///< of where the other deck is
    void place(Deck deck, qint64 positionMs, bool play);
    void follow(bool play);
    void joinLeader();
    void setMonitor(Deck deck);
    void showMonitor();
    void turnDown();
    void setVolumes();
    void showDifference();
    void showTrack(Deck deck);
    void showDeltas();
    void levelTick();
    void onPlayingChanged(Deck deck);
    void onProblem(Deck deck, const QString &problem);
    void giveUpPreview(Deck deck, const QString &error);
    void clearWhere(const std::function<bool(const QString &path)> &isUnwanted);

    PerDeck<Side> m_sides;
    TransportView *m_transport = nullptr;
    DifferenceMonitor *m_difference = nullptr;
    Deck m_monitor = Deck::A;
    bool m_linked = false;
    bool m_sameLoudness = false;
    std::optional<qint64> m_offsetMs; ///< of B
    QTimer m_syncTimer;
    QTimer m_levelTimer; ///< runs while a deck plays
    WaveformLoader m_previews;
};

} // namespace epr
