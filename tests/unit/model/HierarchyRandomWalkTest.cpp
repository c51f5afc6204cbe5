// SPDX-License-Identifier: MIT
#include "PlainOutline.h"
#include "fakes/HierarchyDesk.h"

#include <QApplication>
#include <QRandomGenerator>
#include <map>
#include <optional>
#include <random>

using namespace Qt::StringLiterals;

namespace
{

constexpr int steps = 2500;
constexpr int largestOutline = 160;

/// Seed of a run that failed, to see it again.
const char *const seedVariable = "BRINDLE_TEST_SEED";

const Command commands[] = {
    Command::GoToParent,
    Command::GoToFirst,
    Command::GoToPrevious,
    Command::GoToNext,
    Command::GoToNext,
    Command::GoToLast,
    Command::GoToChild,
    Command::GoToChild,
    Command::MoveCurrentLeft,
    Command::MoveCurrentToTop,
    Command::MoveCurrentUp,
    Command::MoveCurrentDown,
    Command::MoveCurrentToBottom,
    Command::MoveCurrentRight,
    Command::NewSibling,
    Command::NewSibling,
    Command::Hide,
    Command::MarkCurrentDone,
    Command::MarkCurrentTodo,
    Command::MarkCurrentWontDo,
    Command::MarkCurrentCategory,
    Command::AddEntryToTodoListAndShow,
    Command::CommitEdit,
};

} // namespace

/// Thousands of random steps through files that come and go, with the model and the stored
/// outlines compared with a plain second telling after each.
class HierarchyRandomWalkTest : public QObject
{
    Q_OBJECT

private:
    int below(int limit) { return static_cast<int>(m_random() % static_cast<unsigned>(limit)); }
    QString randomText();
    void typeSomething();
    bool step();
    bool randomCommand();
    bool wasAnswered(bool accepted, const QString &typed);
    bool randomJump();
    bool openOrCloseAFile();
    bool discardOrSave();
    QString difference();
    QString shownByTheModel() const;

    std::mt19937 m_random;
    std::unique_ptr<HierarchyDesk> m_desk;
    PlainOutline m_plain;
    std::vector<PlainOutline::File> m_closed;
    QStringList m_log;
    int m_texts = 0;
    std::map<Command, int> m_carriedOut;
    std::optional<QString> m_expectedText; ///< What the model is to show as the current text.

private slots:
    void theModelAgreesWithAPlainOutline_data();
    void theModelAgreesWithAPlainOutline();
};

QString HierarchyRandomWalkTest::randomText()
{
    const QString text = u"text %1"_s.arg(++m_texts);
    switch (below(6)) {
    case 0:
        return u"  "_s + text + u"\n"_s;
    case 1:
        return text + u"\n\nsecond line"_s;
    case 2:
        return text + u' ' + QString(below(120), u'w');
    default:
        return text;
    }
}

/// Leaves the text, changes it or clears it.
void HierarchyRandomWalkTest::typeSomething()
{
    // The panel shows no editor.
    if (m_plain.currentFile() == -1)
        return;
    const bool small = m_plain.size() < largestOutline;
    const int chance = below(100);
    if (m_plain.atNewEntry() ? chance < (small ? 75 : 10) : chance < 15)
        m_desk->type(randomText());
    else if (chance > (small ? 94 : 75))
        m_desk->type(chance % 2 == 0 ? QString() : u" \n"_s);
    else
        return;
    m_log += u"typed \"%1\""_s.arg(m_desk->editor->text());
}

bool HierarchyRandomWalkTest::randomCommand()
{
    typeSomething();
    const Command command = commands[below(static_cast<int>(std::size(commands)))];
    m_log += u"command %1"_s.arg(static_cast<int>(command));
    const QString typed = m_desk->editor->text();
    const bool accepted = m_plain.command(command, typed);
    m_desk->run(command);
    if (command == Command::Hide)
        return m_desk->refusals() == 0 && m_desk->changed->isEmpty();
    if (accepted)
        ++m_carriedOut[command];
    return wasAnswered(accepted, typed);
}

/// Whether the model beeped or redrew as it should; notes which text it is to show now.
bool HierarchyRandomWalkTest::wasAnswered(bool accepted, const QString &typed)
{
    m_expectedText = accepted ? m_plain.text() : typed.trimmed();
    if (!accepted)
        return m_desk->refusals() == 1;
    return m_desk->refusals() == 0 && !m_desk->changed->isEmpty()
        && m_desk->editor->text() == m_plain.text();
}

bool HierarchyRandomWalkTest::randomJump()
{
    typeSomething();
    const int file = below(m_plain.fileCount() + 1);
    const int highest
        = file < m_plain.fileCount() ? static_cast<int>(m_desk->rows(file).size()) + 2 : 3;
    const qint64 id = 1 + below(highest);
    const bool toChild = below(2) == 0;
    m_log += u"jump to %1 %2 %3"_s.arg(file).arg(id).arg(toChild);
    const QString typed = m_desk->editor->text();
    const bool accepted = m_plain.jump(file, id, toChild, typed);
    m_desk->model->goToEntry({file, id}, toChild);
    return wasAnswered(accepted, typed);
}

