// SPDX-License-Identifier: MIT
#include "ui/Settings.h"

#include "app/activation/AppActivationSupport.h"
#include "ui/HotKeyLineEdit.h"
#include "ui_Settings.h"

#include <QKeySequence>
#include <QSettings>
#include <QShowEvent>

using namespace Qt::StringLiterals;

namespace
{
const auto dontCheckForUpdatesKey = "dontcheckforupdates"_L1;
} // namespace

Settings::Settings(AppActivationSupport *activationSupport, QWidget *parent)
    : AbstractWindow(parent)
    , m_ui(std::make_unique<Ui_Settings>())
    , m_activationSupport(activationSupport)
    , m_hotKeyEdit(new HotKeyLineEdit(this))
{
    m_ui->setupUi(this);
    layout()->setSizeConstraint(QLayout::SetFixedSize);
    m_ui->activationMinutesBox->setEnabled(m_ui->activationCheckbox->isChecked());
    m_hotKeyEdit->setObjectName(u"hotKeyEdit"_s);
    m_ui->horizontalLayout_2->addWidget(m_hotKeyEdit);
    fillIn();
}

Settings::~Settings() = default;

QString Settings::getWindowName() const
{
    return u"Settings"_s;
}

void Settings::fillIn()
{
    setWindowTitle(tr("Settings"));
    m_ui->hotkeyPrefixLabel->setText(m_ui->hotkeyPrefixLabel->text().replace(
        u"%m"_s, m_activationSupport->getActivationHotkeyPrefix()));
    m_hotKeyEdit->setAccessibleName(tr("Key of the activation hotkey"));
}

// Coming back from the taskbar is no showing: what was changed and not accepted yet stays.
void Settings::showEvent(QShowEvent *event)
{
    if (!event->spontaneous())
        showStoredValues();
    AbstractWindow::showEvent(event);
}

void Settings::showStoredValues()
{
    m_ui->activationCheckbox->setChecked(m_activationSupport->isAutomaticActivationEnabled());
    m_ui->activationMinutesBox->setValue(m_activationSupport->getAutomaticActivationPeriod());
    setHotkey(m_activationSupport->getHotkeyKey(),
              m_activationSupport->getHotkeyNativeVirtualKey());
    showHotkeyNotice();
    m_ui->checkForUpdatesCheckbox->setChecked(!QSettings().contains(dontCheckForUpdatesKey));
    // Its size is to stand before the window manager frames the window: resized meanwhile, it is
    // asked for at a place that was never meant.
    layout()->activate();
}

void Settings::showHotkeyNotice()
{
    const QString notice = m_activationSupport->getActivationHotkeyNotice();
    m_ui->hotkeyNoticeLabel->setText(notice);
    m_ui->hotkeyNoticeLabel->setVisible(!notice.isEmpty());
}

void Settings::setHotkey(int key, unsigned int nativeKey)
{
    m_hotkeyKey = key;
    m_hotkeyNativeKey = nativeKey;
    m_hotKeyEdit->setText(QKeySequence(key).toString(QKeySequence::PortableText));
}

void Settings::on_activationCheckbox_stateChanged(int state)
{
    m_ui->activationMinutesBox->setEnabled(state == Qt::Checked);
}

void Settings::on_buttonBox_accepted()
{
    m_activationSupport->setAutomaticActivationEnabled(m_ui->activationCheckbox->isChecked());
    m_activationSupport->setAutomaticActivationPeriod(m_ui->activationMinutesBox->value());
    m_activationSupport->setHotkeyKey(m_hotkeyKey, m_hotkeyNativeKey);
    QSettings settings;
    if (m_ui->checkForUpdatesCheckbox->isChecked())
        settings.remove(dontCheckForUpdatesKey);
    else
        settings.setValue(dontCheckForUpdatesKey, true);
    settings.sync();
    hide();
}

void Settings::on_buttonBox_rejected()
{
    hide();
}

void Settings::changeEvent(QEvent *event)
{
    AbstractWindow::changeEvent(event);
    if (event->type() == QEvent::LanguageChange) {
        m_ui->retranslateUi(this);
        fillIn();
    }
}
