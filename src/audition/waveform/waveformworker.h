// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "envelope.h"
#include "waveformrequest.h"

#include <QObject>

#include <array>
#include <memory>
#include <optional>

namespace epr {

class WaveformDecoding;

/// Lives on the loader's thread and decodes there, one file at a time. Requests that arrive meanwhile, in the event
/// loop of the decoding, wait; of each deck only the newest is kept, and it ends the decoding that it makes pointless.
class WaveformWorker final : public QObject {
    Q_OBJECT

public:
    /// The generations are shared, because a thread that cannot be joined outlives its loader.
    WaveformWorker(std::shared_ptr<const WaveformGenerations> generations, int watchdogMs);

    void analyse(const epr::WaveformRequest &request);

    /// Ends the running decoding if nobody wants it any more.
    void dropOutdated();

Q_SIGNALS:
    /// Only for requests that were still the newest of their deck when this was emitted.
    void loaded(const epr::WaveformRequest &request, const epr::Envelope &envelope);
    /// The error may be empty.
    void failed(const epr::WaveformRequest &request, const QString &error);

private:
    [[nodiscard]] bool isWanted(const WaveformRequest &request) const;
    [[nodiscard]] std::optional<WaveformRequest> takeWaiting();
    void decode(const WaveformRequest &request);

    std::shared_ptr<const WaveformGenerations> m_generations;
    int m_watchdogMs;
    std::array<std::optional<WaveformRequest>, 2> m_waiting;
    WaveformRequest m_current; ///< what m_decoding decodes
    WaveformDecoding *m_decoding = nullptr; ///< null = none running
};

} // namespace epr
