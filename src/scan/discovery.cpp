// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "libraryfiles.h"

#include <QDir>
#include <QDirIterator>
#include <QFileInfo>
#include <QRegularExpression>
#include <QSet>

#include <algorithm>
#include <memory>
#include <optional>

#ifdef Q_OS_UNIX
#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#endif

namespace epr {

using namespace Qt::StringLiterals;

namespace {

constexpr qsizetype filesPerReport = 64;

#if defined(Q_OS_WIN) && defined(Q_CC_GNU)
// A compiled expression gets a stack for each thread, which a Qt built with MinGW frees when the thread ends, after the
// memory of the pointer to it. The thread dies of it with a lock of the runtime in its hand, and the program, closed
// after a scan, waits for that lock for ever. So the expressions are interpreted.
constexpr auto expressionPrefix = "(*NO_JIT)"_L1;
#else
constexpr auto expressionPrefix = ""_L1;
#endif

// Exclude patterns compiled once for a whole walk.
class ExcludePatterns {
public:
    explicit ExcludePatterns(const QStringList &patterns)
    {
        for (const QString &pattern : patterns) {
            if (!pattern.trimmed().isEmpty())
                add(pattern);
        }
    }

    bool match(const QString &path) const
    {
        const QString slashed = QDir::fromNativeSeparators(path);
        return std::any_of(m_expressions.cbegin(), m_expressions.cend(),
                           [&](const QRegularExpression &expression) { return expression.match(slashed).hasMatch(); });
    }

private:
    void add(const QString &pattern)
    {
        const QString slashed = QDir::fromNativeSeparators(pattern);
        const QRegularExpression expression(expressionPrefix + QRegularExpression::wildcardToRegularExpression(slashed),
                                            QRegularExpression::CaseInsensitiveOption);
        if (expression.isValid())
            m_expressions.append(expression);
    }

    QList<QRegularExpression> m_expressions;
};

// Canonical paths tell whether two paths lead to the same file. Resolving one costs a look-up for every folder on the
// way, so the folder is resolved once for all the files in it that are not links themselves.
class CanonicalPaths {
public:
    QString of(const QFileInfo &file)
    {
        if (file.isSymLink())
            return file.canonicalFilePath();
        const QString folder = file.path();
        if (folder != m_folder) {
            m_folder = folder;
            m_canonicalFolder = QFileInfo(folder).canonicalFilePath();
        }
        return m_canonicalFolder.isEmpty() ? QString() : QDir(m_canonicalFolder).filePath(file.fileName());
    }

private:
    QString m_folder;
    QString m_canonicalFolder;
};

QSet<QString> wantedExtensions(const QStringList &extensions)
{
    QSet<QString> wanted;
    for (const QString &extension : extensions)
        wanted.insert(extension.trimmed().toLower());
    return wanted;
}

#ifdef Q_OS_UNIX

// What the walk would take in, as far as it can be told from the bytes of a name that is not valid UTF-8.
struct WantedNames {
    QSet<QString> extensions; // lower case
    bool includeHidden = false;
    bool followSymlinks = false;
    qint64 minBytes = 0;
    std::function<bool(const QString &path)> isExcluded;
};

// Counts wanted files and folders whose names are not valid UTF-8. Qt leaves such entries out of every
// listing, so the folders have to be read once more, by their bytes; only entries with a bad name are measured.
class UndecodableNames final {
public:
    explicit UndecodableNames(WantedNames wanted);

    int count() const { return static_cast<int>(m_seen.size()); }

    void addFolder(const QString &folder);

private:
    void addEntry(int folderDescriptor, const QByteArray &name, const QString &folder);

    WantedNames m_wanted;
    QSet<std::pair<quint64, quint64>> m_seen; // device and inode: overlapping roots reach an entry more than once
};

struct CloseFolder {
    void operator()(DIR *folder) const { closedir(folder); }
};

QString extensionOf(const QByteArray &name)
{
    const qsizetype dot = name.lastIndexOf('.');
    return dot < 0 ? QString() : QString::fromUtf8(name.sliced(dot + 1)).toLower();
}

UndecodableNames::UndecodableNames(WantedNames wanted)
    : m_wanted(std::move(wanted))
{
}

void UndecodableNames::addFolder(const QString &folder)
{
    const std::unique_ptr<DIR, CloseFolder> listing(opendir(QFile::encodeName(folder).constData()));
    if (!listing)
        return;
    while (const dirent *entry = readdir(listing.get())) {
        const QByteArray name(entry->d_name);
        if (!name.isValidUtf8())
            addEntry(dirfd(listing.get()), name, folder);
    }
}

void UndecodableNames::addEntry(int folderDescriptor, const QByteArray &name, const QString &folder)
{
    if (name.startsWith('.') && !m_wanted.includeHidden)
        return;
    struct stat entry = {};
    struct stat target = {};
    if (fstatat(folderDescriptor, name.constData(), &entry, AT_SYMLINK_NOFOLLOW) != 0
        || fstatat(folderDescriptor, name.constData(), &target, 0) != 0) {
        return;
    }
    const bool wantedFolder = S_ISDIR(target.st_mode) && (m_wanted.followSymlinks || !S_ISLNK(entry.st_mode));
    const bool wantedFile = S_ISREG(target.st_mode) && m_wanted.extensions.contains(extensionOf(name))
        && target.st_size >= m_wanted.minBytes && !m_wanted.isExcluded(folder + u'/' + QString::fromUtf8(name));
    if (wantedFolder || wantedFile)
        m_seen.insert({ target.st_dev, target.st_ino });
}

#endif

// One walk over all roots.
class Walk {
public:
    Walk(const ScanOptions &options, const std::atomic<qint32> &cancelFlag, const DiscoveryProgressFn &progress)
        : m_options(options)
        , m_cancelFlag(cancelFlag)
        , m_progress(progress)
        , m_extensions(wantedExtensions(options.extensions))
        , m_excludes(options.excludes)
    {
    }

