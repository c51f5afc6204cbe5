// SPDX-License-Identifier: MIT
#pragma once

#include "ui/Settings.h"

#include <QLineEdit>

/// Takes the next key pressed as the activation key and shows its name; nothing can be typed.
class Settings::HotKeyLineEdit : public QLineEdit
{
public:
    explicit HotKeyLineEdit(Settings *settings);

protected:
    bool event(QEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;

private:
    Settings *m_settings;
};
