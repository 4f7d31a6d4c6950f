// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QTimer>
#include <QWidget>

class QLabel;
class QLineEdit;

namespace Kestrune {

class TRibbonButton;

/// The find panel over a view: a text, how many rows hold it, and the way to the next and the former one. F3 is the
/// sort window's, so Enter and Shift+Enter go on.
class TFindBar : public QWidget {
    Q_OBJECT
public:
    explicit TFindBar(QWidget* parent = nullptr);

    QString Text() const;
    /// Puts the keyboard in and selects the text.
    void Begin();
    /// The place among the hits, from 0, and their number; 0 hits of an empty text say nothing.
    void SetHits(int at, int count);
    QSize sizeHint() const override;

Q_SIGNALS:
    void textChanged(const QString& text); ///< a little after the last key
    void stepRequested(int direction);     ///< 1 next, -1 former
    void closeRequested();

protected:
    void paintEvent(QPaintEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    QLineEdit* FEdit;
    QLabel* FCount;
    TRibbonButton* FNext;
    TRibbonButton* FFormer;
    QTimer FTimer;
};

} // namespace Kestrune
