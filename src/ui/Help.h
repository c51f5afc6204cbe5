// SPDX-License-Identifier: MIT
#pragma once

#include "ui/AbstractWindow.h"

#include <memory>

class NativeSupport;
class Ui_Help;

/// The help window: a quick reference of the keys and a user guide. Neither names a key itself;
/// both are written with tokens that are replaced by what is bound, in the words of the desktop.
class Help : public AbstractWindow
{
    Q_OBJECT

public:
    /// \a nativeSupport is borrowed.
    explicit Help(NativeSupport *nativeSupport, QWidget *parent = nullptr);
    ~Help() override;

    QString getWindowName() const override;

    /// Replaces "[name]" by a value or by the preferred keys of the command of that name,
    /// "{{small print}}" by small grey print and "{word}" by emphasis.
    QString doStringReplacement(QString text) const;
    /// The same for the text of each label that is a direct child of \a container.
    void doStringReplacementsOnChildLabels(QWidget *container) const;

protected:
    void keyPressEvent(QKeyEvent *event) override;
    void changeEvent(QEvent *event) override;

private:
    QString valueOf(const QString &name) const;
    void fillIn();

    NativeSupport *m_nativeSupport;
    std::unique_ptr<Ui_Help> m_ui;
};
