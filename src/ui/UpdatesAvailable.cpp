// SPDX-License-Identifier: MIT
#include "ui/UpdatesAvailable.h"

#include "ui_UpdatesAvailable.h"

#include <QPointer>
#include <QPushButton>
#include <QSettings>

using namespace Qt::StringLiterals;

namespace
{
/// Only one announcement is on the screen at a time.
QPointer<UpdatesAvailable> shownLast;
} // namespace

UpdatesAvailable::UpdatesAvailable(const QString &html, AbstractWindow *parent)
    : AbstractWindow(parent)
    , m_form(std::make_unique<Ui::UpdatesAvailable>())
{
    if (shownLast && shownLast->isVisible())
        shownLast->close();
    shownLast = this;

    m_form->setupUi(this);
    setWindowTitle(tr("Updates Available"));
    m_form->textBrowser->showPage(html);
    m_laterButton = m_form->buttonBox->addButton(tr("Update later"), QDialogButtonBox::RejectRole);
    m_stopButton = m_form->buttonBox->addButton(tr("Stop checking for updates"),
                                                QDialogButtonBox::DestructiveRole);
    for (QPushButton *button : {m_laterButton, m_stopButton}) {
        button->setDefault(false);
        button->setAutoDefault(false);
    }
    connect(m_form->buttonBox, &QDialogButtonBox::rejected, this, &QDialog::reject);
    connect(m_stopButton, &QPushButton::pressed, this,
            &UpdatesAvailable::stopCheckingForUpdatesAndClose);
}

UpdatesAvailable::~UpdatesAvailable() = default;

QString UpdatesAvailable::getWindowName() const
{
    return u"UpdatesAvailable"_s;
}

void UpdatesAvailable::stopCheckingForUpdatesAndClose()
{
    QSettings settings;
    settings.setValue(u"dontcheckforupdates"_s, true);
    settings.sync();
    close();
}
