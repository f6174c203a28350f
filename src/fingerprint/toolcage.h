// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QtGlobal>

class QProcess;

namespace epr {

/// What the system holds a tool and whatever it starts to: they have limited memory, and they end together, at the
/// latest when this object does or, as far as the system knows how, when the program does.
class ToolCage final {
public:
    /// To be made before the process is started.
    explicit ToolCage(QProcess &process);
    ~ToolCage();
    Q_DISABLE_COPY_MOVE(ToolCage)

    /// To be called once the process has started.
    void close(const QProcess &process);

    void kill();

private:
    qintptr m_handle = 0; ///< of the job on Windows, of the process group elsewhere; 0 = none
};

} // namespace epr
