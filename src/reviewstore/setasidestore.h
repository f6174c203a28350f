// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "result.h"
#include "setaside.h"

#include <QSqlDatabase>
#include <QVariantList>

namespace epr {

/// What was set aside, in a small SQLite file of its own, and all of it in memory. Where the file cannot be used, what
/// is added holds for as long as the program runs. For one thread.
class SetAsideStore final {
public:
    explicit SetAsideStore(const QString &file);
    ~SetAsideStore();
    Q_DISABLE_COPY_MOVE(SetAsideStore)

    static QString defaultFilePath();

    /// Makes the file where there is none. One that is damaged or holds something else gets another name, and a new one
    /// is begun, which the error says too. One that is locked or of a newer layout is left alone.
    Result<> open();
    bool isOpen() const { return m_isOpen; }

    const SetAside &all() const { return m_all; }
    Result<> add(const QList<SetAsideContent> &contents); ///< if it fails, it holds nevertheless
    Result<> remove(const QList<qint64> &ids); ///< the same

private:
    Result<> begin();
    Result<> load();
    Result<> checkHeader();
    void close();
    bool run(const QString &statement, const QVariantList &values = {});
    template <typename Work> Result<> inTransaction(Work work);

    const QString m_file;
    const QString m_connection;
    QSqlDatabase m_db;
    bool m_isOpen = false;
    bool m_isDamaged = false;
    QString m_error; ///< of the last statement that failed
    qint64 m_lastId = 0;
    SetAside m_all;
};

} // namespace epr
