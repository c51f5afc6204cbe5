// SPDX-License-Identifier: MIT
#include "StoreTestSupport.h"
#include "fakes/TestSettings.h"
#include "store/DiskStore.h"

#include <QTest>
#include <QTimeZone>

using namespace Qt::StringLiterals;
using namespace StoreTest;

namespace
{
constexpr long long rootId = 1;

QDateTime utc(const QString &text)
{
    return QDateTime(QDate::fromString(text.left(10), Qt::ISODate),
                     QTime::fromString(text.mid(11), Qt::ISODateWithMs), Qt::UTC);
}

QDateTime doneDateOf(DiskStore &store, long long id)
{
    QDateTime date;
    store.getEntryInfo(id, nullptr, nullptr, nullptr, nullptr, nullptr, &date, nullptr);
    return date;
}

QList<long long> doneBetween(DiskStore &store, const QDateTime &from, const QDateTime &to)
{
    const std::unique_ptr<QList<long long>> ids(store.getEntryIdsByDoneDate(from, to));
    QList<long long> sorted = *ids;
    std::sort(sorted.begin(), sorted.end());
    return sorted;
}
} // namespace

/// Done dates: their form on disk, reading every form there is, and asking for a range. The local
/// time zone here has daylight saving, so that a date treated as local shows.
class DiskStoreDatesTest : public QObject
{
    Q_OBJECT

public:
    static void initMain() { qputenv("TZ", "Europe/Berlin"); }

private slots:
    void initTestCase();
    void dateIsStoredInUtcWithoutFractionsAndZone_data();
    void dateIsStoredInUtcWithoutFractionsAndZone();
    void dateIsStoredWhenTheEntryIsInserted();
    void dateIsReadFromEveryForm_data();
    void dateIsReadFromEveryForm();
    void missingDateIsNull();
    void dateReadAndWrittenAgainStaysTheSame();
    void rangeIncludesBothBounds();
    void rangeMatchesOlderRowsAtTheSameSecond();
    void rangeBoundsMayBeLocalTimes();
    void rangeWithoutResultIsEmpty();
};

void DiskStoreDatesTest::initTestCase()
{
    // Without this the cases below would prove nothing.
    QCOMPARE(QDateTime(QDate(2026, 7, 1), QTime(12, 0)).offsetFromUtc(), 7200);
    QCOMPARE(QDateTime(QDate(2026, 1, 1), QTime(12, 0)).offsetFromUtc(), 3600);
}

void DiskStoreDatesTest::dateIsStoredInUtcWithoutFractionsAndZone_data()
{
    QTest::addColumn<QDateTime>("date");
    QTest::addColumn<QString>("stored");
    QTest::newRow("UTC") << utc(u"2026-11-21T04:02:26.374"_s) << u"2026-11-21T04:02:26"_s;
    QTest::newRow("local winter time")
        << QDateTime(QDate(2026, 1, 1), QTime(0, 30, 5)) << u"2025-12-31T23:30:05"_s;
    QTest::newRow("local summer time")
        << QDateTime(QDate(2026, 7, 1), QTime(0, 30, 5)) << u"2026-06-30T22:30:05"_s;
    QTest::newRow("offset") << QDateTime(QDate(2026, 7, 1), QTime(1, 2, 3), Qt::OffsetFromUTC,
                                         19800)
                            << u"2026-06-30T19:32:03"_s;
    QTest::newRow("zone") << QDateTime(QDate(2026, 7, 1), QTime(1, 2, 3),
                                       QTimeZone("America/New_York"))
                          << u"2026-07-01T05:02:03"_s;
    QTest::newRow("UTC clock time that is skipped here")
        << utc(u"2026-03-29T02:30:00"_s) << u"2026-03-29T02:30:00"_s;
    QTest::newRow("invalid") << QDateTime() << u"NULL"_s;
    QTest::newRow("early year") << utc(u"0999-01-02T03:04:05"_s) << u"0999-01-02T03:04:05"_s;
}

