// SPDX-License-Identifier: MIT
#include "model/ReportBuilder.h"
#include "fakes/TestSettings.h"
#include "store/FileManager.h"

#include <QtTest>
#include <random>

using namespace Qt::StringLiterals;

namespace
{
const QDateTime longAgo(QDate(2000, 1, 1), QTime(0, 0), Qt::UTC);
const QDateTime farAhead(QDate(2100, 1, 1), QTime(0, 0), Qt::UTC);

QDateTime utc(const char *text)
{
    return QDateTime::fromString(QLatin1String(text) + u'Z', Qt::ISODate);
}

/// Open files in a folder of their own, whose reports are written for a German in Berlin.
class ReportDesk
{
public:
    qint64 addFile(const QString &name)
    {
        const int index = files.getFileCount();
        files.openFile(settings.filePath(name), index);
        return files.getFile(index)->getEntryId(-1, 0);
    }

    qint64 add(qint64 parent, const QString &text, int sequence, const char *doneDate = nullptr,
               int file = 0)
    {
        return files.getFile(file)->insertEntry(parent, text, sequence,
                                                doneDate ? EntryState::Done : EntryState::Todo,
                                                doneDate ? utc(doneDate) : QDateTime());
    }

    /// What another program, or a mishap, may have done to the file.
    void damage(const QString &statement, int file = 0)
    {
        QSqlQuery query(QSqlDatabase::database(files.getFile(file)->dbFilePath(), false));
        if (!query.exec(statement))
            qFatal("%s: %s", qPrintable(statement), qPrintable(query.lastError().text()));
    }

    QStringList lines(const QDateTime &from = longAgo, const QDateTime &to = farAhead,
                      const QLocale &locale = {QLocale::German, QLocale::Germany},
                      const char *zone = "Europe/Berlin")
    {
        const QString text = ReportBuilder(&files, locale, QTimeZone(zone)).build(from, to);
        if (!text.endsWith(u'\n'))
            return {u"the report does not end its last line: "_s + text};
        return text.chopped(1).split(u'\n');
    }

    TestSettings settings;
    FileManager files;
};

/// One entry of the random outlines, as the test itself knows it.
struct Known {
    qint64 id;
    qint64 parent;
    QString text;
    QDateTime done;
    bool hasChildren = false;
};

/// The report told once more, by the book: recursion, and swapping neighbours.
class SecondTelling
{
public:
    explicit SecondTelling(const std::vector<Known> &entries)
    {
        for (const Known &entry : entries)
            m_entries[entry.id] = entry;
        for (const Known &entry : entries) {
            if (entry.done.isValid())
                load(entry.id);
        }
        sort(-1);
    }

    QString text() { return linesBelow(-1, true, QString()); }

private:
    void load(qint64 id)
    {
        if (id == -1 || m_loaded.contains(id))
            return;
        load(m_entries[id].parent);
        m_children[m_entries[id].parent].append(id);
        m_loaded.insert(id);
    }

    QDateTime sort(qint64 id)
    {
        QDateTime latest = id == -1 ? QDateTime() : m_entries[id].done;
        QList<qint64> &children = m_children[id];
        std::map<qint64, QDateTime> dates;
        for (const qint64 child : QList<qint64>(children)) {
            dates[child] = sort(child);
            if (!latest.isValid() || latest < dates[child])
                latest = dates[child];
        }
        for (qsizetype end = children.size(); end > 1; --end) {
            for (qsizetype i = 0; i + 1 < end; ++i) {
                if (dates[children[i + 1]] < dates[children[i]])
                    children.swapItemsAt(i, i + 1);
            }
        }
        return latest;
    }

    QString linesBelow(qint64 id, bool hasHiddenChildren, const QString &indent)
    {
        const QString blanks(18, u' ');
        if (m_children[id].isEmpty())
            return hasHiddenChildren ? blanks + u" | "_s + indent + u"...\n"_s : QString();
        QString lines;
        for (const qint64 child : QList<qint64>(m_children[id])) {
            const Known &entry = m_entries[child];
            const bool done = entry.done.isValid();
            lines += done ? entry.done.toString(u"'Do. 'dd.MM.yy HH:mm"_s) : blanks;
            lines += u" | "_s + indent + entry.text + u'\n';
            lines += linesBelow(child, done ? entry.hasChildren : true, indent + u"  "_s);
        }
        return lines;
    }

