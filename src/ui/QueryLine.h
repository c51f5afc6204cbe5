// SPDX-License-Identifier: MIT
#pragma once

#include "ui/FindWindow.h"

#include <QLineEdit>

/// Where the query is typed; Up, Down and Enter work on the results below.
class FindWindow::QueryLine : public QLineEdit
{
    Q_OBJECT

public:
    explicit QueryLine(FindWindow *window);

protected:
    bool event(QEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;

private:
    FindWindow *m_window;
};
