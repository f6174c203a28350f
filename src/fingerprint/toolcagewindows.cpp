// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "toolcage.h"

#include <QProcess>

#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#include <windows.h>

namespace epr {

namespace {

constexpr SIZE_T memoryLimit = SIZE_T { 1 } << 30; // bytes, of all processes of the job

HANDLE jobOf(qintptr handle)
{
    return reinterpret_cast<HANDLE>(handle);
}

} // namespace

// Closing a job's last handle ends its processes, and the system closes it when the program dies.
ToolCage::ToolCage(QProcess &)
{
    const HANDLE job = CreateJobObjectW(nullptr, nullptr);
    JOBOBJECT_EXTENDED_LIMIT_INFORMATION limits = {};
    limits.BasicLimitInformation.LimitFlags = JOB_OBJECT_LIMIT_KILL_ON_JOB_CLOSE | JOB_OBJECT_LIMIT_JOB_MEMORY;
    limits.JobMemoryLimit = memoryLimit;
    if (job != nullptr)
        SetInformationJobObject(job, JobObjectExtendedLimitInformation, &limits, sizeof limits);
    m_handle = reinterpret_cast<qintptr>(job);
}

ToolCage::~ToolCage()
{
    if (m_handle != 0)
        CloseHandle(jobOf(m_handle));
}

// What the tool starts before it is in the job stays outside; it has had no time for that.
void ToolCage::close(const QProcess &process)
{
    const HANDLE tool =
        OpenProcess(PROCESS_SET_QUOTA | PROCESS_TERMINATE, FALSE, static_cast<DWORD>(process.processId()));
    if (tool == nullptr)
        return;
    if (m_handle != 0)
        AssignProcessToJobObject(jobOf(m_handle), tool);
    CloseHandle(tool);
}

void ToolCage::kill()
{
    if (m_handle != 0)
        TerminateJobObject(jobOf(m_handle), 1);
}

} // namespace epr
