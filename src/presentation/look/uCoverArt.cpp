// SPDX-License-Identifier: GPL-3.0-or-later
#include "uCoverArt.h"

#include "uThemePaint.h"

#include <QBuffer>
#include <QImageReader>
#include <QPainter>
#include <QPainterPath>
#include <QPixmapCache>
#include <QTextLayout>

#include <algorithm>
#include <cmath>
#include <vector>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

constexpr int ShadowMargin = 12; // dip round the cover that the shadow may reach
constexpr int ShadowCore = 24;   // dip of the cover in the 9-patch, corners and a stretchable middle

constexpr int LeastSideWithTexts = 48;

struct TShadowLayer {
    qreal Down;
    qreal Blur;
    qreal Alpha;
};

std::vector<TShadowLayer> ShadowLayers(const TTheme& theme)
{
    if (theme.IsDark())
        return {{1, 3, 0.6}};
    return {{1, 2, 0.22}, {3, 8, 0.10}};
}

// One pass of a box filter along rows; called twice per direction it comes close to a Gaussian.
void BoxBlurRows(std::vector<float>& alpha, int side, int radius)
{
    std::vector<float> row(static_cast<std::size_t>(side));
    for (int y = 0; y < side; ++y) {
        float* line = alpha.data() + std::ptrdiff_t(y) * side;
        for (int x = 0; x < side; ++x) {
            float sum = 0;
            for (int k = -radius; k <= radius; ++k)
                sum += line[std::clamp(x + k, 0, side - 1)];
            row[std::size_t(x)] = sum / float(2 * radius + 1);
        }
        std::copy(row.begin(), row.end(), line);
    }
}

void Transpose(std::vector<float>& alpha, int side)
{
    for (int y = 0; y < side; ++y)
        for (int x = y + 1; x < side; ++x)
            std::swap(alpha[std::size_t(y * side + x)], alpha[std::size_t(x * side + y)]);
}

std::vector<float> BlurredSquare(int side, const QRectF& core, qreal radius, qreal blur)
{
    QImage mask(side, side, QImage::Format_ARGB32_Premultiplied);
    mask.fill(Qt::transparent);
    QPainter painter(&mask);
    FillRounded(painter, core, radius, Qt::black);
    painter.end();
    std::vector<float> alpha(std::size_t(side) * std::size_t(side));
    for (int y = 0; y < side; ++y)
        for (int x = 0; x < side; ++x)
            alpha[std::size_t(y * side + x)] = float(qAlpha(mask.pixel(x, y))) / 255.0f;
    const int box = std::max(1, static_cast<int>(std::lround(blur / 2.5)));
    for (int direction = 0; direction < 2; ++direction) {
        BoxBlurRows(alpha, side, box);
        BoxBlurRows(alpha, side, box);
        Transpose(alpha, side);
    }
    return alpha;
}

QPixmap ShadowPatch(qreal ratio, const TTheme& theme)
{
    const QString key = u"kestrune-shadow/%1/%2"_s.arg(int(theme.Kind)).arg(ratio);
    QPixmap pixmap;
    if (QPixmapCache::find(key, &pixmap))
        return pixmap;
    const int side = static_cast<int>(std::ceil((ShadowCore + 2 * ShadowMargin) * ratio));
    std::vector<float> total(std::size_t(side) * std::size_t(side), 0.0f);
    for (const TShadowLayer& layer : ShadowLayers(theme)) {
        const QRectF core(ShadowMargin * ratio, (ShadowMargin + layer.Down) * ratio, ShadowCore * ratio,
                          ShadowCore * ratio);
        const std::vector<float> alpha = BlurredSquare(side, core, RadiusCover * ratio, layer.Blur * ratio);
        for (std::size_t i = 0; i < total.size(); ++i)
            total[i] = std::min(1.0f, total[i] + alpha[i] * float(layer.Alpha));
    }
    QImage image(side, side, QImage::Format_ARGB32);
    for (int y = 0; y < side; ++y)
        for (int x = 0; x < side; ++x)
            image.setPixel(x, y, qRgba(0, 0, 0, int(std::lround(total[std::size_t(y * side + x)] * 255.0f))));
    pixmap = QPixmap::fromImage(image);
    QPixmapCache::insert(key, pixmap);
    return pixmap;
}

