// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "settingsstore.h"

#include <QDir>
#include <QStandardPaths>
#include <QThread>

#include <algorithm>
#include <utility>

namespace epr {

using namespace Qt::StringLiterals;

namespace {

constexpr auto keyWindowGeometry = "window/geometry"_L1;
constexpr auto keyWindowState = "window/state"_L1;
constexpr auto keyFolders = "scan/folders"_L1;
constexpr auto keyQuarantineRoot = "safety/quarantineRoot"_L1;
constexpr auto keyShowPlayer = "audition/showPlayer"_L1;
constexpr auto keyLinkDecks = "audition/linked"_L1;
constexpr auto keyCheckForUpdates = "updates/checkOnStartup"_L1;

// Every scan option that is kept, in the order in which it is loaded and saved. Options is ScanOptions, const to save.
template <typename Options, typename Visitor> void visitScanKeys(Options &options, Visitor &&visit)
{
    visit("detect/identical"_L1, options.detectIdentical);
    visit("detect/sameAudio"_L1, options.detectSameAudio);
    visit("detect/acoustic"_L1, options.detectAcoustic);
    visit("detect/metadata"_L1, options.detectMetadata);
    visit("detect/threshold"_L1, options.threshold);
    visit("detect/chromaprintThreshold"_L1, options.chromaprintThreshold);
    visit("detect/durationTolerance"_L1, options.durationTolerance);
    visit("detect/metadataTolerance"_L1, options.metadataTolerance);
    visit("detect/keeperPolicy"_L1, options.keeperPolicy);
    visit("files/extensions"_L1, options.extensions);
    visit("files/excludes"_L1, options.excludes);
    visit("files/minBytes"_L1, options.minBytes);
    visit("files/minDurationMs"_L1, options.minDurationMs);
    visit("files/hidden"_L1, options.includeHidden);
    visit("files/symlinks"_L1, options.followSymlinks);
    visit("perf/decoderThreads"_L1, options.decoderThreads);
    visit("perf/fingerprintSeconds"_L1, options.fingerprintSeconds);
    visit("perf/useCache"_L1, options.useCache);
}

// Text stores keep numbers as text, so a value is readable when its text is; each overload leaves its target alone
// when it is not.
void assign(const QVariant &stored, qint64 &target)
{
    bool ok = false;
    const qint64 value = stored.toLongLong(&ok);
    target = ok ? value : target;
}

// QVariant::toInt() cuts a number that does not fit and calls that a success.
void assign(const QVariant &stored, qint32 &target)
{
    qint64 value = target;
    assign(stored, value);
    target = std::in_range<qint32>(value) ? static_cast<qint32>(value) : target;
}

void assign(const QVariant &stored, double &target)
{
    bool ok = false;
    const double value = stored.toDouble(&ok);
    target = ok ? value : target;
}

// QVariant takes any text but "", "0" and "false" for true.
void assign(const QVariant &stored, bool &target)
{
    const QString text = stored.toString().toLower();
    if (text == "true"_L1 || text == "1"_L1)
        target = true;
    else if (text == "false"_L1 || text == "0"_L1)
        target = false;
}

// An INI file keeps an empty list as an invalid value; the key is there all the same.
void assign(const QVariant &stored, QStringList &target)
{
    if (!stored.isValid() || stored.canConvert<QStringList>())
        target = stored.toStringList();
}

void assign(const QVariant &stored, QString &target)
{
    if (stored.canConvert<QString>())
        target = stored.toString();
}

template <typename Value> Value readValue(const QSettings &settings, QLatin1StringView key, Value fallback)
{
    if (settings.contains(key))
        assign(settings.value(key), fallback);
    return fallback;
}

} // namespace

qint32 defaultDecoderThreads(int idealThreadCount)
{
    return idealThreadCount > 17 ? 8 : std::max(2, idealThreadCount / 2);
}

QByteArray SettingsStore::windowGeometry() const
{
    return m_settings.value(keyWindowGeometry).toByteArray();
}

QByteArray SettingsStore::windowState() const
{
    return m_settings.value(keyWindowState).toByteArray();
}

QStringList SettingsStore::folders() const
{
    return readValue(m_settings, keyFolders, QStringList());
}

ScanOptions SettingsStore::loadScanOptions() const
{
    ScanOptions options;
    options.decoderThreads = defaultDecoderThreads(QThread::idealThreadCount());
    visitScanKeys(options, [this](QLatin1StringView key, auto &value) { value = readValue(m_settings, key, value); });
    return options;
}

QString SettingsStore::quarantineRoot() const
{
    const QString root = readValue(m_settings, keyQuarantineRoot, defaultQuarantineRoot());
    return root.isEmpty() ? defaultQuarantineRoot() : root; // no folder has no name
}

bool SettingsStore::showPlayer() const
{
    return readValue(m_settings, keyShowPlayer, true);
}

bool SettingsStore::linkDecks() const
{
    return readValue(m_settings, keyLinkDecks, true);
}

bool SettingsStore::checkForUpdatesOnStartup() const
{
    return readValue(m_settings, keyCheckForUpdates, true);
}

void SettingsStore::setWindowGeometry(const QByteArray &geometry)
{
    m_settings.setValue(keyWindowGeometry, geometry);
}

void SettingsStore::setWindowState(const QByteArray &state)
{
    m_settings.setValue(keyWindowState, state);
}

void SettingsStore::setFolders(const QStringList &folders)
{
    m_settings.setValue(keyFolders, folders);
}

void SettingsStore::saveScanOptions(const ScanOptions &options)
{
    visitScanKeys(options, [this](QLatin1StringView key, const auto &value) { m_settings.setValue(key, value); });
}

void SettingsStore::setQuarantineRoot(const QString &folder)
{
    m_settings.setValue(keyQuarantineRoot, folder);
}

void SettingsStore::setShowPlayer(bool show)
{
    m_settings.setValue(keyShowPlayer, show);
}

void SettingsStore::setLinkDecks(bool link)
{
    m_settings.setValue(keyLinkDecks, link);
}

void SettingsStore::setCheckForUpdatesOnStartup(bool check)
{
    m_settings.setValue(keyCheckForUpdates, check);
}

QString SettingsStore::defaultQuarantineRoot()
{
    return QDir(QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation))
        .filePath(u"Echoprune Quarantine"_s);
}

} // namespace epr
