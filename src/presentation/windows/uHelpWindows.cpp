// SPDX-License-Identifier: GPL-3.0-or-later
#include "uHelpWindows.h"

#include "uActionSet.h"
#include "uDefaults.h"
#include "uTHStrings.h"

#include <QFile>
#include <QKeySequence>
#include <QLabel>
#include <QLineEdit>
#include <QTextBrowser>
#include <QVBoxLayout>

namespace Kestrune {

using namespace Qt::StringLiterals;

TAboutWindow::TAboutWindow(QWidget* parent) : TDialog(u"TAboutForm"_s, GetLanguageString(u"cSactAbout"_s), parent)
{
    const TOEMInfo& oem = Defaults().OEM;
    auto* title = new QLabel(u"<h2>%1 %2</h2>"_s.arg(oem.Name.toHtmlEscaped(), QStringLiteral(KESTRUNE_VERSION)), this);
    auto* text = new QLabel(GetLanguageString(u"cSAboutText"_s).arg(QString::fromLatin1(qVersion())), this);
    text->setWordWrap(true);
    text->setTextInteractionFlags(Qt::TextBrowserInteraction);
    Body()->addWidget(title);
    Body()->addWidget(text, 1);
    if (!oem.HomepageLink.isEmpty()) {
        auto* link = new QLabel(u"<a href=\"%1\">%1</a>"_s.arg(oem.HomepageLink.toHtmlEscaped()), this);
        link->setOpenExternalLinks(true);
        Body()->addWidget(link);
    }
    AddCloseButton();
    SetFirstSize({460, 280});
}

QString ShortcutTableHtml()
{
    QString html = u"<table cellspacing=\"0\" cellpadding=\"4\">"_s;
    for (const TActionDef& def : ActionDefs()) {
        const QKeySequence keys(QString::fromLatin1(def.Shortcut), QKeySequence::PortableText);
        if (!keys.isEmpty())
            html += u"<tr><td><b>%1</b></td><td>%2</td></tr>"_s.arg(
                keys.toString(QKeySequence::NativeText).toHtmlEscaped(),
                FullCaptionOf(QString::fromLatin1(def.Name)).toHtmlEscaped());
    }
    return html + u"</table>"_s;
}

THelpWindow::THelpWindow(QWidget* parent) : TDialog(u"THelpForm"_s, GetLanguageString(u"cSactHelp"_s), parent)
{
    QFile file(u":/kestrune/help/help.html"_s);
    QString html = file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
    html.replace(u"<!--SHORTCUTS-->"_s, ShortcutTableHtml());
    auto* search = new QLineEdit(this);
    auto* pages = new QTextBrowser(this);
    search->setPlaceholderText(GetLanguageString(u"cSHelpSearch"_s));
    search->setAccessibleName(search->placeholderText());
    pages->setHtml(html);
    pages->setOpenExternalLinks(true);
    pages->setAccessibleName(windowTitle());
    connect(search, &QLineEdit::textChanged, pages, [pages](const QString& text) {
        pages->moveCursor(QTextCursor::Start);
        pages->find(text);
    });
    connect(search, &QLineEdit::returnPressed, pages, [pages, search] {
        if (!pages->find(search->text())) {
            pages->moveCursor(QTextCursor::Start); // round again
            pages->find(search->text());
        }
    });
    Body()->addWidget(search);
    Body()->addWidget(pages, 1);
    AddCloseButton();
    SetFirstSize({720, 640});
}

} // namespace Kestrune
