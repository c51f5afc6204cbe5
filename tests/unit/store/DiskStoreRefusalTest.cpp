// SPDX-License-Identifier: MIT
#include "StoreTestSupport.h"
#include "fakes/TestSettings.h"
#include "store/DiskStore.h"

#include <QDir>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace StoreTest;

/// Files that can't be opened: each gives its exact error, stays as it was, and is let go of.
class DiskStoreRefusalTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void fileOfANewerOrUndeclaredVersionIsRefused_data();
    void fileOfANewerOrUndeclaredVersionIsRefused();
    void damagedFileIsRefused_data();
    void damagedFileIsRefused();
    void folderIsRefused();
    void missingFolderIsRefused();
    void readOnlyFileIsRefused();
    void readOnlyFolderIsRefused();
    void failingSetUpNamesItsOperation_data();
    void failingSetUpNamesItsOperation();
    void refusedFileCanBeOpenedOnceItIsRepaired();
    void rootWithoutTextMakesTheExcerptThrowBareText();

private:
    QString copyOf(const TestSettings &settings, const QString &name) const;
    static void compareWithSevenLines(const DiskStore::FileException &e, const QString &operation,
                                      const QString &path);

    QTemporaryDir m_fixtures;
};

void DiskStoreRefusalTest::initTestCase()
{
    QVERIFY(makeOldFiles(m_fixtures.path()));
}

QString DiskStoreRefusalTest::copyOf(const TestSettings &settings, const QString &name) const
{
    const QString path = settings.filePath(name);
    return QFile::copy(m_fixtures.filePath(name), path) ? path : QString();
}

/// A failed statement leaves no error with the connection, so four of the lines say nothing.
void DiskStoreRefusalTest::compareWithSevenLines(const DiskStore::FileException &e,
                                                 const QString &operation, const QString &path)
{
    const QString name = path.section(u'/', -1);
    QCOMPARE(e.message, u"There was an error accessing file "_s + name + u'.');
    QCOMPARE(e.details,
             u"operation: "_s + operation + u"\nfile path: "_s + path
                 + u"\nerror type: 0\nerror code: -1\nerror message: \ndriver error message: "
                   "\napp version: 0.3"_s);
}

void DiskStoreRefusalTest::fileOfANewerOrUndeclaredVersionIsRefused_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("statement");
    QTest::newRow("version 5") << u"version5.bdl"_s << QString();
    QTest::newRow("no schema row") << u"noschemarow.bdl"_s << QString();
    QTest::newRow("negative version") << u"versionnegative.bdl"_s << QString();
    QTest::newRow("largest version")
        << u"version4.bdl"_s << u"UPDATE meta SET value='2147483647'"_s;
    QTest::newRow("version -1") << u"version4.bdl"_s << u"UPDATE meta SET value='-1'"_s;
}

void DiskStoreRefusalTest::fileOfANewerOrUndeclaredVersionIsRefused()
{
    QFETCH(QString, name);
    QFETCH(QString, statement);
    const TestSettings settings;
    const QString path = copyOf(settings, name);
    if (!statement.isEmpty())
        QCOMPARE(change(path, {statement}), QString());
    const QByteArray before = bytes(path);
    const auto e = openingError(path);
    QVERIFY(e);
    QCOMPARE(e->message,
             u"There was an error: File ("_s + name
                 + u") is incompatible with this version of Brindle. Consider upgrading your copy "
                   "and trying again.."_s);
    QCOMPARE(e->details, path);
    QCOMPARE(bytes(path), before);
    QVERIFY(!QFile::exists(path + u"-journal"_s));
    QVERIFY(!QSqlDatabase::connectionNames().contains(path));
}

void DiskStoreRefusalTest::damagedFileIsRefused_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("garbage") << u"garbage.bdl"_s;
    QTest::newRow("second half missing") << u"truncated.bdl"_s;
    QTest::newRow("cut inside the header") << u"truncatedheader.bdl"_s;
}

void DiskStoreRefusalTest::damagedFileIsRefused()
{
    QFETCH(QString, name);
    const TestSettings settings;
    const QString path = copyOf(settings, name);
    const QByteArray before = bytes(path);
    const auto e = openingError(path);
    QVERIFY(e);
    compareWithSevenLines(*e, u"checking for existence of 'meta' table (1)"_s, path);
    QCOMPARE(bytes(path), before);
    QVERIFY(!QFile::exists(path + u"-journal"_s));
    QVERIFY(!QSqlDatabase::connectionNames().contains(path));
}