    std::map<qint64, Known> m_entries;
    std::map<qint64, QList<qint64>> m_children;
    QSet<qint64> m_loaded;
};
} // namespace

class ReportBuilderTest : public QObject
{
    Q_OBJECT

private slots:
    void exactLinesForAGivenLocaleAndTimeZone();
    void shorterDatesAndTimesArePaddedToTheColumns();
    void longerDatesThanTheSamplePushTheirRowOutOfLine();
    void daylightSavingOfTheGivenZoneCounts();
    void withoutAZoneTheComputersLocalTimeCounts();
    void noFileGivesAnEmptyReport();
    void fileWithoutDoneEntryContributesOneLine();
    void doneEntryBelowADoneParentIsShownOnceWithItsChildBelow();
    void ancestorFoundBeforeItIsKnownAsDoneIsShownAsDone();
    void doneEntryWithUndoneChildrenShowsDotsOneLevelBelow();
    void doneEntryWithoutChildrenShowsNoDots();
    void siblingsAreOrderedByTheLatestCompletionInTheirSubtrees();
    void tiesKeepTheStoresOrder();
    void filesAreOrderedByTheirLatestCompletion();
    void bothEndsOfTheRangeBelongToIt();
    void longAndManyLineTextsBecomeOneShortLine();
    void datesOfOlderAndNewerFormsAreReadAlike();
    void sameAsASecondTellingOnRandomOutlines();
    void entryThatCannotBeReadAgainThrows();
    void missingParentCountsAsChildOfTheTop();
    void cycleOfParentsCountsAsChildOfTheTop();
    void entryThatIsItsOwnParentCountsAsChildOfTheTop();
    void fiftyThousandLevelsDoNotEndTheProgram();
    void thousandLevelsAreIndentedToTheLast();
    void hundredThousandDoneEntriesComeInTheirOrder();
};

void ReportBuilderTest::exactLinesForAGivenLocaleAndTimeZone()
{
    ReportDesk desk;
    const qint64 root = desk.addFile(u"home.bdl"_s);
    const qint64 garden = desk.add(root, u"Garden"_s, 0);
    desk.add(garden, u"Rake leaves"_s, 0, "2026-11-20T23:05:09");
    desk.add(garden, u"Sow"_s, 1);
    const qint64 shed = desk.add(root, u"Shed"_s, 1, "2026-11-19T08:00:00");
    desk.add(shed, u"Door"_s, 0);
    const QStringList expected{
        u"                   | home.bdl"_s, //
        u"Do. 19.11.26 09:00 |   Shed"_s, //
        u"                   |     ..."_s, //
        u"                   |   Garden"_s, //
        u"Sa. 21.11.26 00:05 |     Rake leaves"_s,
    };
    QCOMPARE(desk.lines(), expected);
}

void ReportBuilderTest::shorterDatesAndTimesArePaddedToTheColumns()
{
    ReportDesk desk;
    const qint64 root = desk.addFile(u"home.bdl"_s);
    desk.add(root, u"early"_s, 0, "2026-01-02T03:04:05");
    desk.add(root, u"late"_s, 1, "2026-12-24T20:15:00");
    const QStringList expected{
        u"                     | home.bdl"_s, //
        u"pe   2.1.2026  5.04 |   early"_s, //
        u"to 24.12.2026 22.15 |   late"_s,
    };
    QCOMPARE(desk.lines(longAgo, farAhead, {QLocale::Finnish, QLocale::Finland}, "Europe/Helsinki"),
             expected);
}

void ReportBuilderTest::longerDatesThanTheSamplePushTheirRowOutOfLine()
{
    ReportDesk desk;
    const qint64 root = desk.addFile(u"home.bdl"_s);
    desk.add(root, u"late"_s, 0, "2026-12-24T23:44:00");
    const QTime sample(11, 24, 25, 777);
    const auto shortTime = [](const QLocale &locale, const QTime &time) {
        return locale.toString(time, locale.timeFormat(QLocale::ShortFormat).trimmed());
    };
    int found = 0;
    const auto locales
        = QLocale::matchingLocales(QLocale::AnyLanguage, QLocale::AnyScript, QLocale::AnyTerritory);
    for (const QLocale &locale : locales) {
        const QString time = shortTime(locale, QTime(23, 44));
        if (time.size() <= shortTime(locale, sample).size())
            continue;
        ++found;
        const QStringList lines = desk.lines(longAgo, farAhead, locale, "UTC");
        QVERIFY2(lines[1].endsWith(u' ' + time + u" |   late"_s), qPrintable(lines[1]));
        QVERIFY(lines[1].indexOf(u" | "_s) > lines[0].indexOf(u" | "_s));
        if (found == 5)
            return;
    }
    QVERIFY(found > 0);
}

