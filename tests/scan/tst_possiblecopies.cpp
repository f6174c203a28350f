// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "audiobuilder.h"
#include "rows.h"
#include "scanoutcome.h"

#include <QRandomGenerator>
#include <QTest>

#include <filesystem>
#include <functional>
#include <map>

using namespace epr;
using namespace epr::test;
using namespace Qt::StringLiterals;

namespace {

using Change = std::function<void(ScanOptions &)>;

// What the operator gets to see of a scan: digests of the members of groups only.
QList<TrackInfo> shown(const Outcome &outcome)
{
    QList<TrackInfo> tracks = outcome.tracks;
    QSet<qint32> members;
    for (const MatchGroup &group : outcome.groups)
        members.unite(QSet<qint32>(group.members.cbegin(), group.members.cend()));
    for (qint32 i = 0; i < tracks.size(); ++i) {
        tracks[i].flags = 0;
        tracks[i].keys = {};
        if (!members.contains(i))
            tracks[i].fullHash = tracks[i].audioHash = QString();
    }
    return tracks;
}

qsizetype hashed(const Outcome &outcome)
{
    return std::count_if(outcome.tracks.cbegin(), outcome.tracks.cend(),
                         [](const TrackInfo &track) { return !(track.fullHash + track.audioHash).isEmpty(); });
}

} // namespace

class TestPossibleCopies : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_home.emplace();
        m_options = ScanOptions();
        m_options.roots = QStringList { m_home->filePath(u"library"_s) };
        m_options.minBytes = 0;
        m_options.minDurationMs = 0;
        m_options.detectAcoustic = false;
        m_random.seed(7);
    }

    void resultsAreThoseOfHashingEverything_data()
    {
        const Rows<Change> row("change");
        row("identical files", [](auto &o) { o.detectSameAudio = false; });
        row("the same audio", [](auto &o) { o.detectIdentical = false; });
        row("both", [](auto &o) { o.minDurationMs = 1000; });
        row("all", [](auto &o) { o.detectMetadata = true; });
    }

    // A library grows and changes between three scans, also while they run. The users scan it in turn, the first
    // without the switch, the others as their names say: what one scan leaves to the next must do for it.
    void resultsAreThoseOfHashingEverything()
    {
        QFETCH(const Change, change);
        change(m_options);
        for (int round = 0; round < 3; ++round) {
            const QString changing = changeLibrary(round);
            const QByteArray content = readFile(changing);
            std::map<QString, Outcome> outcomes;
            for (const QString &user : words("000 111 011 101 001")) {
                QCoreApplication::setApplicationName(user); // each has a cache
                m_options.onlyPossibleCopies = user.at(round) == u'1';
                ScanController controller;
                outcomes[user] = scan(controller, m_options, [&](const QString &now) {
                    if (now == "Reading tags and hashing"_L1)
                        writeFile(changing, content + 'x');
                });
                put(changing, content, m_seconds);
            }
            const Outcome &all = outcomes.at(u"000"_s);
            QVERIFY(!all.groups.isEmpty() && all.groups.size() < all.tracks.size() / 3);
            QCOMPARE(outcomes.at(u"111"_s).log.sliced(1), all.log.sliced(1)); // the first names the cache
            QVERIFY(hashed(outcomes.at(u"111"_s)) < hashed(all));
            QVERIFY2(round == 0 || hashed(outcomes.at(u"011"_s)) < hashed(all), "old files are looked at for new ones");
            for (const auto &[user, outcome] : outcomes) {
                QVERIFY2(outcome.groups == all.groups, qPrintable(user));
                QCOMPARE(shown(outcome), shown(all));
            }
        }
    }

    // Two different files under one artist and title.
    void membersGetTheirDigestsAfterwards_data()
    {
        const Rows<QString, bool, qsizetype, qsizetype> row("phase", "cancels", "groups", "hashed");
        row("undisturbed", QString(), false, 1, 2);
        row("a member changes", u"Grouping duplicates"_s, false, 1, 1);
        row("stopped before any has them", u"Completing digests"_s, true, 0, 0);
    }

    void membersGetTheirDigestsAfterwards()
    {
        QFETCH(const QString, phase);
        QFETCH(const bool, cancels);
        QFETCH(const qsizetype, groups);
        QFETCH(const qsizetype, hashed);
        m_options.detectMetadata = true;
        const QByteArray tag = id3v2Tag(text("TIT2", "Title") + text("TPE1", "Artist"));
        for (const QString &name : words("a.mp3 b.mp3"))
            put(path(name), tag + mpegAudio(name.at(0) == u'a' ? 100000 : 100417), 1);
        ScanController controller;
        const Outcome first = scan(controller, m_options, [&](const QString &now) {
            if (now == phase)
                cancels ? controller.cancel() : put(path(u"b.mp3"_s), "changed", 2);
        });
        QCOMPARE(first.cancelled, cancels);
        QCOMPARE(first.groups.size(), groups);
        QCOMPARE(::hashed(first), hashed);
        QCOMPARE(first.tracks.last().error.isEmpty(), hashed != 1);
        const Outcome second = scan(controller, m_options);
        QCOMPARE(second.phases.contains(u"Completing digests"_s), cancels);
        QCOMPARE(::hashed(second), hashed == 1 ? 1 : 2);
    }

