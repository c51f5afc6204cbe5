// SPDX-License-Identifier: MIT
#include "StoreTestSupport.h"
#include "fakes/TestSettings.h"
#include "store/DiskStore.h"

#include <QTest>
#include <algorithm>
#include <climits>
#include <map>
#include <random>

using namespace Qt::StringLiterals;
using namespace StoreTest;

namespace
{
constexpr long long rootId = 1;

/// The numbering rules once more, on plain maps: what the store is compared with.
class Numbering
{
public:
    struct Place {
        long long parent = -1;
        int sequence = 0;
        auto operator<=>(const Place &) const = default;
    };

    void insert(long long id, const Place &place)
    {
        shift(place);
        m_places[id] = place;
    }

    void relocate(long long id, Place target)
    {
        const Place now = m_places.at(id);
        if (target.parent == -2)
            target.parent = now.parent;
        if (target == now)
            return;
        const long long occupant = at(target);
        const bool up = target.parent == now.parent && target.sequence < now.sequence;
        if (occupant != -1 && up && nobodyBetween(target, now))
            m_places[occupant] = {target.parent, target.sequence + 1};
        else
            shift(target);
        m_places[id] = target;
    }

    bool remove(long long id)
    {
        for (const auto &[other, place] : m_places)
            if (place.parent == id)
                return false;
        m_places.erase(id);
        return true;
    }

    bool isBelow(long long id, long long ancestor) const
    {
        for (; id != -1; id = m_places.at(id).parent)
            if (id == ancestor)
                return true;
        return false;
    }

    QStringList all() const
    {
        QStringList result;
        for (const auto &[id, place] : m_places)
            result << u"%1|%2|%3"_s.arg(QString::number(id), QString::number(place.parent),
                                        QString::number(place.sequence));
        return result;
    }

    const std::map<long long, Place> &places() const { return m_places; }

private:
    long long at(const Place &wanted) const
    {
        for (const auto &[id, place] : m_places)
            if (place == wanted)
                return id;
        return -1;
    }

    bool nobodyBetween(const Place &low, const Place &high) const
    {
        return std::none_of(m_places.begin(), m_places.end(), [&](const auto &item) {
            return item.second.parent == low.parent && item.second.sequence > low.sequence
                && item.second.sequence < high.sequence;
        });
    }

    void shift(const Place &from)
    {
        if (at(from) == -1)
            return;
        for (auto &[id, place] : m_places)
            if (place.parent == from.parent && place.sequence >= from.sequence)
                ++place.sequence;
    }

    std::map<long long, Place> m_places;
};
} // namespace

/// How siblings are numbered when one comes, goes or moves.
class DiskStoreNumberingTest : public QObject
{
    Q_OBJECT

private slots:
    void insertingAtATakenNumberMovesTheTail();
    void insertingIntoAGapMovesNobody();
    void insertingBehindTheLastMovesNobody();
    void insertingMovesTheWholeTailGapsIncluded();
    void insertingLeavesOtherParentsAlone();
    void relocatingOneUpSwaps();
    void relocatingUpOverAGapSwapsToo();
    void relocatingUpOverASiblingShifts();
    void relocatingDownShifts();
    void relocatingIntoAGapMovesNobodyElse();
    void relocatingToAnotherParentShiftsThere();
    void relocatingWithParentMinusTwoKeepsTheParent();
    void relocatingToTheCurrentPlaceWritesNothing();
    void relocatingAMissingEntryIsAnError();
    void relocatingWithoutDeconflictionMovesNobodyElse();
    void shiftingAFreeNumberDoesNothing();
    void deletingAnEntryWithAChildIsRefused();
    void deletingALeafLeavesAGap();
    void entryIsFoundByItsPlaceRightAfterInserting();
    void randomOperationsNumberAsTheRulesSay();

private:
    void randomStep(DiskStore &store, Numbering &model, std::mt19937 &random);
};

