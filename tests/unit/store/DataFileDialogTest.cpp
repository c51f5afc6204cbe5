// SPDX-License-Identifier: MIT
#include "FileUser.h"
#include "StoreTestSupport.h"
#include "fakes/TestSettings.h"
#include "store/FileManager.h"

#include <QAbstractItemView>
#include <QFileSystemModel>
#include <QTest>
#include <array>
#include <cstring>
#include <unistd.h>
#ifdef Q_OS_LINUX
#include <sys/inotify.h>
#endif

using namespace Qt::StringLiterals;
using namespace StoreTest;

namespace
{
/// Whether \a dialog shows \a count files of the folder \a folder, each with its icon and kind.
bool showsFiles(QFileDialog *dialog, const QString &folder, int count)
{
    if (dialog->nameFilters() != QStringList{u"Any file (*)"_s})
        dialog->setNameFilter(u"Any file (*)"_s);
    const auto *model = dialog->findChild<QFileSystemModel *>();
    const QModelIndex parent = model->index(folder);
    if (model->rowCount(parent) != count)
        return false;
    for (int row = 0; row < count; ++row) {
        const QModelIndex file = model->index(row, 0, parent);
        if (file.data(QFileSystemModel::FileIconRole).value<QIcon>().isNull()
            || file.siblingAtColumn(2).data().toString().isEmpty())
            return false;
    }
    return true;
}

/// The list that \a dialog shows in its present view.
QAbstractItemView *shownView(QFileDialog *dialog)
{
    const bool details = dialog->viewMode() == QFileDialog::Detail;
    return dialog->findChild<QAbstractItemView *>(details ? u"treeView"_s : u"listView"_s);
}

bool changesNothingByMouse(const QAbstractItemView *view)
{
    return view->dragDropMode() == QAbstractItemView::NoDragDrop && !view->acceptDrops()
        && !view->dragEnabled() && view->editTriggers() == QAbstractItemView::NoEditTriggers
        && view->contextMenuPolicy() == Qt::NoContextMenu;
}

#ifdef Q_OS_LINUX
/// Notes which files of a folder are opened by whomever.
class OpenWatch
{
public:
    explicit OpenWatch(const QString &folder)
        : m_descriptor(inotify_init1(IN_NONBLOCK))
    {
        inotify_add_watch(m_descriptor, QFile::encodeName(folder).constData(), IN_OPEN | IN_CLOSE);
    }
    ~OpenWatch() { ::close(m_descriptor); }
    Q_DISABLE_COPY_MOVE(OpenWatch)

    /// The names of the files (not folders) that were opened or closed since the last call.
    QStringList names() const
    {
        QStringList found;
        alignas(inotify_event) std::array<char, 4096> buffer{};
        while (true) {
            const ssize_t length = ::read(m_descriptor, buffer.data(), buffer.size());
            if (length <= 0)
                break;
            for (ssize_t at = 0; at < length;) {
                inotify_event event{};
                std::memcpy(&event, buffer.data() + at, sizeof event);
                if (!(event.mask & IN_ISDIR))
                    found << QString::fromLocal8Bit(buffer.data() + at + sizeof event);
                at += static_cast<ssize_t>(sizeof event + event.len);
            }
        }
        found.removeDuplicates();
        return found;
    }

private:
    int m_descriptor;
};
#endif
} // namespace

/// What the file dialogs do to the files that they show: nothing.
class DataFileDialogTest : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
#ifdef Q_OS_LINUX // other systems don't tell which files are opened
    void dialogOpensNoneOfTheFilesThatItShows_data();
    void dialogOpensNoneOfTheFilesThatItShows();
#endif
    void dialogKeepsTheLocksOfOpenFiles_data();
    void dialogKeepsTheLocksOfOpenFiles();
    void dialogMovesRenamesAndDeletesNothing_data();
    void dialogMovesRenamesAndDeletesNothing();

private:
    void addDialogs();
    void showDialog();

    QByteArray m_homeBefore;
    std::unique_ptr<TestSettings> m_settings;
    std::unique_ptr<FileManager> m_files;
};

void DataFileDialogTest::init()
{
    m_homeBefore = qgetenv("HOME");
    m_settings = std::make_unique<TestSettings>();
    m_files = std::make_unique<FileManager>();
}

void DataFileDialogTest::cleanup()
{
    m_files.reset();
    m_settings.reset();
    qputenv("HOME", m_homeBefore);
}

