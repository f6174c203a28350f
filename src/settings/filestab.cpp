// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "filestab.h"

#include "scanoptions.h"
#include "settingswidgets.h"

#include <QCheckBox>
#include <QFormLayout>
#include <QLineEdit>
#include <QSpinBox>

namespace epr {

using namespace Qt::StringLiterals;

namespace {

constexpr int kilobyteShift = 10;
constexpr qint64 msPerSecond = 1000;

QLineEdit *createListEdit(const QString &text, const QString &toolTip)
{
    auto *edit = new QLineEdit(text);
    edit->setCursorPosition(0); // a long list shows its beginning
    edit->setToolTip(toolTip);
    return edit;
}

} // namespace

QStringList parseExtensions(const QString &text)
{
    QStringList extensions;
    for (const QString &part : text.split(u',')) {
        const QString extension = part.toLower().remove(u'.').trimmed();
        if (!extension.isEmpty())
            extensions << extension;
    }
    return extensions;
}

QStringList parseExcludes(const QString &text)
{
    QStringList patterns;
    for (const QString &part : text.split(u';')) {
        const QString pattern = part.trimmed();
        if (!pattern.isEmpty())
            patterns << pattern;
    }
    return patterns;
}

FilesTab::FilesTab(const ScanOptions &options, QWidget *parent)
    : QWidget(parent)
    , m_extensions(
          createListEdit(options.extensions.join(", "_L1), tr("Comma separated file extensions, without the dot.")))
    , m_excludes(createListEdit(options.excludes.join("; "_L1), tr("Semicolon separated wildcard patterns to skip.")))
    , m_hidden(createCheckBox(tr("Include &hidden files and folders"), options.includeHidden))
    , m_symlinks(createCheckBox(tr("Follow symbolic &links and junctions"), options.followSymlinks))
{
    // Not above: lupdate loses the class when it meets these braces in an initialiser list.
    m_minKilobytes = createSpinBox({ 0, 1048576, tr(" KB") }, options.minBytes >> kilobyteShift);
    m_minSeconds = createSpinBox({ 0, 600, tr(" s") }, options.minDurationMs / msPerSecond);
    m_minSeconds->setToolTip(tr("Station idents, stings and beds are short and repetitive; excluding them keeps the "
                                "results readable."));
    QFormLayout *form = createForm(this);
    form->addRow(tr("Include &extensions:"), m_extensions);
    form->addRow(tr("E&xclude paths:"), m_excludes);
    form->addRow(tr("Ignore files &smaller than:"), m_minKilobytes);
    form->addRow(tr("Ignore &audio shorter than:"), m_minSeconds);
    form->addRow(m_hidden);
    form->addRow(m_symlinks);
}

void FilesTab::applyTo(ScanOptions &options) const
{
    options.extensions = parseExtensions(m_extensions->text());
    options.excludes = parseExcludes(m_excludes->text());
    options.minBytes = qint64 { m_minKilobytes->value() } << kilobyteShift;
    options.minDurationMs = m_minSeconds->value() * msPerSecond;
    options.includeHidden = m_hidden->isChecked();
    options.followSymlinks = m_symlinks->isChecked();
}

} // namespace epr