void DiskStoreRefusalTest::folderIsRefused()
{
    const TestSettings settings;
    const QString path = settings.filePath(u"folder.bdl"_s);
    QVERIFY(QDir().mkpath(path + u"/inside"_s));
    const auto e = openingError(path);
    QVERIFY(e);
    QCOMPARE(e->message, u"There was an error accessing file folder.bdl."_s);
    QCOMPARE(e->details,
             u"operation: opening file\nfile path: "_s + path
                 + u"\nerror type: 1\nerror code: 14\nerror message: unable to open database file"
                   "\ndriver error message: Error opening database\napp version: 0.3"_s);
    QVERIFY(QFileInfo(path + u"/inside"_s).isDir());
    QVERIFY(!QSqlDatabase::connectionNames().contains(path));
}

void DiskStoreRefusalTest::missingFolderIsRefused()
{
    const TestSettings settings;
    const auto e = openingError(settings.filePath(u"nowhere/a.bdl"_s));
    QVERIFY(e);
    QCOMPARE(detail(*e, u"operation"_s), u"opening file"_s);
    QVERIFY(!QFile::exists(settings.filePath(u"nowhere"_s)));
}

void DiskStoreRefusalTest::readOnlyFileIsRefused()
{
    const TestSettings settings;
    const QString path = copyOf(settings, u"version4.bdl"_s);
    const QByteArray before = bytes(path);
    QVERIFY(QFile::setPermissions(path, QFile::ReadOwner | QFile::ReadGroup | QFile::ReadOther));
    {
        const AsOrdinaryUser user(settings.filePath(QString()));
        QVERIFY(user.isOrdinary());
        const auto e = openingError(path);
        QVERIFY(e);
        compareWithSevenLines(*e, u"updating a value in meta"_s, path);
    }
    QCOMPARE(bytes(path), before);
}

