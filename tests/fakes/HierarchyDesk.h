// SPDX-License-Identifier: MIT
#pragma once

#include "fakes/Outline.h"
#include "fakes/TestSettings.h"
#include "model/HierarchyModel.h"
#include "shared/Refusal.h"
#include "store/FileManager.h"

#include <QMessageBox>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>
#include <QTimer>
#include <QWidget>
#include <functional>
#include <memory>

/// A window that counts how often the user was told no while it was the active one.
class RefusalCounter : public QWidget
{
public:
    int count() const { return m_count; }
    void reset() { m_count = 0; }

protected:
    bool event(QEvent *event) override
    {
        if (event->type() == Refusal::eventType())
            ++m_count;
        return QWidget::event(event);
    }

private:
    int m_count = 0;
};

/// Stands in for the main window's editor: answers the model's request for the text, and takes the
/// model's text at every redraw.
class EditorStandIn : public QObject
{
public:
    explicit EditorStandIn(HierarchyModel *model)
        : m_text(model->getBody())
    {
        connect(model, &HierarchyModel::requestBodyUpdate, this,
                [this, model] { model->updateCurrentBody(m_text); });
        connect(model, &HierarchyModel::changed, this,
                [this, model] { m_text = model->getBody(); });
    }

    QString text() const { return m_text; }
    void type(const QString &text) { m_text = text; }

private:
    QString m_text;
};

/// Answers the next message box that opens, from inside its own event loop.
class BoxAnswer : public QObject
{
public:
    using Action = std::function<void(QMessageBox *)>;

    explicit BoxAnswer(Action action)
        : m_action(std::move(action))
    {
        connect(&m_timer, &QTimer::timeout, this, [this] {
            auto *box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget());
            if (box == nullptr || !box->isVisible())
                return;
            m_timer.stop();
            m_text = box->text();
            m_action(box);
        });
        m_timer.start(5);
    }

    static Action press(QMessageBox::StandardButton button)
    {
        return [button](QMessageBox *box) { box->button(button)->click(); };
    }

    bool wasShown() const { return !m_timer.isActive(); }
    /// The box's main text.
    QString text() const { return m_text; }

private:
    Action m_action;
    QTimer m_timer;
    QString m_text;
};

/// Presses the default button of every message box that opens, and remembers their texts.
class BoxReader : public QObject
{
public:
    BoxReader()
    {
        connect(&m_timer, &QTimer::timeout, this, [this] {
            auto *box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget());
            if (box == nullptr || !box->isVisible())
                return;
            m_texts += box->text();
            box->defaultButton()->click();
        });
        m_timer.start(5);
    }

    QStringList texts() const { return m_texts; }

private:
    QTimer m_timer;
    QStringList m_texts;
};

/// The text that \a action throws; "nothing" or "a file error" when it throws no text.
template <typename Action> QByteArray thrownBy(Action &&action)
{
    try {
        action();
    } catch (const char *text) {
        return text;
    } catch (const DiskStore::FileException &e) {
        return "a file error: " + e.message.toUtf8() + ' ' + e.details.toUtf8();
    }
    return "nothing";
}

/// The hierarchy model on real files, wired as the program wires it, with the main window's part
/// played by an EditorStandIn and a RefusalCounter. List the files, then start().
class HierarchyDesk
{
public:
    /// Makes a data file with \a outline below its root; it is not opened.
    QString makeFile(const QString &name, const QString &outline = {})
    {
        const QString path = m_settings.filePath(name);
        DiskStore store(path);
        Outline::build(store, store.getEntryId(-1, 0), outline);
        store.commitAndRestartTransaction();
        return path;
    }

    /// Makes a data file that is open from the start.
    QString addFile(const QString &name, const QString &outline = {})
    {
        const QString path = makeFile(name, outline);
        QSettings().setValue(QStringLiteral("loadfiles/%1").arg(m_listed++), path);
        return path;
    }

    void start()
    {
        files = std::make_unique<FileManager>();
        model = std::make_unique<HierarchyModel>(files.get());
        QObject::connect(files.get(), &FileManager::transactionRollback, model.get(),
                         &HierarchyModel::tryToResetStateAfterDbRollback);
        editor = std::make_unique<EditorStandIn>(model.get());
        spyOn();
        activateWindow();
    }

    /// Ends the program in the small and starts it again; what was not saved is lost.
    void restart()
    {
        editor.reset();
        model.reset();
        files.reset();
        start();
    }

    /// Makes the counting window the active one, also after a message box took the place.
    void activateWindow()
    {
        m_window.show();
        m_window.activateWindow();
        if (!QTest::qWaitForWindowActive(&m_window))
            throw std::runtime_error("the test's window did not become active");
    }

    /// Forgets all signals and refusals so far.
    void forget()
    {
        for (QSignalSpy *spy :
             {changed.get(), bodyRequests.get(), todoRequests.get(), stateChanges.get(),
              bodyChanges.get(), deletions.get(), deactivations.get()})
            spy->clear();
        m_window.reset();
    }

