// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "records.h"
#include "updatechecker.h"

#include <QWidget>

#include <functional>
#include <vector>

class QCheckBox;
class QComboBox;
class QDoubleSpinBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QSpinBox;

namespace epr {

struct CacheStatus;
struct SettingsStatus;
template <typename Value> struct Setting;

/// A tab of the settings dialog. Each of its controls is made for one option, of the scan as a rule: it begins with the
/// option's value, and applyTo() gives the option what it shows then.
class OptionsTab : public QWidget {
    Q_OBJECT

public:
    void applyTo(ScanOptions &options) const;

protected:
    explicit OptionsTab(const ScanOptions &options, QWidget *parent);

    struct Range {
        int minimum = 0;
        int maximum = 0;
        QString suffix;
        int unit = 1; ///< the option holds this many for each one that is shown
    };

    struct DecimalRange {
        double minimum = 0;
        double maximum = 0;
        double step = 0;
        int decimals = 0;
    };

    struct Choice {
        QString text;
        qint32 value = 0;
    };

    /// Between the entries of a list; the text shows a space behind each.
    struct Separator {
        QChar character;
        QStringList (*parse)(const QString &text);
    };

    QCheckBox *checkBox(bool ScanOptions::*option, const QString &text, const QString &toolTip = {});
    QCheckBox *checkBox(const Setting<bool> &setting, const QString &text, const QString &toolTip); ///< not of the scan
    QComboBox *comboBox(qint32 ScanOptions::*option, const QList<Choice> &choices);
    QDoubleSpinBox *spinBox(double ScanOptions::*option, const DecimalRange &range);
    QLineEdit *listEdit(QStringList ScanOptions::*option, const Separator &separator, const QString &toolTip);

    /// Shows the value, or the nearest one in range: a hand-edited store may hold anything.
    template <typename Integer> QSpinBox *spinBox(Integer ScanOptions::*option, const Range &range)
    {
        QSpinBox *box = createSpinBox(m_stored.*option / range.unit, range);
        bind([=, unit = range.unit](ScanOptions &options) { options.*option = Integer { valueOf(box) } * unit; });
        return box;
    }

    const ScanOptions &stored() const { return m_stored; }
    void bind(std::function<void(ScanOptions &)> store) { m_bindings.push_back(std::move(store)); }

private:
    static QSpinBox *createSpinBox(qint64 value, const Range &range);
    static int valueOf(const QSpinBox *box);

    const ScanOptions m_stored;
    std::vector<std::function<void(ScanOptions &)>> m_bindings;
};

/// How duplicates are found and which copy is kept.
class DetectionTab final : public OptionsTab {
    Q_OBJECT

public:
    DetectionTab(const ScanOptions &options, const SettingsStatus &status, QWidget *parent = nullptr);

private:
    QWidget *createMethods();
    QWidget *createSensitivity(bool usesFpcalc);
    QComboBox *createKeeperBox();
    QWidget *createRules();

    QComboBox *m_keeper = nullptr;
    QCheckBox *m_acoustic = nullptr;
    QCheckBox *m_metadata = nullptr;
};

/// Which files a scan looks at.
class FilesTab final : public OptionsTab {
    Q_OBJECT

public:
    explicit FilesTab(const ScanOptions &options, QWidget *parent = nullptr);
};

/// The fingerprint engine at work, how much it does, and the analysis cache.
class PerformanceTab final : public OptionsTab {
    Q_OBJECT

public:
    PerformanceTab(const ScanOptions &options, const SettingsStatus &status, QWidget *parent = nullptr);

    void setCacheStatus(const CacheStatus &status);
    void showCacheCleared();

Q_SIGNALS:
    void clearCacheRequested();

private:
    QLabel *m_cacheStatus;
};

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
