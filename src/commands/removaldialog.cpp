// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "removaldialog.h"

#include "displaytext.h"
#include "look.h"
#include "removalplan.h"

#include <QDialogButtonBox>
#include <QDir>
#include <QFileDialog>
#include <QGroupBox>
#include <QLabel>
#include <QPushButton>
#include <QRadioButton>
#include <QStyle>
#include <QVBoxLayout>

namespace epr {

using namespace Qt::StringLiterals;

namespace {

// OneDrive names its folders to every program, one for each kind of account. It may hold the whole of the documents.
bool isSynchronised(const QString &folder)
{
    QStringList synchronised;
    for (const char *variable : { "OneDrive", "OneDriveConsumer", "OneDriveCommercial" }) {
        if (!qEnvironmentVariableIsEmpty(variable))
            synchronised.append(QDir::fromNativeSeparators(qEnvironmentVariable(variable)));
    }
    return isInside(folder, synchronised);
}

} // namespace

RemovalDialog::RemovalDialog(const Selection &selection, const QString &quarantineRoot, QWidget *parent)
    : QDialog(parent)
    , m_quarantineRoot(quarantineRoot)
    , m_hint(new QLabel)
    , m_synchronised(
          new QLabel(tr("OneDrive synchronises this folder: it would upload the quarantined files, and what they "
                        "take up there stays taken. Better choose a folder outside.")))
    , m_quarantine(new QRadioButton(tr("Move to &quarantine folder (recommended)")))
    , m_recycleBin(new QRadioButton(tr("Move to the &recycle bin")))
    , m_delete(new QRadioButton(tr("&Delete permanently (cannot be undone)")))
{
    setWindowTitle(tr("Remove duplicates"));
    constexpr int leastWidth = 460;
    setMinimumWidth(leastWidth);
    explain(tr("Files keep their folder structure under<br>%1<br>and can be restored with Tools &rarr; Undo Previous "
               "Clean-up."));
    auto *change = new QPushButton(tr("&Change quarantine folder..."));
    change->setAutoDefault(false);
    connect(change, &QPushButton::clicked, this, &RemovalDialog::chooseQuarantineRoot);

    auto *layout = new QVBoxLayout(this);
    layout->addWidget(
        new QLabel(tr("<b>%1 file(s) selected, freeing %2.</b>").arg(countText(selection.files), selection.total)));
    if (selection.hidden > 0)
        layout->addWidget(new QLabel(
            tr("%Ln of them are hidden by the filter at the moment.", nullptr, static_cast<int>(selection.hidden))));
    if (selection.unchecked > 0)
        layout->addWidget(createCheckRow(selection.unchecked));
    layout->addWidget(createChoices());
    layout->addWidget(change, 0, Qt::AlignLeft);
    layout->addWidget(createButtons());
}

RemovalMode RemovalDialog::mode() const
{
    if (m_recycleBin->isChecked())
        return RemovalMode::RecycleBin;
    return m_delete->isChecked() ? RemovalMode::Delete : RemovalMode::Quarantine;
}

// Hours may pass before all is checked, so the dialog does not wait for it.
QWidget *RemovalDialog::createCheckRow(qint64 unchecked)
{
    auto *text = new QLabel(tr("%Ln of them were not compared with the kept copy over their whole length.", nullptr,
                               static_cast<int>(unchecked)));
    text->setWordWrap(true);
    auto *button = new QPushButton(tr("Check &These First"));
    button->setObjectName(u"checkFirstButton"_s);
    button->setAutoDefault(false);
    connect(button, &QPushButton::clicked, this, [this] {
        m_isCheckWanted = true;
        reject();
    });
    auto *row = new QWidget;
    auto *layout = new QHBoxLayout(row);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(text, 1);
    layout->addWidget(button);
    return row;
}

QGroupBox *RemovalDialog::createChoices()
{
    m_quarantine->setChecked(true);
    m_hint->setObjectName(u"quarantineHint"_s);
    m_hint->setTextFormat(Qt::RichText);
    m_hint->setWordWrap(true);
    // In line with the text of the button that it explains.
    const int indent = style()->pixelMetric(QStyle::PM_ExclusiveIndicatorWidth)
        + style()->pixelMetric(QStyle::PM_RadioButtonLabelSpacing);
    m_hint->setIndent(indent);
    m_synchronised->setObjectName(u"synchronisedWarning"_s);
    m_synchronised->setWordWrap(true);
    m_synchronised->setIndent(indent);

    auto *box = new QGroupBox(tr("What should happen to them?"));
    auto *layout = new QVBoxLayout(box);
    layout->addWidget(m_quarantine);
    layout->addWidget(m_hint);
    layout->addWidget(m_synchronised);
    warnIfSynchronised(); // not before it has a parent, or it would show as a window
    layout->addWidget(m_recycleBin);
    layout->addWidget(m_delete);
    return box;
}

QWidget *RemovalDialog::createButtons()
{
    auto *box = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    box->button(QDialogButtonBox::Ok)->setText(tr("Remove"));
    connect(box, &QDialogButtonBox::accepted, this, &RemovalDialog::accept);
    connect(box, &QDialogButtonBox::rejected, this, &RemovalDialog::reject);
    return box;
}

void RemovalDialog::chooseQuarantineRoot()
{
    const QString folder = QFileDialog::getExistingDirectory(this, tr("Choose a quarantine folder"), m_quarantineRoot);
    if (folder.isEmpty())
        return;
    m_quarantineRoot = folder;
    warnIfSynchronised();
    explain(tr("Files keep their folder structure under<br>%1"));
    Q_EMIT quarantineRootChosen(folder);
}

void RemovalDialog::warnIfSynchronised()
{
    m_synchronised->setVisible(isSynchronised(m_quarantineRoot));
}

// The text is markup, and %1 in it stands for the folder.
void RemovalDialog::explain(const QString &html)
{
    constexpr QRgb grey = qRgb(0x5b, 0x6b, 0x80);
    m_hint->setText(u"<span style='color:%1'>%2</span>"_s.arg(readableTone(grey, palette()).name(),
                                                              html.arg(nativePath(m_quarantineRoot).toHtmlEscaped())));
}

} // namespace epr
