// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "keepercommand.h"

#include "displaytext.h"
#include "keeperchoice.h"
#include "keeperpolicy.h"
#include "notices.h"
#include "review.h"
#include "settingsstore.h"

namespace epr {

using namespace Qt::StringLiterals;

namespace {

ScanOptions storedOptions()
{
    const SettingsStore store;
    ScanOptions options = store.loadScanOptions();
    options.protectedFolders = store.value(settings::protectedFolders);
    return options;
}

/// Whether both choose the same copies.
bool chooseAlike(const ScanOptions &a, const ScanOptions &b)
{
    const bool byRules = a.keeperPolicy == static_cast<qint32>(KeeperPolicy::OwnRules);
    return a.keeperPolicy == b.keeperPolicy
        && (!byRules || (a.keeperRules == b.keeperRules && a.protectedFolders == b.protectedFolders));
}

} // namespace

KeeperCommand::KeeperCommand(Review &review, QWidget *window)
    : Command(window)
    , m_review(review)
{
    connect(&review, &Review::reset, this, [this] { m_offered.reset(); });
}

void KeeperCommand::chooseAgain()
{
    if (!ask(storedOptions()))
        showInformation(window(), tr("Choose copies to keep again"),
                        tr("The policy and the rules of the settings would keep the same copies."));
}

void KeeperCommand::offer()
{
    const ScanOptions options = storedOptions();
    if (!chooseAlike(options, m_review.keeperOptions()) && !(m_offered && chooseAlike(options, *m_offered)))
        ask(options);
}

/// False if there is nothing to ask about.
bool KeeperCommand::ask(const ScanOptions &options)
{
    const KeeperChoice choice = chooseKeepersAgain(m_review, options);
    if (choice.changes.isEmpty() && choice.decided == 0)
        return false;
    m_offered = options;
    QString text = tr("This changes the copy to keep of %1 of %2 groups.")
                       .arg(countText(choice.changes.size()), countText(m_review.groups().size()));
    if (choice.decided > 0)
        text += u' ' + tr("%1 decided by hand stay.").arg(countText(choice.decided));
    if (choice.changes.isEmpty()) {
        showInformation(window(), tr("Choose copies to keep again"), text);
        return true;
    }
    text += u"\n\n"_s + tr("Choose again for the results shown? One step of Undo takes it back.");
    if (!askYesOrNo(window(), tr("Choose copies to keep again"), text))
        return true;
    m_review.chooseKeepers(choice);
    report(tr("Another copy is kept in %1 groups.").arg(countText(choice.changes.size())));
    return true;
}

} // namespace epr
