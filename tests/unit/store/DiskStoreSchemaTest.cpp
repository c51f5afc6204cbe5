// SPDX-License-Identifier: MIT
#include "StoreTestSupport.h"
#include "fakes/TestSettings.h"
#include "store/DiskStore.h"

#include <QDir>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace StoreTest;

/// The form of data files: new ones, and those of earlier versions after their upgrade.
class DiskStoreSchemaTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void missingFileBecomesANewFileOfTheCurrentForm();
    void emptyFileBecomesANewFile();
    void newFileCanBeWorkedWithAtOnce();
    void olderVersionIsUpgradedInFull_data();
    void olderVersionIsUpgradedInFull();
    void versionOneTopLevelEntriesComeUnderOneNewRootInTheirOldOrder();
    void versionThreeToDoOrderIsKeptAndUnlistedEntriesHaveNone();
    void upgradeWritesOneLinePerVersionToTheDebugOutput();
    void currentVersionIsNeitherUpgradedNorVacuumed();
    void currentVersionHasItsSchemaRowRewrittenAllTheSame();
    void openingACurrentFileTwiceChangesNoRow();
    void rootTextIsTheFileNameWithoutOddCharacters_data();
    void rootTextIsTheFileNameWithoutOddCharacters();
    void pathAndNameAreThoseGiven();
    void closingDropsWhatWasNotCommittedAndFreesTheConnection();
    void siblingsThatShareANumberAreSpreadInTheirOrder();
    void childrenWithNumbersOutOfRangeAreNumberedAnew();
    void ordinaryGapsStay();

private:
    QString copyOf(const TestSettings &settings, const QString &name) const;

    QTemporaryDir m_fixtures;
};

void DiskStoreSchemaTest::initTestCase()
{
    QVERIFY(makeOldFiles(m_fixtures.path()));
}

QString DiskStoreSchemaTest::copyOf(const TestSettings &settings, const QString &name) const
{
    const QString path = settings.filePath(name);
    return QFile::copy(m_fixtures.filePath(name), path) ? path : QString();
}

void DiskStoreSchemaTest::missingFileBecomesANewFileOfTheCurrentForm()
{
    const TestSettings settings;
    const QString path = settings.filePath(u"My tasks.bdl"_s);
    makeEmptyStore(path);
    QCOMPARE(firstDifference(dump(path), expectedDump(u"My tasks"_s)), QString());
}

void DiskStoreSchemaTest::emptyFileBecomesANewFile()
{
    const TestSettings settings;
    const QString path = settings.filePath(u"My tasks.bdl"_s);
    QVERIFY(writeBytes(path, {}));
    makeEmptyStore(path);
    QCOMPARE(firstDifference(dump(path), expectedDump(u"My tasks"_s)), QString());
}

void DiskStoreSchemaTest::newFileCanBeWorkedWithAtOnce()
{
    const TestSettings settings;
    DiskStore store(settings.filePath(u"a.bdl"_s));
    const long long root = rootOf(store);
    QVERIFY(root > 0);
    const long long id = addEntry(store, root, u"first"_s, 0);
    QString body;
    EntryState rootState = EntryState::None;
    QVERIFY(store.getEntryInfo(id, &body, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr));
    QCOMPARE(body, u"first"_s);
    QVERIFY(
        store.getEntryInfo(root, &body, nullptr, &rootState, nullptr, nullptr, nullptr, nullptr));
    QCOMPARE(body, u"a.bdl"_s);
    QCOMPARE(rootState, EntryState::Category);
}

void DiskStoreSchemaTest::olderVersionIsUpgradedInFull_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("version 1") << u"Old file 1"_s;
    QTest::newRow("version 2") << u"Old file 2"_s;
    QTest::newRow("version 3") << u"Old file 3"_s;
}

void DiskStoreSchemaTest::olderVersionIsUpgradedInFull()
{
    QFETCH(QString, name);
    const TestSettings settings;
    const QString path = copyOf(settings, name + u".bdl"_s);
    makeEmptyStore(path);
    QCOMPARE(firstDifference(dump(path), expectedDump(name)), QString());
    // A second opening finds a current file.
    makeEmptyStore(path);
    QCOMPARE(firstDifference(dump(path), expectedDump(name)), QString());
}

void DiskStoreSchemaTest::versionOneTopLevelEntriesComeUnderOneNewRootInTheirOldOrder()
{
    const TestSettings settings;
    DiskStore store(copyOf(settings, u"Old file 1.bdl"_s));
    QCOMPARE(childTexts(store, -1), QStringList{u"Oldfile1.bdl@0"_s});
    QCOMPARE(childTexts(store, rootOf(store)),
             (QStringList{u"Work@0"_s, u"Home@2"_s, u"Größe – ☃ naïve@5"_s}));
    QCOMPARE(store.getRootExcerpt(), u"Oldfile1.bdl"_s);
}

