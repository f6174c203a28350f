// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "updatedialog.h"

#include "application.h"
#include "notices.h"

#include <QDesktopServices>
#include <QDialogButtonBox>
#include <QLocale>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QStyle>
#include <QVBoxLayout>

namespace epr {

using namespace Qt::StringLiterals;

UpdateDialog::UpdateDialog(const UpdateChecker::Release &release, QWidget *parent)
    : QDialog(parent)
    , m_release(release)
{
    setWindowTitle(release.critical ? tr("Important update") : tr("Update available"));
    setMinimumWidth(440);

    auto *icon = new QLabel;
    const auto symbol = release.critical ? QStyle::SP_MessageBoxWarning : QStyle::SP_MessageBoxInformation;
    const int iconSize = style()->pixelMetric(QStyle::PM_MessageBoxIconSize, nullptr, this);
    icon->setPixmap(style()->standardIcon(symbol, nullptr, this).pixmap(iconSize));

    auto *top = new QHBoxLayout;
    top->addWidget(icon, 0, Qt::AlignTop);
    top->addSpacing(6);
    top->addLayout(createHeading(), 1);

    auto *layout = new QVBoxLayout(this);
    layout->addLayout(top);
    addNotes(layout);
    layout->addWidget(createButtons());
}

QVBoxLayout *UpdateDialog::createHeading()
{
    auto *heading =
        plainLabel(tr("%1 %2 is available.").arg(metadata::applicationName(), displayVersion(m_release.version)));
    heading->setWordWrap(true);
    QFont bold = heading->font();
    bold.setBold(true);
    heading->setFont(bold);

    auto *layout = new QVBoxLayout;
    layout->addWidget(heading);
    layout->addWidget(plainLabel(tr("You are running version %1.").arg(metadata::version())));
    if (const QDate day = parseReleaseDate(m_release.releaseDate); day.isValid())
        layout->addWidget(plainLabel(tr("Released %1.").arg(QLocale().toString(day, tr("d MMMM yyyy")))));
    layout->addStretch();
    return layout;
}

void UpdateDialog::addNotes(QVBoxLayout *layout)
{
    if (!m_release.notes.isEmpty()) {
        auto *notes = new QPlainTextEdit(m_release.notes);
        notes->setReadOnly(true);
        notes->setTabChangesFocus(true);
        auto *label = plainLabel(tr("What's &new:"));
        label->setBuddy(notes);
        layout->addSpacing(6);
        layout->addWidget(label);
        layout->addWidget(notes, 1);
    }
    if (const QUrl url = webUrl(m_release.notesUrl); !url.isEmpty()) {
        const QString address = QString::fromLatin1(url.toEncoded()).toHtmlEscaped();
        auto *link = new QLabel(u"<a href=\"%1\">%2</a>"_s.arg(address, tr("Full release notes")));
        link->setTextInteractionFlags(Qt::LinksAccessibleByMouse | Qt::LinksAccessibleByKeyboard);
        link->setOpenExternalLinks(true);
        layout->addWidget(link, 0, Qt::AlignLeft);
    }
}

QWidget *UpdateDialog::createButtons()
{
    auto *box = new QDialogButtonBox(this); // a button finds the dialog it is the default of through its parents
    QPushButton *skip = box->addButton(tr("&Skip This Version"), QDialogButtonBox::ResetRole);
    QPushButton *later = box->addButton(tr("&Remind me later"), QDialogButtonBox::RejectRole);
    QPushButton *load = box->addButton(tr("&Download..."), QDialogButtonBox::AcceptRole);
    load->setEnabled(!webUrl(m_release.downloadUrl).isEmpty());
    (load->isEnabled() ? load : later)->setDefault(true);
    connect(skip, &QPushButton::clicked, this, &UpdateDialog::skipVersion);
    connect(box, &QDialogButtonBox::accepted, this, &UpdateDialog::download);
    connect(box, &QDialogButtonBox::rejected, this, &UpdateDialog::reject);
    return box;
}

void UpdateDialog::skipVersion()
{
    UpdateSettings().setSkippedVersion(m_release.version);
    reject();
}

void UpdateDialog::download()
{
    QDesktopServices::openUrl(webUrl(m_release.downloadUrl));
    accept();
}

} // namespace epr
