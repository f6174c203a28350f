// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "memberactions.h"

#include "checktext.h"
#include "copyrelation.h"
#include "displaytext.h"

#include <QClipboard>
#include <QCoreApplication>
#include <QDesktopServices>
#include <QGuiApplication>
#include <QMap>
#include <QMenu>
#include <QMessageBox>
#include <QRegularExpression>

namespace epr {

using namespace Qt::StringLiterals;

namespace {

QString hashText(const QString &hash)
{
    return hash.isEmpty() ? QCoreApplication::translate("epr::FileDetails", "not computed") : hash;
}

// The names must not wrap, and non-breaking spaces are the one way of saying so that a table cell heeds.
QString htmlLine(QString name, const QString &valueHtml)
{
    name.replace(u' ', QChar::Nbsp);
    return u"<tr><td><b>%1</b></td><td style='padding-left:12px'>%2</td></tr>"_s.arg(name.toHtmlEscaped(), valueHtml);
}

// A word that is wider than the box would be cut off, so a very long one may break. There is a command of its own for
// copying a path.
QString line(const QString &name, QString value)
{
    static const QRegularExpression longWord(u"(\\S{48})(?=\\S)"_s);
    value.replace(longWord, u"\\1\u200b"_s);
    return htmlLine(name, value.toHtmlEscaped());
}

// Small, so that 64 characters that nobody reads find room on a small screen.
QString hashLine(const QString &name, const QString &hash)
{
    return htmlLine(name, u"<small>%1</small>"_s.arg(hashText(hash)));
}

QString silenceText(const SoundMeasures &measures)
{
    return QCoreApplication::translate("epr::FileDetails", "%1 at the start, %2 at the end")
        .arg(lengthText(measures.silentStartMs), lengthText(measures.silentEndMs));
}

QString checkLines(const SoundMeasures &measures, const QStringList &remarks)
{
    QString lines;
    if (!remarks.isEmpty())
        lines += line(QCoreApplication::translate("epr::FileDetails", "Check"), remarks.join(", "_L1));
    if (measures.durationMs <= 0)
        return lines;
    lines += line(QCoreApplication::translate("epr::FileDetails", "Decoded length"), durationText(measures.durationMs));
    lines += line(QCoreApplication::translate("epr::FileDetails", "Loudness"), loudnessText(measures.loudness));
    lines += line(QCoreApplication::translate("epr::FileDetails", "True peak"), truePeakText(measures.truePeak));
    lines += line(QCoreApplication::translate("epr::FileDetails", "Bandwidth"), bandwidthText(measures.bandwidthHz));
    lines +=
        line(QCoreApplication::translate("epr::FileDetails", "Clipped samples"), countText(measures.clippedSamples));
    lines += line(QCoreApplication::translate("epr::FileDetails", "Silence"), silenceText(measures));
    return lines
        + line(QCoreApplication::translate("epr::FileDetails", "Decoding errors"), countText(measures.decodingErrors));
}

void showFileDetails(const QString &html, QWidget *parent)
{
    QMessageBox box(QMessageBox::NoIcon, QCoreApplication::translate("epr::FileDetails", "File details"), html,
                    QMessageBox::Ok, parent);
    box.setTextFormat(Qt::RichText);
    box.setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    box.exec();
}

} // namespace

MemberActions::MemberActions(Review &review, QWidget *window)
    : Command(window)
    , loadIntoDeckA(make(tr("Load into Deck A"), Qt::CTRL | Qt::Key_1, tr("Put this copy on deck A of the player."),
                         [this](const TrackInfo &track) { Q_EMIT loadRequested(Deck::A, track); }))
    , loadIntoDeckB(make(tr("Load into Deck B"), Qt::CTRL | Qt::Key_2, tr("Put this copy on deck B of the player."),
                         [this](const TrackInfo &track) { Q_EMIT loadRequested(Deck::B, track); }))
    , compareGroup(new QAction(tr("Compare Group in Player"), this))
    , play(make(tr("Play in system player"), {}, tr("Open this copy with the system's program for it."),
                [this](const TrackInfo &track) { openMember(track.path); }))
    , openFolder(make(tr("Open containing folder"), {}, tr("Show the folder that holds this copy."),
                      [this](const TrackInfo &track) { openMember(folderOf(track)); }))
    , copyPath(make(tr("Copy full path"), Qt::CTRL | Qt::SHIFT | Qt::Key_C,
                    tr("Put the path of this copy on the clipboard."), [this](const TrackInfo &) { copyPaths(); }))
    , keep(make(tr("Keep this copy instead"), Qt::CTRL | Qt::Key_K,
                tr("Make this copy the one of its group that stays."), [this](const TrackInfo &) { keepMembers(); }))
    , showDetails(make(tr("File details..."), Qt::ALT | Qt::Key_Return, tr("Show all that is known of this copy."),
                       [this](const TrackInfo &track) { showDetailsOf(track); }))
    , m_review(review)
    , m_menu(new QMenu(window))
    , m_groupMenu(new QMenu(window))
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
    compareGroup->setStatusTip(tr("Put the copy to keep on deck A and another one of its group on deck B."));
    connect(compareGroup, &QAction::triggered, this, &MemberActions::compareMember);
    refresh();
}

