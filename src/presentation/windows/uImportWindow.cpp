// SPDX-License-Identifier: GPL-3.0-or-later
#include "uImportWindow.h"

#include "uFileCatcher.h"
#include "uIcons.h"
#include "uImportPages.h"
#include "uImportRun.h"
#include "uTHStrings.h"
#include "uTaskbar.h"
#include "uThemePaint.h"
#include "uThemeStyle.h"

#include <QApplication>
#include <QDesktopServices>
#include <QDropEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QMimeData>
#include <QPainter>
#include <QPushButton>
#include <QStackedWidget>
#include <QUrl>
#include <QVBoxLayout>

#include <algorithm>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

constexpr QSize WizardSize(960, 680);
constexpr int RailWidth = 190;
constexpr int RailPadding = 16;
constexpr int MarkSize = 28;
constexpr int StepHeight = 38;
constexpr int StepCircle = 22;
constexpr int ClockTick = 500; // milliseconds

} // namespace

/// The steps of the chosen source: done ones ticked, the present one filled, later ones numbered.
class TStepRail : public QWidget {
public:
    TStepRail(TKRNImportForm& form, std::span<const TImportPageRow> pages, QWidget* parent)
        : QWidget(parent), FForm(form), FTable(pages)
    {
        setFixedWidth(RailWidth);
    }

    void Refresh()
    {
        const std::vector<TImportPage> pages = FForm.Pages();
        FCurrent = std::ranges::find(pages, FForm.Page()) - pages.begin();
        FSteps.clear();
        for (const TImportPage& page : pages) {
            const auto row = std::ranges::find(FTable, page, &TImportPageRow::Page);
            FSteps += row == FTable.end() ? page : GetLanguageString(row->StepKey);
        }
        setAccessibleName(
            GetLanguageString(u"cSGuiImportStep"_s).arg(FCurrent + 1).arg(FSteps.size()).arg(FSteps.value(FCurrent)));
        update();
    }

protected:
    void paintEvent(QPaintEvent*) override
    {
        const TTheme& theme = CurrentTheme();
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.fillRect(rect(), theme.Sunken);
        DrawMark(painter, Mirrored(QRectF(RailPadding, RailPadding + 2, MarkSize, MarkSize)), theme);
        for (qsizetype i = 0; i < FSteps.size(); ++i)
            DrawStep(painter, i);
        DrawSource(painter);
    }

private:
    QRectF Mirrored(const QRectF& place) const
    {
        return isRightToLeft() ? QRectF(width() - place.right(), place.top(), place.width(), place.height()) : place;
    }

    void DrawStep(QPainter& painter, qsizetype step) const
    {
        const TTheme& theme = CurrentTheme();
        const qreal top = RailPadding + MarkSize + 18 + static_cast<qreal>(step) * StepHeight;
        const QRectF circle =
            Mirrored(QRectF(RailPadding, top + (StepHeight - StepCircle) / 2.0, StepCircle, StepCircle));
        const bool now = step == FCurrent;
        painter.setPen(now ? Qt::NoPen : QPen(step < FCurrent ? theme.AccentFill : theme.Outline, 1));
        painter.setBrush(now ? QBrush(theme.AccentFill) : QBrush(Qt::NoBrush));
        painter.drawEllipse(circle.adjusted(0.5, 0.5, -0.5, -0.5));
        if (step < FCurrent) {
            DrawIcon(painter, circle.adjusted(4, 4, -4, -4), u"check"_s, theme.AccentFill);
        } else {
            painter.setFont(ThemeFont(fsSmall));
            painter.setPen(now ? theme.OnAccent : theme.Text2);
            painter.drawText(circle, Qt::AlignCenter, QString::number(step + 1));
        }
        painter.setFont(ThemeFont(now ? fsBodyBold : fsBody));
        painter.setPen(now ? theme.Text : theme.Text2);
        const qreal left = RailPadding + StepCircle + 10;
        DrawElided(painter, Mirrored(QRectF(left, top, width() - left - 8, StepHeight)), FSteps[step], TextSide());
    }

