// SPDX-License-Identifier: GPL-3.0-or-later
#include "uDialog.h"

#include "uDefaults.h"
#include "uRibbonButton.h"
#include "uTHStrings.h"
#include "uTheme.h"
#include "uThemePaint.h"

#include <QHBoxLayout>
#include <QPainter>
#include <QPushButton>
#include <QVBoxLayout>

namespace Kestrune {

using namespace Qt::StringLiterals;

TDialog::TDialog(const QString& name, const QString& title, QWidget* parent)
    : QDialog(parent), FBody(new QVBoxLayout), FSide(new QHBoxLayout), FButtons(new QHBoxLayout)
{
    setObjectName(name);
    setWindowTitle(title);
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(16, 16, 16, 12);
    column->setSpacing(12);
    FBody->setSpacing(8);
    column->addLayout(FBody, 1);
    auto* row = new QHBoxLayout;
    row->setSpacing(8);
    FSide->setSpacing(8);
    FButtons->setSpacing(8);
    row->addLayout(FSide);
    row->addStretch(1);
    row->addLayout(FButtons);
    column->addLayout(row);
}

TDialog::~TDialog()
{
    if (!HasSettingsStore() || size().isEmpty())
        return;
    SettingsStore().WriteInteger(SizeKey() + u"Width"_s, 0, width());
    SettingsStore().WriteInteger(SizeKey() + u"Height"_s, 0, height());
}

QString TDialog::SizeKey() const { return u"Windows/%1."_s.arg(objectName()); }

void TDialog::SetFirstSize(const QSize& size)
{
    QSize wanted = size;
    if (HasSettingsStore()) {
        const QSize kept(SettingsStore().ReadInteger(SizeKey() + u"Width"_s, 0),
                         SettingsStore().ReadInteger(SizeKey() + u"Height"_s, 0));
        if (kept.width() >= 200 && kept.height() >= 120 && kept.width() < 8000 && kept.height() < 8000)
            wanted = kept;
    }
    resize(wanted);
}

QPushButton* TDialog::AddSideButton(const QString& text)
{
    auto* button = new QPushButton(text, this);
    button->setAutoDefault(false);
    FSide->addWidget(button);
    return button;
}

QPushButton* TDialog::AddButtons(const QString& primary)
{
    auto* cancel = new QPushButton(GetLanguageString(u"cSGuiCancel"_s), this);
    auto* accept = new QPushButton(primary, this);
    accept->setDefault(true);
    FButtons->addWidget(cancel);
    FButtons->addWidget(accept);
    connect(cancel, &QPushButton::clicked, this, &QDialog::reject);
    connect(accept, &QPushButton::clicked, this, &QDialog::accept);
    return accept;
}

QPushButton* TDialog::AddCloseButton()
{
    auto* close = new QPushButton(GetLanguageString(u"cSGuiClose"_s), this);
    FButtons->addWidget(close);
    connect(close, &QPushButton::clicked, this, &QDialog::reject);
    return close;
}

void TDialog::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.fillRect(rect(), CurrentTheme().Window);
}

TRibbonButton* MakeIconButton(const QString& icon, const QString& nameKey, QWidget* parent)
{
    auto* button = new TRibbonButton(TRibbonButton::TShape::Icon, parent);
    button->SetIconName(icon);
    button->setToolTip(GetLanguageString(nameKey));
    button->setAccessibleName(GetLanguageString(nameKey));
    button->setFocusPolicy(Qt::TabFocus);
    return button;
}

} // namespace Kestrune
