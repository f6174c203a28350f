// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "cleanupscommand.h"

#include "cleanupcommand.h"
#include "cleanuphistory.h"
#include "cleanupsdialog.h"
#include "displaytext.h"
#include "emptyfolders.h"
#include "notices.h"
#include "purge.h"
#include "settingsstore.h"
#include "undomanifest.h"

#include <QDir>
#include <QMessageBox>
#include <QPushButton>

#include <algorithm>
#include <limits>

namespace epr {

using namespace Qt::StringLiterals;

namespace {

QString listOf(const CleanupRun &run)
{
    return QDir(undoDirectory()).filePath(run.manifest);
}

/// Of a run the files that met one of these fates; an empty list if the record cannot be read.
QList<RecordedFile> filesOf(const QString &recordFile, qint64 run, const QList<FileFate> &fates)
{
    CleanupStore store(recordFile);
    if (!store.open())
        return {};
    QList<RecordedFile> files = store.files(run, 0, std::numeric_limits<int>::max()).value_or(QList<RecordedFile>());
    files.removeIf([&fates](const RecordedFile &file) { return !fates.contains(file.fate); });
    return files;
}

QString ageText(qint64 began)
{
    const qint64 days = QDateTime::fromMSecsSinceEpoch(began).daysTo(QDateTime::currentDateTime());
    return days > 0 ? CleanupsCommand::tr("%Ln day(s) ago", nullptr, static_cast<int>(days))
                    : CleanupsCommand::tr("today");
}

} // namespace

CleanupsCommand::CleanupsCommand(CleanupCommand &cleanup, QWidget *window)
    : Command(window)
    , m_cleanup(cleanup)
{
}

void CleanupsCommand::show()
{
    m_recordFile = CleanupStore::defaultFilePath();
    QStringList messages;
    m_cleanup.run(tr("Clean-ups"), [&](const CleanupProgressFn &) {
        messages = clearTraces();
        CleanupStore store(m_recordFile);
        const Result<> opened = store.open();
        if (!opened)
            messages << opened.error();
        if (!store.isOpen())
            m_recordFile = m_substitute.filePath(u"cleanups.sqlite"_s);
    });
    tellAll(messages);
    CleanupsDialog dialog(m_recordFile, window());
    refresh(&dialog);
    const auto again = [this, &dialog] { refresh(&dialog); };
    connect(&dialog, &CleanupsDialog::restoreRequested, this,
            [this, again](const CleanupRun &run, const ChosenFiles &chosen) {
                m_cleanup.restoreFrom(listOf(run), chosen);
                again();
            });
    connect(&dialog, &CleanupsDialog::purgeRequested, this, [this, again](const CleanupRun &run) {
        purge(CleanupRun(run));
        again();
    });
    connect(&dialog, &CleanupsDialog::emptyFoldersRequested, this,
            [this](const CleanupRun &run) { removeEmptyFolders(CleanupRun(run)); }); // the list may change meanwhile
    dialog.exec();
}

void CleanupsCommand::refresh(CleanupsDialog *dialog)
{
    QStringList messages;
    QList<CleanupRun> runs;
    m_cleanup.run(tr("Clean-ups"), [&](const CleanupProgressFn &progress) {
        CleanupHistory history(m_recordFile);
        if (const Result<> opened = history.open(); !opened)
            messages << opened.error();
        messages += history.refresh(progress);
        runs = history.store().runs().value_or(QList<CleanupRun>());
    });
    tellAll(messages);
    dialog->setRuns(runs);
}

void CleanupsCommand::purge(const CleanupRun &run)
{
    qint64 bytes = 0;
    const bool looked = m_cleanup.run(tr("Remove for good"), [&](const CleanupProgressFn &) {
        for (const RecordedFile &file : filesOf(m_recordFile, run.id, { FileFate::Removed }))
            bytes += file.size;
    });
    if (!looked || !confirmPurge(run, bytes))
        return;
    RemovalResult result;
    Result<> recorded;
    const bool done = m_cleanup.run(tr("Remove for good"), [&](const CleanupProgressFn &progress) {
        result = purgeQuarantine(listOf(run), progress, SettingsStore().value(settings::protectedFolders));
        CleanupHistory history(m_recordFile);
        recorded = history.open();
        if (recorded && result.refusal.isEmpty())
            recorded = history.follow(listOf(run), FileFate::Purged);
    });
    if (!recorded)
        Q_EMIT logMessage(recorded.error());
    if (!result.refusal.isEmpty()) {
        Q_EMIT logMessage(result.refusal);
        showWarning(window(), tr("Nothing was changed"), result.refusal);
        return;
    }
    report(tr("Removed for good: %1 file(s), %2.").arg(countText(result.succeeded), sizeText(result.bytesFreed)));
    tellAll(result.errors);
    QString text =
        tr("Removed %1 file(s) for good, freeing %2.").arg(countText(result.succeeded), sizeText(result.bytesFreed));
    if (!done)
        text += "\n\n"_L1 + tr("This was stopped: what is left can still be brought back.");
    if (result.errors.isEmpty())
        showInformation(window(), tr("Removed for good"), text);
    else
        showWarning(window(), tr("Removed for good"),
                    text + "\n\n"_L1 + result.errors.first() + "\n\n"_L1 + tr("The Activity Log has all messages."));
}

bool CleanupsCommand::confirmPurge(const CleanupRun &run, qint64 bytes)
{
    const QString when = dateTimeText(QDateTime::fromMSecsSinceEpoch(run.id));
    QMessageBox box(QMessageBox::Warning, tr("Remove for good"),
                    tr("The clean-up of %1 (%2) has %3 file(s) with %4 in the quarantine.\n\nThey will be deleted for "
                       "good, and nothing brings them back.")
                        .arg(when, ageText(run.id), countText(run.files.value(FileFate::Removed)), sizeText(bytes)),
                    QMessageBox::Ok | QMessageBox::Cancel, window());
    box.setTextFormat(Qt::PlainText);
    box.button(QMessageBox::Ok)->setText(tr("Delete for Good"));
    box.setDefaultButton(QMessageBox::Cancel);
    return box.exec() == QMessageBox::Ok;
}

void CleanupsCommand::removeEmptyFolders(const CleanupRun &run)
{
    QStringList folders;
    const bool looked = m_cleanup.run(tr("Empty folders"), [&](const CleanupProgressFn &) {
        QStringList paths;
        for (const RecordedFile &file : filesOf(m_recordFile, run.id, { FileFate::Removed, FileFate::Purged }))
            paths << file.path;
        folders = foldersLeftEmpty(paths, run.roots, SettingsStore().value(settings::protectedFolders));
    });
    if (!looked)
        return;
    if (folders.isEmpty()) {
        showInformation(window(), tr("Empty folders"), tr("No folder that this clean-up took files from is empty."));
        return;
    }
    constexpr qsizetype mostShown = 8;
    QString names = nativePath(folders.first(std::min(mostShown, folders.size())).join(u'\n'));
    if (folders.size() > mostShown)
        names += u'\n' + tr("and %Ln more", nullptr, static_cast<int>(folders.size() - mostShown));
    if (!askYesOrNo(window(), tr("Empty folders"),
                    tr("%Ln folder(s) are empty since this clean-up:\n\n%1\n\nRemove them?", nullptr,
                       static_cast<int>(folders.size()))
                        .arg(names)))
        return;
    QStringList gone;
    m_cleanup.run(tr("Empty folders"), [&](const CleanupProgressFn &) { gone = epr::removeEmptyFolders(folders); });
    report(tr("%Ln empty folder(s) removed.", nullptr, static_cast<int>(gone.size())));
}

void CleanupsCommand::tellAll(const QStringList &messages)
{
    for (const QString &message : messages)
        Q_EMIT logMessage(message);
}

} // namespace epr