void DiskStoreNumberingTest::insertingAtATakenNumberMovesTheTail()
{
    const TestSettings settings;
    DiskStore store(settings.filePath(u"a.bdl"_s));
    for (int i = 0; i < 3; ++i)
        addEntry(store, rootId, QString(QChar(u'a' + i)), i);
    const long long id = addEntry(store, rootId, u"new"_s, 1);
    QCOMPARE(childTexts(store, rootId), (QStringList{u"a@0"_s, u"new@1"_s, u"b@2"_s, u"c@3"_s}));
    QCOMPARE(store.getEntryId(rootId, 1), id);
}

void DiskStoreNumberingTest::insertingIntoAGapMovesNobody()
{
    const TestSettings settings;
    DiskStore store(settings.filePath(u"a.bdl"_s));
    addEntry(store, rootId, u"a"_s, 0);
    addEntry(store, rootId, u"c"_s, 2);
    addEntry(store, rootId, u"new"_s, 1);
    QCOMPARE(childTexts(store, rootId), (QStringList{u"a@0"_s, u"new@1"_s, u"c@2"_s}));
}

void DiskStoreNumberingTest::insertingBehindTheLastMovesNobody()
{
    const TestSettings settings;
    DiskStore store(settings.filePath(u"a.bdl"_s));
    for (int i = 0; i < 3; ++i)
        addEntry(store, rootId, QString(QChar(u'a' + i)), i);
    addEntry(store, rootId, u"new"_s, 3);
    QCOMPARE(childTexts(store, rootId), (QStringList{u"a@0"_s, u"b@1"_s, u"c@2"_s, u"new@3"_s}));
}

void DiskStoreNumberingTest::insertingMovesTheWholeTailGapsIncluded()
{
    const TestSettings settings;
    DiskStore store(settings.filePath(u"a.bdl"_s));
    addEntry(store, rootId, u"a"_s, 0);
    addEntry(store, rootId, u"b"_s, 4);
    addEntry(store, rootId, u"c"_s, 9);
    addEntry(store, rootId, u"new"_s, 0);
    QCOMPARE(childTexts(store, rootId), (QStringList{u"new@0"_s, u"a@1"_s, u"b@5"_s, u"c@10"_s}));
}

void DiskStoreNumberingTest::insertingLeavesOtherParentsAlone()
{
    const TestSettings settings;
    DiskStore store(settings.filePath(u"a.bdl"_s));
    const long long a = addEntry(store, rootId, u"a"_s, 0);
    const long long b = addEntry(store, rootId, u"b"_s, 1);
    addEntry(store, a, u"a0"_s, 0);
    addEntry(store, b, u"b0"_s, 0);
    addEntry(store, a, u"new"_s, 0);
    QCOMPARE(childTexts(store, a), (QStringList{u"new@0"_s, u"a0@1"_s}));
    QCOMPARE(childTexts(store, b), QStringList{u"b0@0"_s});
    QCOMPARE(childTexts(store, rootId), (QStringList{u"a@0"_s, u"b@1"_s}));
}

void DiskStoreNumberingTest::relocatingOneUpSwaps()
{
    const TestSettings settings;
    DiskStore store(settings.filePath(u"a.bdl"_s));
    addEntry(store, rootId, u"P"_s, 0);
    addEntry(store, rootId, u"Q"_s, 1);
    const long long r = addEntry(store, rootId, u"R"_s, 2);
    addEntry(store, rootId, u"S"_s, 3);
    store.relocateEntry(r, 1, static_cast<int>(rootId));
    QCOMPARE(childTexts(store, rootId), (QStringList{u"P@0"_s, u"R@1"_s, u"Q@2"_s, u"S@3"_s}));
}

