// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QWidget>

#include <vector>

class QComboBox;
class QLineEdit;
class QStackedWidget;

namespace Kestrune {

class TRibbonButton;

/// A field to search in. With choices the box offers a list instead of free text.
struct TSearchBoxField {
    QString Name;    ///< column name; empty searches everything
    QString Caption; ///< as shown, and as the logic looks it up
    QStringList Choices;
};

/// Field chooser, editor of that field's kind, and a button to clear.
class TSearchBox : public QWidget {
    Q_OBJECT
public:
    explicit TSearchBox(QWidget* parent = nullptr);

    void SetFields(std::vector<TSearchBoxField> fields);
    void SetCurrentField(const QString& name);
    const TSearchBoxField& CurrentField() const;
    QString Text() const;
    void SetText(const QString& text);
    bool EditsList() const { return !CurrentField().Choices.isEmpty(); }
    /// Puts the keyboard into the editor and selects its text.
    void FocusEditor();

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

Q_SIGNALS:
    void searchRequested();
    void textChanged(const QString& text);
    void cleared();
    void fieldChanged(const QString& name);
    void leaveRequested(); ///< Esc: back to the view

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void ShowField(std::size_t number);
    void FollowText();
    void Clear();
    void PlaceChildren();

    std::vector<TSearchBoxField> FFields;
    std::size_t FCurrent = 0;
    TRibbonButton* FChooser;
    QLineEdit* FEdit;
    QComboBox* FList;
    TRibbonButton* FClear;
};

} // namespace Kestrune
