// SPDX-License-Identifier: GPL-3.0-or-later
// Shows the parts of the windows with invented data and writes them as pictures: gui_gallery FOLDER
// [light|dark|contrast]
#include "uCoverCache.h"
#include "uGalleryData.h"
#include "uThemeController.h"
#include "uThumbsPainter.h"
#include "uTileView.h"

#include <QApplication>
#include <QDir>
#include <QTextStream>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

class TGallery {
public:
    TGallery(const QString& folder, const QString& look) : FFolder(folder), FLook(look) {}

    void Save(QWidget& widget, const QString& name) const
    {
        widget.show();
        for (int round = 0; round < 5; ++round) {
            widget.grab();
            QCoreApplication::processEvents();
        }
        const QString path = QDir(FFolder).filePath(name + u'-' + FLook + u".png"_s);
        QTextStream(stdout) << (widget.grab().save(path) ? u"wrote "_s : u"cannot write "_s) << path << Qt::endl;
    }

    void Thumbs() const
    {
        for (int step = 0; step < 3; ++step) {
            Kit::TSampleModel model(4000);
            TModelThumbSource source;
            TCoverCache covers(source);
            TThumbsPainter painter(covers);
            painter.SetStep(step);
            TTileView view;
            view.SetPainter(&painter);
            view.setModel(&model);
            view.resize(1093, 670);
            view.setCurrentIndex(model.index(1, 0));
            view.show();
            view.activateWindow();
            view.setFocus();
            Save(view, u"thumbs%1"_s.arg(step));
        }
    }

private:
    QString FFolder;
    QString FLook;
};

int RunGallery(const QStringList& arguments)
{
    const QString folder = arguments.value(1, u"."_s);
    const QString look = arguments.value(2, u"light"_s);
    QDir().mkpath(folder);
    TThemeController theme;
    theme.Apply(look == "dark"_L1 ? 1 : look == "contrast"_L1 ? 2 : 0, 0);
    const TGallery gallery(folder, look);
    gallery.Thumbs();
    return 0;
}

} // namespace

} // namespace Kestrune

int main(int argc, char** argv)
{
    QApplication application(argc, argv);
    QFont font(QStringList{QStringLiteral("Inter")});
    font.setPixelSize(13);
    QApplication::setFont(font);
    return Kestrune::RunGallery(QApplication::arguments());
}