bool HierarchyRandomWalkTest::openOrCloseAFile()
{
    typeSomething();
    const QString typed = m_desk->editor->text().trimmed();
    const int before = m_plain.currentFile();
    bool survived = before != -1;
    if (!m_closed.empty() && (m_plain.fileCount() == 0 || below(3) > 0)) {
        const int index = below(m_plain.fileCount() + 1);
        m_log += u"open at %1"_s.arg(index);
        m_plain.reopen(m_closed.back(), index);
        m_desk->files->openFile(m_desk->filePath(m_closed.back().name), index);
        m_closed.pop_back();
    } else {
        const int index = below(m_plain.fileCount());
        m_log += u"close %1"_s.arg(index);
        survived = survived && index != before;
        m_closed.push_back(m_plain.close(index));
        m_desk->files->unloadFile(index, true);
    }
    // Typed text outlives it, unless its own file was closed.
    m_expectedText = survived ? typed : m_plain.text();
    return m_desk->editor->text() == *m_expectedText && m_desk->refusals() == 0;
}

bool HierarchyRandomWalkTest::discardOrSave()
{
    if (below(2) == 0) {
        m_log += u"discard"_s;
        m_plain.discard();
        m_desk->files->rollbackAndRestartTransactions();
        return wasAnswered(true, QString());
    }
    m_log += u"save"_s;
    const QString typed = m_desk->editor->text();
    const bool accepted = m_plain.command(Command::SaveChangesAndHide, typed);
    m_desk->run(Command::SaveChangesAndHide);
    return wasAnswered(accepted, typed) && !(accepted && m_desk->somethingWritten());
}

bool HierarchyRandomWalkTest::step()
{
    m_desk->forget();
    m_expectedText.reset();
    const int chance = below(1000);
    if (chance < 940)
        return randomCommand();
    if (chance < 980)
        return randomJump();
    return chance < 992 ? discardOrSave() : openOrCloseAFile();
}

QString HierarchyRandomWalkTest::shownByTheModel() const
{
    const HierarchyModel &model = *m_desk->model;
    return m_desk->where() + u" states "_s + Outline::markOf(model.getParentState())
        + Outline::markOf(model.getPrecedingSiblingEntryState()) + Outline::markOf(model.getState())
        + Outline::markOf(model.getFollowingSiblingEntryState())
        + (model.getHasChildren() ? u" with children"_s : QString());
}

/// What differs between the model, its files and the plain outline; empty when nothing does.
QString HierarchyRandomWalkTest::difference()
{
    if (m_expectedText && shownByTheModel() != m_plain.where(*m_expectedText))
        return u"shown:    %1\nexpected: %2"_s.arg(shownByTheModel(),
                                                   m_plain.where(*m_expectedText));
    const bool done = m_desk->model->getState() == EntryState::Done;
    if (m_desk->model->getDoneDate().isNull() == done)
        return u"done date and state disagree"_s;
    if (m_desk->files->getFileCount() != m_plain.fileCount())
        return u"number of files"_s;
    for (int i = 0; i < m_plain.fileCount(); ++i) {
        if (m_desk->store(i).dbFileName() != m_plain.file(i).name)
            return u"order of the files"_s;
        const Outline::Rows rows = m_desk->rows(i);
        if (Outline::hasBadNumbers(rows))
            return u"numbers:\n"_s + m_desk->numberedOutline(i);
        if (Outline::dump(rows) != m_plain.dump(i))
            return u"file %1:\n%2expected:\n%3"_s.arg(i).arg(Outline::dump(rows), m_plain.dump(i));
    }
    return {};
}

void HierarchyRandomWalkTest::theModelAgreesWithAPlainOutline_data()
{
    QTest::addColumn<unsigned>("seed");
    QTest::newRow("seed 1") << 1U;
    QTest::newRow("seed 2") << 2U;
    const unsigned given = qEnvironmentVariableIntValue(seedVariable);
    const unsigned seed = given != 0 ? given : QRandomGenerator::global()->generate() >> 1;
    QTest::addRow("seed %u", seed) << seed;
}

void HierarchyRandomWalkTest::theModelAgreesWithAPlainOutline()
{
    QFETCH(const unsigned, seed);
    qInfo("%s=%u", seedVariable, seed);
    m_random.seed(seed);
    m_log.clear();
    m_closed.clear();
    m_carriedOut.clear();
    m_plain = PlainOutline();
    m_desk = std::make_unique<HierarchyDesk>();
    for (const QString &name : {u"one.bdl"_s, u"two.bdl"_s, u"three.bdl"_s}) {
        m_desk->addFile(name);
        m_plain.addFile(name, m_plain.fileCount());
    }
    m_desk->start();
    m_plain.command(Command::GoToFirst, m_plain.text());

    for (int i = 0; i < steps; ++i) {
        bool good = false;
        const QByteArray thrown = thrownBy([&] { good = step(); });
        const QString differs = difference();
        const QString report = u"step %1, after:\n%2\nthrown: %3\n%4"_s.arg(i).arg(
            m_log.mid(m_log.size() - 12).join(u'\n'), QString::fromUtf8(thrown), differs);
        QVERIFY2(thrown == "nothing" && good && differs.isEmpty(), qPrintable(report));
    }

    // A walk that got stuck somewhere would prove little.
    for (const Command command : commands)
        QVERIFY(command == Command::Hide || m_carriedOut[command] > 0);

    // Saved and opened again, the outlines are the same.
    m_desk->type(u"the last text"_s);
    QVERIFY(m_desk->model->getAndWriteModifiedBodyToDb());
    QStringList outlines;
    for (int i = 0; i < m_desk->files->getFileCount(); ++i)
        outlines += m_desk->outline(i);
    m_desk->run(Command::SaveChangesAndHide);
    m_desk->restart();
    for (int i = 0; i < m_desk->files->getFileCount(); ++i)
        QCOMPARE(m_desk->outline(i), outlines.at(i));
    QCOMPARE(m_desk->files->getFileCount(), outlines.size());
}

QTEST_MAIN(HierarchyRandomWalkTest)
#include "HierarchyRandomWalkTest.moc"
