// SPDX-License-Identifier: GPL-3.0-or-later
#include "uDetailPane.h"

#include "uDetailParts.h"
#include "uStarsEdit.h"
#include "uTHStrings.h"
#include "uThemePaint.h"
#include "uThemeStyle.h"

#include <QPaintEvent>
#include <QPainter>
#include <QScrollBar>

#include <algorithm>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

constexpr int ColumnWidth = 300;
constexpr double CoverShare = 0.40;

} // namespace

TDetailPane::TDetailPane(QWidget* parent) : QScrollArea(parent), FContent(new QWidget), FHead(new TDetailHead(FContent))
{
    setFrameShape(NoFrame);
    setWidget(FContent);
    setMinimumWidth(160);
    setAccessibleName(GetLanguageString(u"cSGuiGroupPane"_s));
    FContent->setAutoFillBackground(false);
    viewport()->setAutoFillBackground(false);
    setFocusPolicy(Qt::NoFocus);
    connect(FHead->Stars(), &TStarsEdit::ratingChosen, this, &TDetailPane::ratingChosen);
    connect(FHead, &TDetailHead::coverActivated, this, &TDetailPane::coverActivated);
    Rebuild();
}

TDetailPane::~TDetailPane() = default;

QSize TDetailPane::CoverSize(const QSize& picture, int width, int paneHeight)
{
    const int high = std::max(1, static_cast<int>(paneHeight * CoverShare));
    if (picture.isEmpty() || width <= 0)
        return {1, 1};
    return picture.scaled(width, high, Qt::KeepAspectRatio).expandedTo({1, 1});
}

void TDetailPane::SetData(TDetailData detail)
{
    const bool other = detail.ID != FData.ID;
    FData = std::move(detail);
    FHead->SetData(FData);
    Rebuild();
    if (other)
        verticalScrollBar()->setValue(0);
}

void TDetailPane::SetOrientation(Qt::Orientation orientation)
{
    FOrientation = orientation;
    Arrange();
}

void TDetailPane::SetActions(const QList<QAction*>& actions)
{
    FHead->SetActions(actions);
    Arrange();
}

void TDetailPane::SetFolded(const QStringList& ids)
{
    FFolded = QSet<QString>(ids.begin(), ids.end());
    for (TDetailBlock* block : std::as_const(FBlocks))
        block->SetFolded(FFolded.contains(block->Id()));
    Arrange();
}

TDetailBlock* TDetailPane::AddBlock(const QString& id, const QString& caption, const QString& extra)
{
    auto* block = new TDetailBlock(id, caption, extra, FContent);
    block->SetFolded(FFolded.contains(id));
    connect(block, &TDetailBlock::foldToggled, this, [this, block] {
        if (block->IsFolded())
            FFolded.insert(block->Id());
        else
            FFolded.remove(block->Id());
        Arrange();
        Q_EMIT foldedChanged();
    });
    block->show();
    FBlocks << block;
    return block;
}

void TDetailPane::AddSection(const TDetailSection& section)
{
    if (section.Fields.empty())
        return;
    TDetailBlock* block = AddBlock(section.Id, section.Title, {});
    for (const TDetailField& field : section.Fields) {
        TDetailRow* row = TDetailRow::ForField(field, block);
        connect(row, &TDetailRow::activated, this, [this, link = field.Link] { Q_EMIT linkActivated(link); });
        block->Add(row);
    }
}

void TDetailPane::AddTracks()
{
    if (FData.Discs.empty())
        return;
    TDetailBlock* block = AddBlock(u"tracks"_s, GetLanguageString(u"cSGuiTracks"_s), FData.TracksSummary);
    for (std::size_t disc = 0; disc < FData.Discs.size(); ++disc) {
        if (!FData.Discs[disc].Heading.isEmpty())
            block->Add(TDetailRow::ForDisc(FData.Discs[disc], block));
        for (std::size_t track = 0; track < FData.Discs[disc].Tracks.size(); ++track) {
            TDetailRow* row = TDetailRow::ForTrack(FData.Discs[disc].Tracks[track], block);
            connect(row, &TDetailRow::activated, this,
                    [this, disc, track] { Q_EMIT trackActivated(static_cast<int>(disc), static_cast<int>(track)); });
            block->Add(row);
        }
    }
}

