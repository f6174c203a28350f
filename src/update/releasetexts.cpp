// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "releasetexts.h"

#include <QList>

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

} // namespace epr
