// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "scanoptions.h"

#include <QByteArray>
#include <QSettings>

namespace epr {

/// Threads that fingerprint a batch unless the operator says otherwise: half the logical processors, from 2 to 8.
[[nodiscard]] qint32 defaultDecoderThreads(int idealThreadCount);

/// The user's settings in the platform's per-user store, one typed pair of functions for each key. A missing or
/// unreadable value yields its default; a readable one is taken as stored, without limits.
class SettingsStore final {
public:
    [[nodiscard]] QByteArray windowGeometry() const; ///< empty when never saved
    [[nodiscard]] QByteArray windowState() const; ///< empty when never saved
    [[nodiscard]] QStringList folders() const;
    [[nodiscard]] ScanOptions loadScanOptions() const; ///< roots stay empty: they are the folder list's business
    [[nodiscard]] QString quarantineRoot() const;
    [[nodiscard]] bool showPlayer() const;
    [[nodiscard]] bool linkDecks() const;
    [[nodiscard]] bool checkForUpdatesOnStartup() const;

    void setWindowGeometry(const QByteArray &geometry);
    void setWindowState(const QByteArray &state);
    void setFolders(const QStringList &folders);
    void saveScanOptions(const ScanOptions &options);
    void setQuarantineRoot(const QString &folder);
    void setShowPlayer(bool show);
    void setLinkDecks(bool link);
    void setCheckForUpdatesOnStartup(bool check);

    /// Where clean-ups go until the operator chooses a folder: inside the user's documents.
    [[nodiscard]] static QString defaultQuarantineRoot();

private:
    QSettings m_settings;
};

} // namespace epr
