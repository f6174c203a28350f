// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "updatechecker.h"

#include <QDialog>

class QLabel;
class QVBoxLayout;

namespace epr {

/// Presents a release. Every text of the release is shown as plain text and only web addresses are opened, as the
/// service may be anyone's.
class UpdateDialog final : public QDialog {
    Q_OBJECT

public:
    explicit UpdateDialog(const UpdateChecker::Release &release, QWidget *parent = nullptr);

private:
    void skipVersion();
    void download();
    QVBoxLayout *createHeading();
    void addNotes(QVBoxLayout *layout);
    QWidget *createButtons();

    UpdateChecker::Release m_release;
};

} // namespace epr