private:
    [[nodiscard]] QString path(const QString &name) const { return m_options.roots.constFirst() + u'/' + name; }

    // The time is one of its own, in whole seconds: the cache does not notice other changes.
    void put(const QString &file, const QByteArray &content, int seconds)
    {
        writeFile(file, content);
        QFile written(file);
        QVERIFY(written.open(QIODevice::ReadWrite)
                && written.setFileTime(QDateTime::fromSecsSinceEpoch(1000000000 + seconds),
                                       QFileDevice::FileModificationTime));
    }

    // Few lengths, ends that are all alike, and a byte between them that tells some apart.
    QByteArray audio()
    {
        QByteArray bytes = mpegAudio(QList<int> { 0, 1, 4096, 9000, 9417, 20000 }.value(m_random.bounded(20), 9417));
        if (bytes.size() > 8192)
            bytes[4500] = static_cast<char>(m_random.bounded(60));
        return bytes;
    }

    void addFile(const QString &name)
    {
        const QByteArray bytes = audio();
        const QByteArray title(1, static_cast<char>('A' + m_random.bounded(9)));
        const QByteArray note = m_random.bounded(2) == 0 ? riffChunk("note", title) : QByteArray();
        const QByteArray wave = riffChunk("RIFF", "WAVE" + waveFormat() + riffChunk("data", bytes) + note);
        const QByteArray tagged = id3v2Tag(text("TIT2", title) + text("TPE1", "Artist"))
            + (bytes.size() < 4096 ? mpegAudio(9000) : bytes) + id3v1Tag(title, "Artist", 1, 1);
        const int kind = m_random.bounded(3);
        const auto suffix = QList { u".wma"_s, u".wav"_s, u".mp3"_s }.at(kind);
        put(path(name + suffix), QList { bytes, wave, tagged }.at(kind), ++m_seconds);
        if (name.endsWith(u'0'))
            std::filesystem::create_hard_link(path(name + suffix).toStdString(),
                                              path(name + "link"_L1 + suffix).toStdString());
    }

    // Returns a file that no cache knows yet. The last round has few new ones, and one of them equals an old one.
    QString changeLibrary(int round)
    {
        if (round == 1) {
            const QStringList files = QDir(m_options.roots.constFirst()).entryList(QDir::Files);
            QFile::remove(path(files.constFirst()));
            put(path(files.constLast()), audio(), ++m_seconds);
        }
        for (int i = 0; i < QList<int> { 90, 20, 0 }.at(round); ++i)
            addFile(QString::number(1000 * round + i));
        QByteArray content = mpegAudio(20000);
        content[4500] = static_cast<char>(30 + round % 2);
        for (const QString &name :
             words(round == 0 ? "copy%1.wma damaged%1.m4a changing%1.wma" : "copy%1.wma changing%1.wma"))
            put(path(name.arg(round)), content, ++m_seconds);
        return path(u"changing%1.wma"_s.arg(round));
    }

    std::optional<TemporaryHome> m_home;
    int m_seconds = 0;
    ScanOptions m_options;
    QRandomGenerator m_random;
};

QTEST_GUILESS_MAIN(TestPossibleCopies)
#include "tst_possiblecopies.moc"