void DiskStoreDatesTest::dateIsStoredInUtcWithoutFractionsAndZone()
{
    QFETCH(QDateTime, date);
    QFETCH(QString, stored);
    const TestSettings settings;
    DiskStore store(settings.filePath(u"a.bdl"_s));
    const long long id = addEntry(store, rootId, u"x"_s, 0);
    store.updateEntryState(id, EntryState::Done, date);
    store.commitAndRestartTransaction();
    QCOMPARE(rows(store.dbFilePath(), u"SELECT donedate, typeof(donedate) FROM entry WHERE id>1"_s),
             QStringList{stored + (date.isValid() ? u"|text"_s : u"|null"_s)});
}

void DiskStoreDatesTest::dateIsStoredWhenTheEntryIsInserted()
{
    const TestSettings settings;
    DiskStore store(settings.filePath(u"a.bdl"_s));
    store.insertEntry(rootId, u"x"_s, 0, EntryState::Done,
                      QDateTime(QDate(2026, 7, 1), QTime(12, 0, 0, 999)));
    QCOMPARE(rowsInside(store, u"SELECT donedate FROM entry WHERE id>1"_s),
             QStringList{u"2026-07-01T10:00:00"_s});
}

void DiskStoreDatesTest::dateIsReadFromEveryForm_data()
{
    QTest::addColumn<QString>("stored");
    QTest::addColumn<QDateTime>("date");
    QTest::newRow("older form") << u"2011-05-06T07:08:09"_s << utc(u"2011-05-06T07:08:09"_s);
    QTest::newRow("newer driver's form")
        << u"2026-11-21T04:02:26.374Z"_s << utc(u"2026-11-21T04:02:26.374"_s);
    QTest::newRow("with fractions")
        << u"2026-11-21T04:02:26.374"_s << utc(u"2026-11-21T04:02:26.374"_s);
    QTest::newRow("with zone mark only")
        << u"2026-11-21T04:02:26Z"_s << utc(u"2026-11-21T04:02:26"_s);
    QTest::newRow("time that daylight saving skips here")
        << u"2026-03-29T02:30:00"_s << utc(u"2026-03-29T02:30:00"_s);
    QTest::newRow("the same in the newer form")
        << u"2026-03-29T02:30:00.000Z"_s << utc(u"2026-03-29T02:30:00"_s);
    QTest::newRow("time that comes twice here")
        << u"2026-10-25T02:30:00"_s << utc(u"2026-10-25T02:30:00"_s);
    QTest::newRow("midnight") << u"2026-01-01T00:00:00"_s << utc(u"2026-01-01T00:00:00"_s);
    QTest::newRow("no date at all") << u"soon"_s << QDateTime();
}

void DiskStoreDatesTest::dateIsReadFromEveryForm()
{
    QFETCH(QString, stored);
    QFETCH(QDateTime, date);
    const TestSettings settings;
    const QString path = settings.filePath(u"a.bdl"_s);
    makeEmptyStore(path);
    QCOMPARE(change(path, {u"UPDATE entry SET donedate='%1'"_s.arg(stored)}), QString());
    DiskStore store(path);
    const QDateTime read = doneDateOf(store, rootId);
    QCOMPARE(read, date);
    QCOMPARE(read.isValid(), date.isValid());
    if (date.isValid())
        QCOMPARE(read.timeSpec(), Qt::UTC);
    // Reading leaves the row alone.
    store.commitAndRestartTransaction();
    QCOMPARE(rows(path, u"SELECT donedate FROM entry"_s), QStringList{stored});
}

void DiskStoreDatesTest::missingDateIsNull()
{
    const TestSettings settings;
    DiskStore store(settings.filePath(u"a.bdl"_s));
    QVERIFY(doneDateOf(store, rootId).isNull());
}

