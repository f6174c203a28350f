// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "commands.h"
#include "reviewrecord.h"

#include <QMenu>

namespace epr {

class CheckDesk;
class FileLook;
class ResultsPanel;
class Review;
class ReviewKeeper;
struct FileLookSummary;

/// What keeps a review from being lost: it is stored while it is decided, there again at the next start, put by while a
/// scan runs, taken over into its results, and saved and opened under names.
class ReviewFiles final : public Command {
    Q_OBJECT

public:
    struct Parts {
        Review *review;
        ResultsPanel *results;
        CheckDesk *checks;
    };

    ReviewFiles(const Parts &parts, QWidget *window);

    QStringList roots() const { return m_options.roots; } ///< the folders that the review, or the scan, is about

    void openLast(); ///< if there is one
    void close(); ///< stores what is left to store

    bool confirmClose(); ///< true unless decisions would be lost and the operator does not want that
    bool confirmScan(const QStringList &roots); ///< the same

    /// Before a scan: puts the review by and clears it.
    void beginScan(const ScanOptions &options);
    void setUnreadableFolders(int count) { m_unreadableFolders = count; } ///< that the scan met
    /// After it: takes what it found into the review, with what was decided before. False if it was stopped and the
    /// review is what it was before because something had been decided of that.
    bool endScan(const QList<TrackInfo> &tracks, const QList<MatchGroup> &groups, bool cancelled);
    void failScan(); ///< or so: the review is what it was before

    QMenu *menu() const { return m_menu; }

Q_SIGNALS:
    void resultsTaken(); ///< of a scan, with what was decided before, and not stored yet

private:
    QAction *make(const QString &text, const QString &tip, void (ReviewFiles::*command)());
    void refresh();
    void takeOpened(const ReviewRecord &record, const QString &message);
    bool keepAside(const ReviewRecord &record, const QStringList &roots);
    bool saveAside(const ReviewRecord &record, const QString &reason);
    void takeResults();
    bool takeBack();
    void restore(const ReviewRecord &record);
    void showPlace(const ReviewRecord &record);
    void notePlace(int group, int member);
    void tellLook(const FileLookSummary &summary);
    void saveUnderName();
    void openNamed();
    void removeNamed();
    QString askSaved(const QString &title, const QString &label);
    bool wouldLoseDecisions() const;

    const Parts m_parts;
    QMenu *m_menu;
    QAction *m_saveAs;
    QAction *m_open;
    Review &m_review;
    ReviewKeeper *m_keeper;
    FileLook *m_look;
    ReviewRecord m_earlier; ///< while a scan runs, and what the file had when one began before it was read
    ScanOptions m_options; ///< of the review, or of the scan
    int m_unreadableFolders = 0;
    bool m_isScanning = false;
    bool m_isOpening = false; ///< what the file has is on its way
    bool m_isResultWaiting = false; ///< for that
    bool m_hasName = false; ///< the review is as it was saved under a name
};

/// The file of a review with this name, and the name of a file's review. Any name makes a file name that every system
/// takes, unless it is too long: then it is empty.
QString reviewFileName(const QString &name);
QString reviewName(const QString &fileName);

} // namespace epr
