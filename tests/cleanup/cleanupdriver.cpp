// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
//
// A program that cleans up as the test that starts it says, to be killed or to run beside another.
#include "cleanup.h"
#include "cleanupchecks.h"
#include "purge.h"
#include "sandbox.h"
#include "undomanifest.h"

#include <QCoreApplication>
#include <QStandardPaths>

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#ifdef Q_OS_LINUX
#include <fcntl.h>
#include <sys/syscall.h>
#include <unistd.h>
#endif

using namespace epr;
using namespace epr::test;

#ifdef Q_OS_LINUX
// A file system that knows neither renames without replacing nor hard links, to be killed between the steps that are
// left: what EPR_TEST_PLAIN_RENAMES in the environment asks for. Manifests are put in place all the same.
static bool hasPlainRenames()
{
    return std::getenv("EPR_TEST_PLAIN_RENAMES") != nullptr;
}

extern "C" int renameat2(int fromFolder, const char *from, int toFolder, const char *to, unsigned flags) noexcept
{
    errno = EINVAL;
    return hasPlainRenames() ? -1 : static_cast<int>(syscall(SYS_renameat2, fromFolder, from, toFolder, to, flags));
}

extern "C" int linkat(int fromFolder, const char *from, int toFolder, const char *to, int flags) noexcept
{
    errno = EPERM;
    const bool isQt = (flags & AT_SYMLINK_FOLLOW) != 0; // gives a new file its name
    return hasPlainRenames() && !isQt ? -1
                                      : static_cast<int>(syscall(SYS_linkat, fromFolder, from, toFolder, to, flags));
}

extern "C" int rename(const char *from, const char *to) noexcept
{
    if (hasPlainRenames() && std::strstr(to, ".json") == nullptr)
        std::raise(SIGKILL);
    return static_cast<int>(syscall(SYS_renameat2, AT_FDCWD, from, AT_FDCWD, to, 0));
}
#endif

namespace {

void waitToBeTold()
{
    std::puts("ready");
    std::fflush(stdout);
    std::getchar();
}

/// "pairs LIBRARY QUARANTINE COUNT OWN OTHER MODE": takes its own copy of each pair, once told so, and keeps the other.
/// The names are patterns with the number of the pair, the mode is that of the removal.
int takeOneOfPairs(const QStringList &arguments)
{
    KeptCopies kept;
    QStringList paths;
    for (int i = 0; i < arguments.at(2).toInt(); ++i) {
        paths.append(arguments.at(0) + arguments.at(3).arg(i));
        kept.insert(paths.last(), { asItIs(arguments.at(0) + arguments.at(4).arg(i)) });
    }
    waitToBeTold();
    const auto mode = static_cast<RemovalMode>(arguments.at(5).toInt());
    return removeFiles(paths, mode, arguments.at(1), {}, {}, { kept }).refusal.isEmpty() ? 0 : 1;
}

bool die()
{
#ifdef Q_OS_UNIX
    return std::raise(SIGKILL) != 0;
#else
    return std::_Exit(1), true;
#endif
}

/// "quarantine LIBRARY QUARANTINE NUMBER [wait]": moves everything and, before the file with the number, dies or waits
/// to be told to go on. There may be fewer files.
int quarantineAll(const QStringList &arguments)
{
    const bool waits = arguments.size() > 3;
    const auto stumble = [number = arguments.at(2).toInt(), waits](qsizetype index, qsizetype, const QString &) {
        return index != number || (waits ? (waitToBeTold(), true) : die());
    };
    const QString &library = arguments.at(0);
    return removeFiles(filesBelow(library), RemovalMode::Quarantine, arguments.at(1), { library }, stumble).failed;
}

/// "remove MODE QUARANTINE FILE COPY": the one file, while the other stays. Says what was in the way.
int removeOne(const QStringList &arguments)
{
    const RemovalResult removed =
        removeFiles({ arguments.at(2) }, static_cast<RemovalMode>(arguments.at(0).toInt()), arguments.at(1), {}, {},
                    { { { arguments.at(2), { asItIs(arguments.at(3)) } } } });
    std::puts(qPrintable(removed.refusal + removed.errors.join(u' ')));
    return removed.succeeded == 1 ? 0 : 1;
}

/// "restore MANIFEST NUMBER FILE...": brings back these alone and dies before the one with the number.
int restoreSome(const QStringList &arguments)
{
    const auto stumble = [number = arguments.at(1).toInt()](qsizetype index, qsizetype, const QString &) {
        return index != number || die();
    };
    const QStringList files = arguments.sliced(2);
    return restoreManifest(arguments.at(0), stumble, MissingFolders::Leave, QSet(files.cbegin(), files.cend())).failed;
}

/// "purge MANIFEST NUMBER": deletes for good and dies before the file with the number.
int purge(const QStringList &arguments)
{
    const auto stumble = [number = arguments.at(1).toInt()](qsizetype index, qsizetype, const QString &) {
        return index != number || die();
    };
    return purgeQuarantine(arguments.at(0), stumble).failed;
}

/// "undo": clears up as the program does before, and undoes every list there is, the newest first.
int undoAll()
{
    for (const QString &message : clearTraces())
        std::puts(qPrintable(message));
    int failed = 0;
    for (const QString &manifest : listUndoManifests()) {
        const RestoreResult restored = restoreManifest(manifest, {}, MissingFolders::Make);
        for (const QString &error : restored.errors)
            std::fprintf(stderr, "%s\n", qPrintable(error));
        failed += restored.failed + static_cast<int>(restored.errors.size()) + (restored.refusal.isEmpty() ? 0 : 1);
    }
    return failed > 0 ? 1 : 0;
}

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    QCoreApplication::setApplicationName(u"epr-test"_s);
    if (!isUnix)
        QStandardPaths::setTestModeEnabled(true); // as the test does
    const QStringList arguments = QCoreApplication::arguments();
    const QString task = arguments.value(1);
    if (task == u"quarantine"_s)
        return quarantineAll(arguments.sliced(2)) > 0 ? 1 : 0;
    if (task == u"pairs"_s)
        return takeOneOfPairs(arguments.sliced(2));
    if (task == u"remove"_s)
        return removeOne(arguments.sliced(2));
    if (task == u"restore"_s)
        return restoreSome(arguments.sliced(2));
    if (task == u"purge"_s)
        return purge(arguments.sliced(2));
    return task == u"undo"_s ? undoAll() : 2;
}