void DiskStoreNumberingTest::relocatingUpOverAGapSwapsToo()
{
    const TestSettings settings;
    DiskStore store(settings.filePath(u"a.bdl"_s));
    addEntry(store, rootId, u"P"_s, 0);
    addEntry(store, rootId, u"Q"_s, 1);
    const long long r = addEntry(store, rootId, u"R"_s, 5);
    addEntry(store, rootId, u"S"_s, 6);
    store.relocateEntry(r, 1, static_cast<int>(rootId));
    QCOMPARE(childTexts(store, rootId), (QStringList{u"P@0"_s, u"R@1"_s, u"Q@2"_s, u"S@6"_s}));
}

void DiskStoreNumberingTest::relocatingUpOverASiblingShifts()
{
    const TestSettings settings;
    DiskStore store(settings.filePath(u"a.bdl"_s));
    addEntry(store, rootId, u"P"_s, 0);
    addEntry(store, rootId, u"Q"_s, 1);
    const long long r = addEntry(store, rootId, u"R"_s, 2);
    addEntry(store, rootId, u"S"_s, 3);
    store.relocateEntry(r, 0, static_cast<int>(rootId));
    QCOMPARE(childTexts(store, rootId), (QStringList{u"R@0"_s, u"P@1"_s, u"Q@2"_s, u"S@4"_s}));
}

void DiskStoreNumberingTest::relocatingDownShifts()
{
    const TestSettings settings;
    DiskStore store(settings.filePath(u"a.bdl"_s));
    const long long p = addEntry(store, rootId, u"P"_s, 0);
    addEntry(store, rootId, u"Q"_s, 1);
    addEntry(store, rootId, u"R"_s, 2);
    store.relocateEntry(p, 2, static_cast<int>(rootId));
    QCOMPARE(childTexts(store, rootId), (QStringList{u"Q@1"_s, u"P@2"_s, u"R@3"_s}));
}

void DiskStoreNumberingTest::relocatingIntoAGapMovesNobodyElse()
{
    const TestSettings settings;
    DiskStore store(settings.filePath(u"a.bdl"_s));
    const long long p = addEntry(store, rootId, u"P"_s, 0);
    addEntry(store, rootId, u"Q"_s, 1);
    addEntry(store, rootId, u"R"_s, 5);
    store.relocateEntry(p, 3, -2);
    QCOMPARE(childTexts(store, rootId), (QStringList{u"Q@1"_s, u"P@3"_s, u"R@5"_s}));
}

void DiskStoreNumberingTest::relocatingToAnotherParentShiftsThere()
{
    const TestSettings settings;
    DiskStore store(settings.filePath(u"a.bdl"_s));
    const long long p = addEntry(store, rootId, u"P"_s, 0);
    const long long q = addEntry(store, rootId, u"Q"_s, 1);
    addEntry(store, q, u"q0"_s, 0);
    addEntry(store, q, u"q1"_s, 1);
    // One lower in number, as for a swap; but in another parent there is none.
    const long long r = addEntry(store, rootId, u"R"_s, 2);
    store.relocateEntry(r, 1, static_cast<int>(q));
    QCOMPARE(childTexts(store, q), (QStringList{u"q0@0"_s, u"R@1"_s, u"q1@2"_s}));
    store.relocateEntry(p, 0, static_cast<int>(q));
    QCOMPARE(childTexts(store, q), (QStringList{u"P@0"_s, u"q0@1"_s, u"R@2"_s, u"q1@3"_s}));
    QCOMPARE(childTexts(store, rootId), QStringList{u"Q@1"_s});
}

void DiskStoreNumberingTest::relocatingWithParentMinusTwoKeepsTheParent()
{
    const TestSettings settings;
    DiskStore store(settings.filePath(u"a.bdl"_s));
    const long long p = addEntry(store, rootId, u"P"_s, 0);
    addEntry(store, p, u"Q"_s, 0);
    const long long r = addEntry(store, p, u"R"_s, 1);
    store.relocateEntry(r, 0, -2);
    QCOMPARE(childTexts(store, p), (QStringList{u"R@0"_s, u"Q@1"_s}));
}

