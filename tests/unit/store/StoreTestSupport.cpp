// SPDX-License-Identifier: MIT
#include "StoreTestSupport.h"

#include "fakes/TestSettings.h"
#include "store/FileManager.h"

#include <QAbstractButton>
#include <QApplication>
#include <QDirIterator>
#include <QFile>
#include <QPushButton>
#include <QSqlDatabase>
#include <QSqlRecord>
#include <QStandardPaths>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace
{
constexpr uid_t ordinaryUser = 65534;
const QString outsideName = u"outside view of the tests"_s;

QString fixture(const QString &name)
{
    return QStringLiteral(BRINDLE_FIXTURES) + u'/' + name;
}

QByteArray runScript(const QString &name, const QString &argument, bool *ok)
{
    QProcess process;
    process.start(u"python3"_s, {fixture(name), argument});
    *ok = process.waitForFinished(30000) && process.exitStatus() == QProcess::NormalExit
        && process.exitCode() == 0;
    if (!*ok)
        qWarning().noquote() << name << process.errorString() << process.readAllStandardError();
    return process.readAllStandardOutput();
}

QStringList readRows(QSqlQuery query)
{
    QStringList result;
    while (query.next()) {
        QStringList columns;
        for (int i = 0; i < query.record().count(); ++i)
            columns << (query.isNull(i) ? u"NULL"_s : query.value(i).toString());
        result << columns.join(u'|');
    }
    return result;
}

QStringList &debugLines()
{
    static QStringList lines;
    return lines;
}

QtMessageHandler &formerHandler()
{
    static QtMessageHandler handler = nullptr;
    return handler;
}
} // namespace

bool StoreTest::makeOldFiles(const QString &folder)
{
    bool ok = false;
    runScript(u"make-old-files"_s, folder, &ok);
    return ok;
}

QString StoreTest::dump(const QString &path)
{
    bool ok = false;
    const QByteArray text = runScript(u"dump-file"_s, path, &ok);
    return ok ? QString::fromUtf8(text) : u"dumping failed"_s;
}

QString StoreTest::expectedDump(const QString &name)
{
    return QString::fromUtf8(bytes(fixture(u"expected/"_s + name + u".txt"_s)));
}

QString StoreTest::firstDifference(const QString &actual, const QString &expected)
{
    const QStringList a = actual.split(u'\n');
    const QStringList b = expected.split(u'\n');
    for (qsizetype i = 0; i < std::max(a.size(), b.size()); ++i) {
        const QString lineA = i < a.size() ? a[i] : u"(no line)"_s;
        const QString lineB = i < b.size() ? b[i] : u"(no line)"_s;
        if (lineA != lineB) {
            return u"line %1 is <%2>, expected <%3>"_s.arg(QString::number(i + 1), lineA, lineB);
        }
    }
    return {};
}

QStringList StoreTest::rows(const QString &path, const QString &sql)
{
    QStringList result;
    {
        QSqlDatabase database = QSqlDatabase::addDatabase(u"QSQLITE"_s, outsideName);
        database.setDatabaseName(path);
        if (!database.open())
            result << u"failed: "_s + database.lastError().text();
        QSqlQuery query(database);
        if (query.exec(sql))
            result << readRows(std::move(query));
        else
            result << u"failed: "_s + query.lastError().text();
    }
    QSqlDatabase::removeDatabase(outsideName);
    return result;
}

QString StoreTest::change(const QString &path, const QStringList &statements)
{
    for (const QString &statement : statements) {
        const QStringList result = rows(path, statement);
        if (!result.isEmpty() && result.first().startsWith(u"failed: "_s))
            return statement + u' ' + result.first();
    }
    return {};
}

QByteArray StoreTest::bytes(const QString &path)
{
    // In another process: closing a file here would drop the locks of a store that has it open.
    QProcess process;
    process.start(u"cat"_s, {path});
    const bool ok = process.waitForFinished() && process.exitCode() == 0;
    return ok ? process.readAllStandardOutput() : QByteArray("cannot be read");
}

bool StoreTest::writeBytes(const QString &path, const QByteArray &content)
{
    QFile file(path);
    return file.open(QFile::WriteOnly) && file.write(content) == content.size();
}

