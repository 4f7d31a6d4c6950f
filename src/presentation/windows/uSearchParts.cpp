// SPDX-License-Identifier: GPL-3.0-or-later
#include "uSearchParts.h"

#include "uColumnNames.h"
#include "uCoverArt.h"
#include "uDialog.h"
#include "uIcons.h"
#include "uRibbonButton.h"
#include "uTHStrings.h"
#include "uThemePaint.h"
#include "uThemeStyle.h"

#include <QCheckBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>
#include <QPushButton>
#include <QVBoxLayout>

#include <algorithm>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

constexpr int StateIndent = 24;
constexpr int MiniCover = 38;
constexpr int ClockStep = 60; // milliseconds
constexpr int BarSteps = 34;

// One chosen release.
class TChosenRow : public QWidget {
public:
    TChosenRow(const TSavedRelease& saved, QWidget* parent) : QWidget(parent), FPicture(saved.Cover)
    {
        FTitle = VarToStr(saved.Release->GetItem2(Col::ReleaseName));
        FArtist = VarToStr(saved.Release->GetItem2(Col::Artist));
        FType = VarToStr(saved.Release->GetItem2(Col::MediaType));
        if (!saved.Complete)
            setToolTip(GetLanguageString(u"cSSummaryOnly"_s));
        FSummary = !saved.Complete;
        setFixedHeight(std::max(MiniCover, 2 * LineHeight(ThemeFont(fsBody))) + 10);
        Remove = MakeIconButton(u"x"_s, u"cSRemoveChosen"_s, this);
        Remove->setAccessibleName(Remove->accessibleName() + u": "_s + FTitle);
    }
    TRibbonButton* Remove;

protected:
    void resizeEvent(QResizeEvent*) override
    {
        const QSize size = Remove->sizeHint();
        Remove->setGeometry(isRightToLeft() ? 0 : width() - size.width(), (height() - size.height()) / 2, size.width(),
                            size.height());
    }
    void paintEvent(QPaintEvent*) override
    {
        const TTheme& theme = CurrentTheme();
        QPainter painter(this);
        const bool mirrored = isRightToLeft();
        const qreal ratio = devicePixelRatioF();
        const QPixmap cover =
            FPicture.isNull()
                ? DrawnCover(MiniCover, ratio, FTitle, FArtist, FType, theme)
                : FinishCover(FPicture.scaled(FitInSquare(FPicture.size(), static_cast<int>(MiniCover * ratio)),
                                              Qt::IgnoreAspectRatio, Qt::SmoothTransformation),
                              ratio, theme);
        const QSizeF size = cover.deviceIndependentSize();
        const qreal left = mirrored ? width() - MiniCover : 0;
        painter.drawPixmap(QPointF(left + (MiniCover - size.width()) / 2, (height() - size.height()) / 2), cover);
        const int beside = MiniCover + 10, end = Remove->sizeHint().width() + 4;
        const QRectF texts =
            mirrored ? QRectF(rect().adjusted(end, 0, -beside, 0)) : QRectF(rect().adjusted(beside, 0, -end, 0));
        const int line = LineHeight(ThemeFont(fsBody));
        const qreal top = (height() - 2 * line) / 2.0;
        painter.setFont(ThemeFont(fsBody));
        painter.setPen(theme.Text);
        DrawElided(painter, QRectF(texts.left(), top, texts.width(), line), FTitle);
        painter.setPen(FSummary ? theme.Warn : theme.Text2);
        DrawElided(painter, QRectF(texts.left(), top + line, texts.width(), line),
                   FSummary ? GetLanguageString(u"cSSummaryOnlyShort"_s) : FArtist);
    }

private:
    QImage FPicture;
    QString FTitle, FArtist, FType;
    bool FSummary = false;
};

} // namespace

