// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "membermenu.h"

#include "displaytext.h"
#include "filedetails.h"
#include "resultsmodel.h"

#include <QClipboard>
#include <QDesktopServices>
#include <QDir>
#include <QGuiApplication>
#include <QMenu>
#include <QUrl>

namespace epr {

using namespace Qt::StringLiterals;

MemberMenu::MemberMenu(ResultsModel *results, QWidget *parent)
    : QObject(parent)
    , m_results(results)
    , m_window(parent)
    , m_menu(new QMenu(parent))
{
    m_menu->setObjectName(u"memberMenu"_s);
    addAction(u"playMember"_s, tr("Play in system player"), &MemberMenu::play);
    addAction(u"openMemberFolder"_s, tr("Open containing folder"), &MemberMenu::openFolder);
    addAction(u"copyMemberPath"_s, tr("Copy full path"), &MemberMenu::copyPath);
    m_menu->addSeparator();
    m_keepAction = addAction(u"keepMember"_s, tr("Keep this copy instead"), &MemberMenu::keep);
    m_menu->addSeparator();
    addAction(u"showMemberDetails"_s, tr("File details..."), &MemberMenu::showDetails);
}

void MemberMenu::popup(const QModelIndex &member, const QPoint &globalPos)
{
    if (!m_results->trackAt(member))
        return;
    m_member = member;
    m_keepAction->setEnabled(!member.data(ResultsModel::KeeperRole).toBool());
    m_menu->popup(globalPos);
}

QAction *MemberMenu::addAction(const QString &name, const QString &text, Handler handler)
{
    QAction *action = m_menu->addAction(text);
    action->setObjectName(name);
    connect(action, &QAction::triggered, this, [this, handler] {
        if (const TrackInfo *track = m_results->trackAt(m_member))
            (this->*handler)(*track);
    });
    return action;
}

void MemberMenu::play(const TrackInfo &track)
{
    open(track.path);
}

void MemberMenu::openFolder(const TrackInfo &track)
{
    open(folderOf(track));
}

void MemberMenu::copyPath(const TrackInfo &track)
{
    QGuiApplication::clipboard()->setText(QDir::toNativeSeparators(track.path));
    Q_EMIT statusMessage(tr("Path copied to clipboard."));
}

void MemberMenu::keep(const TrackInfo &)
{
    m_results->setKeeper(m_member.data(ResultsModel::GroupRole).toInt(),
                         m_member.data(ResultsModel::TrackRole).toInt());
}

void MemberMenu::showDetails(const TrackInfo &track)
{
    showFileDetails(TrackInfo(track), m_window); // a copy: the box runs an event loop in which the results may go
}

void MemberMenu::open(const QString &path)
{
    if (!QDesktopServices::openUrl(QUrl::fromLocalFile(path)))
        Q_EMIT statusMessage(tr("Could not open %1.").arg(QDir::toNativeSeparators(path)));
}

} // namespace epr