void ReportBuilderTest::daylightSavingOfTheGivenZoneCounts()
{
    ReportDesk desk;
    const qint64 root = desk.addFile(u"home.bdl"_s);
    desk.add(root, u"winter"_s, 0, "2026-03-29T00:59:59");
    desk.add(root, u"summer"_s, 1, "2026-03-29T01:00:00");
    const QStringList lines = desk.lines();
    QCOMPARE(lines[1], u"So. 29.03.26 01:59 |   winter"_s);
    QCOMPARE(lines[2], u"So. 29.03.26 03:00 |   summer"_s);
}

void ReportBuilderTest::withoutAZoneTheComputersLocalTimeCounts()
{
    qputenv("TZ", "Asia/Tokyo");
    tzset();
    ReportDesk desk;
    const qint64 root = desk.addFile(u"home.bdl"_s);
    desk.add(root, u"there"_s, 0, "2026-03-29T20:30:00");
    const QString text
        = ReportBuilder(&desk.files, {QLocale::German, QLocale::Germany}).build(longAgo, farAhead);
    qunsetenv("TZ");
    tzset();
    QVERIFY2(text.contains(u"Mo. 30.03.26 05:30 |   there\n"_s), qPrintable(text));
}

void ReportBuilderTest::noFileGivesAnEmptyReport()
{
    ReportDesk desk;
    QCOMPARE(ReportBuilder(&desk.files).build(longAgo, farAhead), QString());
}

void ReportBuilderTest::fileWithoutDoneEntryContributesOneLine()
{
    ReportDesk desk;
    const qint64 root = desk.addFile(u"home.bdl"_s);
    desk.add(root, u"still to do"_s, 0);
    desk.add(root, u"done at another time"_s, 1, "2020-01-01T00:00:00");
    QCOMPARE(desk.lines(utc("2026-01-01T00:00:00")), QStringList{u"                   | ..."_s});
}

void ReportBuilderTest::doneEntryBelowADoneParentIsShownOnceWithItsChildBelow()
{
    ReportDesk desk;
    const qint64 root = desk.addFile(u"home.bdl"_s);
    const qint64 parent = desk.add(root, u"Parent"_s, 0, "2026-11-20T10:00:00");
    desk.add(parent, u"Child"_s, 0, "2026-11-20T09:00:00");
    const QStringList expected{
        u"                   | home.bdl"_s, //
        u"Fr. 20.11.26 11:00 |   Parent"_s, //
        u"Fr. 20.11.26 10:00 |     Child"_s,
    };
    QCOMPARE(desk.lines(), expected);
}

void ReportBuilderTest::ancestorFoundBeforeItIsKnownAsDoneIsShownAsDone()
{
    ReportDesk desk;
    const qint64 root = desk.addFile(u"home.bdl"_s);
    // Moved below a younger entry: the store names the child first.
    const qint64 child = desk.add(root, u"Child"_s, 0, "2026-11-20T09:00:00");
    const qint64 parent = desk.add(root, u"Parent"_s, 1, "2026-11-20T10:00:00");
    QVERIFY(child < parent);
    desk.files.getFile(0)->relocateEntry(child, 0, static_cast<int>(parent));
    const QStringList expected{
        u"                   | home.bdl"_s, //
        u"Fr. 20.11.26 11:00 |   Parent"_s, //
        u"Fr. 20.11.26 10:00 |     Child"_s,
    };
    QCOMPARE(desk.lines(), expected);
}

void ReportBuilderTest::doneEntryWithUndoneChildrenShowsDotsOneLevelBelow()
{
    ReportDesk desk;
    const qint64 root = desk.addFile(u"home.bdl"_s);
    const qint64 parent = desk.add(root, u"Parent"_s, 0, "2026-11-20T10:00:00");
    desk.add(parent, u"Child"_s, 0);
    desk.add(parent, u"Done earlier"_s, 1, "2025-11-20T10:00:00");
    const QStringList lines = desk.lines(utc("2026-01-01T00:00:00"));
    QCOMPARE(lines.size(), 3);
    QCOMPARE(lines[1], u"Fr. 20.11.26 11:00 |   Parent"_s);
    QCOMPARE(lines[2], u"                   |     ..."_s);
}

