// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "settingsstore.h"

namespace epr {

/// What the update check keeps in the user's settings.
class UpdateSettings final {
public:
    QString url() const; ///< the default address when none was ever stored
    QDateTime lastChecked() const; ///< UTC; invalid = never
    QString lastCheckedText() const; ///< local time, or a translated "never"
    QString skippedVersion() const; ///< empty = none

    void setUrl(const QString &url); ///< trims
    void setLastChecked(const QDateTime &time);
    void setSkippedVersion(const QString &version);
    void clearSkippedVersion();

private:
    SettingsStore m_store;
};

} // namespace epr
