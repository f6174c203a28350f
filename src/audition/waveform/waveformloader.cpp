// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "waveformloader.h"

#include "waveformworker.h"

#include <QThread>

using namespace Qt::StringLiterals;

namespace epr {

namespace {

constexpr int joinMs = 5000;

bool isDeck(int deck)
{
    return deck == 0 || deck == 1;
}

} // namespace

WaveformLoader::WaveformLoader(QObject *parent, int watchdogMs)
    : QObject(parent)
    , m_thread(new QThread(this))
    , m_worker(new WaveformWorker(m_generations, watchdogMs))
{
    m_thread->setObjectName(u"epr-waveform"_s);
    m_worker->moveToThread(m_thread);
    connect(m_thread, &QThread::finished, m_worker, &QObject::deleteLater);
    connect(this, &WaveformLoader::requested, m_worker, &WaveformWorker::analyse, Qt::QueuedConnection);
    connect(m_worker, &WaveformWorker::loaded, this, &WaveformLoader::relayEnvelope, Qt::QueuedConnection);
    connect(m_worker, &WaveformWorker::failed, this, &WaveformLoader::relayFailure, Qt::QueuedConnection);
    m_thread->start();
}

// The interruption outdates every request, and quitting ends the event loop of a decoding in progress too.
WaveformLoader::~WaveformLoader()
{
    m_thread->requestInterruption();
    m_thread->quit();
    if (m_thread->wait(joinMs))
        return;
    // Stuck in the system, on a network drive that is gone, say. Destroying a running thread would end the program.
    m_thread->setParent(nullptr);
    connect(m_thread, &QThread::finished, m_thread, &QObject::deleteLater);
}

void WaveformLoader::request(int deck, const QString &path)
{
    if (!isDeck(deck))
        return;
    Q_EMIT requested({ deck, path, ++m_generations->at(deck) }, {});
}

void WaveformLoader::cancel(int deck)
{
    if (!isDeck(deck))
        return;
    ++m_generations->at(deck);
    QMetaObject::invokeMethod(m_worker, &WaveformWorker::dropOutdated);
}

// A result may have waited in this thread's queue while a newer request was made.
void WaveformLoader::relayEnvelope(const WaveformRequest &request, const Envelope &envelope)
{
    if (request.isNewest(*m_generations))
        Q_EMIT loaded(request.deck, envelope);
}

void WaveformLoader::relayFailure(const WaveformRequest &request, const QString &error)
{
    if (request.isNewest(*m_generations))
        Q_EMIT failed(request.deck, error.isEmpty() ? tr("This file could not be decoded for preview.") : error);
}

} // namespace epr