TServiceRow::TServiceRow(QWidget* parent)
    : QWidget(parent), FBox(new QCheckBox(this)), FButton(new QPushButton(GetLanguageString(u"cSRetry"_s), this))
{
    FBox->setFont(ThemeFont(fsBodyBold));
    FButton->setAutoDefault(false);
    setFixedHeight(FBox->sizeHint().height() + LineHeight(ThemeFont(fsSmallPlus)) + 14);
    FClock.setInterval(ClockStep);
    connect(&FClock, &QTimer::timeout, this, [this] {
        ++FTick;
        update();
    });
    connect(FBox, &QCheckBox::clicked, this, &TServiceRow::chosen);
    connect(FButton, &QPushButton::clicked, this, [this] {
        if (FStatus.State == ssNeedsKey)
            Q_EMIT keyExplained();
        else
            Q_EMIT retried();
    });
}

void TServiceRow::SetStatus(const TServiceStatus& status, bool chosen, bool mayRetry)
{
    FStatus = status;
    FBox->setText(status.DisplayName);
    FBox->setChecked(chosen);
    const bool needsKey = status.State == ssNeedsKey;
    FButton->setVisible(needsKey || status.State == ssFailed || status.State == ssStopped);
    FButton->setText(GetLanguageString(needsKey ? u"cSNeedsKeyWhy"_s : u"cSRetry"_s));
    FButton->setAccessibleName(u"%1: %2"_s.arg(status.DisplayName, FButton->text()));
    FButton->setEnabled(needsKey || mayRetry);
    FButton->setToolTip(FButton->isEnabled() ? QString() : GetLanguageString(u"cSSearchWaits"_s));
    const bool moving = status.State == ssSearching || status.State == ssWaiting;
    if (moving != FClock.isActive())
        moving ? FClock.start() : FClock.stop();
    // One line stays one line; the whole reason is in the tool tip and for screen readers.
    setToolTip(StateText());
    FBox->setAccessibleDescription(StateText());
    resizeEvent(nullptr);
    update();
}

QString TServiceRow::StateText() const
{
    switch (FStatus.State) {
    case ssIdle: return {};
    case ssSearching: return GetLanguageString(u"cSStateSearching"_s);
    case ssWaiting: {
        const qint64 left = (QDateTime::currentDateTime().msecsTo(FStatus.Until) + 999) / 1000;
        return GetLanguageString(u"cSStateWaiting"_s).arg(std::max<qint64>(left, 0));
    }
    case ssFound:
        return FStatus.Found == 0 ? GetLanguageString(u"cSStateNothing"_s)
                                  : GetLanguageString(u"cSStateFound"_s).arg(FStatus.Found);
    case ssNeedsKey: return GetLanguageString(u"cSStateNeedsKey"_s);
    case ssFailed:
    case ssStopped: return FStatus.Reason;
    }
    return {};
}

QRect TServiceRow::StateRect() const
{
    const int top = FBox->geometry().bottom() + 1;
    const int end = FButton->isHidden() ? 0 : FButton->width() + 6;
    const QRect place(StateIndent, top, width() - StateIndent - end, LineHeight(ThemeFont(fsSmallPlus)));
    return isRightToLeft() ? QRect(end, top, place.width(), place.height()) : place;
}

void TServiceRow::resizeEvent(QResizeEvent*)
{
    const int boxWidth = std::min(width(), FBox->sizeHint().width());
    const int buttonWidth = std::min(FButton->sizeHint().width(), width() / 2);
    const int buttonHeight = FButton->sizeHint().height();
    const bool mirrored = isRightToLeft();
    FBox->setGeometry(mirrored ? width() - boxWidth : 0, 2, boxWidth, FBox->sizeHint().height());
    FButton->setGeometry(mirrored ? 0 : width() - buttonWidth, (height() - buttonHeight) / 2, buttonWidth,
                         buttonHeight);
}