void DiskStoreNumberingTest::relocatingToTheCurrentPlaceWritesNothing()
{
    const TestSettings settings;
    DiskStore store(settings.filePath(u"a.bdl"_s));
    const long long p = addEntry(store, rootId, u"P"_s, 3);
    store.commitAndRestartTransaction();
    int updates = 0;
    QObject::connect(&store, &DiskStore::firstUpdateOfTransaction, &store, [&] { ++updates; });
    store.relocateEntry(p, 3, static_cast<int>(rootId));
    store.relocateEntry(p, 3, -2);
    QCOMPARE(updates, 0);
    QCOMPARE(childTexts(store, rootId), QStringList{u"P@3"_s});
    store.relocateEntry(p, 4, -2);
    QCOMPARE(updates, 1);
}

void DiskStoreNumberingTest::relocatingAMissingEntryIsAnError()
{
    const TestSettings settings;
    DiskStore store(settings.filePath(u"a.bdl"_s));
    int errors = 0;
    QObject::connect(&store, &DiskStore::errorOccurred, &store, [&errors] { ++errors; });
    const auto e = fileError([&store] { store.relocateEntry(4711, 0, 1); });
    QVERIFY(e);
    QCOMPARE(e->message, u"There was an error: entry to relocate not found."_s);
    QCOMPARE(e->details, store.dbFilePath());
    QCOMPARE(errors, 1);
}

void DiskStoreNumberingTest::relocatingWithoutDeconflictionMovesNobodyElse()
{
    const TestSettings settings;
    DiskStore store(settings.filePath(u"a.bdl"_s));
    addEntry(store, rootId, u"P"_s, 0);
    const long long q = addEntry(store, rootId, u"Q"_s, 1);
    store.relocateEntryWithoutDeconfliction(q, 0, static_cast<int>(rootId));
    QCOMPARE(childTexts(store, rootId), (QStringList{u"P@0"_s, u"Q@0"_s}));
}

void DiskStoreNumberingTest::shiftingAFreeNumberDoesNothing()
{
    const TestSettings settings;
    DiskStore store(settings.filePath(u"a.bdl"_s));
    addEntry(store, rootId, u"P"_s, 0);
    addEntry(store, rootId, u"Q"_s, 2);
    store.shiftEntrySequences(rootId, 1);
    QCOMPARE(childTexts(store, rootId), (QStringList{u"P@0"_s, u"Q@2"_s}));
    store.shiftEntrySequences(rootId, 2);
    QCOMPARE(childTexts(store, rootId), (QStringList{u"P@0"_s, u"Q@3"_s}));
}

void DiskStoreNumberingTest::deletingAnEntryWithAChildIsRefused()
{
    const TestSettings settings;
    DiskStore store(settings.filePath(u"a.bdl"_s));
    const long long p = addEntry(store, rootId, u"P"_s, 0);
    addEntry(store, p, u"Q"_s, 7);
    store.commitAndRestartTransaction();
    int updates = 0;
    QObject::connect(&store, &DiskStore::firstUpdateOfTransaction, &store, [&] { ++updates; });
    QVERIFY(!store.deleteEntry(p));
    QCOMPARE(updates, 0);
    QCOMPARE(childTexts(store, rootId), QStringList{u"P@0"_s});
    QCOMPARE(childTexts(store, p), QStringList{u"Q@7"_s});
    QCOMPARE(rowsInside(store, u"SELECT COUNT(*) FROM entrybody"_s), QStringList{u"3"_s});
}

void DiskStoreNumberingTest::deletingALeafLeavesAGap()
{
    const TestSettings settings;
    DiskStore store(settings.filePath(u"a.bdl"_s));
    addEntry(store, rootId, u"P"_s, 0);
    const long long q = addEntry(store, rootId, u"Q"_s, 1);
    addEntry(store, rootId, u"R"_s, 2);
    QVERIFY(store.deleteEntry(q));
    QCOMPARE(childTexts(store, rootId), (QStringList{u"P@0"_s, u"R@2"_s}));
    QCOMPARE(rowsInside(store, u"SELECT COUNT(*) FROM entrybody WHERE docid=%1"_s.arg(q)),
             QStringList{u"0"_s});
    QCOMPARE(rowsInside(store, u"SELECT COUNT(*) FROM entry WHERE id=%1"_s.arg(q)),
             QStringList{u"0"_s});
    QCOMPARE(store.getEntryId(rootId, 1), -1LL);
}

