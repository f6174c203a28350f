// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QWidget>

class QCheckBox;
class QComboBox;
class QDoubleSpinBox;
class QSpinBox;

namespace epr {

struct ScanOptions;

/// How duplicates are found and which copy is kept.
class DetectionTab final : public QWidget {
    Q_OBJECT

public:
    explicit DetectionTab(const ScanOptions &options, QWidget *parent = nullptr);

    void applyTo(ScanOptions &options) const;

private:
    QWidget *createMethods(const ScanOptions &options);
    QWidget *createSensitivity(const ScanOptions &options);
    void createThreshold(double threshold);
    void createKeeperPolicy(qint32 policy);

    QCheckBox *m_identical = nullptr;
    QCheckBox *m_sameAudio = nullptr;
    QCheckBox *m_acoustic = nullptr;
    QCheckBox *m_metadata = nullptr;
    QDoubleSpinBox *m_threshold = nullptr;
    QSpinBox *m_durationTolerance = nullptr;
    QSpinBox *m_metadataTolerance = nullptr;
    QComboBox *m_keeperPolicy = nullptr;
};

} // namespace epr
