// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "deckplayback.h"
#include "differencemaker.h"

#include <QElapsedTimer>

#include <memory>
#include <optional>

namespace epr {

/// The third thing to listen to: deck A minus deck B. What is left is a sound of its own on the time of deck A, made
/// when it is first asked for and played by a player that follows the decks.
class DifferenceMonitor final : public QObject {
    Q_OBJECT

public:
    explicit DifferenceMonitor(QObject *parent);

    bool isPreparing() const { return m_isPreparing; }
    bool isHeard() const { return m_isWanted && m_remainderDb; }
    std::optional<double> remainderDb() const { return m_remainderDb; } ///< against deck A, once it is made

    void listen(const DifferenceRequest &request); ///< as soon as it is made
    void leave();
    void forget(); ///< the decks' files are others
    bool awaitClosed() const { return m_maker.awaitClosed(); } ///< of the decks' files, after forget()

    /// Where the decks are on the time of A, and whether they play. What plays is moved only when it has been, or has
    /// drifted for a second.
    void follow(qint64 positionMs, bool play);

Q_SIGNALS:
    void changed(); ///< any of the above
    void failed(const QString &error);

private:
    DifferenceMaker m_maker;
    std::unique_ptr<DeckPlayback> m_playback; ///< null until there is something to play
    std::optional<double> m_remainderDb;
    bool m_isWanted = false;
    bool m_isPreparing = false;
    QElapsedTimer m_sinceMove;
};

} // namespace epr
