// SPDX-License-Identifier: GPL-3.0-or-later
#include "uIcons.h"

#include "uTheme.h"

#include <QFile>
#include <QHash>
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

// Names of the freedesktop icon naming specification for what our own icons show.
const QHash<QString, QString>& DesktopNames()
{
    static const QHash<QString, QString> names{{u"add"_s, u"list-add"_s},
                                               {u"copy"_s, u"edit-copy"_s},
                                               {u"trash"_s, u"edit-delete"_s},
                                               {u"search"_s, u"edit-find"_s},
                                               {u"find"_s, u"edit-find"_s},
                                               {u"check"_s, u"edit-select-all"_s},
                                               {u"refresh"_s, u"view-refresh"_s},
                                               {u"sortasc"_s, u"view-sort-ascending"_s},
                                               {u"print"_s, u"document-print"_s},
                                               {u"sortdesc"_s, u"view-sort-descending"_s},
                                               {u"folder"_s, u"folder"_s},
                                               {u"disc"_s, u"media-optical"_s},
                                               {u"eject"_s, u"media-eject"_s},
                                               {u"play"_s, u"media-playback-start"_s},
                                               {u"pause"_s, u"media-playback-pause"_s},
                                               {u"stop"_s, u"media-playback-stop"_s},
                                               {u"prev"_s, u"media-skip-backward"_s},
                                               {u"next"_s, u"media-skip-forward"_s},
                                               {u"shuffle"_s, u"media-playlist-shuffle"_s},
                                               {u"repeat"_s, u"media-playlist-repeat"_s},
                                               {u"vol"_s, u"audio-volume-high"_s},
                                               {u"warn"_s, u"dialog-warning"_s},
                                               {u"err"_s, u"dialog-error"_s},
                                               {u"gear"_s, u"preferences-system"_s},
                                               {u"help"_s, u"help-contents"_s},
                                               {u"pencil"_s, u"document-edit"_s},
                                               {u"save"_s, u"document-save"_s},
                                               {u"camera"_s, u"camera-web"_s}};
    return names;
}

bool& UseDesktopIcons()
{
    static bool use = false;
    return use;
}

QPixmap DesktopPixmap(const QString& name, qreal side, qreal ratio)
{
    const auto known = UseDesktopIcons() ? DesktopNames().constFind(name) : DesktopNames().cend();
    if (known == DesktopNames().cend() || !QIcon::hasThemeIcon(*known))
        return {};
    const int size = static_cast<int>(std::ceil(side));
    return QIcon::fromTheme(*known).pixmap(QSize(size, size), ratio);
}

QPixmap RenderIcon(const QString& name, const QColor& color, qreal side, qreal ratio)
{
    const auto icon = IconTable().constFind(name);
    if (icon == IconTable().cend() || side <= 0)
        return {};
    if (const QPixmap desktop = DesktopPixmap(name, side, ratio); !desktop.isNull())
        return desktop;
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

void SetDesktopIcons(bool use) { UseDesktopIcons() = use; }

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
