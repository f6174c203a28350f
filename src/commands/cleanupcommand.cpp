// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "cleanupcommand.h"

#include "backgroundwork.h"
#include "cleanuphistory.h"
#include "cleanuplock.h"
#include "displaytext.h"
#include "emptyfolders.h"
#include "filelook.h"
#include "notices.h"
#include "removaldialog.h"
#include "review.h"
#include "settingsstore.h"
#include "systempaths.h"
#include "undomanifest.h"
#include "wholecheckcommand.h"

#include <QCoreApplication>
#include <QDirIterator>
#include <QFileInfo>
#include <QInputDialog>
#include <QMessageBox>
#include <QPushButton>
#include <QScopedValueRollback>
#include <QThread>

#include <memory>
#include <utility>

namespace epr {

using namespace Qt::StringLiterals;

namespace {

// The groups in which something is to go, each file as the scan saw it. What is ticked but not meant this time neither
// goes nor is relied on to stay.
QList<TickedGroup> tickedGroups(const Review &review, const OnlyTracks &only)
{
    const auto isMeant = [&](int group, int member) {
        return !review.isTicked(group, member) || isAmong(only, review.groups().at(group).members.at(member));
    };
    QList<TickedGroup> groups;
    for (int g = 0; g < review.groups().size(); ++g) {
        TickedGroup found { review.groups().at(g).id, {}, {} };
        for (int m = 0; m < review.groups().at(g).members.size(); ++m) {
            if (const TrackInfo *track = review.track(g, m); track && isMeant(g, m))
                (review.isTicked(g, m) ? found.ticked : found.unticked)
                    .append({ track->path, track->size, track->mtime, track->fullHash, track->audioHash });
        }
        if (!found.ticked.isEmpty())
            groups.append(found);
    }
    return groups;
}

QStringList pathsOf(const Review &review, const QSet<qint32> &tracks)
{
    QStringList paths;
    for (const qint32 track : tracks)
        paths.append(review.tracks().at(track).path);
    return paths;
}

QStringList tickedPaths(const QList<TickedGroup> &groups)
{
    QStringList paths;
    for (const TickedGroup &group : groups) {
        for (const RemovalCandidate &candidate : group.ticked)
            paths.append(candidate.path);
    }
    return paths;
}

struct Library {
    QList<TrackInfo> tracks;
    QList<MatchGroup> groups;
};

/// Members that vanished, as far as their folders are within reach.
QSet<qint32> tracksWithoutFile(const Library &library, const QStringList &away)
{
    QSet<qint32> vanished = vanishedTracks(library.tracks, library.groups);
    vanished.removeIf([&](qint32 track) { return isBelow(library.tracks.at(track).path, away); });
    return vanished;
}

/// The roots on a drive that went during the run, and not those that it emptied.
QStringList driveGone(const QStringList &roots, const RemovalResult &result)
{
    QStringList gone = outOfReach(roots);
    gone.removeIf([&result](const QString &root) {
        return std::ranges::none_of(result.problems,
                                    [&root](const FileProblem &problem) { return isBelow(problem.path, { root }); });
    });
    return gone;
}

bool holdsFiles(const QString &folder)
{
    QDirIterator files(asSystemReads(folder), QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
    while (files.hasNext()) {
        files.next();
        if (files.fileName() != quarantineLockName)
            return true;
    }
    return false;
}

void warnIfScanned(const QString &quarantineRoot, const QStringList &folders, QWidget *parent)
{
    if (!isInside(quarantineRoot, folders))
        return;
    showWarning(
        parent, QCoreApplication::translate("epr::QuarantineWarning", "Quarantine folder will be scanned"),
        QCoreApplication::translate("epr::QuarantineWarning",
                                    "%1 is inside a folder to scan. The next scan would find the quarantined copies "
                                    "there and offer them again.\n\nBetter choose a folder outside.")
            .arg(nativePath(quarantineRoot)));
}

} // namespace

CleanupCommand::CleanupCommand(Review &review, QWidget *window)
    : Command(window)
    , m_review(review)
{
}

CleanupCommand::~CleanupCommand()
{
    if (m_clearing)
        waitOrLeave(m_clearing);
}

void CleanupCommand::clearUpTraces()
{
    const auto done = std::make_shared<QStringList>();
    m_clearing = QThread::create([done] { *done = clearTraces(); });
    m_clearing->setParent(this);
    connect(m_clearing, &QThread::finished, this, [this, done] { tellAll(*done); });
    m_clearing->start();
}

void CleanupCommand::removeSelected(const Places &places)
{
    Request request { tickedGroups(m_review, places.only), {}, places };
    request.paths = tickedPaths(request.groups);
    if (request.paths.isEmpty()) {
        showInformation(window(), tr("Nothing selected"),
                        tr("Tick the copies you want removed, or use Select All Duplicates."));
        return;
    }
    if (const int group = m_review.firstWhollyTickedGroup(places.only); group >= 0) {
        showWarning(window(), tr("Every copy selected"),
                    tr("Group %1 has all of its copies ticked for removal. Untick at least one so a copy survives.")
                        .arg(m_review.groups().at(group).id));
        Q_EMIT wholeGroupTicked(group);
        return;
    }
    request.items = removalItems(m_review, places.only);
    if (!lookAtDisk(request))
        return;
    const std::optional<RemovalMode> mode = askMode(request);
    if (mode && (*mode != RemovalMode::Delete || confirmDeletion(request.paths.size())))
        remove(std::move(request), *mode);
}

void CleanupCommand::undoPreviousCleanup()
{
    QStringList cleared;
    QStringList manifests;
    QStringList descriptions;
    const bool listed = run(tr("Undo previous clean-up"), [&](const CleanupProgressFn &progress) {
        cleared = clearTraces();
        manifests = listUndoManifests();
        for (qsizetype i = 0; i < manifests.size() && progress(i, manifests.size(), manifests.at(i)); ++i)
            descriptions.append(describeManifest(manifests.at(i)));
    });
    tellAll(cleared);
    if (!listed)
        return;
    if (manifests.isEmpty()) {
        showInformation(
            window(), tr("Nothing to undo"),
            tr("No reversible clean-ups have been recorded.\n\nOnly quarantine moves can be undone; recycle "
               "bin and permanent deletions are handled by the operating system."));
        return;
    }
    if (const std::optional<QString> manifest = askManifest(manifests, descriptions))
        restoreFrom(*manifest);
}

void CleanupCommand::restoreFrom(const QString &manifest, const ChosenFiles &chosen)
{
    UndoOutlook outlook;
    const bool looked =
        run(tr("Undo previous clean-up"), [&](const CleanupProgressFn &) { outlook = lookAtUndo(manifest, chosen); });
    if (looked && (outlook.hasCopies || confirmWithoutCopies()) && confirmFolders(outlook.missingFolders))
        restore(manifest, outlook.missingFolders.isEmpty() ? MissingFolders::Leave : MissingFolders::Make, chosen);
}

bool CleanupCommand::confirmScan(const QString &quarantineRoot, const QStringList &folders)
{
    if (!isInside(quarantineRoot, folders) || !holdsFiles(quarantineRoot))
        return true;
    report(QCoreApplication::translate("epr::QuarantineWarning", "The quarantine folder %1 is inside a folder to scan.")
               .arg(nativePath(quarantineRoot)));
    QMessageBox box(
        QMessageBox::Warning, QCoreApplication::translate("epr::QuarantineWarning", "Quarantine will be scanned"),
        QCoreApplication::translate("epr::QuarantineWarning",
                                    "The quarantine folder %1 is inside a folder to scan. Copies that were moved "
                                    "there will be found and offered again.\n\nStart the scan all the same?")
            .arg(nativePath(quarantineRoot)),
        QMessageBox::Ok | QMessageBox::Cancel, window());
    box.setTextFormat(Qt::PlainText);
    box.button(QMessageBox::Ok)->setText(QCoreApplication::translate("epr::QuarantineWarning", "Continue"));
    box.setDefaultButton(QMessageBox::Cancel);
    return box.exec() == QMessageBox::Ok;
}

bool CleanupCommand::run(const QString &title, const CleanupJob &job)
{
    const QScopedValueRollback running(m_isRunning, true);
    return runWithProgress(title, job, window());
}

// A look at thousands of files on a network drive takes its time, too.
bool CleanupCommand::lookAtDisk(Request &request)
{
    return run(tr("Remove duplicates"), [&](const CleanupProgressFn &progress) {
        const qsizetype count = request.items.size();
        for (qsizetype i = 0; i < count && progress(i, count, request.items.at(i).path); ++i) {
            const QFileInfo info(request.items.at(i).path);
            request.items[i].size = info.size();
            if (!request.volumes.contains(info.path()))
                request.volumes.insert(info.path(), volumeOf(info.path()));
        }
        request.quarantine = volumeOf(request.places.quarantineRoot);
    });
}

std::optional<RemovalMode> CleanupCommand::askMode(Request &request)
{
    const RemovalPreview preview = previewRemoval(request.items, request.volumes, request.quarantine);
    qint64 bytes = 0;
    for (const RemovalItem &item : std::as_const(request.items))
        bytes += item.size;
    RemovalDialog dialog({ request.paths.size(), sizeText(bytes), request.places.hiddenTicks,
                           uncheckedTicks(m_review, request.places.only), preview },
                         request.places.quarantineRoot, window());
    connect(&dialog, &RemovalDialog::quarantineRootChosen, this,
            [this, &request, &dialog] { changeQuarantine(request, dialog); });
    const bool isAccepted = dialog.exec() == QDialog::Accepted;
    if (dialog.isCheckWanted())
        Q_EMIT checkWanted();
    return isAccepted ? std::optional(dialog.mode()) : std::nullopt;
}

void CleanupCommand::changeQuarantine(Request &request, RemovalDialog &dialog)
{
    request.places.quarantineRoot = dialog.quarantineRoot();
    Q_EMIT quarantineRootChosen(request.places.quarantineRoot);
    warnIfScanned(request.places.quarantineRoot, request.places.scanRoots, &dialog);
    runWaiting([&request] { request.quarantine = volumeOf(request.places.quarantineRoot); });
    dialog.showRoom(previewRemoval(request.items, request.volumes, request.quarantine));
}

bool CleanupCommand::confirmDeletion(qsizetype files)
{
    return QMessageBox::warning(
               window(), tr("Permanent deletion"),
               tr("%1 file(s) will be deleted permanently and cannot be recovered.\n\nAre you certain?")
                   .arg(countText(files)),
               QMessageBox::Yes | QMessageBox::Cancel, QMessageBox::Cancel)
        == QMessageBox::Yes;
}

// While the operator was asked, a check or a look at the files may have taken ticks away; what they found last is on
// its way here still.
void CleanupCommand::leaveOutUnticked(Request &request)
{
    QCoreApplication::sendPostedEvents(nullptr, QEvent::MetaCall);
    const qsizetype asked = request.paths.size();
    request.groups = tickedGroups(m_review, request.places.only);
    request.paths = tickedPaths(request.groups);
    if (const qsizetype gone = asked - request.paths.size(); gone > 0)
        Q_EMIT logMessage(tr("%Ln file(s) were unticked in the meantime and stay.", nullptr, static_cast<int>(gone)));
}

void CleanupCommand::remove(Request request, RemovalMode mode)
{
    Q_EMIT aboutToRemove(request.paths);
    leaveOutUnticked(request);
    const Library library { m_review.tracks(), m_review.groups() }; // whatever becomes of the review meanwhile
    RemovalPlan plan;
    RemovalResult result;
    QStringList notes;
    QSet<qint32> vanished;
    const bool done = run(tr("Remove duplicates"), [&](const CleanupProgressFn &progress) {
        const QStringList away = outOfReach(request.places.scanRoots);
        plan = planRemoval(request.groups, SettingsStore().value(settings::protectedFolders));
        plan.checks.compareAgain = SettingsStore().value(settings::compareAgain);
        result = removeAndRecord(request, mode, plan, progress, &notes);
        vanished = tracksWithoutFile(library, away + driveGone(request.places.scanRoots, result));
    });
    if (!result.refusal.isEmpty()) {
        tellRefusal(result.refusal);
        Q_EMIT filesRemoved();
        return;
    }
    const qsizetype untouched = plan.paths.size() - result.succeeded - result.failed;
    result.failed += plan.refused;
    result.errors = plan.errors + result.errors;
    result.problems = plan.problems + result.problems;
    const QString stopped = done
        ? QString()
        : tr("The clean-up was stopped: %Ln file(s) were not touched.", nullptr, static_cast<int>(untouched));
    tellRemoval(mode, result, stopped);
    tellAll(notes);
    Q_EMIT removalEnded(pathsOf(m_review, vanished), result.problems);
    m_review.removeMembers(vanished);
    Q_EMIT filesRemoved();
}

// A record that cannot be kept is said and holds nothing up: what can be undone does not hang on it.
RemovalResult CleanupCommand::removeAndRecord(const Request &request, RemovalMode mode, const RemovalPlan &plan,
                                              const CleanupProgressFn &progress, QStringList *notes)
{
    QHash<QString, RemovalItem> items;
    for (const RemovalItem &item : request.items)
        items.insert(item.path, item);
    QList<RecordedFile> files;
    for (const QString &path : plan.paths) {
        const FileFate fate = QFileInfo::exists(path) ? FileFate::Planned : FileFate::Stayed;
        files.append({ 0, path, items.value(path).size, items.value(path).type, fate });
    }
    const QStringList &roots = request.places.scanRoots;
    CleanupHistory history;
    if (const Result<> opened = history.open(); !opened)
        notes->append(opened.error());
    const Result<qint64> id = files.isEmpty() ? failure({}) : history.begin(mode, roots, files);
    const RemovalResult result =
        removeFiles(plan.paths, mode, request.places.quarantineRoot, roots, progress, plan.checks);
    const Result<> recorded = id ? history.finish(*id, result) : failure(id.error());
    if (!recorded && !files.isEmpty())
        notes->append(tr("This clean-up could not be recorded: %1").arg(recorded.error()));
    const QStringList empty = foldersLeftEmpty(plan.paths, roots, SettingsStore().value(settings::protectedFolders));
    if (result.succeeded > 0 && !empty.isEmpty())
        notes->append(tr("%Ln folder(s) are empty now; Tools > Clean-ups can remove them.", nullptr,
                         static_cast<int>(empty.size())));
    return result;
}

void CleanupCommand::tellRemoval(RemovalMode mode, const RemovalResult &result, const QString &stopped)
{
    tellStop(stopped);
    const QString freed = sizeText(result.bytesFreed);
    const QString succeeded = QString::number(result.succeeded);
    const QString failed = QString::number(result.failed);
    const QString line =
        tr("%1: %2 succeeded, %3 failed, %4 freed.").arg(removalModeLabel(mode), succeeded, failed, freed);
    report(line);
    tellAll(result.errors);

    QString text = tr("Removed %1 file(s), freeing %2.").arg(countText(result.succeeded), freed);
    if (!stopped.isEmpty())
        text += "\n\n"_L1 + stopped;
    if (result.failed > 0)
        text += tr("\n\n%1 file(s) could not be removed - see the Activity Log.").arg(countText(result.failed));
    if (!result.manifestPath.isEmpty())
        text += tr("\n\nThis clean-up can be reversed from Tools > Undo Previous Clean-up.");
    tellEnd(tr("Clean-up complete"), text, result.errors);
}

// The box only counts what failed; which files they are stands in the log.
void CleanupCommand::tellEnd(const QString &title, const QString &text, const QStringList &failures)
{
    if (failures.isEmpty())
        showInformation(window(), title, text);
    else if (warnAndOffer(window(), title, text, tr("Show in &Log")))
        Q_EMIT logLineWanted(failures.first());
}

// Runs of one minute with as many files each look alike in the list; the newest of them is meant.
std::optional<QString> CleanupCommand::askManifest(const QStringList &manifests, const QStringList &descriptions)
{
    QInputDialog dialog(window());
    dialog.setWindowTitle(tr("Undo previous clean-up"));
    dialog.setLabelText(tr("Select the clean-up to reverse:"));
    dialog.setOkButtonText(tr("&Restore"));
    dialog.setComboBoxItems(descriptions);
    constexpr int charactersOfTitle = 60; // else its frame cuts its own title off
    dialog.resize(charactersOfTitle * dialog.fontMetrics().averageCharWidth(), dialog.sizeHint().height());
    if (dialog.exec() != QDialog::Accepted)
        return std::nullopt;
    return manifests.at(descriptions.indexOf(dialog.textValue()));
}

bool CleanupCommand::confirmUndo(const QString &title, const QString &text)
{
    QMessageBox box(QMessageBox::Warning, title, text, QMessageBox::Ignore | QMessageBox::Cancel, window());
    box.setTextFormat(Qt::PlainText);
    box.button(QMessageBox::Ignore)->setText(tr("Undo Anyway"));
    box.setDefaultButton(QMessageBox::Cancel);
    return box.exec() == QMessageBox::Ignore;
}

bool CleanupCommand::confirmWithoutCopies()
{
    return confirmUndo(tr("Quarantine not found"),
                       tr("None of the files of this clean-up can be found in the quarantine. If they are on a drive "
                          "that is not connected, connect it and undo again.\n\nUndoing now would restore nothing."));
}

// A folder made below the empty place of a drive would hide its files from whoever looks for them on the drive.
bool CleanupCommand::confirmFolders(const QStringList &missing)
{
    return missing.isEmpty()
        || confirmUndo(tr("Folders not found"),
                       tr("%Ln folder(s) that files of this clean-up came from are not there, the first of them "
                          "%1.\n\nIf they are on a drive that is not connected, connect it and undo again. Undoing "
                          "now would make them anew.",
                          nullptr, static_cast<int>(missing.size()))
                           .arg(nativePath(missing.first())));
}

void CleanupCommand::restore(const QString &manifest, MissingFolders missing, const ChosenFiles &chosen)
{
    RestoreResult result;
    Result<> recorded;
    const bool done = run(tr("Undo previous clean-up"), [&](const CleanupProgressFn &progress) {
        result = restoreManifest(manifest, progress, missing, chosen);
        recorded = followRecorded(manifest, FileFate::Back);
    });
    if (!recorded)
        Q_EMIT logMessage(recorded.error());
    tellRestore(result, done ? QString() : tr("The undo was stopped: the files that are left can be restored later."));
}

void CleanupCommand::tellAll(const QStringList &lines)
{
    for (const QString &line : lines)
        Q_EMIT logMessage(line);
}

void CleanupCommand::tellStop(const QString &stopped)
{
    if (!stopped.isEmpty())
        Q_EMIT logMessage(stopped);
}

void CleanupCommand::tellRefusal(const QString &refusal)
{
    Q_EMIT logMessage(refusal);
    showWarning(window(), tr("Nothing was changed"), refusal);
}

void CleanupCommand::tellRestore(const RestoreResult &result, const QString &stopped)
{
    if (!result.refusal.isEmpty())
        return tellRefusal(result.refusal);
    Q_EMIT filesRestored(static_cast<int>(result.succeeded));
    Q_EMIT undoEnded(result.problems);
    tellStop(stopped);
    tellAll(result.errors);
    report(tr("Undo: %1 restored, %2 failed.").arg(result.succeeded).arg(result.failed));
    const QString succeeded = countText(result.succeeded);
    QString text = result.errors.isEmpty() ? tr("Restored %1 file(s) to their original locations.").arg(succeeded)
                                           : tr("Restored %1 file(s); %2 could not be restored. See the Activity Log.")
                                                 .arg(succeeded, countText(result.failed));
    if (!stopped.isEmpty())
        text += "\n\n"_L1 + stopped;
    tellEnd(tr("Undo complete"), text, result.errors);
}

} // namespace epr
