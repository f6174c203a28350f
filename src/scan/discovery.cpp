// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "libraryfiles.h"

#include "folderlisting.h"
#include "systempaths.h"

#include <QCoreApplication>
#include <QDir>
#include <QDirIterator>
#include <QFileInfo>
#include <QHash>
#include <QRegularExpression>
#include <QSet>

#include <algorithm>
#include <array>
#include <memory>
#include <utility>
#include <vector>

namespace epr {

using namespace Qt::StringLiterals;

namespace {

constexpr qsizetype filesPerReport = 64;

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
        const QRegularExpression expression(QRegularExpression::wildcardToRegularExpression(slashed),
                                            QRegularExpression::CaseInsensitiveOption);
        if (expression.isValid())
            m_expressions.append(expression);
    }

    QList<QRegularExpression> m_expressions;
};

// Gives each folder one path, by whatever path it is reached: that of the first look at it.
class FolderNames {
public:
    QString of(const QString &folder)
    {
        const FolderIdentity identity = folderIdentity(folder);
        if (identity.path.isEmpty()) // it has vanished
            return folder;
        QList<FolderIdentity> &alike = m_known[{ identity.volume, identity.index }];
        const auto known = std::find_if(alike.cbegin(), alike.cend(),
                                        [&identity](const auto &other) { return other.isSameAs(identity); });
        if (known != alike.cend())
            return known->path;
        alike.append(identity);
        return identity.path;
    }

private:
    QHash<std::pair<quint64, quint64>, QList<FolderIdentity>> m_known;
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
    void enterFolder(const QString &folder);
    void listFolder(const QString &folder);
    void visitFile(const QFileInfo &file, const QString &folderName);
    bool isWanted(const QFileInfo &file) const;
    QString nameOf(const QFileInfo &file, const QString &folderName);
    void noteUnreadable(const QString &folder, const Result<> &outcome);
    void accept(const QFileInfo &file);

    const ScanOptions &m_options;
    const std::atomic<qint32> &m_cancelFlag;
    const DiscoveryProgressFn &m_progress;
    DiscoveryProblems *const m_problems;
    const QSet<QString> m_extensions;
    const ExcludePatterns m_excludes;
    struct OpenFolder {
        QString name; ///< by m_folderNames
        std::unique_ptr<QDirIterator> entries;
    };
    std::vector<OpenFolder> m_open; ///< from the root down to where the walk is
    FolderNames m_folderNames;
    QSet<QString> m_entered; ///< of one root, by name
    QSet<QString> m_seen;
    QStringList m_found;
    QString m_reportedFolder;
    FolderListing m_listing;
    QSet<QString> m_unreadable; ///< folders by name
};

QStringList Walk::run()
{
    for (const QString &root : m_options.roots) {
        const QFileInfo folder(root);
        if (folder.isDir())
            walkRoot(QDir::cleanPath(asSystemReads(folder.absoluteFilePath())));
        else if (m_problems)
            m_problems->missingRoots.append(root);
    }
    if (m_problems)
        m_problems->unusableNames = m_listing.unusableNames();
    if (m_progress)
        m_progress(static_cast<int>(m_found.size()), QString());
    return std::move(m_found);
}

// Qt's own walk through subfolders takes junctions and mounted volumes for plain folders, and their loops never end.
void Walk::walkRoot(const QString &root)
{
    m_entered.clear();
    enterFolder(root);
    while (m_cancelFlag.load(std::memory_order_relaxed) == 0 && !m_open.empty()) {
        const OpenFolder &folder = m_open.back();
        if (!folder.entries->hasNext()) {
            m_open.pop_back();
            continue;
        }
        const QFileInfo entry = folder.entries->nextFileInfo();
        if (!entry.isDir())
            visitFile(entry, folder.name);
        else if (m_options.followSymlinks || !isFolderLink(entry))
            enterFolder(entry.filePath());
    }
    m_open.clear();
    listFolder(root); // once more: to the iterator a drive that drops out is the end of its folders
}

void Walk::enterFolder(const QString &folder)
{
    if (asSystemReads(folder) != folder) { // Qt would list another one
        noteUnreadable(folder,
                       failure(QCoreApplication::translate("epr::ScanController",
                                                           "Windows does not open names that are a device's or end "
                                                           "with a full stop or space")));
        return;
    }
    const QString name = m_folderNames.of(folder);
    if (m_entered.contains(name))
        return;
    m_entered.insert(name);
    listFolder(folder);
    QDir::Filters filters = QDir::Files | QDir::Dirs | QDir::NoDotAndDotDot;
    if (m_options.includeHidden)
        filters |= QDir::Hidden;
    m_open.push_back({ name, std::make_unique<QDirIterator>(folder, filters) });
}

void Walk::listFolder(const QString &folder)
{
    if (m_problems)
        noteUnreadable(folder, m_listing.read(folder));
}

// A folder that may be listed but not entered gives names without sizes, as does one whose path is nearly too long.
void Walk::visitFile(const QFileInfo &file, const QString &folderName)
{
    if (!isWanted(file)) {
        if (m_problems && file.size() == 0 && m_extensions.contains(file.suffix().toLower()))
            noteUnreadable(file.path(), reachEntry(file.filePath()));
        return;
    }
    const QString name = nameOf(file, folderName);
    if (m_seen.contains(name))
        return;
    m_seen.insert(name);
    accept(file);
}

// One for each file, by whatever path it is reached.
QString Walk::nameOf(const QFileInfo &file, const QString &folderName)
{
    if (!file.isSymLink())
        return folderName + u'/' + file.fileName();
    const QString target = folderIdentity(file.filePath()).path;
    if (target.isEmpty()) // it has vanished
        return file.filePath();
    return m_folderNames.of(QFileInfo(target).path()) + u'/' + QFileInfo(target).fileName();
}

// The cheap tests come first: the extension costs nothing, the size asks the file system, the patterns are many. The
// iterator lists everything that is no folder, a link to a pipe or a shortcut included, on Windows devices as well.
bool Walk::isWanted(const QFileInfo &file) const
{
    return m_extensions.contains(file.suffix().toLower()) && file.isFile() && !file.isShortcut()
        && file.size() >= m_options.minBytes && !m_excludes.match(file.filePath())
        && asSystemReads(file.filePath()) == file.filePath();
}

// A pattern for all that is in the folder is how the operator says that it need not be read.
void Walk::noteUnreadable(const QString &folder, const Result<> &outcome)
{
    if (outcome || !m_problems || isOfTheFileSystem(folder) || m_excludes.match(folder + u'/'))
        return;
    const QFileInfo info(folder);
    const QString name = m_folderNames.of(info.path()) + u'/' + info.fileName();
    if (m_unreadable.contains(name))
        return;
    m_unreadable.insert(name);
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
