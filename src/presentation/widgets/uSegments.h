// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QStringList>
#include <QWidget>

class QAction;
class QButtonGroup;

namespace Kestrune {

/// A few choices of which one holds, on a sunken ground: size steps, view switches, Artist or Release.
class TSegments : public QWidget {
    Q_OBJECT
public:
    explicit TSegments(QWidget* parent = nullptr);

    /// Choices as icons made from actions; a click triggers the action, a checked action is the one that holds.
    void SetActions(const QList<QAction*>& actions);
    /// Choices as icons with names for tool tip and screen reader.
    void SetIcons(const QStringList& icons, const QStringList& names);
    /// Choices as icons with their names beside them.
    void SetItems(const QStringList& icons, const QStringList& names);
    /// Choices as texts.
    void SetTexts(const QStringList& texts);

    int Current() const;
    /// Does not tell; -1 clears.
    void SetCurrent(int index);

Q_SIGNALS:
    void chosen(int index);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    void Fill(const QStringList& icons, const QStringList& texts, bool bothShown = false);

    QButtonGroup* FButtons;
};

} // namespace Kestrune