    void countUndecodableNames();
    int undecodableNames() const;

    QStringList run();

private:
    void walkRoot(const QString &root);
    void visitFolder(const QString &folder);
    void visitFile(const QFileInfo &file);
    bool isWanted(const QFileInfo &file) const;
    void accept(const QFileInfo &file);

    const ScanOptions &m_options;
    const std::atomic<qint32> &m_cancelFlag;
    const DiscoveryProgressFn &m_progress;
    const QSet<QString> m_extensions;
    const ExcludePatterns m_excludes;
    CanonicalPaths m_canonicalPaths;
    QSet<QString> m_seen;
    QStringList m_found;
    QString m_reportedFolder;
#ifdef Q_OS_UNIX
    std::optional<UndecodableNames> m_undecodable;
#endif
};

void Walk::countUndecodableNames()
{
#ifdef Q_OS_UNIX
    m_undecodable.emplace(WantedNames { m_extensions, m_options.includeHidden, m_options.followSymlinks,
                                        m_options.minBytes,
                                        [this](const QString &path) { return m_excludes.match(path); } });
#endif
}

int Walk::undecodableNames() const
{
#ifdef Q_OS_UNIX
    return m_undecodable ? m_undecodable->count() : 0;
#else
    return 0;
#endif
}

QStringList Walk::run()
{
    for (const QString &root : m_options.roots) {
        const QFileInfo folder(root);
        if (folder.isDir())
            walkRoot(QDir::cleanPath(folder.absoluteFilePath()));
    }
    if (m_progress)
        m_progress(static_cast<int>(m_found.size()), QString());
    return std::move(m_found);
}

// Folders are listed too, so that each one that the walk enters is known by its name.
void Walk::walkRoot(const QString &root)
{
    QDir::Filters filters = QDir::Files | QDir::Dirs | QDir::NoDotAndDotDot;
    QDirIterator::IteratorFlags flags = QDirIterator::Subdirectories;
    if (m_options.includeHidden)
        filters |= QDir::Hidden;
    if (m_options.followSymlinks)
        flags |= QDirIterator::FollowSymlinks;

    visitFolder(root);
    QDirIterator entries(root, filters, flags);
    while (m_cancelFlag.load(std::memory_order_relaxed) == 0 && entries.hasNext()) {
        const QFileInfo entry = entries.nextFileInfo();
        if (!entry.isDir())
            visitFile(entry);
        else if (m_options.followSymlinks || !entry.isSymLink())
            visitFolder(entry.filePath());
    }
}

void Walk::visitFolder([[maybe_unused]] const QString &folder)
{
#ifdef Q_OS_UNIX
    if (m_undecodable)
        m_undecodable->addFolder(folder);
#endif
}

void Walk::visitFile(const QFileInfo &file)
{
    if (!isWanted(file))
        return;
    QString key = m_canonicalPaths.of(file);
    if (key.isEmpty())
        key = file.absoluteFilePath();
    if (m_seen.contains(key))
        return;
    m_seen.insert(key);
    accept(file);
}

// The cheap tests come first: the extension costs nothing, the size asks the file system, the patterns are many. The
// iterator lists everything that is no folder, a link to a pipe or a shortcut included.
bool Walk::isWanted(const QFileInfo &file) const
{
    return m_extensions.contains(file.suffix().toLower()) && file.isFile() && !file.isShortcut()
        && file.size() >= m_options.minBytes && !m_excludes.match(file.filePath());
}

void Walk::accept(const QFileInfo &file)
{
    m_found.append(file.absoluteFilePath());
    if (!m_progress)
        return;
    const QString folder = file.absolutePath();
    const bool folderChanged = folder != m_reportedFolder;
    if (folderChanged)
        m_reportedFolder = folder;
    if (folderChanged || m_found.size() % filesPerReport == 0)
        m_progress(static_cast<int>(m_found.size()), m_reportedFolder);
}

} // namespace

bool isExcluded(const QString &path, const QStringList &patterns)
{
    return ExcludePatterns(patterns).match(path);
}

QStringList discover(const ScanOptions &options, const std::atomic<qint32> &cancelFlag,
                     const DiscoveryProgressFn &progress, int *undecodableNames)
{
    Walk walk(options, cancelFlag, progress);
    if (undecodableNames)
        walk.countUndecodableNames();
    QStringList found = walk.run();
    if (undecodableNames)
        *undecodableNames = walk.undecodableNames();
    return found;
}

} // namespace epr