    void DrawSource(QPainter& painter) const
    {
        if (FForm.ClassIndex() < 0)
            return;
        painter.setFont(ThemeFont(fsSmall));
        painter.setPen(CurrentTheme().Text2);
        const int line = LineHeight(painter.font());
        const qreal room = width() - 2 * RailPadding;
        const QString file = FForm.Source().Text().section(u'/', -1);
        DrawElided(painter, QRectF(RailPadding, height() - 2.0 * line - 10, room, line), FForm.Class().GetDisplayName(),
                   TextSide());
        DrawElided(painter, QRectF(RailPadding, height() - line - 10.0, room, line), file, TextSide());
    }

    Qt::Alignment TextSide() const { return Qt::AlignLeft | Qt::AlignVCenter; }

    TKRNImportForm& FForm;
    std::span<const TImportPageRow> FTable;
    QStringList FSteps;
    qsizetype FCurrent = 0;
};

TImportWindow::TImportWindow(TKRNImportForm& form, QWidget* parent, std::span<const TImportPageRow> pages)
    : QDialog(parent),
      FForm(&form),
      FPages(pages),
      FRail(new TStepRail(form, pages, this)),
      FTitle(new QLabel(this)),
      FHint(new QLabel(this)),
      FStack(new QStackedWidget(this)),
      FCancel(new QPushButton(GetLanguageString(u"cSGuiCancel"_s), this)),
      FBack(new QPushButton(GetLanguageString(u"cSGuiBack"_s), this)),
      FNext(new QPushButton(this))
{
    setWindowTitle(GetLanguageString(u"cSactImport"_s).remove(u"..."_s));
    setAcceptDrops(true);
    FTitle->setFont(ThemeFont(fsPageTitle));
    FHint->setWordWrap(true);
    auto* content = new QVBoxLayout;
    content->setContentsMargins(24, 18, 24, 16);
    content->setSpacing(8);
    content->addWidget(FTitle);
    content->addWidget(FHint);
    content->addSpacing(4);
    content->addWidget(FStack, 1);
    auto* upper = new QHBoxLayout;
    upper->setSpacing(0);
    upper->addWidget(FRail);
    upper->addLayout(content, 1);
    auto* lower = new QHBoxLayout;
    lower->setContentsMargins(16, 10, 16, 10);
    lower->addWidget(FCancel);
    lower->addStretch(1);
    lower->addWidget(FBack);
    lower->addWidget(FNext);
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    column->addLayout(upper, 1);
    column->addLayout(lower);
    BuildButtons();
    connect(&form, &TKRNImportForm::pageChanged, this, &TImportWindow::ShowPage);
    connect(&form, &TKRNImportForm::updated, this, &TImportWindow::UpdateState);
    connect(&form, &TKRNImportForm::closed, this, [this](bool finished) {
        ShowBusy(false);
        done(finished ? QDialog::Accepted : QDialog::Rejected);
    });
    connect(&form, &TKRNImportForm::openUrlRequested, this,
            [](const QString& url) { QDesktopServices::openUrl(QUrl(url, QUrl::StrictMode)); });
    FClock.setInterval(ClockTick);
    connect(&FClock, &QTimer::timeout, this, &TImportWindow::UpdateState);
    resize(WizardSize);
    ShowPage();
}

TImportWindow::~TImportWindow() { ShowBusy(false); }

void TImportWindow::BuildButtons()
{
    FNext->setDefault(true);
    FCancel->setAutoDefault(false);
    FBack->setAutoDefault(false);
    connect(FCancel, &QPushButton::clicked, this, &TImportWindow::reject);
    connect(FBack, &QPushButton::clicked, FForm.data(), &TKRNImportForm::Back);
    connect(FNext, &QPushButton::clicked, FForm.data(), [this] {
        if (FForm->Page() == pFinish)
            FForm->Finish();
        else
            FForm->Next();
    });
}

