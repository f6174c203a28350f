// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "storeworker.h"

#include "displaytext.h"

#include <QThread>

namespace epr {

StoreWorker::StoreWorker(const QString &file)
    : m_store(file)
{
}

void StoreWorker::open()
{
    QString message;
    Result<ReviewRecord> loaded = openAndLoad();
    if (!loaded && m_store.isDamaged()) {
        const QString reason = loaded.error();
        if (const Result<QString> aside = m_store.setAside()) {
            message = tr("The stored review cannot be used (%1). It is kept as %2, and a new one is begun.")
                          .arg(reason, nativePath(*aside));
            loaded = openAndLoad();
        }
    }
    m_isOpen = loaded.has_value();
    if (!m_isOpen) {
        message = tr("What is decided now is lost when the program ends, because the review cannot be stored: %1.")
                      .arg(loaded.error());
        m_store.close();
    }
    Q_EMIT opened(loaded.value_or(ReviewRecord()), m_isOpen, message);
}

void StoreWorker::save(const ReviewRecord &record)
{
    if (!m_isOpen)
        return;
    const Result<> saved = m_store.save(record);
    m_isSaved = saved.has_value();
    Q_EMIT written(saved ? QString() : saved.error());
}

void StoreWorker::update(const QList<StoredDecision> &decisions, const ReviewPlaceRecord &place)
{
    if (!m_isOpen || !m_isSaved)
        return;
    const Result<> updated = m_store.update(decisions, place);
    Q_EMIT written(updated ? QString() : updated.error());
}

void StoreWorker::close()
{
    m_store.close();
    thread()->quit();
}

Result<ReviewRecord> StoreWorker::openAndLoad()
{
    if (const Result<> opened = m_store.open(); !opened)
        return failure(opened.error());
    return m_store.load();
}

} // namespace epr
