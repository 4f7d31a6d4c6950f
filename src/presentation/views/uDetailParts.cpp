// SPDX-License-Identifier: GPL-3.0-or-later
#include "uDetailParts.h"

#include "uColumnNames.h"
#include "uCoverArt.h"
#include "uIcons.h"
#include "uRibbonButton.h"
#include "uStarsEdit.h"
#include "uTHStrings.h"
#include "uTheme.h"
#include "uThemePaint.h"

#include <QAction>
#include <QCheckBox>
#include <QFontMetrics>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QMenu>
#include <QMouseEvent>
#include <QPainter>

#include <algorithm>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

constexpr int PanePadding = 14;
constexpr int RowIndent = 28;
constexpr int LeastLabelWidth = 104;
constexpr int MostLabelWidth = 170;
constexpr int PictureSide = 64;
constexpr int PictureGap = 8;
constexpr int LargestCover = 640;
constexpr double CoverShare = 0.40; // of the height of the pane

class TBlockHeading : public QAbstractButton {
public:
    TBlockHeading(const QString& caption, QString extra, QWidget* parent)
        : QAbstractButton(parent), FExtra(std::move(extra))
    {
        setText(caption);
        setAccessibleName(caption);
        setCheckable(true);
        setFocusPolicy(Qt::TabFocus);
        setAttribute(Qt::WA_Hover);
    }

protected:
    void paintEvent(QPaintEvent*) override
    {
        const TTheme& theme = CurrentTheme();
        QPainter painter(this);
        const bool mirrored = isRightToLeft();
        const auto place = [&](const QRectF& r) {
            return mirrored ? QRectF(width() - r.right(), r.top(), r.width(), r.height()) : r;
        };
        if (underMouse())
            FillRounded(painter, QRectF(rect()).adjusted(6, 1, -6, -1), RadiusControl, theme.Hover);
        const QString arrow = isChecked() ? u"cd"_s : mirrored ? u"cl"_s : u"cr"_s;
        DrawIcon(painter, place({10, height() / 2.0 - 7, 14, 14}), arrow, theme.Text);
        painter.setFont(ThemeFont(fsBodyBold));
        painter.setPen(theme.Text);
        const int captionWidth = painter.fontMetrics().horizontalAdvance(text());
        const Qt::Alignment side = Qt::AlignLeft | Qt::AlignVCenter;
        DrawElided(painter, place({29, 0, width() - 40.0, qreal(height())}), text(), side);
        painter.setFont(ThemeFont(fsBody));
        painter.setPen(theme.Text3);
        const qreal left = 29 + captionWidth + 6;
        DrawElided(painter, place({left, 0, width() - left - 12, qreal(height())}), FExtra, side);
        if (hasFocus() && window()->testAttribute(Qt::WA_KeyboardFocusChange))
            DrawFocusRing(painter, QRectF(rect()).adjusted(6, 1, -6, -1), RadiusControl, theme);
    }

    void keyPressEvent(QKeyEvent* event) override
    {
        if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter)
            return click();
        QAbstractButton::keyPressEvent(event);
    }

private:
    QString FExtra;
};

} // namespace

TDetailHead::TDetailHead(QWidget* parent)
    : QWidget(parent), FStars(new TStarsEdit(this)), FButtons(new QWidget(this)), FButtonRow(new QHBoxLayout(FButtons))
{
    FButtonRow->setContentsMargins(0, 0, 0, 0);
    FButtonRow->setSpacing(10);
}

void TDetailHead::SetData(const TDetailData& detail)
{
    FTitle = detail.Title;
    FArtist = detail.Artist;
    FMediaType.clear();
    for (const TDetailSection& section : detail.Sections)
        for (const TDetailField& field : section.Fields)
            if (field.Column == Col::MediaType)
                FMediaType = field.Value;
    FPicture = detail.Cover.isEmpty() ? QImage() : DecodeScaled(detail.Cover, LargestCover);
    FCoverKey.clear();
    FStars->SetRating(detail.Rating);
    setAccessibleName(FTitle + u", "_s + FArtist);
    update();
}

void TDetailHead::SetActions(const QList<QAction*>& actions)
{
    qDeleteAll(FButtons->findChildren<TRibbonButton*>());
    for (QAction* action : actions) {
        auto* button = new TRibbonButton(TRibbonButton::TShape::Icon, FButtons);
        button->SetAction(action);
        if (action->menu())
            button->setMenu(action->menu());
        FButtonRow->addWidget(button);
    }
}

