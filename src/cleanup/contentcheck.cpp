// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "contentcheck.h"

#include "hashing.h"
#include "probe.h"

#include <QFileInfo>

namespace epr {

namespace {

bool isAsRecorded(const RemovalCandidate &candidate, const std::function<bool()> &isStopped, QString *error)
{
    HashRequest request { .whole = !candidate.fullHash.isEmpty(),
                          .payload = !candidate.audioHash.isEmpty(),
                          .isStopped = isStopped };
    ProbeResult probe;
    if (request.payload) {
        static_cast<void>(probeFile(candidate.path, probe)); // what it found before a failure is what the scan took
        request.payloadOffset = probe.audioOffset;
        request.payloadLength = probe.audioRangeValid ? probe.audioLength : 0;
    }
    const FileDigests digests = hashContent(candidate.path, request, error);
    return digests.whole == candidate.fullHash && digests.payload == candidate.audioHash;
}

} // namespace

Result<ContentCheck::Answer> ContentCheck::compare(const RemovalCandidate &candidate, const ReadingFn &reading)
{
    if (candidate.fullHash.isEmpty() && candidate.audioHash.isEmpty())
        return Answer::AsRecorded;
    const QFileInfo now(candidate.path);
    const Seen seen = m_seen.value(candidate.path);
    if (seen.answer != Answer::GivenUp && seen.size == now.size() && seen.mtime == now.lastModified())
        return seen.answer;
    bool isStopped = false;
    QString error;
    const bool isSame = isAsRecorded(
        candidate, [&] { return isStopped = isStopped || !reading(candidate.path); }, &error);
    if (isStopped)
        return Answer::GivenUp;
    if (!isSame && !error.isEmpty())
        return failure(error);
    const Answer answer = isSame ? Answer::AsRecorded : Answer::Changed;
    m_seen.insert(candidate.path, { now.size(), now.lastModified(), answer });
    return answer;
}

} // namespace epr
