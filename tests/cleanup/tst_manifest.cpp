// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "cleanup.h"
#include "cleanupchecks.h"
#include "rows.h"
#include "sandbox.h"
#include "undomanifest.h"

#include <QTest>

using namespace epr;
using namespace epr::test;

// Lists that no clean-up of this machine has written.
class TestManifest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void damagedManifestTouchesNothing_data()
    {
        // -1 for a manifest that cannot be read
        const Rows<QByteArray, int> row("entries", "failed");
        row("cut off", "[", -1);
        row("two lists", R"([], "entries": [{"from": "L/x", "to": "L/a"}])", -1);
        row("not UTF-8", "[\"\xff\"]", -1);
        row("deep", QByteArray(1000000, '[') + QByteArray(1000000, ']'), 0);
        row("entries of a wrong type", R"({"from": "L/x"})", -1);
        row("wrong types inside", R"([1, [], {}, {"from": 1, "to": "L/a"}, {"from": "L/x"}])", 0);
        row("parent parts", R"([{"from": "L/sub/../x", "to": "L/a"}])", 1);
        row("parent parts below", R"([{"from": "L/x", "to": "L/sub/../a"}])", 1);
        row("relative", R"([{"from": "x", "to": "L/a"}])", 1);
        row("a folder", R"([{"from": "L/x", "to": "L/sub"}])", 1);
        row("onto itself", R"([{"from": "L/a", "to": "L/a"}])", 1);
    }

    void damagedManifestTouchesNothing()
    {
        QFETCH(QByteArray, entries);
        QFETCH(int, failed);
        Sandbox box;
        box.add(u"a"_s);
        box.add(u"sub/b"_s);
        const Tree before = treeOf(box.library());
        const QString manifest = undoDirectory() + u"/undo-x.json"_s;
        box.write(manifest, "{\"entries\": " + entries.replace("L/", box.library().toUtf8() + '/') + '}');
        QDir::setCurrent(box.library());
        const RestoreResult restored = restoreManifest(manifest);
        QDir::setCurrent(QCoreApplication::applicationDirPath());
        QCOMPARE(restored, RestoreResult({ 0, std::max(failed, 0), restored.errors, {}, restored.problems }));
        QCOMPARE(restored.errors.size(), std::abs(failed));
        QVERIFY(failed >= 0 || restored.errors.first().startsWith(u"Cannot read manifest: "_s));
        QCOMPARE(QFileInfo::exists(manifest), failed < 0);
        QCOMPARE(treeOf(box.library()), before);
    }

    // What is read at once would have to have a limit somewhere, and a list beyond it could not be undone.
    void listOfAnyLengthIsRead()
    {
        const Sandbox box;
        const QString path = undoDirectory() + u"/undo-x.json"_s;
        box.write(path, R"({"entries": [)");
        QFile file(path);
        QVERIFY(file.open(QFile::Append));
        const QByteArray blanks(1 << 20, ' ');
        for (int mebibyte = 0; mebibyte < 260; ++mebibyte)
            QVERIFY(file.write(blanks) == blanks.size());
        QVERIFY(file.write(R"({"from": "/a", "to": "/q/a", "size": 1}]})") > 0);
        file.close();
        QVERIFY(describeManifest(path).endsWith(" - 1 file(s)"_L1));
    }

    void manifestOfAnotherHandIsRead()
    {
        const Sandbox box;
        const QString path = undoDirectory() + u"/undo-x.json"_s;
        const QByteArray longText = '"' + QByteArray(200000, 'x') + '"';
        box.write(path,
                  R"({"x": [{"entries": [{"from": "/x", "to": "/x"}]}, "entries"], "entries": [{"to": "/q/a", "x": {)"
                  R"("from": "/x", "size": 1}, "size": 3e2, "from": "/a"}, "from", {"x": )"
                      + longText
                      + R"(, "from": "/b", "from": "/\u00fc", "to": "/q/b", "size": "9"}], )"
                        R"("createdAt": "now", "mode": 1})");
        const UndoManifest expected {
            u"now"_s, {}, {}, { { u"/a"_s, u"/q/a"_s, 300 }, {}, { u"/ü"_s, u"/q/b"_s, 0 } }
        };
        QVERIFY(readManifest(path) == expected);
    }
};

CLEANUP_MAIN(TestManifest)
#include "tst_manifest.moc"