void ReportBuilderTest::doneEntryWithoutChildrenShowsNoDots()
{
    ReportDesk desk;
    const qint64 root = desk.addFile(u"home.bdl"_s);
    desk.add(root, u"Alone"_s, 0, "2026-11-20T10:00:00");
    QCOMPARE(desk.lines().size(), 2);
}

void ReportBuilderTest::siblingsAreOrderedByTheLatestCompletionInTheirSubtrees()
{
    ReportDesk desk;
    const qint64 root = desk.addFile(u"home.bdl"_s);
    const qint64 a = desk.add(root, u"A"_s, 0, "2026-01-01T00:00:00");
    desk.add(a, u"latest"_s, 0, "2026-01-09T00:00:00");
    const qint64 b = desk.add(root, u"B"_s, 1);
    const qint64 inB = desk.add(b, u"in B"_s, 0);
    desk.add(inB, u"deep"_s, 0, "2026-01-05T00:00:00");
    desk.add(root, u"C"_s, 2, "2026-01-03T00:00:00");
    QStringList texts;
    const QStringList lines = desk.lines();
    for (const QString &line : lines)
        texts.append(line.mid(21));
    const QStringList expected{u"home.bdl"_s,   u"  C"_s, u"  B"_s,       u"    in B"_s,
                               u"      deep"_s, u"  A"_s, u"    latest"_s};
    QCOMPARE(texts, expected);
}

void ReportBuilderTest::tiesKeepTheStoresOrder()
{
    ReportDesk desk;
    const qint64 root = desk.addFile(u"home.bdl"_s);
    for (int i = 0; i < 40; ++i)
        desk.add(root, QString::number(i), 39 - i,
                 i == 20 ? "2026-01-01T00:00:00" : "2026-01-02T00:00:00");
    QStringList expected{u"  20"_s};
    for (int i = 0; i < 40; ++i) {
        if (i != 20)
            expected.append(u"  "_s + QString::number(i));
    }
    QStringList texts;
    const QStringList lines = desk.lines().mid(1);
    for (const QString &line : lines)
        texts.append(line.mid(21));
    QCOMPARE(texts, expected);
}

void ReportBuilderTest::filesAreOrderedByTheirLatestCompletion()
{
    ReportDesk desk;
    const qint64 late = desk.addFile(u"late.bdl"_s);
    desk.addFile(u"nothing.bdl"_s);
    const qint64 early = desk.addFile(u"early.bdl"_s);
    desk.add(late, u"x"_s, 0, "2026-01-09T00:00:00", 0);
    desk.add(early, u"y"_s, 0, "2026-01-02T00:00:00", 2);
    const QStringList expected{
        u"                   | ..."_s, //
        u"                   | early.bdl"_s, //
        u"Fr. 02.01.26 01:00 |   y"_s, //
        u"                   | late.bdl"_s, //
        u"Fr. 09.01.26 01:00 |   x"_s,
    };
    QCOMPARE(desk.lines(), expected);
}

void ReportBuilderTest::bothEndsOfTheRangeBelongToIt()
{
    ReportDesk desk;
    const qint64 root = desk.addFile(u"home.bdl"_s);
    desk.add(root, u"before"_s, 0, "2026-01-01T09:59:59");
    desk.add(root, u"first"_s, 1, "2026-01-01T10:00:00");
    desk.add(root, u"last"_s, 2, "2026-01-01T11:00:00");
    desk.add(root, u"after"_s, 3, "2026-01-01T11:00:01");
    const QStringList lines = desk.lines(utc("2026-01-01T10:00:00"), utc("2026-01-01T11:00:00"));
    QCOMPARE(lines.size(), 3);
    QVERIFY(lines[1].endsWith(u"first"_s));
    QVERIFY(lines[2].endsWith(u"last"_s));
}