const TImportPageRow* TImportWindow::RowOf(const TImportPage& page) const
{
    const auto row = std::ranges::find(FPages, page, &TImportPageRow::Page);
    return row == FPages.end() ? nullptr : &*row;
}

// Pages are made when they are first come to: those of other sources have no options to show.
TImportPageWidget* TImportWindow::WidgetOf(const TImportPage& page)
{
    TImportPageWidget*& widget = FWidgets[page];
    if (!widget) {
        const TImportPageRow* row = RowOf(page);
        widget = row ? row->Make(*FForm, this) : new TImportPageWidget(*FForm, this);
        FStack->addWidget(widget);
    }
    return widget;
}

void TImportWindow::ShowPage()
{
    TImportPageWidget* page = WidgetOf(FForm->Page());
    const TImportPageRow* row = RowOf(FForm->Page());
    FTitle->setText(row ? GetLanguageString(row->TitleKey) : FForm->Page());
    if (FStack->currentWidget() != page || !isVisible()) {
        FStack->setCurrentWidget(page);
        page->Enter();
        if (QWidget* first = page->FirstWidget())
            first->setFocus(Qt::OtherFocusReason);
    }
    UpdateState();
}

void TImportWindow::UpdateState()
{
    const bool last = FForm->Page() == pFinish;
    FRail->Refresh();
    TImportPageWidget* page = WidgetOf(FForm->Page());
    const TImportPageRow* row = RowOf(FForm->Page());
    FHint->setText(row ? page->Hint(GetLanguageString(row->HintKey)) : QString());
    FHint->setVisible(!FHint->text().isEmpty());
    FCancel->setEnabled(FForm->CancelEnabled());
    FBack->setEnabled(FForm->BackEnabled());
    FNext->setEnabled(last || FForm->NextEnabled());
    FNext->setText(last ? GetLanguageString(u"cSGuiFinish"_s) : FForm->NextCaption());
    page->Refresh();
    ShowBusy(FForm->Importer() != nullptr);
}

// The pointer and the taskbar show that a worker runs.
void TImportWindow::ShowBusy(bool busy)
{
    if (busy && FForm && FForm->Importer()) {
        const TImportRun& run = *FForm->Importer();
        SetTaskbarProgress(static_cast<double>(run.Position()) / std::max(run.Count(), 1));
    }
    if (busy == FBusy)
        return;
    FBusy = busy;
    if (busy) {
        QApplication::setOverrideCursor(Qt::BusyCursor);
        FClock.start();
    } else {
        QApplication::restoreOverrideCursor();
        FClock.stop();
        SetTaskbarProgress(std::nullopt);
    }
}

void TImportWindow::reject()
{
    if (!FForm)
        return QDialog::reject();
    if (FForm->Page() == pFinish)
        FForm->Finish();
    else
        FForm->Cancel();
}

void TImportWindow::paintEvent(QPaintEvent*)
{
    const TTheme& theme = CurrentTheme();
    QPainter painter(this);
    painter.fillRect(rect(), theme.View);
    const QRectF bar(0, FRail->geometry().bottom() + 1, width(), height() - FRail->geometry().bottom() - 1);
    painter.fillRect(bar, theme.Window);
    DrawHairline(painter, bar, Qt::TopEdge, theme.Line);
}

void TImportWindow::dragEnterEvent(QDragEnterEvent* event)
{
    if (FForm && FForm->AcceptsDrops() && event->mimeData()->hasUrls())
        event->acceptProposedAction();
}

void TImportWindow::dropEvent(QDropEvent* event)
{
    QStringList paths;
    for (const QUrl& url : event->mimeData()->urls())
        if (url.isLocalFile())
            paths << url.toLocalFile();
    event->acceptProposedAction();
    if (FForm)
        FForm->DropFiles(TFileCatcher(paths, event->position().toPoint()));
}

} // namespace Kestrune
