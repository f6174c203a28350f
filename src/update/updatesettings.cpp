// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "updatesettings.h"

#include "metadata.h"

#include <QCoreApplication>
#include <QLocale>

namespace epr {

using namespace Qt::StringLiterals;

namespace {

constexpr auto keyUrl = "updates/url"_L1;
constexpr auto keyLastChecked = "updates/lastChecked"_L1;
constexpr auto keySkippedVersion = "updates/skippedVersion"_L1;

} // namespace

QString UpdateSettings::url() const
{
    return m_settings.value(keyUrl, metadata::defaultUpdateUrl()).toString().trimmed();
}

QDateTime UpdateSettings::lastChecked() const
{
    return m_settings.value(keyLastChecked).toDateTime().toUTC();
}

QString UpdateSettings::lastCheckedText() const
{
    const QDateTime time = lastChecked();
    if (!time.isValid())
        return QCoreApplication::translate("epr::UpdateChecker", "never");
    return QLocale().toString(time.toLocalTime(),
                              QCoreApplication::translate("epr::UpdateChecker", "d MMM yyyy, h:mm ap"));
}

QString UpdateSettings::skippedVersion() const
{
    return m_settings.value(keySkippedVersion).toString();
}

void UpdateSettings::setUrl(const QString &url)
{
    m_settings.setValue(keyUrl, url.trimmed());
}

void UpdateSettings::setLastChecked(const QDateTime &time)
{
    m_settings.setValue(keyLastChecked, time.toUTC());
}

void UpdateSettings::setSkippedVersion(const QString &version)
{
    m_settings.setValue(keySkippedVersion, version);
}

void UpdateSettings::clearSkippedVersion()
{
    m_settings.remove(keySkippedVersion);
}

} // namespace epr
