// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "quarantinewarning.h"

#include "plainbox.h"
#include "removalchecks.h"

#include <QCoreApplication>
#include <QDirIterator>
#include <QMessageBox>
#include <QPushButton>

namespace epr {

namespace {

struct QuarantineWarning {
    Q_DECLARE_TR_FUNCTIONS(epr::QuarantineWarning)
};

bool holdsFiles(const QString &folder)
{
    return QDirIterator(folder, QDir::Files | QDir::Hidden, QDirIterator::Subdirectories).hasNext();
}

} // namespace

void warnIfScanned(const QString &quarantineRoot, const QStringList &folders, QWidget *parent)
{
    if (!isInside(quarantineRoot, folders))
        return;
    showWarning(parent, QuarantineWarning::tr("Quarantine folder will be scanned"),
                QuarantineWarning::tr("%1 is inside a folder to scan. The next scan would find the quarantined copies "
                                      "there and offer them again.\n\nBetter choose a folder outside.")
                    .arg(quarantineRoot));
}

bool confirmScanOfQuarantine(const QString &quarantineRoot, const QStringList &folders, const LogFn &log,
                             QWidget *parent)
{
    if (!isInside(quarantineRoot, folders) || !holdsFiles(quarantineRoot))
        return true;
    log(QuarantineWarning::tr("The quarantine folder %1 is inside a folder to scan.").arg(quarantineRoot));
    QMessageBox box(QMessageBox::Warning, QuarantineWarning::tr("Quarantine will be scanned"),
                    QuarantineWarning::tr("The quarantine folder %1 is inside a folder to scan. Copies that were moved "
                                          "there will be found and offered again.\n\nStart the scan all the same?")
                        .arg(quarantineRoot),
                    QMessageBox::Ok | QMessageBox::Cancel, parent);
    box.setTextFormat(Qt::PlainText);
    box.button(QMessageBox::Ok)->setText(QuarantineWarning::tr("Continue"));
    box.setDefaultButton(QMessageBox::Cancel);
    return box.exec() == QMessageBox::Ok;
}

} // namespace epr