void DiskStoreRefusalTest::readOnlyFolderIsRefused()
{
    const TestSettings settings;
    const QString path = copyOf(settings, u"Old file 3.bdl"_s);
    const QByteArray before = bytes(path);
    const QString folder = settings.filePath(QString());
    {
        const AsOrdinaryUser user(folder);
        QVERIFY(user.isOrdinary());
        QVERIFY(QFile::setPermissions(folder, QFile::ReadOwner | QFile::ExeOwner));
        const auto e = openingError(path);
        QVERIFY(
            QFile::setPermissions(folder, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
        QVERIFY(e);
        compareWithSevenLines(*e, u"adding 'todolistseq'' column to entry table"_s, path);
    }
    QCOMPARE(bytes(path), before);
}

void DiskStoreRefusalTest::failingSetUpNamesItsOperation_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("statement");
    QTest::addColumn<QString>("operation");
    const auto row = [](const QString &name, const QString &statement, const QString &operation) {
        QTest::newRow(qPrintable(operation + u" in "_s + name)) << name << statement << operation;
    };
    const QString none = u"empty.bdl"_s;
    const QString one = u"Old file 1.bdl"_s;
    const QString two = u"Old file 2.bdl"_s;
    const QString three = u"Old file 3.bdl"_s;
    const QString four = u"version4.bdl"_s;
    row(none, u"CREATE TABLE entry (x)"_s, u"creating entry table"_s);
    row(none, u"CREATE TABLE entrysequenceidx (x)"_s, u"creating entrysequenceidx index"_s);
    row(none, u"CREATE TABLE todolist (x)"_s, u"creating todolist table"_s);
    row(none, u"CREATE TABLE todolistsequenceidx (x)"_s, u"creating todolistsequenceidx index"_s);
    row(none, u"CREATE TABLE statecombo (x)"_s, u"creating statecombo table"_s);
    row(none, u"CREATE VIEW meta AS SELECT 1"_s, u"creating meta table"_s);
    row(one, u"UPDATE meta SET value='0'"_s, u"creating entry table"_s);
    row(one, u"ALTER TABLE meta RENAME COLUMN value TO what"_s,
        u"checking file schema version number"_s);
    row(one, u"CREATE TABLE entrybody (x)"_s, u"creating entrybody virtual (fts3) table"_s);
    row(one, u"ALTER TABLE entry RENAME COLUMN body TO text"_s,
        u"moving existing bodies from entry to entrybody"_s);
    row(one, u"CREATE TRIGGER t BEFORE UPDATE ON entry BEGIN SELECT RAISE(ABORT, 'refused'); END"_s,
        u"clearing bodies from entry after moving them to entrybody"_s);
    row(two, u"CREATE TRIGGER t BEFORE INSERT ON entry BEGIN SELECT RAISE(ABORT, 'refused'); END"_s,
        u"inserting new root entry into entry"_s);
    row(two, u"DROP TABLE entrybody"_s, u"inserting new root entry into entrybody"_s);
    row(two, u"CREATE TRIGGER t BEFORE UPDATE ON entry BEGIN SELECT RAISE(ABORT, 'refused'); END"_s,
        u"reparenting previous root entries to new root"_s);
    row(three, u"ALTER TABLE entry ADD COLUMN todolistseq INTEGER"_s,
        u"adding 'todolistseq'' column to entry table"_s);
    row(three, u"CREATE TABLE entrytodolistseqidx (x)"_s,
        u"creating unique index on 'todolistseq'' column in entry table"_s);
    row(three, u"UPDATE todolist SET sequence=4"_s,
        u"copying todolist sequences from todolist table to entry table"_s);
    row(four, u"CREATE TRIGGER t BEFORE UPDATE ON meta BEGIN SELECT RAISE(ABORT, 'refused'); END"_s,
        u"updating a value in meta"_s);
    row(four, u"DROP TABLE statecombo"_s, u"preparing query 0"_s);
    row(four, u"ALTER TABLE entry RENAME COLUMN hotkey TO hot"_s, u"preparing query 2"_s);
    row(four, u"DROP TABLE entrybody"_s, u"preparing query 3"_s);
    row(four, u"ALTER TABLE entry RENAME COLUMN donedate TO done"_s, u"preparing query 3"_s);
    row(four, u"ALTER TABLE entry RENAME COLUMN hotkeytext TO t"_s, u"preparing query 3"_s);
}

void DiskStoreRefusalTest::failingSetUpNamesItsOperation()
{
    QFETCH(QString, name);
    QFETCH(QString, statement);
    QFETCH(QString, operation);
    const TestSettings settings;
    const QString path = copyOf(settings, name);
    QCOMPARE(change(path, {statement}), QString());
    const QString before = dump(path);
    const auto e = openingError(path);
    QVERIFY(e);
    compareWithSevenLines(*e, operation, path);
    QVERIFY(!QSqlDatabase::connectionNames().contains(path));
    if (!operation.startsWith(u"preparing"_s))
        QCOMPARE(firstDifference(dump(path), before), QString());
}

void DiskStoreRefusalTest::refusedFileCanBeOpenedOnceItIsRepaired()
{
    const TestSettings settings;
    const QString path = copyOf(settings, u"Old file 3.bdl"_s);
    QCOMPARE(change(path, {u"CREATE TABLE entrytodolistseqidx (x)"_s}), QString());
    QVERIFY(openingError(path));
    // Were the half-opened connection still there, this would find the file locked.
    const OtherProcess other(
        path, {u"BEGIN EXCLUSIVE"_s, u"DROP TABLE entrytodolistseqidx"_s, u"COMMIT"_s});
    QVERIFY(other.isHolding());
    QVERIFY(!openingError(path));
}

void DiskStoreRefusalTest::rootWithoutTextMakesTheExcerptThrowBareText()
{
    const TestSettings settings;
    const QString expected = u"root entry not found; every file should have a root entry"_s;
    const QString path = copyOf(settings, u"version4.bdl"_s);
    QCOMPARE(change(path, {u"DELETE FROM entrybody WHERE docid=20"_s}), QString());
    {
        DiskStore store(path);
        int errors = 0;
        QObject::connect(&store, &DiskStore::errorOccurred, &store, [&errors] { ++errors; });
        QCOMPARE(bareText([&store] { store.getRootExcerpt(); }), expected);
        QCOMPARE(errors, 0);
    }
    QCOMPARE(change(path, {u"DELETE FROM entry WHERE id=20"_s}), QString());
    DiskStore store(path);
    QCOMPARE(bareText([&store] { store.getRootExcerpt(); }), expected);
}

QTEST_MAIN(DiskStoreRefusalTest)
#include "DiskStoreRefusalTest.moc"
