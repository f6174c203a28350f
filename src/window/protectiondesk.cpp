// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "protectiondesk.h"

#include "backgroundwork.h"
#include "folderpanel.h"
#include "folderset.h"
#include "review.h"
#include "settingsstore.h"

#include <QSet>
#include <QThread>

namespace epr {

using namespace Qt::StringLiterals;

namespace {

QString folderOfPath(const QString &path)
{
    return path.left(path.lastIndexOf(u'/'));
}

} // namespace

ProtectionDesk::ProtectionDesk(Review &review, FolderPanel &panel, QObject *parent)
    : QObject(parent)
    , m_review(review)
    , m_panel(panel)
{
    panel.protect(SettingsStore().value(settings::protectedFolders));
    auto *worker = new ProtectionWorker;
    m_thread = createWorkerThread(u"epr-protect"_s, worker, this);
    connect(this, &ProtectionDesk::lookWanted, worker, &ProtectionWorker::look);
    connect(worker, &ProtectionWorker::found, this, &ProtectionDesk::take);
    connect(&review, &Review::reset, this, &ProtectionDesk::look);
    connect(&panel, &FolderPanel::protectionChanged, this, &ProtectionDesk::store);
    connect(&panel, &FolderPanel::protectionChanged, this, &ProtectionDesk::look);
    m_thread->start();
    look();
}

ProtectionDesk::~ProtectionDesk()
{
    m_thread->requestInterruption();
    m_thread->quit();
    waitOrLeave(m_thread);
}

void ProtectionDesk::store() const
{
    SettingsStore().set(settings::protectedFolders, m_panel.protectedFolders());
}

// Without protected folders nothing is asked, so that the review is at once what the scan made it.
void ProtectionDesk::look()
{
    ++m_number;
    const QStringList protectedFolders = m_panel.protectedFolders();
    if (protectedFolders.isEmpty() || m_review.groups().isEmpty()) {
        m_review.setProtected({});
        return;
    }
    QSet<QString> folders;
    for (const MatchGroup &group : m_review.groups()) {
        for (const qint32 member : group.members)
            folders.insert(folderOfPath(m_review.tracks().value(member).path));
    }
    Q_EMIT lookWanted(m_number, protectedFolders, folders.values());
}

void ProtectionDesk::take(int number, const QStringList &protectedFolders)
{
    if (number != m_number)
        return;
    const QSet<QString> folders(protectedFolders.cbegin(), protectedFolders.cend());
    QSet<qint32> tracks;
    for (const MatchGroup &group : m_review.groups()) {
        for (const qint32 member : group.members) {
            if (folders.contains(folderOfPath(m_review.tracks().value(member).path)))
                tracks.insert(member);
        }
    }
    m_review.setProtected(tracks);
}

void ProtectionWorker::look(int number, const QStringList &protectedFolders, const QStringList &folders)
{
    FolderSet protection(protectedFolders);
    QStringList inside;
    for (const QString &folder : folders) {
        if (QThread::currentThread()->isInterruptionRequested())
            return;
        if (protection.contains(folder))
            inside << folder;
    }
    Q_EMIT found(number, inside);
}

} // namespace epr
