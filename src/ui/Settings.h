// SPDX-License-Identifier: MIT
#pragma once

#include "ui/AbstractWindow.h"

#include <memory>

class AppActivationSupport;
class Ui_Settings;

/// The settings dialog: automatic activation, the key of the activation hotkey, the update check.
/// It reads the values each time it is shown and writes them only when the user accepts.
class Settings : public AbstractWindow
{
    Q_OBJECT

public:
    class HotKeyLineEdit;

    /// \a activationSupport is borrowed.
    explicit Settings(AppActivationSupport *activationSupport, QWidget *parent = nullptr);
    ~Settings() override;

    QString getWindowName() const override;

protected:
    void showEvent(QShowEvent *event) override;
    void changeEvent(QEvent *event) override;

private slots:
    void on_activationCheckbox_stateChanged(int state);
    void on_buttonBox_accepted();
    void on_buttonBox_rejected();

private:
    void fillIn();
    void showStoredValues();
    void showHotkeyNotice();
    void setHotkey(int key, unsigned int nativeKey);

    std::unique_ptr<Ui_Settings> m_ui;
    AppActivationSupport *m_activationSupport;
    HotKeyLineEdit *m_hotKeyEdit;
    int m_hotkeyKey = 0;
    unsigned int m_hotkeyNativeKey = 0;
};