bool StoreTest::canBeWrittenByOthers(const QString &path)
{
    const QString script = uR"(
import sqlite3, sys
connection = sqlite3.connect(sys.argv[1], isolation_level=None, timeout=0)
try:
    connection.execute("BEGIN IMMEDIATE")
    print("got it")
except sqlite3.OperationalError as error:
    print(error)
)"_s;
    QProcess process;
    process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    process.start(u"python3"_s, {u"-c"_s, script, path});
    process.waitForFinished(15000);
    const QByteArray answer = process.readAllStandardOutput().trimmed();
    if (answer != "got it" && answer != "database is locked")
        qFatal("the other process could not try: %s", answer.constData());
    return answer == "got it";
}

bool StoreTest::damagePage(const QString &path, const QString &name, int number)
{
    const QStringList pages = rows(
        path,
        u"SELECT pageno FROM dbstat WHERE name='%1' AND pagetype='leaf' ORDER BY path"_s.arg(name));
    const int pageSize = rows(path, u"PRAGMA page_size"_s).value(0).toInt();
    bool isNumber = false;
    const int page = pages.value(number).toInt(&isNumber);
    QFile file(path);
    return isNumber && file.open(QFile::ReadWrite) && file.seek(qint64(page - 1) * pageSize)
        && file.write(QByteArray(pageSize, '\xff')) == pageSize;
}

QStringList StoreTest::storedFiles()
{
    QSettings settings;
    settings.beginGroup(u"loadfiles"_s);
    QStringList result;
    for (const QString &key : settings.childKeys())
        result << key + u'=' + settings.value(key).toString();
    result.sort();
    return result;
}

QStringList StoreTest::names(const FileManager &files)
{
    QStringList result;
    for (int i = 0; i < files.getFileCount(); ++i)
        result << files.getFile(i)->dbFileName();
    return result;
}

QStringList StoreTest::makeFiles(const TestSettings &settings, const QStringList &fileNames)
{
    QStringList paths;
    for (const QString &name : fileNames) {
        paths << settings.filePath(name);
        makeEmptyStore(paths.last());
    }
    return paths;
}

void StoreTest::makeEmptyStore(const QString &path)
{
    const DiskStore store(path);
}

QStringList StoreTest::rowsInside(const DiskStore &store, const QString &sql)
{
    QSqlQuery query(QSqlDatabase::database(store.dbFilePath(), false));
    return query.exec(sql) ? readRows(std::move(query))
                           : QStringList{u"failed: "_s + query.lastError().text()};
}

QStringList StoreTest::childTexts(const DiskStore &store, long long parentId)
{
    return rowsInside(store,
                      u"SELECT content || '@' || sequence FROM entry INNER JOIN entrybody ON "
                      "docid=id WHERE parentid=%1 ORDER BY sequence, id"_s.arg(parentId));
}

long long StoreTest::rootOf(DiskStore &store)
{
    return store.getEntryId(-1, 0);
}

long long StoreTest::addEntry(DiskStore &store, long long parentId, const QString &text,
                              int sequence, EntryState state)
{
    return store.insertEntry(parentId, text, sequence, state, {});
}

std::optional<DiskStore::FileException> StoreTest::fileError(const std::function<void()> &action)
{
    try {
        action();
    } catch (const DiskStore::FileException &e) {
        return e;
    }
    return std::nullopt;
}

std::optional<DiskStore::FileException> StoreTest::openingError(const DiskStore::Source &source)
{
    return fileError([&source] { const DiskStore store(source); });
}

QString StoreTest::bareText(const std::function<void()> &action)
{
    try {
        action();
    } catch (const char *text) {
        return QString::fromUtf8(text);
    }
    return {};
}

QString StoreTest::detail(const DiskStore::FileException &e, const QString &label)
{
    const QString start = label + u": "_s;
    for (const QString &line : e.details.split(u'\n'))
        if (line.startsWith(start))
            return line.mid(start.size());
    return u"(no such line)"_s;
}