void DataFileDialogTest::addDialogs()
{
    QTest::addColumn<bool>("create");
    QTest::newRow("create") << true;
    QTest::newRow("open") << false;
}

void DataFileDialogTest::showDialog()
{
    QFETCH(bool, create);
    if (create)
        m_files->createFile(0);
    else
        m_files->loadFile(0);
}

#ifdef Q_OS_LINUX
void DataFileDialogTest::dialogOpensNoneOfTheFilesThatItShows_data()
{
    addDialogs();
}

void DataFileDialogTest::dialogOpensNoneOfTheFilesThatItShows()
{
    FileUser user({QString()});
    const QStringList fileNames
        = {u"work.bdl"_s, u"notes.db"_s, u"plain"_s, u"a.txt"_s, u"picture.png"_s, u"b.desktop"_s};
    for (const QString &name : fileNames)
        QVERIFY(writeBytes(user.home(name), "content"));
    // Where a dialog starts that is told of no folder.
    const QString formerFolder = QDir::currentPath();
    QVERIFY(QDir::setCurrent(user.home(QString())));
    const OpenWatch watch(user.home(QString()));
    user.beforeAnswering([&](QFileDialog *dialog) {
        return showsFiles(dialog, user.home(QString()), static_cast<int>(fileNames.size()));
    });
    showDialog();
    QVERIFY(QDir::setCurrent(formerFolder));
    QCOMPARE(user.dialogs.size(), 1);
    QCOMPARE(watch.names(), QStringList());
    // The watch does notice an opened file.
    QFile opened(user.home(u"plain"_s));
    QVERIFY(opened.open(QFile::ReadOnly));
    QCOMPARE(watch.names(), QStringList{u"plain"_s});
}
#endif

void DataFileDialogTest::dialogKeepsTheLocksOfOpenFiles_data()
{
    addDialogs();
}

void DataFileDialogTest::dialogKeepsTheLocksOfOpenFiles()
{
    FileUser user({QString()});
    const QStringList paths
        = {user.home(u"work.bdl"_s), user.home(u"notes.db"_s), user.home(u"plain"_s)};
    for (const QString &path : paths) {
        m_files->openFile(path, 0);
        m_files->getFile(0)->updateEntryBody(1, u"unsaved"_s, true);
    }
    // Each with its journal.
    user.beforeAnswering([&](QFileDialog *dialog) {
        return showsFiles(dialog, user.home(QString()), 2 * static_cast<int>(paths.size()));
    });
    showDialog();
    QCOMPARE(user.dialogs.size(), 1);
    for (const QString &path : paths)
        QVERIFY2(!canBeWrittenByOthers(path), qPrintable(path));
    QVERIFY(m_files->commitAndRestartTransactions());
    for (const QString &path : paths) {
        QCOMPARE(rows(path, u"SELECT content FROM entrybody"_s), QStringList{u"unsaved"_s});
        QVERIFY(canBeWrittenByOthers(path));
    }
}

void DataFileDialogTest::dialogMovesRenamesAndDeletesNothing_data()
{
    addDialogs();
}

void DataFileDialogTest::dialogMovesRenamesAndDeletesNothing()
{
    FileUser user({QString()}, {QMessageBox::Yes, QMessageBox::Yes});
    const QString path = user.home(u"work.bdl"_s);
    m_files->openFile(path, 0);
    int views = 0;
    QList<QFileDialog::ViewMode> toTry = {QFileDialog::Detail, QFileDialog::List};
    bool pressing = false;
    user.beforeAnswering([&](QFileDialog *dialog) {
        if (!pressing && (toTry.isEmpty() || !QFile::exists(path)))
            return true;
        if (pressing || !showsFiles(dialog, user.home(QString()), 1))
            return false;
        dialog->setViewMode(toTry.last());
        QAbstractItemView *const view = shownView(dialog);
        views += changesNothingByMouse(view) ? 1 : 0;
        dialog->selectFile(path);
        view->setFocus();
        // Not from in here: a question would not be answered.
        pressing = true;
        QTimer::singleShot(0, view, [&pressing, &toTry, view] {
            QTest::keyClick(view, Qt::Key_Delete);
            toTry.removeLast();
            pressing = false;
        });
        return false;
    });
    showDialog();
    QVERIFY(QFile::exists(path));
    QCOMPARE(views, 2);
    QCOMPARE(user.boxes.texts(), QStringList());
}

QTEST_MAIN(DataFileDialogTest)
#include "DataFileDialogTest.moc"
