// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "settingsstore.h"

#include <QDir>
#include <QStandardPaths>
#include <QThread>

#include <algorithm>

namespace epr {

using namespace Qt::StringLiterals;

namespace {

// Every scan option that is kept; its default is that of the record. Options is ScanOptions, const to save.
template <typename Options, typename Visitor> void visitScanKeys(Options &options, Visitor &&visit)
{
    visit("detect/identical"_L1, options.detectIdentical);
    visit("detect/sameAudio"_L1, options.detectSameAudio);
    visit("detect/acoustic"_L1, options.detectAcoustic);
    visit("detect/metadata"_L1, options.detectMetadata);
    visit("detect/thorough"_L1, options.compareThoroughly);
    visit("detect/checkWhole"_L1, options.checkWhole);
    visit("detect/threshold"_L1, options.threshold);
    visit("detect/chromaprintThreshold"_L1, options.chromaprintThreshold);
    visit("detect/durationTolerance"_L1, options.durationTolerance);
    visit("detect/metadataTolerance"_L1, options.metadataTolerance);
    visit("detect/keeperPolicy"_L1, options.keeperPolicy);
    visit("detect/keeperRules"_L1, options.keeperRules);
    visit("files/extensions"_L1, options.extensions);
    visit("files/excludes"_L1, options.excludes);
    visit("files/minBytes"_L1, options.minBytes);
    visit("files/minDurationMs"_L1, options.minDurationMs);
    visit("files/hidden"_L1, options.includeHidden);
    visit("files/symlinks"_L1, options.followSymlinks);
    visit("perf/decoderThreads"_L1, options.decoderThreads);
    visit("perf/fingerprintSeconds"_L1, options.fingerprintSeconds);
    visit("perf/useCache"_L1, options.useCache);
    visit("perf/onlyPossibleCopies"_L1, options.onlyPossibleCopies);
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

void assign(const QVariant &stored, QByteArray &target)
{
    target = stored.toByteArray();
}

void assign(const QVariant &stored, QDateTime &target)
{
    target = stored.toDateTime();
}

template <typename Value> void readInto(Value &target, const QSettings &settings, QLatin1StringView key)
{
    if (settings.contains(key))
        assign(settings.value(key), target);
}

} // namespace

qint32 defaultDecoderThreads(int idealThreadCount)
{
    constexpr qint32 fewest = 2;
    constexpr qint32 most = 8;
    return std::clamp(idealThreadCount / 2, fewest, most);
}

QString defaultQuarantineRoot()
{
    return QDir(QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation))
        .filePath(u"Echoprune Quarantine"_s);
}

template <typename Value> Value SettingsStore::value(const Setting<Value> &setting) const
{
    Value value = setting.standard();
    readInto(value, m_settings, QLatin1StringView(setting.key));
    if constexpr (requires { value.isEmpty(); })
        return value.isEmpty() && setting.emptyIsStandard ? setting.standard() : value;
    else
        return value;
}

template QByteArray SettingsStore::value(const Setting<QByteArray> &) const;
template QDateTime SettingsStore::value(const Setting<QDateTime> &) const;
template QString SettingsStore::value(const Setting<QString> &) const;
template QStringList SettingsStore::value(const Setting<QStringList> &) const;
template bool SettingsStore::value(const Setting<bool> &) const;

ScanOptions SettingsStore::loadScanOptions() const
{
    ScanOptions options;
    options.decoderThreads = defaultDecoderThreads(QThread::idealThreadCount());
    visitScanKeys(options, [this](QLatin1StringView key, auto &value) { readInto(value, m_settings, key); });
    return options;
}

void SettingsStore::saveScanOptions(const ScanOptions &options)
{
    visitScanKeys(options, [this](QLatin1StringView key, const auto &value) { m_settings.setValue(key, value); });
}

} // namespace epr
