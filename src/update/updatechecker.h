// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "settingsstore.h"

#include <QDate>
#include <QUrl>

#include <chrono>

class QNetworkAccessManager;
class QNetworkReply;

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

/// Asks the update service whether there is a newer release. Every check makes at most one request and ends in exactly
/// one of the three signals, which carries the flag of its own check; checks may overlap. Nothing is downloaded.
class UpdateChecker final : public QObject {
    Q_OBJECT

public:
    struct Release {
        QString version;
        QString releaseDate; ///< as the service wrote it
        QString downloadUrl;
        QString notesUrl;
        QString notes;
        bool critical = false; ///< announced even when its version is skipped
        QString minSupportedVersion;

        bool operator==(const Release &) const = default;
    };

    explicit UpdateChecker(QObject *parent = nullptr);

    QString url() const { return m_url; }
    bool isDue() const; ///< whether the next automatic check may run
    QString lastCheckedText() const { return m_settings.lastCheckedText(); }
    QString skippedVersion() const { return m_settings.skippedVersion(); }

    void setUrl(const QString &text); ///< takes effect with the next check and is stored
    void setTimeLimit(std::chrono::milliseconds limit) { m_timeLimit = limit; } ///< for a whole check

    /// A silent check does not announce a skipped release, unless that is critical. The answer never comes before this
    /// returns.
    void check(bool silent);

Q_SIGNALS:
    void updateAvailable(const epr::UpdateChecker::Release &release, bool silent);
    void upToDate(bool silent);
    void checkFailed(const QString &error, bool silent);

private:
    void request(const QUrl &service, bool silent);
    void refuseLongAnswer(QNetworkReply *reply, bool silent);
    void handleReply(QNetworkReply *reply, bool silent);
    void handleAnswer(const QByteArray &body, bool silent);
    void report(const Release &release, bool silent);

    UpdateSettings m_settings;
    QNetworkAccessManager *m_network;
    QString m_url;
    std::chrono::milliseconds m_timeLimit { 15000 };
};

} // namespace epr

Q_DECLARE_METATYPE(epr::UpdateChecker::Release)
