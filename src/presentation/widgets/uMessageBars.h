// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "uPrompt.h"

#include <QStringList>
#include <QWidget>

#include <functional>
#include <vector>

class QTimer;

namespace Kestrune {

class TRibbonButton;

/// A sentence for the user that needs no answer. At most two actions.
struct TBarMessage {
    TBarKind Kind = bkError;
    QString Reason; ///< shown bold, first
    QString Text;
    QString Icon; ///< own icon instead of the kind's
    struct TAction {
        QString Caption;
        std::function<void()> Act;
    };
    std::vector<TAction> Actions;
    bool Stays = false; ///< also when it tells of something done
};

/// One bar. It closes by its x, and when it tells of something done after a while unless it is looked at.
class TMessageBar : public QWidget {
    Q_OBJECT
public:
    explicit TMessageBar(TBarMessage message, QWidget* parent = nullptr);
    const TBarMessage& Message() const { return FMessage; }
    /// How long a bar of kind done stays, in milliseconds.
    static constexpr int DoneStays = 8000;

Q_SIGNALS:
    void closeRequested();

protected:
    void paintEvent(QPaintEvent* event) override;
    bool event(QEvent* event) override;

private:
    void TimeIsUp();

    TBarMessage FMessage;
    int FTextRight = 0;
    QWidget* FButtons;
    QTimer* FTimer;
};

/// Bars under the filter bar, newest first: at most two, then "n more".
class TMessageBars : public QWidget {
    Q_OBJECT
public:
    explicit TMessageBars(QWidget* parent = nullptr);

    void Show(TBarMessage message);
    void Clear();
    int Count() const { return static_cast<int>(FBars.size()); }

Q_SIGNALS:
    /// The bar that had the keyboard is gone.
    void focusLeft();

private:
    void Remove(TMessageBar* bar);
    void Arrange();

    QList<TMessageBar*> FBars; // newest first
    TRibbonButton* FMore;
    bool FShowsAll = false;
};

} // namespace Kestrune
