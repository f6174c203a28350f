// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "libraryfiles.h"

#include "folderlisting.h"

#include <QDir>
#include <QDirIterator>
#include <QFileInfo>
#include <QRegularExpression>
#include <QSet>

#include <algorithm>
#include <array>
#include <optional>

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

// Folders in which a file system keeps its own things, for nobody else to read.
bool isOfTheFileSystem(const QString &folder)
{
    static constexpr std::array names { "lost+found"_L1, "System Volume Information"_L1, "$RECYCLE.BIN"_L1 };
    const QString name = QFileInfo(folder).fileName();
    return std::find(names.begin(), names.end(), name) != names.end();
}

// One walk over all roots.
class Walk {
public:
    Walk(const ScanOptions &options, const std::atomic<qint32> &cancelFlag, const DiscoveryProgressFn &progress,
         DiscoveryProblems *problems)
        : m_options(options)
        , m_cancelFlag(cancelFlag)
        , m_progress(progress)
        , m_problems(problems)
        , m_extensions(wantedExtensions(options.extensions))
        , m_excludes(options.excludes)
        , m_listing({ m_extensions, options.includeHidden, options.followSymlinks, options.minBytes,
                      [this](const QString &path) { return m_excludes.match(path); } })
    {
    }
    Q_DISABLE_COPY_MOVE(Walk)

    QStringList run();

private:
    void walkRoot(const QString &root);
    void visitFolder(const QString &folder);
    void visitFile(const QFileInfo &file);
    bool isWanted(const QFileInfo &file) const;
    void noteUnreadable(const QString &folder, const Result<> &outcome);
    void accept(const QFileInfo &file);

    const ScanOptions &m_options;
    const std::atomic<qint32> &m_cancelFlag;
    const DiscoveryProgressFn &m_progress;
    DiscoveryProblems *const m_problems;
    const QSet<QString> m_extensions;
    const ExcludePatterns m_excludes;
    CanonicalPaths m_canonicalPaths;
    QSet<QString> m_seen;
    QStringList m_found;
    QString m_reportedFolder;
    FolderListing m_listing;
    QSet<QString> m_unreadable;
};

QStringList Walk::run()
{
    for (const QString &root : m_options.roots) {
        const QFileInfo folder(root);
        if (folder.isDir())
            walkRoot(QDir::cleanPath(folder.absoluteFilePath()));
        else if (m_problems)
            m_problems->missingRoots.append(root);
    }
    if (m_problems)
        m_problems->undecodableNames = m_listing.undecodableNames();
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
    visitFolder(root); // once more: to the iterator a drive that drops out is the end of its folders
}

void Walk::visitFolder(const QString &folder)
{
    if (m_problems)
        noteUnreadable(folder, m_listing.read(folder));
}

// A folder that may be listed but not entered gives names without sizes, as does one whose path is nearly too long.
void Walk::visitFile(const QFileInfo &file)
{
    if (!isWanted(file)) {
        if (m_problems && file.size() == 0 && m_extensions.contains(file.suffix().toLower()))
            noteUnreadable(file.path(), reachEntry(file.filePath()));
        return;
    }
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

// A pattern for all that is in the folder is how the operator says that it need not be read.
void Walk::noteUnreadable(const QString &folder, const Result<> &outcome)
{
    if (outcome || m_unreadable.contains(folder) || isOfTheFileSystem(folder) || m_excludes.match(folder + u'/'))
        return;
    m_unreadable.insert(folder);
    m_problems->unreadableFolders.append({ folder, outcome.error() });
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
                     const DiscoveryProgressFn &progress, DiscoveryProblems *problems)
{
    return Walk(options, cancelFlag, progress, problems).run();
}

} // namespace epr
