// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QList>
#include <QStringList>

namespace epr {

struct ToolRun;
struct ToolTimeouts;

/// What Chromaprint's fpcalc says of one file.
struct FpcalcResult {
    QList<quint32> fingerprint; ///< raw sub-fingerprints in the order printed; empty on failure
    qint64 durationMs = 0; ///< of the whole file, 0 = not reported
    QString error; ///< empty on success

    bool operator==(const FpcalcResult &) const = default;
};

/// Looks for the tool anew: EPR_FPCALC, beside the program, the search path. Empty when there is none.
QString findFpcalc();

/// What findFpcalc() found when the process first asked. Safe to call from any thread.
QString fpcalcPath();
bool hasFpcalc();

/// Fingerprints the first seconds of a file, at least one, or nearly all of a file that is shorter. Blocks the calling
/// thread.
FpcalcResult runFpcalc(const QString &path, int seconds);

/// The same with a given tool and given patience.
FpcalcResult runFpcalcTool(const QString &tool, const QString &path, int seconds, const ToolTimeouts &timeouts);

/// One process for the first seconds of some files.
ToolRun fpcalcRun(const QString &tool, const QStringList &paths, int seconds, const ToolTimeouts &timeouts);

/// Reads the raw output format: lines "DURATION=seconds" and "FINGERPRINT=word,word,...". Whatever it does not
/// understand it skips.
FpcalcResult parseFpcalcOutput(QByteArrayView output);

} // namespace epr