void TDetailHead::SetNote(const QString& note)
{
    FNote = note;
    FStars->setVisible(note.isEmpty());
    FButtons->setVisible(note.isEmpty());
    update();
}

QSize TDetailHead::CoverSize(const QSize& picture, int width, int paneHeight)
{
    const int high = std::max(1, static_cast<int>(paneHeight * CoverShare));
    if (picture.isEmpty() || width <= 0)
        return {1, 1};
    return picture.scaled(width, high, Qt::KeepAspectRatio).expandedTo({1, 1});
}

int TDetailHead::ArrangeFor(int width, int paneHeight)
{
    const QSize picture = FPicture.isNull() ? QSize(1, 1) : FPicture.size();
    const QSize cover = CoverSize(picture, width - 2 * PanePadding, paneHeight);
    FCoverRect = QRect(QPoint((width - cover.width()) / 2, PanePadding), cover);
    FTextTop = FCoverRect.bottom() + 1 + 10;
    int y = FTextTop + LineHeight(ThemeFont(fsPaneTitle)) + LineHeight(ThemeFont(fsBody)) + 5;
    const QSize stars = FStars->sizeHint();
    const QSize buttons = FButtons->sizeHint();
    const auto place = [&](QWidget* child, int left, const QSize& size) {
        child->setGeometry(isRightToLeft() ? width - left - size.width() : left, y + (28 - size.height()) / 2,
                           size.width(), size.height());
    };
    place(FStars, PanePadding - 2, stars);
    place(FButtons, std::max(PanePadding + stars.width(), width - PanePadding - buttons.width()), buttons);
    return y + 28 + 10;
}

QPixmap TDetailHead::CoverPixmap(qreal ratio)
{
    const QSize pixels = FCoverRect.size() * ratio;
    const QString key = u"%1/%2/%3"_s.arg(pixels.width()).arg(pixels.height()).arg(int(CurrentTheme().Kind));
    if (key == FCoverKey)
        return FCover;
    FCoverKey = key;
    FCover = FPicture.isNull() ? DrawnCover(FCoverRect.width(), ratio, FTitle, FArtist, FMediaType, CurrentTheme())
                               : FinishCover(FPicture.scaled(pixels, Qt::IgnoreAspectRatio, Qt::SmoothTransformation),
                                             ratio, CurrentTheme());
    return FCover;
}

void TDetailHead::paintEvent(QPaintEvent*)
{
    const TTheme& theme = CurrentTheme();
    QPainter painter(this);
    if (FCoverRect.width() > 1) {
        PaintCoverShadow(painter, FCoverRect, theme);
        painter.drawPixmap(FCoverRect.topLeft(), CoverPixmap(devicePixelRatioF()));
    }
    const Qt::Alignment side = Qt::AlignLeft | Qt::AlignVCenter;
    const QFont titleFont = ThemeFont(fsPaneTitle);
    painter.setFont(titleFont);
    painter.setPen(theme.Text);
    const QRectF title(PanePadding, FTextTop, width() - 2 * PanePadding, LineHeight(titleFont));
    DrawElided(painter, title, FTitle, side);
    painter.setFont(ThemeFont(fsBody));
    painter.setPen(theme.Text2);
    const QRectF artist(title.left(), title.bottom(), title.width(), LineHeight(painter.font()));
    DrawElided(painter, artist, FArtist, side);
    if (!FNote.isEmpty()) {
        const qreal pill = QFontMetrics(ThemeFont(fsSmall)).horizontalAdvance(FNote) + 12;
        DrawPill(painter, QPointF(isRightToLeft() ? artist.right() - pill : artist.left(), artist.bottom() + 16), FNote,
                 theme);
    }
    if (!parentWidget() || width() >= parentWidget()->width()) // not where the sections stand beside it
        DrawHairline(painter, rect(), Qt::BottomEdge, theme.Line);
}

void TDetailHead::mouseReleaseEvent(QMouseEvent* event)
{
    if (event->button() == Qt::LeftButton && FCoverRect.contains(event->position().toPoint()) && !FPicture.isNull())
        Q_EMIT coverActivated();
}

TPictureStrip::TPictureStrip(std::vector<QByteArray> pictures, QWidget* parent)
    : QWidget(parent), FPictures(std::move(pictures))
{
    setFocusPolicy(Qt::TabFocus);
    setAccessibleName(GetLanguageString(u"cSGuiOtherPictures"_s));
}

