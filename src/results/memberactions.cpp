// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "memberactions.h"

#include "displaytext.h"
#include "filedetails.h"
#include "resultsmodel.h"

#include <QClipboard>
#include <QDesktopServices>
#include <QDir>
#include <QGuiApplication>
#include <QMenu>
#include <QUrl>

#include <algorithm>
#include <utility>

namespace epr {

using namespace Qt::StringLiterals;

MemberActions::MemberActions(ResultsModel *results, QWidget *parent)
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
    , m_results(results)
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
    connect(results, &ResultsModel::totalsChanged, this, &MemberActions::refresh);
    compareGroup->setShortcut(Qt::CTRL | Qt::Key_Return);
    connect(compareGroup, &QAction::triggered, this, &MemberActions::compareMember);
    refresh();
}

void MemberActions::setMember(const QModelIndex &member)
{
    m_member = member.siblingAtColumn(ResultsModel::FileColumn);
    refresh();
}

void MemberActions::popup(const QPoint &globalPos)
{
    if (m_results->trackAt(m_member))
        m_menu->popup(globalPos);
    else if (m_member.isValid())
        m_groupMenu->popup(globalPos);
}

// The handler gets a copy of the track: it may run an event loop in which the results go.
template <typename Handler> QAction *MemberActions::make(const QString &text, const QKeySequence &key, Handler handler)
{
    auto *action = new QAction(text, this);
    action->setShortcut(key);
    connect(action, &QAction::triggered, this, [this, handler] {
        if (const TrackInfo *track = m_results->trackAt(m_member))
            handler(TrackInfo(*track));
    });
    return action;
}

void MemberActions::refresh()
{
    const bool hasTrack = m_results->trackAt(m_member) != nullptr;
    for (QAction *action : { loadIntoDeckA, loadIntoDeckB, play, openFolder, copyPath, showDetails })
        action->setEnabled(hasTrack);
    compareGroup->setEnabled(m_member.isValid());
    keep->setEnabled(hasTrack && !m_member.data(ResultsModel::KeeperRole).toBool());
}

// The kept copy goes to deck A. The current copy goes to deck B, or the one most worth a comparison: what would be lost
// first is quality.
void MemberActions::compareMember()
{
    const MatchGroup group = m_results->groups().value(m_member.data(ResultsModel::GroupRole).toInt());
    const QList<TrackInfo> &tracks = m_results->tracks();
    QList<qint32> others = group.members;
    others.removeAll(group.keep);
    if (others.isEmpty())
        return;
    const auto quality = [&tracks](qint32 index) {
        const TrackInfo track = tracks.value(index);
        return std::pair(track.stream.bitrateKbps, track.size);
    };
    const auto hasLessQuality = [quality](qint32 a, qint32 b) { return quality(a) < quality(b); };
    const qint32 current =
        m_member.data(ResultsModel::TrackRole).isValid() ? m_member.data(ResultsModel::TrackRole).toInt() : group.keep;
    const qint32 other =
        others.contains(current) ? current : *std::max_element(others.begin(), others.end(), hasLessQuality);
    Q_EMIT compareRequested(tracks.value(group.keep), tracks.value(other));
}

void MemberActions::keepMember()
{
    m_results->setKeeper(m_member.data(ResultsModel::GroupRole).toInt(),
                         m_member.data(ResultsModel::TrackRole).toInt());
}

void MemberActions::openMember(const QString &path)
{
    if (!QDesktopServices::openUrl(QUrl::fromLocalFile(path)))
        Q_EMIT statusMessage(tr("Could not open %1.").arg(QDir::toNativeSeparators(path)));
}

} // namespace epr
