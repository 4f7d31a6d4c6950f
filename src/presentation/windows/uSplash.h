// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QWidget>

namespace Kestrune {

/// The window of the start: borderless, 418 by 216, with the program's name and one line of progress. Its corners are
/// transparent.
class TSplashForm : public QWidget {
    Q_OBJECT
public:
    explicit TSplashForm(QWidget* parent = nullptr);

    /// Shows a line of progress at once, although no event loop runs yet.
    void SetText(const QString& text);
    const QString& Text() const { return FText; }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QString FText;
};

} // namespace Kestrune