void DiskStoreDatesTest::dateReadAndWrittenAgainStaysTheSame()
{
    const TestSettings settings;
    DiskStore store(settings.filePath(u"a.bdl"_s));
    // Every half hour of the two nights in which the local clock jumps.
    for (const QString &start : {u"2026-03-28T22:00:00"_s, u"2026-10-24T22:00:00"_s}) {
        for (int i = 0; i < 12; ++i) {
            const QDateTime date = utc(start).addSecs(1800LL * i);
            store.updateEntryState(rootId, EntryState::Category, date);
            QCOMPARE(doneDateOf(store, rootId), date);
            store.updateEntryState(rootId, EntryState::Category, date.toLocalTime());
            QCOMPARE(doneDateOf(store, rootId), date);
        }
    }
}

void DiskStoreDatesTest::rangeIncludesBothBounds()
{
    const TestSettings settings;
    DiskStore store(settings.filePath(u"a.bdl"_s));
    const QDateTime first = utc(u"2026-05-01T10:00:00"_s);
    QList<long long> ids;
    for (int i = 0; i < 4; ++i)
        ids << store.insertEntry(rootId, u"x"_s, i, EntryState::Done, first.addSecs(i));
    addEntry(store, rootId, u"not done"_s, 9);
    QCOMPARE(doneBetween(store, first.addSecs(1), first.addSecs(2)), ids.mid(1, 2));
    QCOMPARE(doneBetween(store, first, first), ids.mid(0, 1));
    QCOMPARE(doneBetween(store, first.addSecs(-100), first.addSecs(100)), ids);
    QCOMPARE(doneBetween(store, first.addSecs(2), first.addSecs(1)), QList<long long>());
}

void DiskStoreDatesTest::rangeMatchesOlderRowsAtTheSameSecond()
{
    const TestSettings settings;
    const QString path = settings.filePath(u"a.bdl"_s);
    makeEmptyStore(path);
    QCOMPARE(change(path, {u"UPDATE entry SET donedate='2026-11-21T04:02:26'"_s}), QString());
    DiskStore store(path);
    // A bound in another form would sort before or after the stored text of the same second.
    const QDateTime same = utc(u"2026-11-21T04:02:26"_s);
    QCOMPARE(doneBetween(store, same, same), QList<long long>{rootId});
    QCOMPARE(doneBetween(store, same.addMSecs(374), same.addMSecs(800)), QList<long long>{rootId});
    QCOMPARE(doneBetween(store, same.addSecs(1), same.addSecs(9)), QList<long long>());
    QCOMPARE(doneBetween(store, same.addSecs(-9), same.addSecs(-1)), QList<long long>());
}

void DiskStoreDatesTest::rangeBoundsMayBeLocalTimes()
{
    const TestSettings settings;
    DiskStore store(settings.filePath(u"a.bdl"_s));
    const QDateTime done = utc(u"2026-07-01T22:30:00"_s);
    const long long id = store.insertEntry(rootId, u"x"_s, 0, EntryState::Done, done);
    const QDate localDay(2026, 7, 2);
    QCOMPARE(doneBetween(store, QDateTime(localDay, QTime(0, 0)), QDateTime(localDay, QTime(1, 0))),
             QList<long long>{id});
    QCOMPARE(
        doneBetween(store, QDateTime(localDay, QTime(0, 31)), QDateTime(localDay, QTime(9, 0))),
        QList<long long>());
}

void DiskStoreDatesTest::rangeWithoutResultIsEmpty()
{
    const TestSettings settings;
    DiskStore store(settings.filePath(u"a.bdl"_s));
    QCOMPARE(doneBetween(store, utc(u"0001-01-01T00:00:00"_s), utc(u"9999-12-31T23:59:59"_s)),
             QList<long long>());
    QCOMPARE(doneBetween(store, QDateTime(), QDateTime()), QList<long long>());
}

QTEST_MAIN(DiskStoreDatesTest)
#include "DiskStoreDatesTest.moc"
