// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "deck.h"

#include <QObject>
#include <QString>
#include <QTemporaryDir>

#include <atomic>
#include <memory>
#include <optional>

class QThread;

namespace epr {

class DifferenceWorker;

struct DifferenceRequest {
    PerDeck<QString> paths;
    PerDeck<int> sampleRates; ///< Hz, 0 = unknown
    qint64 offsetMs = 0; ///< of B, where a second more or less is found out
};

/// Makes a file with the sound of deck A minus that of deck B, on the time of A: both are decoded whole with ffmpeg,
/// aligned to a part of a sample and matched in level. On a thread of its own, "epr-difference".
class DifferenceMaker final : public QObject {
    Q_OBJECT

public:
    static constexpr qint64 longestSeconds = 1200; ///< of either file, 20 min: the temporary files may grow to some GB

    explicit DifferenceMaker(QObject *parent = nullptr);
    ~DifferenceMaker() override;

    void request(const DifferenceRequest &request); ///< in place of the one before
    void cancel(); ///< nothing more is reported of it; the file that was made is deleted

    /// Blocks until none of the decks' files is open, which takes some milliseconds after a cancel. False after a
    /// second.
    bool awaitClosed() const;

    /// A request on its way to the thread, and back.
    struct Order {
        DifferenceRequest request;
        QString target; ///< the file to make
        std::shared_ptr<std::atomic<bool>> stop;
    };

Q_SIGNALS:
    void made(const QString &path, double remainderDb); ///< how loud the difference is, relative to deck A
    void failed(const QString &error);
    void requested(const epr::DifferenceMaker::Order &order, QPrivateSignal);

private:
    void takeResult(const Order &order, double remainderDb, const QString &error);

    std::optional<QTemporaryDir> m_folder; ///< once it is needed
    Order m_order; ///< the one that counts
    int m_count = 0;
    std::shared_ptr<std::atomic<bool>> m_isDecoding = std::make_shared<std::atomic<bool>>(false);
    DifferenceWorker *m_worker; ///< deletes itself on its thread
    QThread *m_thread;
};

} // namespace epr