void TPictureStrip::MakePixmaps()
{
    const qreal ratio = devicePixelRatioF();
    const QString key = u"%1/%2"_s.arg(ratio).arg(int(CurrentTheme().Kind));
    if (key == FPixmapKey)
        return;
    FPixmapKey = key;
    FPixmaps.clear();
    for (const QByteArray& bytes : FPictures) {
        const QImage picture = DecodeScaled(bytes, static_cast<int>(PictureSide * ratio));
        FPixmaps.push_back(picture.isNull() ? QPixmap() : FinishCover(picture, ratio, CurrentTheme()));
    }
}

QRect TPictureStrip::CellRect(int index, int width) const
{
    const int columns = std::max(1, (width - RowIndent) / (PictureSide + PictureGap));
    return {RowIndent + index % columns * (PictureSide + PictureGap), 4 + index / columns * (PictureSide + PictureGap),
            PictureSide, PictureSide};
}

int TPictureStrip::HeightFor(int width) const
{
    return FPictures.empty() ? 0 : CellRect(static_cast<int>(FPictures.size()) - 1, width).bottom() + 9;
}

void TPictureStrip::paintEvent(QPaintEvent*)
{
    const TTheme& theme = CurrentTheme();
    QPainter painter(this);
    MakePixmaps();
    for (std::size_t i = 0; i < FPixmaps.size(); ++i) {
        const QRect cell = CellRect(static_cast<int>(i), width());
        if (FPixmaps[i].isNull()) {
            FillRounded(painter, cell, RadiusCover, theme.Sunken);
        } else {
            const QSizeF size = FPixmaps[i].deviceIndependentSize();
            painter.drawPixmap(
                QPointF(cell.left() + (PictureSide - size.width()) / 2, cell.top() + PictureSide - size.height()),
                FPixmaps[i]);
        }
        if (hasFocus() && static_cast<int>(i) == FCurrent)
            DrawFocusRing(painter, QRectF(cell).adjusted(-3, -3, 3, 3), RadiusControl, theme);
    }
}

void TPictureStrip::mouseReleaseEvent(QMouseEvent* event)
{
    for (std::size_t i = 0; i < FPictures.size(); ++i)
        if (event->button() == Qt::LeftButton &&
            CellRect(static_cast<int>(i), width()).contains(event->position().toPoint())) {
            FCurrent = static_cast<int>(i);
            Q_EMIT activated(FCurrent);
            return;
        }
}

void TPictureStrip::keyPressEvent(QKeyEvent* event)
{
    const int last = static_cast<int>(FPictures.size()) - 1;
    if (event->key() == Qt::Key_Left || event->key() == Qt::Key_Right) {
        FCurrent = std::clamp(FCurrent + (event->key() == Qt::Key_Right ? 1 : -1), 0, std::max(0, last));
        return update();
    }
    if ((event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter || event->key() == Qt::Key_Space) &&
        last >= 0) {
        Q_EMIT activated(FCurrent);
        return;
    }
    QWidget::keyPressEvent(event);
}

TDetailBlock::TDetailBlock(QString id, const QString& caption, const QString& extra, QWidget* parent)
    : QWidget(parent), FId(std::move(id)), FHeading(new TBlockHeading(caption, extra, this))
{
    FHeading->setChecked(true);
    connect(FHeading, &QAbstractButton::clicked, this, [this] {
        SetFolded(!FHeading->isChecked());
        Q_EMIT foldToggled();
    });
}

void TDetailBlock::Add(TDetailRow* row)
{
    FRows << row;
    row->setVisible(!FIsFolded);
}

void TDetailBlock::Add(TPictureStrip* strip)
{
    FStrip = strip;
    strip->setVisible(!FIsFolded);
}

void TDetailBlock::SetFolded(bool folded)
{
    FIsFolded = folded;
    FHeading->setChecked(!folded);
    for (TDetailRow* row : std::as_const(FRows))
        row->setVisible(!folded);
    if (FStrip)
        FStrip->setVisible(!folded);
}

int TDetailBlock::ArrangeFor(int width)
{
    const int heading = RowHeight(26, ThemeFont(fsBodyBold), 8);
    FHeading->setGeometry(0, 4, width, heading);
    int y = 4 + heading;
    if (FIsFolded)
        return y;
    for (TDetailRow* row : std::as_const(FRows)) {
        const int height = row->HeightFor(width);
        row->setGeometry(0, y, width, height);
        y += height;
    }
    if (FStrip) {
        const int height = FStrip->HeightFor(width);
        FStrip->setGeometry(0, y, width, height);
        y += height;
    }
    return y;
}

TDetailRow::TDetailRow(TKind kind, QWidget* parent) : QAbstractButton(parent), FKind(kind)
{
    setAttribute(Qt::WA_Hover);
}

