// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "updatesettings.h"

#include <QWidget>

class QCheckBox;
class QLineEdit;
class QPushButton;

namespace epr {

/// When and where to ask for updates. Only a skipped version is given up at once; the rest waits for save().
class UpdatesTab final : public QWidget {
    Q_OBJECT

public:
    explicit UpdatesTab(QWidget *parent = nullptr);

    void save();

private:
    void stopSkipping();

    UpdateSettings m_settings;
    QCheckBox *m_checkOnStartup;
    QLineEdit *m_url;
    QPushButton *m_stopSkipping;
};

} // namespace epr
