// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QWidget>

class QCheckBox;
class QLineEdit;
class QSpinBox;

namespace epr {

struct ScanOptions;

/// "mp3, .FLAC" to lower-case suffixes without dots; entries with nothing left are dropped.
[[nodiscard]] QStringList parseExtensions(const QString &text);

/// "*/a/*; */b/*" to patterns; empty entries are dropped.
[[nodiscard]] QStringList parseExcludes(const QString &text);

/// Which files a scan looks at.
class FilesTab final : public QWidget {
    Q_OBJECT

public:
    explicit FilesTab(const ScanOptions &options, QWidget *parent = nullptr);

    void applyTo(ScanOptions &options) const;

private:
    QLineEdit *m_extensions;
    QLineEdit *m_excludes;
    QSpinBox *m_minKilobytes = nullptr;
    QSpinBox *m_minSeconds = nullptr;
    QCheckBox *m_hidden;
    QCheckBox *m_symlinks;
};

} // namespace epr
