// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "frmAddMusic.h"
#include "uHitsPainter.h"

#include <QDialog>
#include <QItemSelection>

class QComboBox;
class QLabel;
class QLineEdit;
class QMenu;
class QPlainTextEdit;
class QProgressBar;
class QPushButton;
class QStackedWidget;
class QTabBar;

namespace Kestrune {

class TChosenList;
class TDetailPane;
class THitsModel;
class TRibbonButton;
class TSegments;
class TServiceList;
class TTileView;

/// The window in which releases are found online: kinds and fields above, services and chosen releases left, tabs of
/// cards, the record right, progress and saving below. It shows what TAddMusicForm holds and decides nothing.
class TSearchWindow : public QDialog {
    Q_OBJECT
public:
    /// The form outlives the window.
    TSearchWindow(TAddMusicForm& form, QWidget* parent);
    ~TSearchWindow() override;

    TTileView* View() { return FView; }
    THitsModel* Model() { return FModel; }
    QPushButton* SearchButton() { return FSearch; }
    /// The menu with all commands.
    QMenu* Commands() { return FCommands; }

Q_SIGNALS:
    void optionsRequested(bool network);

protected:
    void reject() override;
    void paintEvent(QPaintEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    struct TCommand {
        QString Key; ///< of its caption
        QString Shortcut;
        std::function<void()> Run;
        std::function<bool()> Enabled;
    };

    QWidget* BuildTop();
    QWidget* BuildLeft();
    QWidget* BuildMiddle();
    QWidget* BuildBottom();
    void BuildCommands();
    void ConnectForm();
    void ConnectView();
    QLineEdit* AddField(const QString& nameKey, QString& value);
    void ShowArea();
    void ShowState();
    void ShowTabs();
    void ShowHits();
    void ShowSelection();
    void ShowDetails();
    void ShowChosen();
    void ReportSelection(const QItemSelection& selected, const QItemSelection& deselected);
    void RestoreSelection();
    bool IsInside(const QObject* object) const;

    TAddMusicForm& FForm;
    THitsModel* FModel;
    THitsPainter FPainter;
    TSegments* FKinds;
    QStackedWidget* FFields;
    QLineEdit* FArtist = nullptr;
    QLineEdit* FTitle = nullptr;
    QPlainTextEdit* FBarcodes = nullptr;
    QLineEdit* FCatalogNo = nullptr;
    QComboBox* FDrives = nullptr;
    TRibbonButton* FEject = nullptr;
    QList<TRibbonButton*> FHitButtons;
    QPushButton* FSearch = nullptr;
    QPushButton* FStop = nullptr;
    TServiceList* FServices = nullptr;
    QLabel* FChosenTitle = nullptr;
    QLabel* FChosenNote = nullptr;
    TChosenList* FChosen = nullptr;
    QTabBar* FTabs = nullptr;
    QLabel* FCounts = nullptr;
    QStackedWidget* FPages = nullptr;
    QLabel* FNothing = nullptr;
    TTileView* FView = nullptr;
    TDetailPane* FPane = nullptr;
    QLabel* FStatus = nullptr;
    QProgressBar* FProgress = nullptr;
    QPushButton* FSaveContinue = nullptr;
    QPushButton* FSaveClose = nullptr;
    QMenu* FCommands = nullptr;
    std::vector<TCommand> FCommandRows;
    std::vector<QAction*> FCommandActions;
    std::vector<qint64> FOrder; // selected records, in the order in which they were
    bool FFilling = false;
};

} // namespace Kestrune