void ReportBuilderTest::longAndManyLineTextsBecomeOneShortLine()
{
    ReportDesk desk;
    const qint64 root = desk.addFile(u"home.bdl"_s);
    desk.add(root, u"one\n\r\ntwo"_s, 0, "2026-01-01T10:00:00");
    desk.add(root, QString(80, u'a'), 1, "2026-01-01T11:00:00");
    desk.add(root, QString(81, u'b'), 2, "2026-01-01T12:00:00");
    const QStringList lines = desk.lines();
    QCOMPARE(lines.size(), 4);
    QCOMPARE(lines[1].mid(21), u"  one two"_s);
    QCOMPARE(lines[2].mid(21), u"  "_s + QString(80, u'a'));
    QCOMPARE(lines[3].mid(21), u"  "_s + QString(80, u'b') + u" ..."_s);
}

void ReportBuilderTest::datesOfOlderAndNewerFormsAreReadAlike()
{
    ReportDesk desk;
    const qint64 root = desk.addFile(u"home.bdl"_s);
    const qint64 entry = desk.add(root, u"x"_s, 0, "2026-01-01T10:00:00");
    desk.damage(u"UPDATE entry SET donedate='2026-01-01T10:00:00.250Z' WHERE id=%1"_s.arg(entry));
    QCOMPARE(desk.lines()[1], u"Do. 01.01.26 11:00 |   x"_s);
}

void ReportBuilderTest::sameAsASecondTellingOnRandomOutlines()
{
    std::mt19937 random(20261121);
    const auto below = [&random](std::size_t limit) { return random() % limit; };
    for (int round = 0; round < 60; ++round) {
        ReportDesk desk;
        std::vector<Known> entries{{desk.addFile(u"home.bdl"_s), -1, u"home.bdl"_s, {}}};
        for (int i = 0; i < 40; ++i) {
            Known &parent = entries[below(entries.size())];
            parent.hasChildren = true;
            // All on one Thursday, and few different times, so that ties are common.
            const QDateTime done = below(3) == 0
                ? QDateTime(QDate(2026, 1, 1), QTime(static_cast<int>(below(6)), 0), Qt::UTC)
                : QDateTime();
            const QString text = QString::number(i);
            const qint64 parentId = parent.id;
            const qint64 id = desk.files.getFile(0)->insertEntry(
                parentId, text, i, done.isValid() ? EntryState::Done : EntryState::Todo, done);
            entries.push_back({id, parentId, text, done});
        }
        const QString text
            = ReportBuilder(&desk.files, {QLocale::German, QLocale::Germany}, QTimeZone::utc())
                  .build(longAgo, farAhead);
        QCOMPARE(text, SecondTelling(entries).text());
    }
}

void ReportBuilderTest::entryThatCannotBeReadAgainThrows()
{
    ReportDesk desk;
    const qint64 root = desk.addFile(u"home.bdl"_s);
    const qint64 entry = desk.add(root, u"x"_s, 0, "2026-01-01T10:00:00");
    desk.damage(u"DELETE FROM entrybody WHERE docid=%1"_s.arg(entry));
    QByteArray thrown;
    try {
        desk.lines();
    } catch (const char *text) {
        thrown = text;
    }
    QCOMPARE(thrown, QByteArray("bad"));
}

void ReportBuilderTest::missingParentCountsAsChildOfTheTop()
{
    ReportDesk desk;
    const qint64 root = desk.addFile(u"home.bdl"_s);
    const qint64 parent = desk.add(root, u"Parent"_s, 0);
    const qint64 entry = desk.add(parent, u"Orphan"_s, 0, "2026-01-01T10:00:00");
    const qint64 child = desk.add(entry, u"Child"_s, 0, "2026-01-01T09:00:00");
    QVERIFY(child > entry);
    desk.damage(u"DELETE FROM entry WHERE id=%1"_s.arg(parent));
    const QStringList expected{
        u"Do. 01.01.26 11:00 | Orphan"_s, //
        u"Do. 01.01.26 10:00 |   Child"_s,
    };
    QCOMPARE(desk.lines(), expected);
}

void ReportBuilderTest::cycleOfParentsCountsAsChildOfTheTop()
{
    ReportDesk desk;
    const qint64 root = desk.addFile(u"home.bdl"_s);
    const qint64 a = desk.add(root, u"A"_s, 0);
    const qint64 b = desk.add(a, u"B"_s, 0);
    desk.add(b, u"Done"_s, 0, "2026-01-01T10:00:00");
    desk.damage(u"UPDATE entry SET parentid=%1 WHERE id=%2"_s.arg(b).arg(a));
    const QStringList expected{
        u"                   | A"_s, //
        u"                   |   B"_s, //
        u"Do. 01.01.26 11:00 |     Done"_s,
    };
    QCOMPARE(desk.lines(), expected);
}