TDetailRow* TDetailRow::ForField(const TDetailField& field, bool editable, QWidget* parent)
{
    auto* row = new TDetailRow(TKind::Field, parent);
    row->FColumn = field.Column;
    row->FLabel = field.Label;
    row->FValue = field.Value;
    row->FIsLink = !field.Link.isEmpty();
    row->FEditable = editable;
    row->setAccessibleName(field.Label.isEmpty() ? field.Value : field.Label + u": "_s + field.Value);
    if (row->FIsLink || editable)
        row->setFocusPolicy(Qt::TabFocus);
    if (row->FIsLink) {
        row->setCursor(Qt::PointingHandCursor);
        row->setToolTip(field.Link);
    } else if (editable) {
        row->setToolTip(GetLanguageString(u"cSGuiEditHint"_s));
    }
    return row;
}

void TDetailRow::SetEditor(QWidget* editor)
{
    FEditor = editor;
    PlaceParts();
    if (editor)
        editor->show();
    updateGeometry();
    update();
}

void TDetailRow::ShowBox(bool checked)
{
    FBox = new QCheckBox(this);
    FBox->setChecked(checked);
    FBox->setAccessibleName(FLabel);
    connect(FBox, &QCheckBox::toggled, this, &TDetailRow::boxToggled);
    FBox->show();
    PlaceParts();
}

void TDetailRow::PlaceParts()
{
    const auto mirror = [this](const QRect& box) {
        return isRightToLeft() ? QRect(width() - box.right() - 1, box.top(), box.width(), box.height()) : box;
    };
    if (FBox)
        FBox->setGeometry(mirror({6, 0, 22, height()}));
    if (FEditor)
        FEditor->setGeometry(mirror({ValueLeft() - 4, 0, width() - ValueLeft() - PanePadding + 8, height()}));
}

void TDetailRow::resizeEvent(QResizeEvent* event)
{
    QAbstractButton::resizeEvent(event);
    PlaceParts();
}

TDetailRow* TDetailRow::ForTrack(const TDetailTrack& track, QWidget* parent)
{
    auto* row = new TDetailRow(TKind::Track, parent);
    row->FLabel = track.Position;
    row->FValue = track.Artist.isEmpty() ? track.Title : track.Title + u" – "_s + track.Artist;
    row->FExtra = track.Length;
    row->setFocusPolicy(Qt::TabFocus);
    row->setAccessibleName(track.Position + u' ' + row->FValue + u", "_s + row->FExtra);
    return row;
}

TDetailRow* TDetailRow::ForDisc(const TDetailDisc& disc, QWidget* parent)
{
    auto* row = new TDetailRow(TKind::Disc, parent);
    row->FValue = disc.Heading;
    row->FExtra = disc.Length;
    row->setAccessibleName(disc.Heading + u", "_s + disc.Length);
    return row;
}

TDetailRow* TDetailRow::ForCredit(const TDetailCredit& credit, QWidget* parent)
{
    auto* row = new TDetailRow(TKind::Credit, parent);
    row->FLabel = credit.Credit;
    row->FValue = credit.Musician;
    row->setAccessibleName(credit.Musician + u", "_s + credit.Credit);
    return row;
}

int TDetailRow::ValueLeft() const
{
    if (FKind == TKind::Track)
        return RowIndent + 34;
    if (FKind == TKind::Disc || FLabel.isEmpty())
        return RowIndent;
    return RowIndent + LabelWidth();
}

// A third of a wide pane, so that longer labels of other languages find room too.
int TDetailRow::LabelWidth() const { return std::clamp(width() / 3, LeastLabelWidth, MostLabelWidth); }

int TDetailRow::HeightFor(int width) const
{
    const QFont font = ThemeFont(fsBody);
    const int one = RowHeight(24, font, 6);
    if (FEditor && FEditor->sizeHint().height() > 2 * one)
        return 5 * one; // several lines are edited
    if (FKind != TKind::Field || !FLabel.isEmpty())
        return one;
    // A text without a label, as the comments, is shown whole.
    const QRect box = QFontMetrics(font).boundingRect(QRect(0, 0, std::max(40, width - RowIndent - 14), 100000),
                                                      Qt::TextWordWrap, FValue);
    return std::max(one, box.height() + 8);
}

bool TDetailRow::event(QEvent* event)
{
    if (event->type() == QEvent::ShortcutOverride && FEditable && static_cast<QKeyEvent*>(event)->key() == Qt::Key_F2) {
        event->accept(); // this field, not the first one
        return true;
    }
    return QAbstractButton::event(event);
}

