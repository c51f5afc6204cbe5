// SPDX-License-Identifier: MIT
#include "ui/Help.h"

#include "model/GlobalKeyMap.h"
#include "platform/NativeSupport.h"
#include "shared/TextHelpers.h"
#include "shared/Version.h"
#include "ui/KeyPress.h"
#include "ui_Help.h"

#include <QFile>
#include <QKeyEvent>
#include <QRegularExpression>

using namespace Qt::StringLiterals;

namespace
{
constexpr int defaultActivationPeriodMinutes = 30;

/// \a pattern with %1 replaced by the characters of a word; "\w" alone would stop at an umlaut.
QRegularExpression expression(const QString &pattern)
{
    return QRegularExpression(pattern.arg(u"\\p{L}\\p{N}\\p{M}_"_s));
}
} // namespace

Help::Help(NativeSupport *nativeSupport, QWidget *parent)
    : AbstractWindow(parent)
    , m_nativeSupport(nativeSupport)
    , m_ui(std::make_unique<Ui_Help>())
{
    m_ui->setupUi(this);
    m_ui->todoSwatch->setProperty("iconstate", u"todo"_s);
    m_ui->doneSwatch->setProperty("iconstate", u"done"_s);
    m_ui->wontDoSwatch->setProperty("iconstate", u"wontdo"_s);
    setStyleSheet(u"*[iconstate=\"todo\"] {background-color: #4466FF} "
                  "*[iconstate=\"done\"] {background-color: #888888} "
                  "*[iconstate=\"wontdo\"] {background-color: #FFCC44} "_s);
    layout()->setSizeConstraint(QLayout::SetFixedSize);
    fillIn();
}

Help::~Help() = default;

QString Help::getWindowName() const
{
    return u"HelpWindow"_s;
}

void Help::fillIn()
{
    setWindowTitle(tr("Brindle Help"));
    for (QWidget *container :
         {static_cast<QWidget *>(m_ui->mainWindowGroup), static_cast<QWidget *>(m_ui->generalGroup),
          static_cast<QWidget *>(m_ui->statusGroup), static_cast<QWidget *>(this)})
        doStringReplacementsOnChildLabels(container);
    QFile guide(u":/help/main.html"_s);
    if (guide.open(QIODevice::ReadOnly))
        m_ui->userGuide->setHtml(doStringReplacement(QString::fromUtf8(guide.readAll())));
}

QString Help::valueOf(const QString &name) const
{
    if (name == u"appname"_s)
        return u"Brindle"_s;
    if (name == u"datafileextension"_s)
        return u"bdl"_s;
    if (name == u"todocolor"_s)
        return u"#4466FF"_s;
    if (name == u"donecolor"_s)
        return u"#888888"_s;
    if (name == u"wontdocolor"_s)
        return u"#FFCC44"_s;
    if (name == u"activationhotkeyprefix"_s)
        return m_nativeSupport->getActivationHotkeyPrefix();
    if (name == u"defaultactivationperiod"_s)
        return QString::number(defaultActivationPeriodMinutes);
    if (name == u"appversion"_s)
        return Version::text();
    if (name == u"shortcutmodifier"_s)
        return m_nativeSupport->getShortcutModifierKeySymbol();
    if (name == u"keycomboseparator"_s)
        return m_nativeSupport->getModifierSeparator();
    if (name == u"copyrightnotice"_s)
        return Global::getCopyrightString(true);
    // Without its brackets a name that means nothing is not found again: the replacing ends.
    KeyCommandMap::KeyCombo *combo = Global::getPreferredKeyComboByName(name);
    return combo ? m_nativeSupport->renderKeyCombo(combo) : name;
}

QString Help::doStringReplacement(QString text) const
{
    static const QRegularExpression token = expression(u"\\[([%1]+)\\]"_s);
    static const QRegularExpression smallPrint = expression(u"\\{\\{([-%1 ,!.:?]+)\\}\\}"_s);
    static const QRegularExpression emphasis = expression(u"\\{([-%1 ']*)\\}"_s);

    for (auto match = token.match(text); match.hasMatch(); match = token.match(text)) {
        const QString name = match.captured(1);
        text.replace(u'[' + name + u']', valueOf(name));
    }
    text.replace(smallPrint, u"<span style='font-size: 9px; color: #777777;'>\\1</span>"_s);
    text.replace(emphasis, u"<em>\\1</em>"_s);
    return text;
}

void Help::doStringReplacementsOnChildLabels(QWidget *container) const
{
    const auto labels = container->findChildren<QLabel *>(QString(), Qt::FindDirectChildrenOnly);
    for (QLabel *label : labels)
        label->setText(doStringReplacement(label->text()));
}

void Help::keyPressEvent(QKeyEvent *event)
{
    event->accept();
    if (KeyPress::command(*event, event->modifiers()) == Command::Hide)
        hide();
}

// The form's own texts hold tokens again after a change of the language.
void Help::changeEvent(QEvent *event)
{
    AbstractWindow::changeEvent(event);
    if (event->type() == QEvent::LanguageChange) {
        m_ui->retranslateUi(this);
        fillIn();
    }
}
