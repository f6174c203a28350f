// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "toolcage.h"

#include <QProcess>
#include <QThread>

#include <algorithm>
#include <csignal>
#include <unistd.h>

#ifdef Q_OS_LINUX
#include <sys/prctl.h>
#include <sys/resource.h>
#endif

namespace epr {

namespace {

#ifdef Q_OS_LINUX
// Data rather than address space, which holds what allocators reserve for each thread and never touch. The tools start
// threads for every core, and their stacks count.
rlim_t memoryLimit()
{
    constexpr rlim_t forFiles = rlim_t { 1 } << 30; // ten times what fpcalc and ffmpeg took of any file tried
    constexpr rlim_t forEachCore = rlim_t { 1 } << 25;
    return forFiles + forEachCore * static_cast<rlim_t>(std::max(QThread::idealThreadCount(), 1));
}
#endif

} // namespace

// What is done in the child, between fork and exec, must be nothing but calls of the system.
ToolCage::ToolCage(QProcess &process)
{
#ifdef Q_OS_LINUX
    process.setChildProcessModifier([limit = rlimit { memoryLimit(), memoryLimit() }] {
        setpgid(0, 0);
        setrlimit(RLIMIT_DATA, &limit);
        prctl(PR_SET_PDEATHSIG, SIGKILL);
    });
#else
    process.setChildProcessModifier([] { setpgid(0, 0); });
#endif
}

ToolCage::~ToolCage()
{
    kill();
}

void ToolCage::close(const QProcess &process)
{
    m_handle = static_cast<qintptr>(process.processId());
}

// The group is there as long as anything in it is, also when the tool itself has ended.
void ToolCage::kill()
{
    if (m_handle > 0)
        ::kill(-static_cast<pid_t>(m_handle), SIGKILL);
}

} // namespace epr