void TServiceRow::paintEvent(QPaintEvent*)
{
    const TTheme& theme = CurrentTheme();
    QPainter painter(this);
    const bool mirrored = isRightToLeft();
    const QRect state = StateRect();
    const bool failed = FStatus.State == ssFailed || FStatus.State == ssNeedsKey;
    QString icon;
    QColor color = theme.Text2;
    switch (FStatus.State) {
    case ssIdle: return;
    case ssSearching:
        icon = u"refresh"_s;
        color = theme.AccentFill;
        break;
    case ssWaiting:
        icon = u"clock"_s;
        color = theme.Warn;
        break;
    case ssFound: icon = u"check"_s; break;
    case ssNeedsKey:
        icon = u"lock"_s;
        color = theme.Warn;
        break;
    case ssFailed:
        icon = u"err"_s;
        color = theme.Error;
        break;
    case ssStopped: icon = u"stop"_s; break;
    }
    const qreal middle = state.top() + state.height() / 2.0;
    DrawIcon(painter, QRectF(mirrored ? state.right() - 14 : state.left(), middle - 7, 14, 14), icon, color);
    painter.setFont(ThemeFont(fsSmallPlus));
    painter.setPen(failed ? color : theme.Text2);
    DrawElided(painter, state.adjusted(mirrored ? 0 : 20, 0, mirrored ? -20 : 0, 0), StateText());
    if (FStatus.State != ssSearching)
        return;
    const QRectF bar(state.left(), state.bottom() + 3, state.width(), 2);
    painter.fillRect(bar, theme.Track);
    const bool still = style()->styleHint(QStyle::SH_Widget_Animation_Duration, nullptr, this) == 0;
    const qreal share = still ? 0.3 : static_cast<qreal>(FTick % BarSteps) / BarSteps * 1.3 - 0.3;
    const QRectF piece(bar.left() + bar.width() * share, bar.top(), bar.width() * 0.3, 2);
    painter.fillRect(piece.intersected(bar), theme.AccentFill);
}

TServiceList::TServiceList(TAddMusicForm& form, QWidget* parent)
    : QWidget(parent), FForm(form), FColumn(new QVBoxLayout(this))
{
    FColumn->setContentsMargins(0, 0, 0, 0);
    FColumn->setSpacing(2);
    Refresh();
}

void TServiceList::Refresh()
{
    const std::vector<TServiceStatus> states = FForm.Statuses();
    while (FRows.size() > states.size()) {
        delete FRows.back();
        FRows.pop_back();
    }
    while (FRows.size() < states.size()) {
        const int index = static_cast<int>(FRows.size());
        auto* row = new TServiceRow(this);
        FRows.push_back(row);
        FColumn->addWidget(row);
        connect(row, &TServiceRow::chosen, this,
                [this, index](bool on) { FForm.Fields().ChooseService(FForm.Fields().Area(), index, on); });
        connect(row, &TServiceRow::retried, this, [this, index] { FForm.RetryService(index); });
        connect(row, &TServiceRow::keyExplained, this, [this] { FForm.ExplainKey(); });
    }
    for (size_t i = 0; i < states.size(); ++i)
        FRows[i]->SetStatus(states[i], FForm.Fields().IsServiceChosen(FForm.Fields().Area(), static_cast<int>(i)),
                            FForm.RetryEnabled());
}

TChosenList::TChosenList(TAddMusicForm& form, QWidget* parent)
    : QWidget(parent), FForm(form), FColumn(new QVBoxLayout(this))
{
    FColumn->setContentsMargins(0, 0, 0, 0);
    FColumn->setSpacing(2);
    connect(&form.Chosen(), &TChosenReleases::changed, this, &TChosenList::Refresh);
    Refresh();
}

void TChosenList::Refresh()
{
    const QList<QWidget*> old = findChildren<QWidget*>(Qt::FindDirectChildrenOnly);
    for (QWidget* row : old) {
        row->hide();
        row->deleteLater(); // its own button may have asked for this
    }
    int index = 0;
    for (const TSavedRelease& saved : FForm.Chosen().Items()) {
        auto* row = new TChosenRow(saved, this);
        FColumn->addWidget(row);
        connect(row->Remove, &QToolButton::clicked, this, [this, index] { FForm.Chosen().Remove(index); });
        ++index;
    }
}

} // namespace Kestrune