StoreTest::OtherProcess::OtherProcess(const QString &path, const QStringList &statements,
                                      double seconds, const QString &last)
{
    const QString script = uR"(
import select, sqlite3, sys
connection = sqlite3.connect(sys.argv[1], isolation_level=None, timeout=0)
for statement in sys.argv[4:]:
    connection.execute(statement).fetchall()
print("holding", flush=True)
select.select([sys.stdin], [], [], float(sys.argv[2]))
if connection.in_transaction:
    connection.execute("PRAGMA busy_timeout=15000")
    connection.execute(sys.argv[3])
connection.close()
)"_s;
    m_process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    m_process.start(u"python3"_s,
                    QStringList{u"-c"_s, script, path, QString::number(seconds), last}
                        + statements);
    m_holding = m_process.waitForReadyRead(15000) && m_process.readLine().startsWith("holding");
}

StoreTest::OtherProcess::~OtherProcess()
{
    letGo();
}

void StoreTest::OtherProcess::letGo()
{
    m_process.closeWriteChannel();
    m_process.waitForFinished(15000);
}

StoreTest::AsOrdinaryUser::AsOrdinaryUser(const QString &folder)
{
    m_wasAdministrator = getuid() == 0;
    if (!m_wasAdministrator) {
        m_ordinary = true;
        return;
    }
    QStringList paths{folder};
    for (QDirIterator it(folder, QDir::AllEntries | QDir::NoDotAndDotDot,
                         QDirIterator::Subdirectories);
         it.hasNext();)
        paths << it.next();
    bool handedOver = true;
    for (const QString &path : std::as_const(paths))
        handedOver = handedOver && chown(QFile::encodeName(path).constData(), ordinaryUser, 0) == 0;
    m_ordinary = handedOver && setresuid(ordinaryUser, ordinaryUser, 0) == 0;
}

StoreTest::AsOrdinaryUser::~AsOrdinaryUser()
{
    if (m_wasAdministrator && setresuid(0, 0, 0) != 0)
        qFatal("the tests could not get their rights back");
}

StoreTest::BoxAnswers::BoxAnswers(const QList<QMessageBox::StandardButton> &answers)
    : m_answers(answers)
{
    QObject::connect(&m_timer, &QTimer::timeout, &m_timer, [this] {
        QWidget *const modal = QApplication::activeModalWidget();
        if (auto *box = qobject_cast<QMessageBox *>(modal))
            answer(box);
        else if (modal && m_other)
            m_other(modal);
    });
    m_timer.start(5);
}

QStringList StoreTest::BoxAnswers::texts() const
{
    QStringList result;
    for (const SeenBox &box : m_seen)
        result << box.text;
    return result;
}

void StoreTest::BoxAnswers::answer(QMessageBox *box)
{
    // Noted at the first look and answered at the next, so that what happens meanwhile can happen.
    const QVariant noted = box->property("noted");
    if (!noted.isValid()) {
        note(box);
        return;
    }
    const int number = noted.toInt();
    QAbstractButton *const button
        = number < m_answers.size() ? box->button(m_answers.at(number)) : nullptr;
    if (button)
        button->click();
    else
        box->close();
}

void StoreTest::BoxAnswers::note(QMessageBox *box)
{
    const int number = static_cast<int>(m_seen.size());
    box->setProperty("noted", number);
    m_seen << SeenBox{box->windowTitle(),
                      box->text(),
                      box->detailedText(),
                      box->icon(),
                      box->standardButtons(),
                      box->standardButton(box->defaultButton()),
                      box->windowModality() == Qt::ApplicationModal,
                      box->parentWidget() != nullptr};
    if (const auto action = m_before.find(number); action != m_before.end())
        action->second();
}

StoreTest::DebugLines::DebugLines()
{
    debugLines().clear();
    formerHandler() = qInstallMessageHandler(
        [](QtMsgType, const QMessageLogContext &, const QString &text) { debugLines() << text; });
}

StoreTest::DebugLines::~DebugLines()
{
    qInstallMessageHandler(formerHandler());
}

QStringList StoreTest::DebugLines::lines()
{
    return debugLines();
}

bool StoreTest::DebugLines::has(const QStringList &parts)
{
    for (const QString &line : debugLines()) {
        bool all = true;
        for (const QString &part : parts)
            all = all && line.contains(part);
        if (all)
            return true;
    }
    return false;
}