// Draws up to `maxLines` lines of a text broken at words; returns the lower end.
qreal DrawWrapped(QPainter& painter, const QRectF& rect, const QString& text, int maxLines)
{
    QTextLayout layout(text, painter.font());
    layout.beginLayout();
    const qreal lineStep = painter.fontMetrics().height() * 1.02;
    qreal y = rect.top();
    for (int drawn = 0; drawn < maxLines; ++drawn) {
        QTextLine line = layout.createLine();
        if (!line.isValid())
            break;
        line.setLineWidth(rect.width());
        const bool last = drawn == maxLines - 1;
        const QString piece = last ? text.mid(line.textStart()) : text.mid(line.textStart(), line.textLength());
        DrawElided(painter, QRectF(rect.left(), y, rect.width(), lineStep), piece.trimmed());
        y += lineStep;
    }
    layout.endLayout();
    return y;
}

void PaintRecord(QPainter& painter, const QPointF& center, qreal side, const TTheme& theme)
{
    const auto ink = [&](qreal alpha) {
        QColor color = theme.Text;
        color.setAlphaF(float(alpha));
        return color;
    };
    painter.setPen(Qt::NoPen);
    painter.setBrush(ink(0.06));
    painter.drawEllipse(center, side * 0.47, side * 0.47);
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(ink(0.10), std::max(0.6, side * 0.005)));
    for (int ring = 0; ring < 8; ++ring)
        painter.drawEllipse(center, side * (0.19 + ring * 0.04), side * (0.19 + ring * 0.04));
}

void PaintDisc(QPainter& painter, const QPointF& center, qreal side, const QColor& ground, const TTheme& theme)
{
    const auto ink = [&](qreal share) { return Mix(ground, theme.Text, share); };
    const auto disc = [&](qreal radius, const QColor& color) {
        painter.setBrush(color);
        painter.drawEllipse(center, side * radius, side * radius);
    };
    painter.setPen(Qt::NoPen);
    disc(0.46, ink(0.07));
    painter.setPen(QPen(ink(0.13), std::max(0.6, side * 0.005)));
    painter.setBrush(Qt::NoBrush);
    painter.drawEllipse(center, side * 0.29, side * 0.29);
    painter.setPen(Qt::NoPen);
    disc(0.15, ink(0.13));
    disc(0.065, ground);
}

bool LooksLikeDisc(const QString& mediaType)
{
    return mediaType.contains("CD"_L1, Qt::CaseInsensitive) || mediaType.contains("DVD"_L1, Qt::CaseInsensitive) ||
           mediaType.contains("Blu"_L1, Qt::CaseInsensitive);
}

} // namespace

QSize FitInSquare(const QSize& picture, int side)
{
    if (picture.isEmpty())
        return {side, side};
    return picture.scaled(side, side, Qt::KeepAspectRatio).expandedTo({1, 1});
}

