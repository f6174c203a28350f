// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "memberactions.h"

#include "displaytext.h"
#include "filedetails.h"
#include "review.h"

#include <QClipboard>
#include <QDesktopServices>
#include <QDir>
#include <QGuiApplication>
#include <QMenu>
#include <QUrl>

namespace epr {

using namespace Qt::StringLiterals;

MemberActions::MemberActions(Review &review, QWidget *parent)
    : QObject(parent)
    , loadIntoDeckA(make(tr("Load into Deck A"), Qt::CTRL | Qt::Key_1,
                         [this](const TrackInfo &track) { Q_EMIT loadRequested(0, track); }))
    , loadIntoDeckB(make(tr("Load into Deck B"), Qt::CTRL | Qt::Key_2,
                         [this](const TrackInfo &track) { Q_EMIT loadRequested(1, track); }))
    , compareGroup(new QAction(tr("Compare Group in Player"), this))
    , play(make(tr("Play in system player"), {}, [this](const TrackInfo &track) { openMember(track.path); }))
    , openFolder(
          make(tr("Open containing folder"), {}, [this](const TrackInfo &track) { openMember(folderOf(track)); }))
    , copyPath(make(tr("Copy full path"), Qt::CTRL | Qt::SHIFT | Qt::Key_C,
                    [this](const TrackInfo &track) {
                        QGuiApplication::clipboard()->setText(QDir::toNativeSeparators(track.path));
                        Q_EMIT statusMessage(tr("Path copied to clipboard."));
                    }))
    , keep(make(tr("Keep this copy instead"), Qt::CTRL | Qt::Key_K, [this](const TrackInfo &) { keepMember(); }))
    , showDetails(make(tr("File details..."), Qt::ALT | Qt::Key_Return,
                       [this](const TrackInfo &track) { showFileDetails(track, m_window); }))
    , m_review(review)
    , m_window(parent)
    , m_menu(new QMenu(parent))
    , m_groupMenu(new QMenu(parent))
{
    m_menu->setObjectName(u"memberMenu"_s);
    m_menu->addActions({ loadIntoDeckA, loadIntoDeckB, compareGroup });
    m_menu->addSeparator();
    m_menu->addActions({ play, openFolder, copyPath });
    m_menu->addSeparator();
    m_menu->addAction(keep);
    m_menu->addSeparator();
    m_menu->addAction(showDetails);
    m_groupMenu->addAction(compareGroup);
    connect(&review, &Review::aboutToBeReset, this, [this] { setMember(-1, -1); }); // maybe while the menu is open
    connect(&review, &Review::totalsChanged, this, &MemberActions::refresh);
    compareGroup->setShortcut(Qt::CTRL | Qt::Key_Return);
    connect(compareGroup, &QAction::triggered, this, &MemberActions::compareMember);
    refresh();
}

void MemberActions::setMember(int group, int member)
{
    m_group = group;
    m_member = member;
    refresh();
}

void MemberActions::popup(const QPoint &globalPos)
{
    if (track())
        m_menu->popup(globalPos);
    else if (m_group >= 0)
        m_groupMenu->popup(globalPos);
}

// The handler gets a copy of the track: it may run an event loop in which the results go.
template <typename Handler> QAction *MemberActions::make(const QString &text, const QKeySequence &key, Handler handler)
{
    auto *action = new QAction(text, this);
    action->setShortcut(key);
    connect(action, &QAction::triggered, this, [this, handler] {
        if (const TrackInfo *current = track())
            handler(TrackInfo(*current));
    });
    return action;
}

const TrackInfo *MemberActions::track() const
{
    return m_review.track(m_group, m_member);
}

void MemberActions::refresh()
{
    const bool hasTrack = track() != nullptr;
    for (QAction *action : { loadIntoDeckA, loadIntoDeckB, play, openFolder, copyPath, showDetails })
        action->setEnabled(hasTrack);
    compareGroup->setEnabled(m_group >= 0);
    keep->setEnabled(hasTrack && !m_review.isKeeper(m_group, m_member));
}

// The kept copy goes to deck A, the current one or its counterpart to deck B.
void MemberActions::compareMember()
{
    const MatchGroup &group = m_review.groups().at(m_group);
    const qint32 other = m_review.counterpart(m_group, group.members.value(m_member, group.keep));
    if (other >= 0)
        Q_EMIT compareRequested(m_review.tracks().value(group.keep), m_review.tracks().value(other));
}

void MemberActions::keepMember()
{
    m_review.setKeeper(m_group, m_review.groups().at(m_group).members.at(m_member));
}

void MemberActions::openMember(const QString &path)
{
    if (!QDesktopServices::openUrl(QUrl::fromLocalFile(path)))
        Q_EMIT statusMessage(tr("Could not open %1.").arg(QDir::toNativeSeparators(path)));
}

} // namespace epr
