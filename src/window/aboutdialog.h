// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QDialog>

class QVBoxLayout;

namespace epr {

class AboutDialog final : public QDialog {
    Q_OBJECT

public:
    explicit AboutDialog(QWidget *parent = nullptr);

private:
    void addLogo(QVBoxLayout *layout);
    void addTexts(QVBoxLayout *layout);
    void addButtons(QVBoxLayout *layout);
};

} // namespace epr
