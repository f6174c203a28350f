// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "trackinfo.h"

#include <QObject>

namespace epr {

/// Fingerprints one file after the other on the thread it lives on.
class FingerprintWorker final : public QObject {
    Q_OBJECT

public:
    /// seconds is how much of each file is analysed, at least 1. Without preferFpcalc, or without the tool, the
    /// built-in analysis is used.
    FingerprintWorker(int seconds, bool preferFpcalc);

    [[nodiscard]] int seconds() const { return m_seconds; }

public Q_SLOTS:
    void process(int id, const QString &path);

Q_SIGNALS:
    void completed(int id, const epr::FingerprintResult &result);

private:
    [[nodiscard]] FingerprintResult runTool(const QString &path) const;
    [[nodiscard]] FingerprintResult analyse(const QString &path) const;

    int m_seconds;
    bool m_preferFpcalc;
};

} // namespace epr
