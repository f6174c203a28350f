// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "reviewfiles.h"

#include "carryover.h"
#include "checkdesk.h"
#include "displaytext.h"
#include "filelook.h"
#include "notices.h"
#include "resultspanel.h"
#include "review.h"
#include "reviewkeeper.h"
#include "reviewstore.h"
#include "runwithprogress.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QInputDialog>
#include <QMessageBox>

#include <algorithm>

namespace epr {

using namespace Qt::StringLiterals;

namespace {

constexpr auto namePrefix = "review-"_L1; // no name begins with a full stop then, or is a device's on Windows
constexpr auto nameSuffix = ".sqlite"_L1;

QDir namedReviews()
{
    return QDir(QFileInfo(ReviewStore::defaultFilePath()).dir().filePath(u"reviews"_s));
}

QStringList savedNames()
{
    QStringList names;
    for (const QString &file : namedReviews().entryList({ namePrefix + u'*' + nameSuffix }, QDir::Files))
        names.append(reviewName(file));
    names.sort(Qt::CaseInsensitive);
    return names;
}

QString pathOf(const QString &name)
{
    return namedReviews().filePath(reviewFileName(name));
}

QString freeName(const QString &wanted)
{
    QString name = wanted;
    for (int number = 2; QFileInfo::exists(pathOf(name)); ++number)
        name = u"%1 (%2)"_s.arg(wanted).arg(number);
    return name;
}

Result<> saveTo(const QString &file, const ReviewRecord &record)
{
    ReviewStore store(file);
    Result<> done = store.open();
    if (!done && store.isDamaged() && store.setAside())
        done = store.open();
    return done ? store.save(record) : done;
}

Result<ReviewRecord> loadFrom(const QString &file)
{
    ReviewStore store(file);
    if (const Result<> opened = store.open(); !opened)
        return failure(opened.error());
    return store.load();
}

} // namespace

QString reviewFileName(const QString &name)
{
    constexpr qsizetype longest = 200; // bytes; file systems take 255, or as many characters
    QString escaped;
    for (const QChar letter : name) {
        if (letter < u' ' || uR"(<>:"/\|?*%)"_s.contains(letter))
            escaped += u"%%1"_s.arg(letter.unicode(), 2, 16, QLatin1Char('0'));
        else
            escaped += letter;
    }
    return escaped.toUtf8().size() > longest ? QString() : namePrefix + escaped + nameSuffix;
}

QString reviewName(const QString &fileName)
{
    const QString name = fileName.sliced(namePrefix.size()).chopped(nameSuffix.size());
    return QString::fromUtf8(QByteArray::fromPercentEncoding(name.toUtf8()));
}

ReviewFiles::ReviewFiles(const Parts &parts, QWidget *window)
    : Command(window)
    , m_parts(parts)
    , m_menu(new QMenu(tr("Reviews"), window))
    , m_saveAs(make(tr("Save As..."), tr("Keep the review as it is now under a name."), &ReviewFiles::saveUnderName))
    , m_open(make(tr("Open..."), tr("Go on with a review that was saved under a name."), &ReviewFiles::openNamed))
    , m_review(*parts.review)
    , m_keeper(new ReviewKeeper(*parts.review, ReviewStore::defaultFilePath(), this))
    , m_look(new FileLook(this))
{
    connect(m_keeper, &ReviewKeeper::opened, this, &ReviewFiles::takeOpened);
    connect(m_keeper, &ReviewKeeper::failed, this, &ReviewFiles::report);
    connect(m_keeper, &ReviewKeeper::changed, this, [this] { m_hasName = false; });
    connect(m_look, &FileLook::found, &m_review, &Review::setFileStates);
    connect(m_look, &FileLook::finished, this, &ReviewFiles::tellLook);
    connect(&m_review, &Review::reset, this, &ReviewFiles::refresh);
    connect(parts.results, &ResultsPanel::currentChanged, this, &ReviewFiles::notePlace);
    make(tr("Delete..."), tr("Delete a review that was saved under a name. No music file is touched."),
         &ReviewFiles::removeNamed);
    m_menu->menuAction()->setStatusTip(tr("Save, open and delete reviews under names."));
    refresh();
}

void ReviewFiles::openLast()
{
    m_isOpening = true;
    refresh();
    m_keeper->open();
}

// What the file has may not have come yet. It is then replaced only by something that was decided as well.
void ReviewFiles::close()
{
    m_look->stop();
    m_isOpening = false;
    if (m_isResultWaiting && hasDecisions(m_keeper->record()))
        takeResults();
    m_keeper->close();
}

// The system may end the program soon after.
bool ReviewFiles::confirmClose()
{
    m_keeper->flush();
    return m_keeper->isKeeping() || (!hasDecisions(m_keeper->record()) && !hasDecisions(m_earlier))
        || askYesOrNo(window(), tr("Decisions are not stored"),
                      tr("What you decided cannot be stored and is lost when the program ends.\n\nClose it all the "
                         "same?"));
}

bool ReviewFiles::confirmScan(const QStringList &roots)
{
    return (m_keeper->isKeeping() && keepAside(m_keeper->record(), roots)) || !hasDecisions(m_keeper->record())
        || askYesOrNo(window(), tr("Decisions are not stored"),
                      tr("What you decided cannot be stored. The scan takes it over as far as it finds the same files "
                         "again; the rest is lost.\n\nScan all the same?"));
}

// A scan of other folders takes nothing over of the files that it does not find.
bool ReviewFiles::keepAside(const ReviewRecord &record, const QStringList &roots)
{
    const auto isScanned = [&roots](const QString &folder) { return roots.contains(folder); };
    if (m_hasName || !hasDecisions(record) || std::ranges::all_of(record.options.roots, isScanned))
        return true;
    return saveAside(record, tr("This scan is of other folders."));
}

bool ReviewFiles::saveAside(const ReviewRecord &record, const QString &reason)
{
    const QString name = freeName(tr("Review of %1").arg(dateTimeText(record.scanned)));
    Result<> saved;
    runWaiting([&saved, file = pathOf(name), record] { saved = saveTo(file, record); });
    Q_EMIT logMessage(saved ? tr("%1 What was decided until now is saved as %2.").arg(reason, name)
                            : tr("What was decided until now could not be saved: %1").arg(saved.error()));
    return saved.has_value();
}

void ReviewFiles::beginScan(const ScanOptions &options)
{
    m_look->stop();
    if (!m_review.groups().isEmpty())
        m_earlier = m_keeper->record();
    for (TrackInfo &track : m_earlier.tracks)
        track.fingerprint = {}; // the most of a track, and the scan has its own
    m_keeper->hold();
    m_options = options;
    m_unreadableFolders = 0;
    m_isScanning = true;
    m_review.clear();
}

bool ReviewFiles::endScan(const QList<TrackInfo> &tracks, const QList<MatchGroup> &groups, bool cancelled)
{
    if (cancelled && takeBack())
        return false;
    m_isScanning = false;
    m_review.setKeeperOptions(m_options);
    m_review.setResults(tracks, groups);
    if (!cancelled)
        takeResults();
    m_parts.results->setState(cancelled ? ResultsPanel::State::Cancelled : ResultsPanel::State::Finished);
    return true;
}

void ReviewFiles::failScan()
{
    if (!takeBack())
        m_parts.results->setState(ResultsPanel::State::NotScanned);
}

void ReviewFiles::takeResults()
{
    m_isResultWaiting = m_isOpening;
    if (m_isOpening)
        return;
    const CarriedOver carried = carryOver(m_earlier, m_review.tracks(), m_review.groups());
    m_review.takeDecisions(carried.decisions);
    if (carried.lostGroups > 0 && !m_hasName)
        saveAside(m_earlier, tr("The scan did not find all groups again that were decided."));
    if (carried.isAny()) {
        Q_EMIT logMessage(
            tr("Carried over from the last review: %1 kept copies, %2 ticks, %3 groups done.")
                .arg(countText(carried.keepers), countText(carried.ticks), countText(carried.doneGroups)));
    }
    m_earlier = {};
    m_hasName = false;
    Q_EMIT resultsTaken();
    m_keeper->keep({ m_options, QDateTime::currentDateTime(), m_unreadableFolders });
    refresh();
}

bool ReviewFiles::takeBack()
{
    m_isScanning = false;
    refresh();
    const ReviewRecord earlier = std::exchange(m_earlier, {});
    if (earlier.groups.isEmpty())
        return false;
    Q_EMIT logMessage(tr("The review from before is there again."));
    restore(earlier);
    return true;
}

QAction *ReviewFiles::make(const QString &text, const QString &tip, void (ReviewFiles::*command)())
{
    QAction *action = m_menu->addAction(text, this, command);
    action->setToolTip(tip);
    action->setStatusTip(tip);
    return action;
}

void ReviewFiles::refresh()
{
    m_saveAs->setEnabled(!m_isScanning && !m_review.groups().isEmpty());
    m_open->setEnabled(!m_isScanning && !m_isOpening);
}

// A scan that was started sooner takes over what the file has.
void ReviewFiles::takeOpened(const ReviewRecord &record, const QString &message)
{
    if (!message.isEmpty())
        report(message);
    m_isOpening = false;
    refresh();
    const bool isSuperseded = m_isScanning || m_isResultWaiting;
    if (isSuperseded) {
        m_earlier = record;
        keepAside(record, m_options.roots);
    }
    if (m_isResultWaiting)
        takeResults();
    if (isSuperseded || record.groups.isEmpty() || !m_review.groups().isEmpty())
        return;
    restore(record);
    m_parts.results->focusResults();
    report(tr("The review of %1 is there again.").arg(dateTimeText(record.scanned)));
}

// Nobody asked for a check over the whole length now, which would decode for hours.
void ReviewFiles::restore(const ReviewRecord &record)
{
    m_parts.checks->stop();
    m_options = record.options;
    m_review.restore(record);
    m_keeper->keep({ record.options, record.scanned, record.unreadableFolders });
    ScanOptions unchecked = record.options;
    unchecked.checkWhole = false;
    m_parts.checks->follow(unchecked);
    m_parts.results->setUnreadableFolders(record.unreadableFolders);
    m_parts.results->setState(ResultsPanel::State::Finished);
    showPlace(record);
    m_look->look(record);
}

void ReviewFiles::showPlace(const ReviewRecord &record)
{
    const auto group = std::ranges::find(record.groups, record.currentGroup, &MatchGroup::id);
    if (group == record.groups.cend())
        return;
    const auto position = static_cast<int>(group - record.groups.cbegin());
    const auto member = static_cast<int>(group->members.indexOf(record.currentTrack));
    if (member < 0)
        m_parts.results->showGroup(position);
    else
        m_parts.results->showMember(position, member);
}

void ReviewFiles::notePlace(int group, int member)
{
    if (group < 0)
        return;
    const MatchGroup &record = m_review.groups().at(group);
    m_keeper->setPlace({ record.id, record.members.value(member, -1) });
}

void ReviewFiles::tellLook(const FileLookSummary &summary)
{
    for (const QString &folder : summary.outOfReach)
        Q_EMIT logMessage(tr("%1 is out of reach. Its files were not looked at.").arg(nativePath(folder)));
    if (summary.changed + summary.vanished > 0) {
        Q_EMIT logMessage(
            tr("Since the scan of this review %1 copies changed and %2 vanished. They are no longer ticked.")
                .arg(countText(summary.changed), countText(summary.vanished)));
    }
}

void ReviewFiles::saveUnderName()
{
    bool isAccepted = false;
    const QString name =
        QInputDialog::getText(window(), tr("Save review"), tr("Name of the review:"), QLineEdit::Normal,
                              QDate::currentDate().toString(Qt::ISODate), &isAccepted)
            .trimmed();
    if (!isAccepted || name.isEmpty())
        return;
    if (reviewFileName(name).isEmpty())
        return showWarning(window(), tr("Review not saved"), tr("The name is too long."));
    if (QFileInfo::exists(pathOf(name))
        && !askYesOrNo(window(), tr("Save review"), tr("There is a review of the name %1.\n\nReplace it?").arg(name)))
        return;
    Result<> saved;
    runWaiting([&saved, file = pathOf(name), record = m_keeper->record()] { saved = saveTo(file, record); });
    if (!saved)
        return showWarning(window(), tr("Review not saved"), saved.error());
    m_hasName = true;
    report(tr("The review is saved as %1.").arg(name));
}

void ReviewFiles::openNamed()
{
    const QString name = askSaved(tr("Open review"), tr("Review to go on with:"));
    if (name.isEmpty()
        || (wouldLoseDecisions()
            && !askYesOrNo(window(), tr("Open review"),
                           tr("The review on the screen is not saved under a name, and its decisions would be "
                              "lost.\n\nOpen the other one all the same?"))))
        return;
    Result<ReviewRecord> loaded;
    runWaiting([&loaded, file = pathOf(name)] { loaded = loadFrom(file); });
    if (!loaded)
        return showWarning(window(), tr("Review not opened"), tr("%1 cannot be opened: %2.").arg(name, loaded.error()));
    restore(*loaded);
    m_hasName = true;
    report(tr("The review %1 of %2 is open.").arg(name, dateTimeText(loaded->scanned)));
}

void ReviewFiles::removeNamed()
{
    const QString name = askSaved(tr("Delete review"), tr("Review to delete:"));
    if (name.isEmpty() || !askYesOrNo(window(), tr("Delete review"), tr("Delete the review %1 for good?").arg(name)))
        return;
    QFile file(pathOf(name));
    QFile::remove(file.fileName() + "-wal"_L1);
    if (!file.remove())
        return showWarning(window(), tr("Review not deleted"), file.errorString());
    m_hasName = false;
    report(tr("The review %1 is deleted.").arg(name));
}

QString ReviewFiles::askSaved(const QString &title, const QString &label)
{
    const QStringList names = savedNames();
    if (names.isEmpty()) {
        showInformation(window(), title, tr("No review was saved under a name."));
        return {};
    }
    bool isAccepted = false;
    const QString name = QInputDialog::getItem(window(), title, label, names, 0, false, &isAccepted);
    return isAccepted ? name : QString();
}

bool ReviewFiles::wouldLoseDecisions() const
{
    return !m_hasName && hasDecisions(m_keeper->record());
}

} // namespace epr
