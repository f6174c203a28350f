// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QDate>
#include <QString>
#include <QUrl>

/// What an update service, which may be anyone's, says of a release, and what is made of it.
namespace epr {

/// Compares dotted versions part by part from the left: negative, zero or positive as a is older than, equal to or
/// newer than b. Missing parts count as 0; of a part that is not a number its leading digits count, and without any it
/// is 0. Parts may have any number of digits.
int compareVersions(QStringView a, QStringView b);

/// The version on one line and short enough for a button: whatever a server calls its version, the layout holds.
QString displayVersion(const QString &version);

/// The address if it is a complete one on the web (http or https, with a host), else an empty URL. Nothing else from
/// the settings or from a server is requested or handed to the desktop: a "file:" link would open what lies on this
/// machine.
QUrl webUrl(const QString &text);

/// The day that the service names, or an invalid date: "2026-11-21", with or without a time of day.
QDate parseReleaseDate(const QString &text);

} // namespace epr
