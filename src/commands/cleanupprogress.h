// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

#include <mutex>

namespace epr {

/// How far a clean-up has come, between the thread that does it and the window that shows it. The window looks when it
/// paints; a signal for each of 50,000 files would only pile up.
class CleanupProgress final {
public:
    struct State {
        qsizetype index = 0; ///< from 0
        qsizetype total = 0; ///< 0 before the first file
        QString path;
    };

    [[nodiscard]] State state() const;
    [[nodiscard]] bool hasStopped() const; ///< whether a file was held back because of requestStop()

    void requestStop(); ///< before the next file

    /// For the working thread: notes the file that comes next. False if it must not be touched.
    [[nodiscard]] bool advance(const State &next);

private:
    mutable std::mutex m_mutex;
    State m_state;
    bool m_stopRequested = false;
    bool m_hasStopped = false;
};

} // namespace epr