void DiskStoreSchemaTest::versionThreeToDoOrderIsKeptAndUnlistedEntriesHaveNone()
{
    const TestSettings settings;
    DiskStore store(copyOf(settings, u"Old file 3.bdl"_s));
    const std::unique_ptr<DiskStore::EntryInfoList> todos(store.getAllTodosInList());
    QStringList seen;
    for (const DiskStore::EntryInfo &info : *todos)
        seen << u"%1 %2 %3"_s.arg(QString::number(info.id), QString::number(info.sequence),
                                  info.body);
    QCOMPARE(seen,
             (QStringList{u"4 0 Write the report"_s, u"7 1 Größe – ☃ naïve"_s,
                          u"6 4 Line one\nline two"_s, u"1 11 Home"_s}));
    QCOMPARE(rowsInside(store, u"SELECT COUNT(*) FROM entry WHERE todolistseq IS NULL"_s),
             QStringList{u"6"_s});
}

void DiskStoreSchemaTest::upgradeWritesOneLinePerVersionToTheDebugOutput()
{
    const TestSettings settings;
    const QString path = copyOf(settings, u"Old file 2.bdl"_s);
    const DebugLines debugLines;
    makeEmptyStore(path);
    QVERIFY(!DebugLines::has({u"upgraded to schema version 2"_s}));
    QVERIFY(DebugLines::has({u"Old file 2.bdl"_s, u"upgraded to schema version 3"_s}));
    QVERIFY(DebugLines::has({u"Old file 2.bdl"_s, u"upgraded to schema version 4"_s}));
}

void DiskStoreSchemaTest::currentVersionIsNeitherUpgradedNorVacuumed()
{
    const TestSettings settings;
    const QString path = copyOf(settings, u"version4.bdl"_s);
    const QString before = dump(path);
    QVERIFY(!before.startsWith(u"free pages: 0\n"_s));
    const DebugLines debugLines;
    makeEmptyStore(path);
    QCOMPARE(firstDifference(dump(path), before), QString());
    QVERIFY(!DebugLines::has({u"upgraded to schema version"_s}));
}

void DiskStoreSchemaTest::currentVersionHasItsSchemaRowRewrittenAllTheSame()
{
    const TestSettings settings;
    const QString path = copyOf(settings, u"version4.bdl"_s);
    QCOMPARE(change(path,
                    {u"CREATE TABLE witness (what TEXT)"_s,
                     u"CREATE TRIGGER updates AFTER UPDATE ON meta BEGIN INSERT INTO witness "
                     "VALUES ('update of ' || new.name || ' to ' || new.value); END"_s,
                     u"CREATE TRIGGER inserts AFTER INSERT ON meta BEGIN INSERT INTO witness "
                     "VALUES ('insert'); END"_s}),
             QString());
    makeEmptyStore(path);
    QCOMPARE(rows(path, u"SELECT what FROM witness"_s), QStringList{u"update of dbschema to 4"_s});
}

void DiskStoreSchemaTest::openingACurrentFileTwiceChangesNoRow()
{
    const TestSettings settings;
    const QString path = settings.filePath(u"My tasks.bdl"_s);
    for (int i = 0; i < 3; ++i)
        makeEmptyStore(path);
    QCOMPARE(firstDifference(dump(path), expectedDump(u"My tasks"_s)), QString());
}

void DiskStoreSchemaTest::rootTextIsTheFileNameWithoutOddCharacters_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("text");
    QTest::newRow("blank") << u"My tasks.bdl"_s << u"Mytasks.bdl"_s;
    QTest::newRow("only blanks and dashes: extension and period") << u"- - -.bdl"_s << u".bdl"_s;
    QTest::newRow("letters of any script, numbers, underscore")
        << u"Übung_größe №²٣ план 計画.bdl"_s << u"Übung_größe²٣план計画.bdl"_s;
    QTest::newRow("combining mark") << u"e\u0301te\u0301 x.bdl"_s << u"e\u0301te\u0301x.bdl"_s;
    QTest::newRow("quotes") << u"O'Neil \"x\"; DROP.bdl"_s << u"ONeilxDROP.bdl"_s;
    QTest::newRow("letter beyond the basic plane")
        << u"a \U00010400 \U0001F600.bdl"_s << u"a\U00010400.bdl"_s;
    QTest::newRow("nothing left: a fixed word") << u"!!! - -"_s << u"file"_s;
    QTest::newRow("periods stay") << u"..a..b"_s << u"..a..b"_s;
}