    int refusals() const { return m_window.count(); }
    /// The six signals that tell others something happened, the request for the text left out.
    qsizetype announcements() const
    {
        return todoRequests->size() + stateChanges->size() + bodyChanges->size() + deletions->size()
            + deactivations->size();
    }

    DiskStore &store(int index = 0) { return *files->getFile(index); }
    Outline::Rows rows(int index = 0) { return Outline::read(store(index)); }
    QString outline(int index = 0) { return Outline::dump(rows(index)); }
    QString numberedOutline(int index = 0)
    {
        return Outline::dump(rows(index), Outline::Numbers::Shown);
    }
    qint64 idOf(const QString &text, int index = 0)
    {
        return Outline::rowWithText(rows(index), text).id;
    }
    EntryAddress addressOf(const QString &text, int index = 0)
    {
        return {index, idOf(text, index)};
    }
    bool somethingWritten() const { return !files->unsavedSince().isNull(); }

    /// Goes to the entry with this text, as a jump does, and forgets the signals of it.
    void goTo(const QString &text, int index = 0)
    {
        model->goToEntry(addressOf(text, index));
        forget();
    }

    /// Goes to a new entry, still without text, right after the entry with this text.
    void goToNewAfter(const QString &text, int index = 0)
    {
        goTo(text, index);
        run(Command::NewSibling);
        forget();
    }

    /// Goes to the open/create panel before file \a slot.
    void goToPanel(int slot)
    {
        model->goToFileRoot(slot, true);
        emit model->changed();
        forget();
    }

    void goToRoot(int index)
    {
        model->goToFileRoot(index, false);
        emit model->changed();
        forget();
    }

    void type(const QString &text) { editor->type(text); }
    void run(Command command) { model->handleCommand(command); }

    /// Where the user is: "parent: neighbour <text> neighbour", "-" for what is missing; "top" is
    /// the level of the files' roots.
    QString where() const
    {
        const auto shown
            = [](const QString &text) { return text.isEmpty() ? QStringLiteral("-") : text; };
        const QString parent = model->atOpenCreatePanel() ? QStringLiteral("panel")
            : model->atRootOfFile()                       ? QStringLiteral("top")
                                                          : shown(model->getParentBody());
        return QStringLiteral("%1: %2 <%3> %4")
            .arg(parent, shown(model->getPrecedingSiblingEntryBody()), model->getBody(),
                 shown(model->getFollowingSiblingEntryBody()));
    }

    /// Everything that the model shows, for comparing before and after.
    QStringList everythingShown() const
    {
        const auto number
            = [](EntryState state) { return QString::number(static_cast<int>(state)); };
        return {where(),
                number(model->getState()),
                number(model->getParentState()),
                number(model->getPrecedingSiblingEntryState()),
                number(model->getFollowingSiblingEntryState()),
                model->getHasChildren() ? QStringLiteral("children")
                                        : QStringLiteral("no children"),
                model->getDoneDate().toString(Qt::ISODateWithMs),
                model->getShortcutKeyText(),
                model->getParentShortcutKeyText(),
                model->getRootExcerpt(),
                model->getFilePath(),
                model->getFileName(),
                model->atRootOfFile() ? QStringLiteral("root") : QStringLiteral("not root"),
                model->atOpenCreatePanel() ? QStringLiteral("panel") : QStringLiteral("not panel")};
    }

    QString filePath(const QString &name) const { return m_settings.filePath(name); }

private:
    void spyOn()
    {
        using Model = HierarchyModel;
        Model *m = model.get();
        changed = std::make_unique<QSignalSpy>(m, &Model::changed);
        bodyRequests = std::make_unique<QSignalSpy>(m, &Model::requestBodyUpdate);
        todoRequests = std::make_unique<QSignalSpy>(m, &Model::addEntryToTodoListAndShow);
        stateChanges = std::make_unique<QSignalSpy>(m, &Model::entryStateChanged);
        bodyChanges = std::make_unique<QSignalSpy>(m, &Model::entryBodyChanged);
        deletions = std::make_unique<QSignalSpy>(m, &Model::entryDeleted);
        deactivations = std::make_unique<QSignalSpy>(m, &Model::requestAppDeactivation);
    }

    TestSettings m_settings;
    int m_listed = 0;
    RefusalCounter m_window;

public:
    std::unique_ptr<FileManager> files;
    std::unique_ptr<HierarchyModel> model;
    std::unique_ptr<EditorStandIn> editor;
    std::unique_ptr<QSignalSpy> changed;
    std::unique_ptr<QSignalSpy> bodyRequests;
    std::unique_ptr<QSignalSpy> todoRequests;
    std::unique_ptr<QSignalSpy> stateChanges;
    std::unique_ptr<QSignalSpy> bodyChanges;
    std::unique_ptr<QSignalSpy> deletions;
    std::unique_ptr<QSignalSpy> deactivations;
};
