// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "distinction.h"

#include "nativefile.h"

#include <QDateTime>
#include <QFileInfo>
#include <QRandomGenerator>
#include <QScopeGuard>

#include <cstdlib>

namespace epr {

using nativefile::Status;

namespace {

bool isOfItsFoldersVolume(const QString &path, const Status &status)
{
    const auto folder = nativefile::identityOf(QFileInfo(QFileInfo(path).canonicalFilePath()).path());
    return folder && folder->volume == status.identity.volume;
}

// Two hard links, or one name that an overlay or a file put over another one shows a second time. Then a hard link
// elsewhere may be why the file has several.
Distinction tellNamesApart(const QString &goes, const QString &stays, const Status &file, bool isShownTwice)
{
    if (isShownTwice || file.identity.links < 2)
        return Distinction::One;
    const bool areLinks = isOfItsFoldersVolume(goes, file) && isOfItsFoldersVolume(stays, file);
    return areLinks ? Distinction::Two : Distinction::Unknown;
}

// Some time in the last twenty years, in whole even seconds: finer than some file systems keep.
nativefile::Time randomTime()
{
    constexpr int day = 86400;
    constexpr int range = 20 * 365 * day;
    const qint64 seconds = QDateTime::currentSecsSinceEpoch() - QRandomGenerator::global()->bounded(day, range);
    return { seconds / 2 * 2, 0 };
}

bool shows(const Status &now, const Status &before, const nativefile::Time &mark)
{
    constexpr qint64 coarsest = qint64 { 2 } * 86400; // FAT keeps the day, in local time
    return now.accessed != before.accessed && std::abs(now.accessed.seconds - mark.seconds) <= coarsest;
}

Distinction probe(const QString &goes, const QString &stays, const Status &first, const Status &second)
{
    const nativefile::Time mark = randomTime();
    if (!nativefile::setTimes(goes, mark, first.modified))
        return Distinction::Unknown;
    const std::optional<Status> marked = nativefile::statusOf(goes);
    const auto putBack = qScopeGuard(
        [&] { static_cast<void>(nativefile::setTimes(goes, first.accessed, marked.value_or(first).modified)); });
    const std::optional<Status> other = nativefile::statusOf(stays);
    if (!marked || !other || !shows(*marked, first, mark))
        return Distinction::Unknown;
    if (other->accessed == marked->accessed)
        return Distinction::One;
    return other->accessed == second.accessed ? Distinction::Two : Distinction::Unknown;
}

} // namespace

Distinction tellApart(const QString &goes, const QString &stays)
{
    const std::optional<Status> first = nativefile::statusOf(goes);
    const std::optional<Status> second = nativefile::statusOf(stays);
    if (!first || !second)
        return Distinction::Unknown;
    if (first->size != second->size)
        return Distinction::Two;
    const bool areNumbered = first->identity.index != 0 && second->identity.index != 0;
    if (areNumbered && first->identity.volume == second->identity.volume) {
        if (first->identity.index != second->identity.index)
            return Distinction::Two;
        return tellNamesApart(goes, stays, *first, first->isMountPoint || second->isMountPoint);
    }
    return probe(goes, stays, *first, *second);
}

} // namespace epr
