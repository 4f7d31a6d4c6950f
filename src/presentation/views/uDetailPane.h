// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "uDetailView.h"
#include "uTHTypes.h"

#include <QPixmap>
#include <QPointer>
#include <QScrollArea>
#include <QSet>

#include <functional>

class QAction;
class QLineEdit;

namespace Kestrune {

class TDetailHead;
class TDetailRow;
class TFieldEditor;
class TStarsEdit;

/// A part of the pane that stays together: a section with its rows.
class TDetailBlock;

/// Shows one release: cover, title, rating, then sections that fold. It is filled from a plain struct and tells what
/// the user does; it looks nothing up.
class TDetailPane : public QScrollArea {
    Q_OBJECT
public:
    explicit TDetailPane(QWidget* parent = nullptr);
    ~TDetailPane() override;

    void SetData(TDetailData detail);
    const TDetailData& Data() const { return FData; }
    /// Vertical: the pane stands right of the view, all parts below each other. Horizontal: it lies above or below,
    /// with the cover left and the rows in columns.
    void SetOrientation(Qt::Orientation orientation);
    /// Buttons beside the stars, made from actions (edit, lend, playlist, more).
    void SetActions(const QList<QAction*>& actions);
    /// A pill in the place of stars and buttons.
    void SetNote(const QString& note);
    using TMakeEditor = std::function<TFieldEditor*(const QString& column, QWidget* parent)>;
    using TStoreValue = std::function<bool(const QString& column, const TVariant& value)>;
    /// How values are edited in place: the maker gives a filled editor or null for a field that cannot be changed, the
    /// other stores a value and gives false when it was refused.
    void SetEditing(TMakeEditor make, TStoreValue store);
    /// Opens the editor of a field that is shown.
    void EditField(const QString& column);
    /// Opens the editor of the first field that can be changed.
    void EditFirst();
    /// Columns that are never shown, and whether the user is choosing them: then all fields stand there with a box.
    void SetHiddenFields(const QStringList& columns);
    QStringList HiddenFields() const { return {FHidden.cbegin(), FHidden.cend()}; }
    void SetCustomizing(bool on);
    bool Customizing() const { return FCustomizing; }
    /// Shows or hides the box that narrows the fields down to those with a text.
    void ToggleFilter();
    /// Ids of the folded sections, to be remembered.
    QStringList Folded() const { return {FFolded.cbegin(), FFolded.cend()}; }
    void SetFolded(const QStringList& ids);

Q_SIGNALS:
    void ratingChosen(int halfStars);
    void linkActivated(const QString& link);
    void trackActivated(int disc, int track); ///< places in the lists of the data
    void pictureActivated(int picture);       ///< place in the list of the data
    void coverActivated();
    void foldedChanged();
    void hiddenFieldsChanged();

protected:
    void resizeEvent(QResizeEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    bool IsShown(const TDetailField& field) const;
    /// Fields that say nothing about this release stand behind one row, until it is asked for.
    bool FoldsDefaults() const;
    void AddRow(TDetailBlock& block, const TDetailField& field);
    void BeginEdit(TDetailRow* row);
    void EndEdit();
    void CommitEdit(TFieldEditor* editor);
    void MoveEdit(const QString& from, int direction);
    int PlaceFilter(int width);
    void Rebuild();
    void AddSection(const TDetailSection& section);
    void AddTracks();
    void AddCredits();
    void AddPictures();
    TDetailBlock* AddBlock(const QString& id, const QString& caption, const QString& extra);
    void Arrange();
    void ArrangeBelow();
    void ArrangeBeside();

    TDetailData FData;
    QWidget* FContent;
    TDetailHead* FHead;
    QList<TDetailBlock*> FBlocks;
    QSet<QString> FFolded;
    QSet<QString> FHidden;
    bool FCustomizing = false;
    bool FShowsDefaults = false;
    QLineEdit* FFilter;
    TMakeEditor FMakeEditor;
    TStoreValue FStoreValue;
    QPointer<TFieldEditor> FEditor;
    QPointer<TDetailRow> FEdited;
    bool FRebuildWaits = false; // for the end of the edit
    Qt::Orientation FOrientation = Qt::Vertical;
};

} // namespace Kestrune
