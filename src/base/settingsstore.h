// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "application.h"
#include "records.h"

#include <QByteArray>
#include <QSettings>

#include <type_traits>

namespace epr {

/// Threads that fingerprint a batch unless the operator says otherwise: half the logical processors, from 2 to 8.
qint32 defaultDecoderThreads(int idealThreadCount);

/// Where clean-ups go until the operator chooses a folder: inside the user's documents.
QString defaultQuarantineRoot();

/// One value of the user's settings: its key, its type, and what it is while nothing readable is stored.
template <typename Value> struct Setting {
    const char *key;
    Value (*standard)() = [] { return Value(); };
    bool emptyIsStandard = false; ///< an empty text counts as nothing stored
};

/// Every setting but the scan options, which SettingsStore keeps all at once.
namespace settings {

constexpr bool on()
{
    return true;
}

inline constexpr Setting<QByteArray> windowGeometry { "window/geometry" };
inline constexpr Setting<QByteArray> windowState { "window/state" };
inline constexpr Setting<QByteArray> splitterState { "window/splitter" };
inline constexpr Setting<QStringList> folders { "scan/folders" };
inline constexpr Setting<bool> foldersStayOpen { "scan/foldersStayOpen" }; ///< the list does not fold by itself
inline constexpr Setting<QString> quarantineRoot { "safety/quarantineRoot", defaultQuarantineRoot, true };
inline constexpr Setting<QStringList> protectedFolders { "safety/protectedFolders" };
inline constexpr Setting<bool> compareAgain { "safety/compareAgain" };
inline constexpr Setting<QStringList> keeperPresets { "detect/keeperPresets" }; ///< each a name and words, by lines
inline constexpr Setting<QStringList> resultsColumns { "results/columns" };
inline constexpr Setting<bool> csvMark { "reports/csvByteOrderMark" };
inline constexpr Setting<bool> showPlayer { "audition/showPlayer", on };
inline constexpr Setting<bool> linkDecks { "audition/linked", on };
inline constexpr Setting<bool> sameLoudness { "audition/sameLoudness" };
inline constexpr Setting<QString> updateUrl { "updates/url", metadata::defaultUpdateUrl };
inline constexpr Setting<bool> checkForUpdatesOnStartup { "updates/checkOnStartup", on };
inline constexpr Setting<QDateTime> lastUpdateCheck { "updates/lastChecked" };
inline constexpr Setting<QString> skippedVersion { "updates/skippedVersion" };

} // namespace settings

/// The user's settings in the platform's per-user store. A readable value is taken as stored, without limits.
class SettingsStore final {
public:
    template <typename Value> Value value(const Setting<Value> &setting) const;
    ScanOptions loadScanOptions() const; ///< roots stay empty: they are the folder list's business

    template <typename Value> void set(const Setting<Value> &setting, const std::type_identity_t<Value> &value)
    {
        m_settings.setValue(QLatin1StringView(setting.key), value);
    }
    template <typename Value> void remove(const Setting<Value> &setting)
    {
        m_settings.remove(QLatin1StringView(setting.key));
    }
    void saveScanOptions(const ScanOptions &options);

private:
    QSettings m_settings;
};

} // namespace epr