QImage DecodeScaled(const QByteArray& bytes, int side)
{
    QBuffer buffer;
    buffer.setData(bytes);
    buffer.open(QIODevice::ReadOnly);
    QImageReader reader(&buffer);
    reader.setAutoTransform(true);
    const QSize full = reader.size();
    // Some formats decode straight to the size asked for; twice the target keeps the last step smooth.
    if (full.isValid() && std::max(full.width(), full.height()) > side * 2)
        reader.setScaledSize(FitInSquare(full, side * 2));
    QImage image = reader.read();
    if (image.isNull())
        return image;
    return image.scaled(FitInSquare(image.size(), side), Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
}

QPixmap FinishCover(const QImage& picture, qreal ratio, const TTheme& theme)
{
    QImage result(picture.size(), QImage::Format_ARGB32_Premultiplied);
    result.fill(Qt::transparent);
    QPainter painter(&result);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF rect(QPointF(0, 0), QSizeF(picture.size()));
    QPainterPath shape;
    shape.addRoundedRect(rect, RadiusCover * ratio, RadiusCover * ratio);
    painter.setPen(Qt::NoPen);
    painter.setBrush(QBrush(picture));
    painter.drawPath(shape);
    QColor edge = theme.IsDark() ? Qt::white : Qt::black;
    edge.setAlphaF(theme.IsDark() ? 0.08f : 0.10f);
    StrokeRounded(painter, rect, RadiusCover * ratio, edge, ratio);
    painter.end();
    QPixmap pixmap = QPixmap::fromImage(result);
    pixmap.setDevicePixelRatio(ratio);
    return pixmap;
}

int CoverGroundOf(const QString& artist)
{
    // FNV-1a: qHash is seeded per process, and a cover should not change its colour from one start to the next.
    quint32 hash = 2166136261u;
    for (const QChar c : artist.toCaseFolded())
        hash = (hash ^ c.unicode()) * 16777619u;
    return int((hash >> 8) % 8u);
}

void PaintDrawnCover(QPainter& painter, const QRectF& rect, const QString& title, const QString& artist, bool disc,
                     int ground, const TTheme& theme)
{
    const qreal side = rect.width();
    const QColor color = theme.CoverGrounds[std::size_t(ground & 7)];
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setClipRect(rect, Qt::IntersectClip);
    painter.fillRect(rect, color);
    const QPointF center(rect.left() + side * 0.73, rect.top() + side * 0.75);
    if (disc)
        PaintDisc(painter, center, side, color, theme);
    else
        PaintRecord(painter, center, side, theme);
    QFont font = ThemeFont(fsBodyBold);
    font.setPixelSize(std::max(6, int(std::lround(side * 0.105))));
    painter.setFont(font);
    painter.setPen(theme.Text);
    const QRectF texts = rect.adjusted(side * 0.08, side * 0.09, -side * 0.08, 0);
    const qreal y = DrawWrapped(painter, texts, title, 3);
    font.setPixelSize(std::max(5, int(std::lround(side * 0.067))));
    font.setWeight(QFont::Normal);
    painter.setFont(font);
    painter.setPen(theme.Text2);
    DrawElided(painter, QRectF(texts.left(), y, texts.width(), side * 0.10), artist);
    painter.restore();
}

QPixmap DrawnCover(int side, qreal ratio, const QString& title, const QString& artist, const QString& mediaType,
                   const TTheme& theme)
{
    const int pixels = static_cast<int>(std::lround(side * ratio));
    QImage image(pixels, pixels, QImage::Format_ARGB32_Premultiplied);
    QPainter painter(&image);
    // Texts of a mini cover could not be read.
    const bool texts = side >= LeastSideWithTexts;
    PaintDrawnCover(painter, QRectF(0, 0, pixels, pixels), texts ? title : QString(), texts ? artist : QString(),
                    LooksLikeDisc(mediaType), CoverGroundOf(artist), theme);
    painter.end();
    return FinishCover(image, ratio, theme);
}

void PaintCoverShadow(QPainter& painter, const QRectF& rect, const TTheme& theme)
{
    const qreal ratio = painter.device() ? painter.device()->devicePixelRatioF() : 1.0;
    const QPixmap patch = ShadowPatch(ratio, theme);
    const qreal corner = ShadowMargin + ShadowCore / 2.0 - 2;
    const qreal full = patch.width();
    const qreal c = corner * ratio;
    const qreal from[4] = {0, c, full - c, full};
    const QRectF out = rect.adjusted(-ShadowMargin, -ShadowMargin, ShadowMargin, ShadowMargin);
    const qreal toX[4] = {out.left(), out.left() + corner, out.right() - corner, out.right()};
    const qreal toY[4] = {out.top(), out.top() + corner, out.bottom() - corner, out.bottom()};
    for (int row = 0; row < 3; ++row)
        for (int column = 0; column < 3; ++column) {
            if (row == 1 && column == 1)
                continue;
            painter.drawPixmap(QRectF(QPointF(toX[column], toY[row]), QPointF(toX[column + 1], toY[row + 1])), patch,
                               QRectF(QPointF(from[column], from[row]), QPointF(from[column + 1], from[row + 1])));
        }
}

} // namespace Kestrune