void MemberActions::setMember(int group, int member)
{
    m_group = group;
    m_member = member;
    refresh();
}

void MemberActions::setSeveral(bool several)
{
    m_hasSeveral = several;
    refresh();
}

void MemberActions::addToMenus(const QList<QAction *> &commands)
{
    for (QMenu *menu : { m_menu, m_groupMenu }) {
        menu->addSeparator();
        menu->addActions(commands);
    }
}

void MemberActions::popup(const QPoint &globalPos)
{
    if (track())
        m_menu->popup(globalPos);
    else if (m_group >= 0)
        m_groupMenu->popup(globalPos);
}

// The handler gets a copy of the track: it may run an event loop in which the results go.
template <typename Handler>
QAction *MemberActions::make(const QString &text, const QKeySequence &key, const QString &tip, Handler handler)
{
    auto *action = new QAction(text, this);
    action->setShortcut(key);
    action->setStatusTip(tip);
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
    keep->setEnabled(hasTrack && (m_hasSeveral || !m_review.isKeeper(m_group, m_member)));
}

// The kept copy goes to deck A, the current one or its counterpart to deck B.
void MemberActions::compareMember()
{
    const MatchGroup &group = m_review.groups().at(m_group);
    const qint32 other = m_review.counterpart(m_group, group.members.value(m_member, group.keep));
    if (other >= 0)
        Q_EMIT compareRequested(m_review.tracks().value(group.keep), m_review.tracks().value(other));
}

// Of each group the one that is selected; where several are, the current one or none.
void MemberActions::keepMembers()
{
    QMap<int, QList<int>> selected;
    for (const auto &[group, member] : m_places())
        selected[group] << member;
    QList<Review::Place> chosen;
    for (const auto &[group, members] : selected.asKeyValueRange()) {
        if (group == m_group && members.contains(m_member))
            chosen.append({ group, m_member });
        else if (members.size() == 1)
            chosen.append({ group, members.first() });
    }
    const qsizetype unclear = selected.size() - chosen.size();
    m_review.setKeepers(chosen);
    if (unclear > 0)
        Q_EMIT statusMessage(
            tr("%1 groups stay as they are: more than one of their copies is selected.").arg(countText(unclear)));
}

void MemberActions::copyPaths()
{
    QStringList paths;
    for (const auto &[group, member] : m_places()) {
        if (const TrackInfo *selected = m_review.track(group, member))
            paths << nativePath(selected->path);
    }
    QGuiApplication::clipboard()->setText(paths.join(u'\n'));
    Q_EMIT statusMessage(paths.size() > 1 ? tr("%1 paths copied to clipboard.").arg(countText(paths.size()))
                                          : tr("Path copied to clipboard."));
}

void MemberActions::openMember(const QString &path)
{
    if (!QDesktopServices::openUrl(QUrl::fromLocalFile(path)))
        Q_EMIT statusMessage(tr("Could not open %1.").arg(nativePath(path)));
}

void MemberActions::showDetailsOf(const TrackInfo &track)
{
    const MatchGroup &group = m_review.groups().at(m_group);
    const qint32 member = group.members.at(m_member);
    const QString relation = m_review.isKeeper(m_group, m_member)
        ? m_review.keepText(m_group)
        : relationText(relationToKept(group, member, m_review.tracks()), m_review.tracks());
    showFileDetails(fileDetailsHtml(track, group.check.measures.value(member),
                                    checkTexts(group, member) + measureTexts(group, member), relation),
                    window());
}

QString fileDetailsHtml(const TrackInfo &track, const SoundMeasures &measures, const QStringList &remarks,
                        const QString &relation)
{
    QString lines = line(QCoreApplication::translate("epr::FileDetails", "File"), track.fileName);
    lines += line(QCoreApplication::translate("epr::FileDetails", "Folder"), nativePath(folderOf(track)));
    lines += line(QCoreApplication::translate("epr::FileDetails", "Artist"), displayArtist(track));
    lines += line(QCoreApplication::translate("epr::FileDetails", "Title"), displayTitle(track));
    lines += line(QCoreApplication::translate("epr::FileDetails", "Album"), track.tags.album);
    lines += line(QCoreApplication::translate("epr::FileDetails", "Duration"), durationText(track.stream));
    if (track.stream.durationIsGuess)
        lines += line(QString(), durationExplanation(track.stream));
    lines += line(QCoreApplication::translate("epr::FileDetails", "Quality"), qualityText(track));
    lines += line(QCoreApplication::translate("epr::FileDetails", "Size"), sizeText(track.size));
    lines += line(QCoreApplication::translate("epr::FileDetails", "Modified"), dateTimeText(track.mtime));
    if (!relation.isEmpty())
        lines += line(QCoreApplication::translate("epr::FileDetails", "Relation"), relation);
    lines += hashLine(QCoreApplication::translate("epr::FileDetails", "SHA-256 of the file"), track.fullHash);
    lines += hashLine(QCoreApplication::translate("epr::FileDetails", "SHA-256 of the audio"), track.audioHash);
    lines += checkLines(measures, remarks);
    if (!track.error.isEmpty())
        lines += line(QCoreApplication::translate("epr::FileDetails", "Note"), track.error);
    return u"<table cellspacing='2'>%1</table>"_s.arg(lines);
}

} // namespace epr