void TDetailRow::keyPressEvent(QKeyEvent* event)
{
    const bool enter = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (FEditable && (event->key() == Qt::Key_F2 || (enter && !FIsLink))) {
        Q_EMIT editRequested();
        return;
    }
    if (enter) {
        Q_EMIT activated();
        return;
    }
    QAbstractButton::keyPressEvent(event);
}

void TDetailRow::mouseReleaseEvent(QMouseEvent* event)
{
    QAbstractButton::mouseReleaseEvent(event);
    if (event->button() != Qt::LeftButton || !rect().contains(event->position().toPoint()) || FKind != TKind::Field)
        return;
    const int x = isRightToLeft() ? width() - event->position().toPoint().x() : event->position().toPoint().x();
    // The text of a link leads where it says; beside it, and on its label, the value is edited.
    const int linkEnd = ValueLeft() + fontMetrics().horizontalAdvance(FValue) + 22;
    if (FIsLink && x >= ValueLeft() && x < linkEnd)
        Q_EMIT activated();
    else if (FEditable)
        Q_EMIT editRequested();
}

void TDetailRow::mouseDoubleClickEvent(QMouseEvent* event)
{
    if (FKind == TKind::Track && event->button() == Qt::LeftButton)
        Q_EMIT activated();
    else
        QAbstractButton::mouseDoubleClickEvent(event);
}

void TDetailRow::paintEvent(QPaintEvent*)
{
    const TTheme& theme = CurrentTheme();
    QPainter painter(this);
    if (FKind == TKind::Track && underMouse())
        painter.fillRect(rect(), theme.Hover);
    painter.setFont(ThemeFont(fsBody));
    FKind == TKind::Field || FKind == TKind::Credit ? PaintField(painter) : PaintColumns(painter);
    if (hasFocus())
        DrawFocusRing(painter, QRectF(rect()).adjusted(4, 0, -4, 0), RadiusCover, theme);
}

void TDetailRow::PaintField(QPainter& painter) const
{
    const TTheme& theme = CurrentTheme();
    const bool mirrored = isRightToLeft();
    const auto place = [&](qreal left, qreal width) {
        return QRectF(mirrored ? this->width() - left - width : left, 0, width, height());
    };
    const Qt::Alignment side = Qt::AlignLeft | Qt::AlignVCenter;
    painter.setPen(theme.Text2);
    DrawElided(painter, place(RowIndent, LabelWidth() - 8), FLabel, side);
    qreal x = ValueLeft();
    const qreal right = width() - PanePadding;
    if (FLabel.isEmpty()) {
        painter.setPen(FIsLink ? theme.AccentFill : theme.Text);
        painter.drawText(place(x, right - x).adjusted(0, 4, 0, 0), Qt::AlignLeft | Qt::TextWordWrap, FValue);
        return;
    }
    painter.setPen(FIsLink ? theme.AccentFill : theme.Text);
    const int wanted = painter.fontMetrics().horizontalAdvance(FValue) + 1;
    const qreal room = right - x - (FIsLink ? 20 : 0);
    const qreal valueWidth = std::min<qreal>(wanted, room);
    DrawElided(painter, place(x, valueWidth), FValue, side);
    x += valueWidth + 5;
    if (FIsLink)
        DrawIcon(painter, QRectF(mirrored ? width() - x - 14 : x, height() / 2.0 - 7, 14, 14), u"ext"_s,
                 theme.AccentFill);
}

void TDetailRow::PaintColumns(QPainter& painter) const
{
    const TTheme& theme = CurrentTheme();
    const bool mirrored = isRightToLeft();
    const auto place = [&](qreal left, qreal width) {
        return QRectF(mirrored ? this->width() - left - width : left, 0, width, height());
    };
    const Qt::Alignment near = Qt::AlignLeft | Qt::AlignVCenter;
    const Qt::Alignment far = Qt::AlignRight | Qt::AlignVCenter;
    const qreal right = width() - PanePadding;
    const qreal extraWidth = FExtra.isEmpty() ? 0 : painter.fontMetrics().horizontalAdvance(FExtra) + 2;
    painter.setPen(theme.Text2);
    DrawElided(painter, place(RowIndent, 32), FLabel, near);
    DrawElided(painter, place(right - extraWidth, extraWidth), FExtra, far);
    if (FKind == TKind::Disc)
        painter.setFont(ThemeFont(fsBodyBold));
    else
        painter.setPen(theme.Text);
    const qreal left = ValueLeft();
    DrawElided(painter, place(left, right - extraWidth - 8 - left), FValue, near);
}

} // namespace Kestrune