void DiskStoreSchemaTest::rootTextIsTheFileNameWithoutOddCharacters()
{
    QFETCH(QString, name);
    QFETCH(QString, text);
    const TestSettings settings;
    const QString path = settings.filePath(name);
    makeEmptyStore(path);
    QCOMPARE(rows(path,
                  u"SELECT parentid, sequence, state, body, content FROM entry INNER JOIN "
                  "entrybody ON docid=id"_s),
             QStringList{u"-1|0|3|%1|%1"_s.arg(text)});
}

void DiskStoreSchemaTest::pathAndNameAreThoseGiven()
{
    const TestSettings settings;
    QVERIFY(QDir().mkpath(settings.filePath(u"it's a \"folder\""_s)));
    const QString path = settings.filePath(u"it's a \"folder\"/My ; list.old.bdl"_s);
    const DiskStore store(path);
    QCOMPARE(store.dbFilePath(), path);
    QCOMPARE(store.dbFileName(), u"My ; list.old.bdl"_s);
    QVERIFY(QFile::exists(path));
}

void DiskStoreSchemaTest::closingDropsWhatWasNotCommittedAndFreesTheConnection()
{
    const TestSettings settings;
    const QString path = settings.filePath(u"My tasks.bdl"_s);
    {
        DiskStore store(path);
        addEntry(store, rootOf(store), u"never saved"_s, 0);
        QVERIFY(QSqlDatabase::connectionNames().contains(path));
    }
    QVERIFY(!QSqlDatabase::connectionNames().contains(path));
    QVERIFY(!QFile::exists(path + u"-journal"_s));
    QCOMPARE(firstDifference(dump(path), expectedDump(u"My tasks"_s)), QString());
}

void DiskStoreSchemaTest::siblingsThatShareANumberAreSpreadInTheirOrder()
{
    const TestSettings settings;
    const QString path = copyOf(settings, u"version4.bdl"_s);
    // Work, Home and the third one below the root; two of them share number 2.
    QCOMPARE(change(path, {u"UPDATE entry SET sequence=2 WHERE id=7"_s}), QString());
    DiskStore store(path);
    const QStringList seen = childTexts(store, 20);
    QCOMPARE(seen.size(), 3);
    QCOMPARE(rowsInside(store, u"SELECT COUNT(DISTINCT sequence) FROM entry WHERE parentid=20"_s),
             QStringList{u"3"_s});
    QVERIFY(seen[0].startsWith(u"Work@"_s));
    QVERIFY(seen[1].startsWith(u"Home@"_s));
    // Its former place is not lost: every child can be reached by walking.
    QStringList walked;
    for (int at = store.getMinEntrySequence(20, 0); at != -1;
         at = store.getMinEntrySequence(20, at + 1))
        walked << QString::number(store.getEntryId(20, at));
    QCOMPARE(walked, (QStringList{u"3"_s, u"1"_s, u"7"_s}));
}

void DiskStoreSchemaTest::childrenWithNumbersOutOfRangeAreNumberedAnew()
{
    const TestSettings settings;
    const QString path = copyOf(settings, u"version4.bdl"_s);
    QCOMPARE(change(path,
                    {u"UPDATE entry SET sequence=2147483647 WHERE id=7"_s,
                     u"UPDATE entry SET sequence=-1 WHERE id=1"_s,
                     u"UPDATE entry SET sequence=4294967296 WHERE id=3"_s}),
             QString());
    DiskStore store(path);
    QStringList walked;
    for (int at = store.getMinEntrySequence(20, 0); at != -1;
         at = store.getMinEntrySequence(20, at + 1))
        walked << QString::number(store.getEntryId(20, at));
    QCOMPARE(walked, (QStringList{u"1"_s, u"7"_s, u"3"_s}));
    // Room for one more behind the last, without an overflow.
    const int last = store.getMaxEntrySequence(20, 2147483647);
    QVERIFY(last >= 2 && last < 2147483646);
    // Other parents' numbers stay as they were.
    QCOMPARE(rowsInside(store, u"SELECT sequence FROM entry WHERE parentid=3 ORDER BY id"_s),
             (QStringList{u"0"_s, u"3"_s, u"4"_s}));
}

void DiskStoreSchemaTest::ordinaryGapsStay()
{
    const TestSettings settings;
    const QString path = copyOf(settings, u"version4.bdl"_s);
    QCOMPARE(change(path, {u"UPDATE entry SET sequence=2147483646 WHERE id=7"_s}), QString());
    const DiskStore store(path);
    QCOMPARE(rowsInside(store, u"SELECT sequence FROM entry WHERE parentid=20 ORDER BY sequence"_s),
             (QStringList{u"0"_s, u"2"_s, u"2147483646"_s}));
}

QTEST_MAIN(DiskStoreSchemaTest)
#include "DiskStoreSchemaTest.moc"
