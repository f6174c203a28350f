// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "reviewstore.h"

#include <QObject>

namespace epr {

/// The store on its thread.
class StoreWorker final : public QObject {
    Q_OBJECT

public:
    explicit StoreWorker(const QString &file);

public Q_SLOTS:
    void open();
    void save(const epr::ReviewRecord &record);
    /// Of the review that was saved last; nothing happens where that failed, since the file then has another one.
    void update(const QList<epr::StoredDecision> &decisions, const epr::ReviewPlaceRecord &place);
    void close(); ///< and ends the thread

Q_SIGNALS:
    void opened(const epr::ReviewRecord &record, bool isUsable, const QString &message);
    void written(const QString &error); ///< empty = it is

private:
    Result<ReviewRecord> openAndLoad();

    ReviewStore m_store;
    bool m_isOpen = false;
    bool m_isSaved = false; ///< the file has the review that decisions are of
};

} // namespace epr
