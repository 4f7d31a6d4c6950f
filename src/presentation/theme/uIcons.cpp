// SPDX-License-Identifier: GPL-3.0-or-later
#include "uIcons.h"

#include "uThemeStyle.h"

#include <QFile>
#include <QIconEngine>
#include <QMap>
#include <QPainter>
#include <QPixmapCache>
#include <QSvgRenderer>

#include <algorithm>
#include <cmath>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

struct TIconPath {
    QByteArray Data;
    bool Filled = false;
};

QMap<QString, TIconPath> ReadIconTable()
{
    QMap<QString, TIconPath> table;
    QFile file(u":/kestrune/icons/icons.txt"_s);
    if (!file.open(QIODevice::ReadOnly))
        return table;
    for (const QByteArray& line : file.readAll().split('\n')) {
        const qsizetype equals = line.indexOf('=');
        if (equals < 1 || line.startsWith('#'))
            continue;
        QByteArray name = line.left(equals).trimmed();
        const bool filled = name.startsWith('!');
        table.insert(QString::fromLatin1(filled ? name.mid(1) : name), {line.mid(equals + 1).trimmed(), filled});
    }
    return table;
}

const QMap<QString, TIconPath>& IconTable()
{
    static const QMap<QString, TIconPath> table = ReadIconTable();
    return table;
}

QByteArray SvgOf(const TIconPath& icon, const QColor& color, qreal side)
{
    const QByteArray rgb = color.name().toLatin1();
    const QByteArray stroke = side >= 24 ? "1.25" : "1.5";
    return "<svg xmlns='http://www.w3.org/2000/svg' viewBox='0 0 20 20'><path d='" + icon.Data + "' fill='" +
           (icon.Filled ? rgb : QByteArray("none")) + "' stroke='" + rgb + "' stroke-width='" + stroke +
           "' stroke-linecap='round' stroke-linejoin='round'/></svg>";
}

QPixmap RenderIcon(const QString& name, const QColor& color, qreal side, qreal ratio)
{
    const auto icon = IconTable().constFind(name);
    if (icon == IconTable().cend() || side <= 0)
        return {};
    const int pixels = static_cast<int>(std::ceil(side * ratio));
    const QString key = u"kestrune-icon/%1/%2/%3/%4"_s.arg(name, color.name(QColor::HexArgb)).arg(side).arg(pixels);
    QPixmap pixmap;
    if (QPixmapCache::find(key, &pixmap))
        return pixmap;
    pixmap = QPixmap(pixels, pixels);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    painter.setOpacity(color.alphaF());
    QSvgRenderer(SvgOf(*icon, color, side)).render(&painter);
    painter.end();
    pixmap.setDevicePixelRatio(ratio);
    QPixmapCache::insert(key, pixmap);
    return pixmap;
}

class TIconEngine : public QIconEngine {
public:
    TIconEngine(QString name, TIconColor color) : FName(std::move(name)), FColor(color) {}

    QIconEngine* clone() const override { return new TIconEngine(*this); }
    QString key() const override { return u"kestrune"_s; }
    bool isNull() override { return !HasIcon(FName); }

    void paint(QPainter* painter, const QRect& rect, QIcon::Mode mode, QIcon::State state) override
    {
        painter->save();
        if (mode == QIcon::Disabled)
            painter->setOpacity(painter->opacity() * DisabledOpacity);
        DrawIcon(*painter, rect, FName, ColorFor(mode, state));
        painter->restore();
    }

    QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override
    {
        return scaledPixmap(size, mode, state, 1.0);
    }

    QPixmap scaledPixmap(const QSize& size, QIcon::Mode mode, QIcon::State state, qreal scale) override
    {
        // The size is in device pixels already; the line width follows the size that the reader sees.
        const qreal side = std::min(size.width(), size.height()) / scale;
        QColor color = ColorFor(mode, state);
        if (mode == QIcon::Disabled)
            color.setAlphaF(DisabledOpacity);
        return RenderIcon(FName, color, side, scale);
    }

private:
    QColor ColorFor(QIcon::Mode mode, QIcon::State state) const
    {
        if (mode == QIcon::Selected)
            return CurrentTheme().OnAccent;
        return state == QIcon::On && FColor != icOnAccent ? CurrentTheme().AccentFill : IconColorOf(FColor);
    }

    QString FName;
    TIconColor FColor;
};

} // namespace

QIcon ThemeIcon(const QString& name, TIconColor color)
{
    return HasIcon(name) ? QIcon(new TIconEngine(name, color)) : QIcon();
}

void DrawIcon(QPainter& painter, const QRectF& rect, const QString& name, const QColor& color)
{
    const qreal side = std::min(rect.width(), rect.height());
    const qreal ratio = painter.device() ? painter.device()->devicePixelRatioF() : 1.0;
    const QPixmap pixmap = RenderIcon(name, color, side, ratio);
    if (pixmap.isNull())
        return;
    const auto snap = [ratio](qreal v) { return std::round(v * ratio) / ratio; };
    painter.drawPixmap(QPointF(snap(rect.center().x() - side / 2), snap(rect.center().y() - side / 2)), pixmap);
}

bool HasIcon(const QString& name) { return IconTable().contains(name); }

QStringList IconNames() { return IconTable().keys(); }

QColor IconColorOf(TIconColor color)
{
    const TTheme& theme = CurrentTheme();
    switch (color) {
    case icText2: break;
    case icText: return theme.Text;
    case icAccent: return theme.AccentFill;
    case icOnAccent: return theme.OnAccent;
    case icOk: return theme.Ok;
    case icWarn: return theme.Warn;
    case icError: return theme.Error;
    }
    return theme.Text2;
}

} // namespace Kestrune