void ReportBuilderTest::entryThatIsItsOwnParentCountsAsChildOfTheTop()
{
    ReportDesk desk;
    const qint64 root = desk.addFile(u"home.bdl"_s);
    const qint64 entry = desk.add(root, u"Alone"_s, 0, "2026-01-01T10:00:00");
    desk.damage(u"UPDATE entry SET parentid=id WHERE id=%1"_s.arg(entry));
    const QStringList lines = desk.lines();
    QCOMPARE(lines[0], u"Do. 01.01.26 11:00 | Alone"_s);
}

namespace
{
/// Puts entries 1000 … 1000 + \a levels - 1 below \a root, each below the one before; the last is
/// done.
void buildTower(ReportDesk &desk, qint64 root, int levels)
{
    const QString numbers
        = u"WITH RECURSIVE n(i) AS (SELECT 0 UNION ALL SELECT i+1 FROM n WHERE i<%1)"_s.arg(levels
                                                                                            - 1);
    desk.damage(u"INSERT INTO entry (id, parentid, body, sequence, state, donedate) "_s + numbers
                + u" SELECT 1000+i, CASE i WHEN 0 THEN %1 ELSE 999+i END, '', 0, 0, "
                  "CASE i WHEN %2 THEN '2026-01-01T10:00:00' END FROM n"_s.arg(root)
                      .arg(levels - 1));
    desk.damage(u"INSERT INTO entrybody (docid, content) "_s + numbers
                + u" SELECT 1000+i, 'level '||i FROM n"_s);
}
} // namespace

void ReportBuilderTest::fiftyThousandLevelsDoNotEndTheProgram()
{
    constexpr int levels = 50'000;
    ReportDesk desk;
    buildTower(desk, desk.addFile(u"home.bdl"_s), levels);
    const QStringList lines = desk.lines();
    QCOMPARE(lines.size(), levels + 1);
    QVERIFY(lines.last().startsWith(u"Do. 01.01.26 11:00 |   "_s));
    QVERIFY(lines.last().endsWith(u"  level 49999"_s));
    QVERIFY(lines.last().size() < 1000); // blanks for every level would take gigabytes
}

void ReportBuilderTest::thousandLevelsAreIndentedToTheLast()
{
    constexpr int levels = 1000;
    ReportDesk desk;
    buildTower(desk, desk.addFile(u"home.bdl"_s), levels);
    const QStringList lines = desk.lines();
    QCOMPARE(lines.size(), levels + 1);
    for (int i = 0; i < levels; ++i)
        QCOMPARE(lines[i + 1].mid(21), QString(2 * (i + 1), u' ') + u"level %1"_s.arg(i));
}

void ReportBuilderTest::hundredThousandDoneEntriesComeInTheirOrder()
{
    constexpr int count = 100'000;
    ReportDesk desk;
    const qint64 root = desk.addFile(u"home.bdl"_s);
    const QString numbers
        = u"WITH RECURSIVE n(i) AS (SELECT 0 UNION ALL SELECT i+1 FROM n WHERE i<%1)"_s.arg(count
                                                                                            - 1);
    // The latest first: swapping neighbours would take hours.
    desk.damage(u"INSERT INTO entry (id, parentid, body, sequence, state, donedate) "_s + numbers
                + u" SELECT 1000+i, %1, '', i, 2, strftime('%Y-%m-%dT%H:%M:%S', "
                  "'2026-01-01', '-'||i||' seconds') FROM n"_s.arg(root));
    desk.damage(u"INSERT INTO entrybody (docid, content) "_s + numbers
                + u" SELECT 1000+i, i FROM n"_s);
    QElapsedTimer timer;
    timer.start();
    const QStringList lines = desk.lines();
    qInfo("%d done entries: %lld ms", count, timer.elapsed());
    QCOMPARE(lines.size(), count + 1);
    for (int i = 0; i < count; ++i)
        QCOMPARE(lines[i + 1].mid(21), u"  %1"_s.arg(count - 1 - i));
}

QTEST_MAIN(ReportBuilderTest)
#include "ReportBuilderTest.moc"
