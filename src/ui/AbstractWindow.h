// SPDX-License-Identifier: MIT
#pragma once

#include <QDeadlineTimer>
#include <QDialog>
#include <QPointer>
#include <QSettings>
#include <QTimer>
#include <optional>

class RefusalFlash;

/// Base of every top-level window: it remembers its place in the settings, comes up there and in
/// front in one call, and hides when the application steps back.
class AbstractWindow : public QDialog
{
    Q_OBJECT

public:
    /// How long after the last move or resize the place is saved.
    static constexpr int saveDelayMs = 500;

    explicit AbstractWindow(QWidget *parent = nullptr, Qt::WindowFlags flags = {});

    /// The fixed name under which the settings hold this window's place.
    virtual QString getWindowName() const = 0;
    QString getWindowPosSettingsKey() const;
    QString getWindowSizeSettingsKey() const;

    /// Applies what the settings hold of position and size, each for itself, unchecked.
    void restoreSizeAndPos();
    /// Shows the window at its remembered place, unless it is visible already, and brings it to the
    /// front. A place outside every screen is shown on the nearest one.
    void restoreShowAndActivate();

    /// Has the desktop keep this window in front of \a owner from its next showing on.
    void belongTo(QWidget &owner);

    void setVisible(bool visible) override;

public slots:
    virtual void activate();
    void hideOnDeactivate(bool isAppActive);
    void saveConfigInSettings();

signals:
    /// The window was hidden by the program; minimising it doesn't count.
    void hiding();

protected:
    bool event(QEvent *event) override;
    void moveEvent(QMoveEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void hideEvent(QHideEvent *event) override;

    /// Shows the user that an action was refused, the beep being silent on many desktops: the
    /// whole window flashes.
    virtual void showRefusal();
    /// A coloured frame appears around \a part, which is inside this window, for a moment.
    void flashAround(const QWidget *part);

private:
    /// A place chosen by the program because the stored one is outside every screen.
    struct Correction {
        QPoint pos;
        bool settled = false; ///< The window manager has had its say about the position.
    };

    void tieToOwner();
    void untieFromOwner();
    void beginToSettle();
    void settle();
    void keepOnScreen();
    QPoint placeOnScreen() const;
    bool isFirstSettling() const;
    void fitCorrection();
    void saveLater(const QEvent &change);
    void savePendingPlace();
    void moveOntoScreen();
    bool standsAtCorrectedPlace();
    void clearMinimized();

    QPointer<QWidget> m_owner; ///< The window that this one stays in front of.
    RefusalFlash *m_refusalFlash; ///< Owned through Qt's parents.
    QSettings m_settings;
    QTimer *m_saveTimer;
    std::optional<Correction> m_correction;
    QTimer *m_settleTimer; ///< Runs for a while after the window was shown.
    QDeadlineTimer m_settled;
    bool m_hasNoPlaceYet = false; ///< When it was last shown, the settings held no place.
    QPoint m_settlingAt; ///< Where the frame is to be meanwhile.
};
