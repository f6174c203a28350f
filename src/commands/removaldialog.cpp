// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "removaldialog.h"

#include "displaytext.h"
#include "look.h"
#include "notices.h"
#include "removalplan.h"

#include <QDialogButtonBox>
#include <QDir>
#include <QFileDialog>
#include <QGroupBox>
#include <QHeaderView>
#include <QLabel>
#include <QPushButton>
#include <QRadioButton>
#include <QStyle>
#include <QTreeWidget>
#include <QVBoxLayout>

#include <algorithm>

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

QTreeWidgetItem *rowOf(const RemovalPreview::Share &share)
{
    auto *row = new QTreeWidgetItem({ share.name, countText(share.files), sizeText(share.bytes) });
    row->setToolTip(0, plainToolTip(share.name));
    for (const int column : { 1, 2 })
        row->setTextAlignment(column, Qt::AlignRight | Qt::AlignVCenter);
    return row;
}

/// One row for all, behind which each has its own; a single one needs no other.
QTreeWidgetItem *foldedRow(const QString &name, const QList<RemovalPreview::Share> &shares)
{
    constexpr qsizetype most = 20; // beyond that nobody reads them
    if (shares.size() == 1)
        return rowOf(
            { RemovalDialog::tr("From %1").arg(shares.first().name), shares.first().files, shares.first().bytes });
    RemovalPreview::Share all { name };
    RemovalPreview::Share rest;
    for (qsizetype i = 0; i < shares.size(); ++i) {
        for (RemovalPreview::Share *sum : { &all, i < most ? nullptr : &rest }) {
            if (sum) {
                sum->files += shares.at(i).files;
                sum->bytes += shares.at(i).bytes;
            }
        }
    }
    QTreeWidgetItem *folded = rowOf(all);
    for (const RemovalPreview::Share &share : shares.first(std::min(most, shares.size())))
        folded->addChild(rowOf(share));
    if (rest.files > 0) {
        rest.name = RemovalDialog::tr("and %Ln more", nullptr, static_cast<int>(shares.size() - most));
        folded->addChild(rowOf(rest));
    }
    return folded;
}

} // namespace

RemovalDialog::RemovalDialog(const Selection &selection, const QString &quarantineRoot, QWidget *parent)
    : QDialog(parent)
    , m_quarantineRoot(quarantineRoot)
    , m_hint(new QLabel)
    , m_synchronised(
          new QLabel(tr("OneDrive synchronises this folder: it would upload the quarantined files, and what they "
                        "take up there stays taken. Better choose a folder outside.")))
    , m_room(new QLabel)
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
    if (!selection.preview.types.isEmpty())
        layout->addWidget(createTable(selection.preview));
    if (selection.hidden > 0)
        layout->addWidget(new QLabel(
            tr("%Ln of them are hidden by the filter at the moment.", nullptr, static_cast<int>(selection.hidden))));
    if (selection.unchecked > 0)
        layout->addWidget(createCheckRow(selection.unchecked));
    layout->addWidget(createChoices());
    showRoom(selection.preview);
    layout->addWidget(change, 0, Qt::AlignLeft);
    layout->addWidget(createButtons());
    m_quarantine->setFocus(); // not the table, which is only there to be read
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

QTreeWidget *RemovalDialog::createTable(const RemovalPreview &preview)
{
    auto *table = new QTreeWidget;
    table->setObjectName(u"removalTable"_s);
    table->setAccessibleName(tr("What goes"));
    table->setHeaderLabels({ tr("What goes"), tr("Files"), tr("Size") });
    table->setUniformRowHeights(true);
    table->setTextElideMode(Qt::ElideMiddle); // folders of one library differ at the end
    for (const RemovalPreview::Share &share : preview.types)
        table->addTopLevelItem(rowOf(share));
    table->addTopLevelItem(
        foldedRow(tr("From %Ln folder(s)", nullptr, static_cast<int>(preview.folders.size())), preview.folders));
    table->addTopLevelItem(
        foldedRow(tr("From %Ln drive(s)", nullptr, static_cast<int>(preview.volumes.size())), preview.volumes));
    table->header()->setStretchLastSection(false);
    table->header()->setSectionResizeMode(QHeaderView::ResizeToContents);
    table->header()->setSectionResizeMode(0, QHeaderView::Stretch);
    static constexpr int mostLines = 8; // what is unfolded may have to be scrolled to
    const auto showLines = [table](int lines) {
        table->setFixedHeight(table->header()->sizeHint().height()
                              + std::min(mostLines, lines) * table->sizeHintForRow(0) + 2 * table->frameWidth());
    };
    showLines(table->topLevelItemCount());
    connect(table, &QTreeWidget::itemExpanded, table, [showLines] { showLines(mostLines); });
    return table;
}

void RemovalDialog::showRoom(const RemovalPreview &preview)
{
    const QString needed = sizeText(preview.bytesToCopy);
    const QString free = sizeText(preview.freeBytes);
    if (preview.lacksRoom())
        m_room->setText(tr("There is too little room in the quarantine: %1 would be copied to its drive, where %2 are "
                           "free. What does not fit stays where it is.")
                            .arg(needed, free));
    else if (preview.bytesToCopy > 0)
        m_room->setText(
            tr("%1 of them would be copied to the drive of the quarantine, where %2 are free.").arg(needed, free));
    else
        m_room->setText(tr("They stay on their drive, where %1 are free.").arg(free));
    QFont font = m_room->font();
    font.setBold(preview.lacksRoom());
    m_room->setFont(font);
    m_room->setVisible(preview.freeBytes >= 0);
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
    m_room->setObjectName(u"roomNote"_s);
    m_room->setWordWrap(true);
    m_room->setIndent(indent);

    auto *box = new QGroupBox(tr("What should happen to them?"));
    auto *layout = new QVBoxLayout(box);
    layout->addWidget(m_quarantine);
    layout->addWidget(m_hint);
    layout->addWidget(m_synchronised);
    layout->addWidget(m_room);
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
