// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QAbstractButton>
#include <QWidget>

#include <vector>

class QAction;
class QGridLayout;
class QVBoxLayout;

namespace Kestrune {

class TRibbonButton;
class TChipRow;

/// A large button: icon tile, title, sentence and the shortcut of its action.
class TCardButton : public QAbstractButton {
    Q_OBJECT
public:
    TCardButton(const QString& title, const QString& text, QAction* action, QWidget* parent);
    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    QString FNote;
    QAction* FAction; // not owned
};

/// A line of the list of recent files.
struct TRecentFile {
    QString Path;
    QString Note;
    bool Missing = false;
};

/// A way into the collection, offered as a card.
struct TEmptyCard {
    QString Title;
    QString Text;
    QAction* Action = nullptr;
};

/// What stands in the place of the views when there is nothing to show: drawn covers, a heading, a sentence, cards, and
/// the recent files.
class TEmptyPage : public QWidget {
    Q_OBJECT
public:
    explicit TEmptyPage(QWidget* parent = nullptr);

    /// No collection is open.
    void ShowNoCollection(const std::vector<TEmptyCard>& cards, const std::vector<TRecentFile>& recent);
    /// The collection has no release.
    void ShowEmptyCollection(const std::vector<TEmptyCard>& cards);
    /// The filters leave nothing.
    void ShowNoHits();

Q_SIGNALS:
    void recentChosen(const QString& path);
    void clearFiltersRequested();

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    void Build(const QString& cover, const QString& heading, const QString& text, const std::vector<TEmptyCard>& cards,
               const std::vector<TRecentFile>& recent);
    int ContentHeight() const;

    QString FCover;
    QString FHeading;
    QString FText;
    QWidget* FBox;
    TRibbonButton* FClear;
};

} // namespace Kestrune
