// SPDX-License-Identifier: MIT
#include "RunningProgram.h"
#include "StoreTestSupport.h"

#include <QtTest>

using namespace Qt::StringLiterals;
using namespace StoreTest;

namespace
{
QString closedText(const QString &name)
{
    return u"There was an error accessing file %1. This file has been closed."_s.arg(name);
}

/// A file with one entry on its to-do list, the index of which is garbage.
QString makeDamagedFile(const TestSettings &settings, const QString &name)
{
    const QString path = settings.filePath(name);
    {
        DiskStore store(path);
        store.updateTodoListSequence(addEntry(store, rootOf(store), u"entry"_s, 0), 0);
        store.commitAndRestartTransaction();
    }
    return damagePage(path, u"entrytodolistseqidx"_s, 0) ? path : QString();
}
} // namespace

/// Files that can be opened, but turn out to be damaged when the windows are built.
class AppLifecycleDamageTest : public QObject
{
    Q_OBJECT

private slots:
    void eachDamagedFileIsReportedWithItsOwnError_data();
    void eachDamagedFileIsReportedWithItsOwnError();
    // Once the program has been told to end the toolkit lets no box run, so this comes last.
    void theDesktopsQuitDuringTheReportDoesNoHarm();
};

void AppLifecycleDamageTest::eachDamagedFileIsReportedWithItsOwnError_data()
{
    QTest::addColumn<QStringList>("damaged");
    QTest::newRow("one") << QStringList{u"b.bdl"_s};
    QTest::newRow("two") << QStringList{u"b.bdl"_s, u"c.bdl"_s};
}

void AppLifecycleDamageTest::eachDamagedFileIsReportedWithItsOwnError()
{
    QFETCH(QStringList, damaged);
    RunningProgram program;
    for (const QString &name : damaged) {
        const QString path = makeDamagedFile(program.settings, name);
        QVERIFY(!path.isEmpty());
        QSettings settings;
        settings.setValue(u"loadfiles/%1"_s.arg(storedFiles().size()), path);
    }
    QStringList expected;
    for (const QString &name : damaged)
        expected << closedText(name);

    const BoxAnswers boxes({QMessageBox::Ok, QMessageBox::Ok});
    program.start();
    QTRY_COMPARE(boxes.seen().size(), damaged.size());
    QStringList texts = boxes.texts();
    texts.sort();
    QCOMPARE(texts, expected);
    for (const SeenBox &box : boxes.seen()) {
        QVERIFY(box.details.startsWith(u"operation: executing query\n"_s));
        const QString name = box.text.section(u' ', 6, 6).chopped(1);
        QCOMPARE(box.details.split(u'\n').value(1),
                 u"file path: "_s + program.settings.filePath(name));
    }
    // The rest goes on.
    QCOMPARE(storedFiles(), QStringList{u"0="_s + program.settings.filePath(u"a.bdl"_s)});
    QCOMPARE(RunningProgram::editor()->toPlainText(), u"a.bdl"_s);
    // What is still on its way must not be shown once more.
    QCoreApplication::processEvents();
    QCOMPARE(boxes.seen().size(), damaged.size());
}

void AppLifecycleDamageTest::theDesktopsQuitDuringTheReportDoesNoHarm()
{
    RunningProgram program;
    const QString path = makeDamagedFile(program.settings, u"b.bdl"_s);
    QSettings().setValue(u"loadfiles/1"_s, path);
    BoxAnswers boxes({QMessageBox::Ok});
    bool taken = false;
    boxes.before(0, [&taken] {
        QEvent quit(QEvent::Quit); // there are files by now, but no windows
        taken = QCoreApplication::sendEvent(qApp, &quit);
    });
    program.start();
    QVERIFY(taken);
    QCOMPARE(storedFiles(), QStringList{u"0="_s + program.settings.filePath(u"a.bdl"_s)});
}

QTEST_MAIN(AppLifecycleDamageTest)
#include "AppLifecycleDamageTest.moc"