void DiskStoreNumberingTest::entryIsFoundByItsPlaceRightAfterInserting()
{
    // A trigger that removes what was inserted: the store must notice, not go on with another id.
    const TestSettings settings;
    const QString path = settings.filePath(u"a.bdl"_s);
    makeEmptyStore(path);
    QCOMPARE(
        change(path,
               {u"CREATE TRIGGER t AFTER INSERT ON entry WHEN new.sequence=5 BEGIN DELETE FROM "
                "entry WHERE id=new.id; END"_s}),
        QString());
    DiskStore store(path);
    const auto e = fileError([&store] { addEntry(store, rootId, u"x"_s, 5); });
    QVERIFY(e);
    QCOMPARE(e->message, u"There was an error: entry not found immediately after inserting it."_s);
    QCOMPARE(e->details, path);
}

void DiskStoreNumberingTest::randomStep(DiskStore &store, Numbering &model, std::mt19937 &random)
{
    const auto below = [&random](std::size_t limit) {
        return std::uniform_int_distribution<std::size_t>(0, limit - 1)(random);
    };
    const auto anyId = [&] {
        return std::next(model.places().begin(),
                         static_cast<std::ptrdiff_t>(below(model.places().size())))
            ->first;
    };
    const long long id = anyId();
    const int sequence = static_cast<int>(below(12));
    const std::size_t kind = below(10);
    if (id == rootId || kind < 4) {
        const long long fresh = addEntry(store, id, u"x"_s, sequence);
        QVERIFY(!model.places().contains(fresh));
        model.insert(fresh, {id, sequence});
    } else if (kind < 6) {
        QCOMPARE(store.deleteEntry(id), model.remove(id));
    } else if (const long long parent = anyId(); kind < 8 && !model.isBelow(parent, id)) {
        store.relocateEntry(id, sequence, static_cast<int>(parent));
        model.relocate(id, {parent, sequence});
    } else {
        store.relocateEntry(id, sequence, -2);
        model.relocate(id, {-2, sequence});
    }
}

void DiskStoreNumberingTest::randomOperationsNumberAsTheRulesSay()
{
    const unsigned seed = std::random_device()();
    qInfo() << "seed" << seed;
    std::mt19937 random(seed);
    const TestSettings settings;
    DiskStore store(settings.filePath(u"a.bdl"_s));
    Numbering model;
    model.insert(rootId, {-1, 0});
    for (int step = 0; step < 5000; ++step) {
        randomStep(store, model, random);
        if (QTest::currentTestFailed())
            return;
        if (step % 10 == 0)
            QCOMPARE(rowsInside(store, u"SELECT id, parentid, sequence FROM entry ORDER BY id"_s),
                     model.all());
    }
    store.commitAndRestartTransaction();
    QCOMPARE(rows(store.dbFilePath(), u"SELECT id, parentid, sequence FROM entry ORDER BY id"_s),
             model.all());
    QCOMPARE(rows(store.dbFilePath(),
                  u"SELECT COUNT(*) FROM entry GROUP BY parentid, sequence HAVING COUNT(*)>1"_s),
             QStringList());
    QCOMPARE(rows(store.dbFilePath(),
                  u"SELECT COUNT(*) FROM entry LEFT JOIN entrybody ON docid=id WHERE content IS "
                  "NULL"_s),
             QStringList{u"0"_s});
}

QTEST_MAIN(DiskStoreNumberingTest)
#include "DiskStoreNumberingTest.moc"