void TDetailPane::AddCredits()
{
    if (FData.Credits.empty())
        return;
    TDetailBlock* block = AddBlock(u"credits"_s, GetLanguageString(u"cSGuiCredits"_s), {});
    for (const TDetailCredit& credit : FData.Credits)
        block->Add(TDetailRow::ForCredit(credit, block));
}

void TDetailPane::AddPictures()
{
    if (FData.Pictures.empty())
        return;
    TDetailBlock* block =
        AddBlock(u"pictures"_s, GetLanguageString(u"cSGuiOtherPictures"_s), QString::number(FData.Pictures.size()));
    auto* strip = new TPictureStrip(FData.Pictures, block);
    connect(strip, &TPictureStrip::activated, this, &TDetailPane::pictureActivated);
    block->Add(strip);
}

void TDetailPane::Rebuild()
{
    for (TDetailBlock* block : std::as_const(FBlocks)) {
        block->hide();
        block->deleteLater(); // one of its rows may be the sender
    }
    FBlocks.clear();
    FHead->setVisible(FData.ID != 0);
    if (FData.ID != 0) {
        const bool general = !FData.Sections.empty() && FData.Sections.front().Id == "General"_L1;
        if (general)
            AddSection(FData.Sections.front());
        AddTracks();
        AddCredits();
        AddPictures();
        for (std::size_t i = general ? 1 : 0; i < FData.Sections.size(); ++i)
            AddSection(FData.Sections[i]);
    }
    Arrange();
    viewport()->update();
}

void TDetailPane::Arrange() { FOrientation == Qt::Vertical ? ArrangeBelow() : ArrangeBeside(); }

void TDetailPane::ArrangeBelow()
{
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    const int width = viewport()->width();
    int y = FHead->ArrangeFor(width, height());
    FHead->setGeometry(0, 0, width, y);
    for (TDetailBlock* block : std::as_const(FBlocks)) {
        const int blockHeight = block->ArrangeFor(width);
        block->setGeometry(0, y, width, blockHeight);
        y += blockHeight;
    }
    FContent->resize(width, FData.ID == 0 ? 1 : y + 10);
}

// The cover stands left; the sections fill columns from top to bottom.
void TDetailPane::ArrangeBeside()
{
    setHorizontalScrollBarPolicy(Qt::ScrollBarAsNeeded);
    const int available = viewport()->height();
    const int headHeight = FHead->ArrangeFor(ColumnWidth, available);
    FHead->setGeometry(0, 0, ColumnWidth, std::max(headHeight, available));
    int x = ColumnWidth;
    int y = 0;
    int deepest = headHeight;
    for (TDetailBlock* block : std::as_const(FBlocks)) {
        const int blockHeight = block->ArrangeFor(ColumnWidth);
        if (y > 0 && y + blockHeight > available) {
            x += ColumnWidth;
            y = 0;
        }
        block->setGeometry(x, y, ColumnWidth, blockHeight);
        y += blockHeight;
        deepest = std::max(deepest, y);
    }
    FContent->resize(std::max(viewport()->width(), x + ColumnWidth), std::max(1, deepest));
}

void TDetailPane::resizeEvent(QResizeEvent* event)
{
    QScrollArea::resizeEvent(event);
    Arrange();
}

void TDetailPane::paintEvent(QPaintEvent* event)
{
    const TTheme& theme = CurrentTheme();
    QPainter painter(viewport());
    painter.fillRect(event->rect(), theme.Window);
    if (FData.ID != 0)
        return;
    painter.setFont(ThemeFont(fsBody));
    painter.setPen(theme.Text3);
    painter.drawText(viewport()->rect(), Qt::AlignCenter | Qt::TextWordWrap, GetLanguageString(u"cSGuiNoSelection"_s));
}

} // namespace Kestrune
