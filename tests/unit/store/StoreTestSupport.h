// SPDX-License-Identifier: MIT
#pragma once

#include "store/DiskStore.h"

#include <QElapsedTimer>
#include <QMessageBox>
#include <QProcess>
#include <QTimer>
#include <functional>
#include <optional>

class FileManager;
class TestSettings;

/// What the tests of the store share: looking at files from outside, other processes that hold
/// them, errors caught as values, and modal boxes answered as a user would.
namespace StoreTest
{

/// For stores that wait in vain.
constexpr int shortPatienceMs = 1000;

/// Writes the files of tests/fixtures/make-old-files into \a folder. \return false when that fails.
bool makeOldFiles(const QString &folder);
/// The whole content of the file at \a path as tests/fixtures/dump-file prints it.
QString dump(const QString &path);
/// The committed text tests/fixtures/expected/NAME.txt.
QString expectedDump(const QString &name);
/// The first line in which two texts differ, both versions of it; empty when they are the same.
QString firstDifference(const QString &actual, const QString &expected);

/// The rows that \a sql gives in the file at \a path, as another connection sees it: columns joined
/// by "|", NULL as "NULL". A failure is one row that starts with "failed: ".
QStringList rows(const QString &path, const QString &sql);
/// Runs \a statements on the file at \a path, each committed at once. \return the first error.
QString change(const QString &path, const QStringList &statements);
/// What is in the file at \a path, byte by byte.
QByteArray bytes(const QString &path);
bool writeBytes(const QString &path, const QByteArray &content);
/// Overwrites one page of the file at \a path, which no store may have open: the \a number th (from
/// 0) of those that hold the rows of the table or index \a name, in their order.
bool damagePage(const QString &path, const QString &name, int number);

/// Whether another process gets the write lock of the file at \a path (and gives it back at once).
bool canBeWrittenByOthers(const QString &path);

/// "key=path" of each file that the settings list, sorted by key as text.
QStringList storedFiles();
/// The names of the open files, in their order.
QStringList names(const FileManager &files);
/// Fresh data files with these names, in the test's folder; their paths.
QStringList makeFiles(const TestSettings &settings, const QStringList &fileNames);

/// Makes a file of today's form at \a path, with its root entry only.
void makeEmptyStore(const QString &path);
/// The rows of \a sql as the store's own transaction sees them.
QStringList rowsInside(const DiskStore &store, const QString &sql);
/// "text@sequence" of the children of \a parentId, in their order, as the store sees them.
QStringList childTexts(const DiskStore &store, long long parentId);
/// Id of the root entry.
long long rootOf(DiskStore &store);
/// Inserts an entry that is not done.
long long addEntry(DiskStore &store, long long parentId, const QString &text, int sequence,
                   EntryState state = EntryState::Todo);

/// The file error that \a action throws; nothing when it throws none.
std::optional<DiskStore::FileException> fileError(const std::function<void()> &action);
/// The file error of opening \a source.
std::optional<DiskStore::FileException> openingError(const DiskStore::Source &source);
/// The bare text that \a action throws; null when it throws none.
QString bareText(const std::function<void()> &action);
/// One of the seven lines of technical details, without its label.
QString detail(const DiskStore::FileException &e, const QString &label);

/// Another process with an SQL connection of its own, which runs the statements given and then
/// keeps its locks until it is let go, or for the time given; \a last is what it does then.
class OtherProcess
{
public:
    OtherProcess(const QString &path, const QStringList &statements, double seconds = 600,
                 const QString &last = QStringLiteral("ROLLBACK"));
    ~OtherProcess();
    /// Whether it has got so far that its locks are held.
    bool isHolding() const { return m_holding; }
    /// Ends it in good order and waits for its end.
    void letGo();

private:
    QProcess m_process;
    bool m_holding = false;
};

/// For its lifetime the process has no more rights than an ordinary user, so that a read-only file
/// is read-only even where the tests are run by the administrator.
class AsOrdinaryUser
{
public:
    /// \a folder (and what is in it) then belongs to that user.
    explicit AsOrdinaryUser(const QString &folder);
    ~AsOrdinaryUser();
    bool isOrdinary() const { return m_ordinary; }

private:
    bool m_wasAdministrator = false;
    bool m_ordinary = false;
};

/// One message box that was on the screen, as the user saw it.
struct SeenBox {
    QString title;
    QString text;
    QString details;
    QMessageBox::Icon icon = QMessageBox::NoIcon;
    QMessageBox::StandardButtons buttons;
    QMessageBox::StandardButton defaultButton = QMessageBox::NoButton;
    bool applicationModal = false;
    bool hasParent = false;
};

/// Answers modal message boxes with the buttons given, in their order, and notes each box. A box
/// that nobody expected is noted and closed, so that a test fails instead of hanging.
class BoxAnswers
{
public:
    explicit BoxAnswers(const QList<QMessageBox::StandardButton> &answers = {});
    QList<SeenBox> seen() const { return m_seen; }
    QStringList texts() const;
    /// Runs while the given box (counted from 0) is open, before it is answered.
    void before(int number, const std::function<void()> &action) { m_before[number] = action; }
    /// Called with every modal widget that is no message box.
    void onOtherModal(const std::function<void(QWidget *)> &action) { m_other = action; }

private:
    void answer(QMessageBox *box);
    void note(QMessageBox *box);

    QTimer m_timer;
    QList<QMessageBox::StandardButton> m_answers;
    QList<SeenBox> m_seen;
    std::map<int, std::function<void()>> m_before;
    std::function<void(QWidget *)> m_other;
};

/// Collects what is written to the debug output during its lifetime.
class DebugLines
{
public:
    DebugLines();
    ~DebugLines();
    static QStringList lines();
    /// Whether one line holds all of \a parts.
    static bool has(const QStringList &parts);
};

} // namespace StoreTest
