// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "updatechecker.h"

#include <QCoreApplication>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLocale>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QNetworkRequest>
#include <QTimer>
#include <QUrlQuery>

#include <algorithm>

namespace epr {

using namespace Qt::StringLiterals;

namespace {

constexpr qsizetype longestShownVersion = 40; // characters

bool isDigit(QChar character)
{
    return character >= u'0' && character <= u'9';
}

// The digits that count, without leading zeros. They stay text, as a part may exceed any integer type.
QStringView significantDigits(QStringView part)
{
    const auto end = std::find_if_not(part.begin(), part.end(), isDigit);
    const auto begin = std::find_if(part.begin(), end, [](QChar digit) { return digit != u'0'; });
    return QStringView(begin, end);
}

int compareParts(QStringView a, QStringView b)
{
    const QStringView left = significantDigits(a);
    const QStringView right = significantDigits(b);
    if (left.size() != right.size())
        return left.size() < right.size() ? -1 : 1;
    return left.compare(right);
}

constexpr qint64 secondsBetweenChecks = 72000; // 20 hours

// Far above any answer that makes sense; a wrong or hostile server cannot fill the memory.
constexpr qint64 maxBodyBytes = 1 << 20;

QUrl withRequestItems(QUrl service)
{
    QUrlQuery query(service);
    query.addQueryItem(u"app"_s, metadata::applicationName());
    query.addQueryItem(u"current"_s, metadata::version());
    query.addQueryItem(u"platform"_s, metadata::platform());
    query.addQueryItem(u"arch"_s, metadata::architecture());
    service.setQuery(query);
    return service;
}

QNetworkRequest requestTo(const QUrl &service)
{
    QNetworkRequest request(withRequestItems(service));
    request.setHeader(QNetworkRequest::UserAgentHeader, metadata::userAgent());
    request.setRawHeader("Accept", "application/json");
    // Otherwise Qt offers to unpack, and the limit on the body would hold for its packed form only.
    request.setRawHeader("Accept-Encoding", "identity");
    request.setAttribute(QNetworkRequest::RedirectPolicyAttribute, QNetworkRequest::NoLessSafeRedirectPolicy);
    return request;
}

// Empty when the service answered. Qt turns every status from 400 into an error with a text of its own; the
// number says more to whoever runs the service. A redirect that was refused keeps Qt's reason.
QString failureOf(const QNetworkReply &reply)
{
    const int status = reply.attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
    const bool failed = reply.error() != QNetworkReply::NoError;
    if (failed && status < 400)
        return reply.errorString();
    if (status != 0 && status != 200)
        return UpdateChecker::tr("The update service returned HTTP %1.").arg(status);
    return {};
}

QString unreadableText()
{
    return UpdateChecker::tr("The update service returned an unreadable response.");
}

UpdateChecker::Release releaseFrom(const QJsonObject &answer)
{
    const auto text = [&answer](QLatin1StringView key) { return answer.value(key).toString().trimmed(); };
    UpdateChecker::Release release;
    release.version = text("latest_version"_L1);
    release.releaseDate = text("release_date"_L1);
    release.downloadUrl = text("download_url"_L1);
    release.notesUrl = text("notes_url"_L1);
    release.notes = text("notes"_L1);
    release.critical = answer.value("critical"_L1).toBool();
    release.minSupportedVersion = text("min_supported_version"_L1);
    return release;
}

} // namespace

int compareVersions(QStringView a, QStringView b)
{
    const QList<QStringView> left = a.split(u'.');
    const QList<QStringView> right = b.split(u'.');
    const qsizetype count = std::max(left.size(), right.size());
    for (qsizetype i = 0; i < count; ++i) {
        if (const int order = compareParts(left.value(i), right.value(i)); order != 0)
            return order;
    }
    return 0;
}

QString displayVersion(const QString &version)
{
    const QString line = version.simplified();
    return line.size() <= longestShownVersion ? line : line.left(longestShownVersion - 1) + u'\u2026';
}

QUrl webUrl(const QString &text)
{
    const QUrl url(text.trimmed());
    const bool onTheWeb = url.scheme() == "http"_L1 || url.scheme() == "https"_L1;
    return onTheWeb && url.isValid() && !url.host().isEmpty() ? url : QUrl();
}

QDate parseReleaseDate(const QString &text)
{
    const QDate day = QDate::fromString(text, Qt::ISODate);
    return day.isValid() ? day : QDateTime::fromString(text, Qt::ISODate).date();
}

QString UpdateSettings::url() const
{
    return m_store.value(settings::updateUrl).trimmed();
}

QDateTime UpdateSettings::lastChecked() const
{
    return m_store.value(settings::lastUpdateCheck).toUTC();
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
    return m_store.value(settings::skippedVersion);
}

void UpdateSettings::setUrl(const QString &url)
{
    m_store.set(settings::updateUrl, url.trimmed());
}

void UpdateSettings::setLastChecked(const QDateTime &time)
{
    m_store.set(settings::lastUpdateCheck, time.toUTC());
}

void UpdateSettings::setSkippedVersion(const QString &version)
{
    m_store.set(settings::skippedVersion, version);
}

void UpdateSettings::clearSkippedVersion()
{
    m_store.remove(settings::skippedVersion);
}

UpdateChecker::UpdateChecker(QObject *parent)
    : QObject(parent)
    , m_network(new QNetworkAccessManager(this))
    , m_url(m_settings.url())
{
    qRegisterMetaType<Release>("epr::UpdateChecker::Release");
}

bool UpdateChecker::isDue() const
{
    const QDateTime last = m_settings.lastChecked();
    return !last.isValid() || last.secsTo(QDateTime::currentDateTimeUtc()) >= secondsBetweenChecks;
}

void UpdateChecker::setUrl(const QString &text)
{
    m_url = text.trimmed();
    m_settings.setUrl(m_url);
}

void UpdateChecker::check(bool silent)
{
    const QUrl service = webUrl(m_url);
    if (!service.isEmpty()) {
        request(service, silent);
        return;
    }
    const QString error = tr("The address of the update service is not a web address: \"%1\"").arg(m_url);
    QMetaObject::invokeMethod(
        this, [this, error, silent] { Q_EMIT checkFailed(error, silent); }, Qt::QueuedConnection);
}

void UpdateChecker::request(const QUrl &service, bool silent)
{
    QNetworkReply *reply = m_network->get(requestTo(service));
    // Qt stops reading shortly before the buffer is full; at twice the limit an endless body still exceeds it.
    reply->setReadBufferSize(2 * maxBodyBytes);
    connect(reply, &QNetworkReply::readyRead, this, [this, reply, silent] { refuseLongAnswer(reply, silent); });
    connect(reply, &QNetworkReply::finished, this, [this, reply, silent] { handleReply(reply, silent); });

    auto *watchdog = new QTimer(reply);
    watchdog->setSingleShot(true);
    connect(watchdog, &QTimer::timeout, reply, &QNetworkReply::abort);
    watchdog->start(m_timeLimit);
}

void UpdateChecker::refuseLongAnswer(QNetworkReply *reply, bool silent)
{
    if (reply->bytesAvailable() <= maxBodyBytes)
        return;
    const QString failure = failureOf(*reply);
    reply->disconnect(this); // this check has its answer; the abort below is none
    reply->abort();
    reply->deleteLater();
    Q_EMIT checkFailed(failure.isEmpty() ? unreadableText() : failure, silent);
}

void UpdateChecker::handleReply(QNetworkReply *reply, bool silent)
{
    reply->deleteLater();
    if (const QString failure = failureOf(*reply); !failure.isEmpty())
        Q_EMIT checkFailed(failure, silent);
    else
        handleAnswer(reply->readAll(), silent);
}

void UpdateChecker::handleAnswer(const QByteArray &body, bool silent)
{
    const QJsonDocument answer = QJsonDocument::fromJson(body);
    if (!answer.isObject()) {
        Q_EMIT checkFailed(unreadableText(), silent);
        return;
    }
    m_settings.setLastChecked(QDateTime::currentDateTimeUtc());
    const Release release = releaseFrom(answer.object());
    if (release.version.isEmpty())
        Q_EMIT checkFailed(tr("The update service did not report a version."), silent);
    else
        report(release, silent);
}

void UpdateChecker::report(const Release &release, bool silent)
{
    const bool newer = compareVersions(release.version, metadata::version()) > 0;
    const bool keptQuiet = silent && !release.critical && release.version == skippedVersion();
    if (newer && !keptQuiet)
        Q_EMIT updateAvailable(release, silent);
    else
        Q_EMIT upToDate(silent);
}

} // namespace epr
