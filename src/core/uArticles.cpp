// SPDX-License-Identifier: GPL-3.0-or-later
#include "uArticles.h"

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

bool EndsInApostrophe(const QString& article) { return article.endsWith(u'\''); }

bool StartsWithArticle(const QString& text, const QString& article)
{
    const qsizetype length = article.size();
    if (EndsInApostrophe(article))
        return text.size() > length && text.startsWith(article, Qt::CaseInsensitive);
    return text.size() > length + 1 && text[length] == u' ' && text.startsWith(article, Qt::CaseInsensitive);
}

bool EndsWithArticle(const QString& text, const QString& article)
{
    const qsizetype length = article.size();
    return text.size() > length + 2 && text.endsWith(article, Qt::CaseInsensitive) &&
           QStringView(text).chopped(length).endsWith(", "_L1);
}

} // namespace

bool SplitArticle(const QString& text, const QStringList& articles, QString& article, QString& rest)
{
    article.clear();
    rest.clear();
    for (const QString& candidate : articles) {
        if (candidate.isEmpty() || !StartsWithArticle(text, candidate))
            continue;
        article = text.left(candidate.size());
        rest = text.mid(candidate.size() + (EndsInApostrophe(candidate) ? 0 : 1));
        return true;
    }
    for (const QString& candidate : articles) {
        if (candidate.isEmpty() || !EndsWithArticle(text, candidate))
            continue;
        article = text.right(candidate.size());
        rest = text.chopped(candidate.size() + 2);
        return true;
    }
    return false;
}

QString ApplyArticleDisplay(const QString& text, const QStringList& articles, int mode)
{
    QString article;
    QString rest;
    if (mode < 1 || mode > 3 || !SplitArticle(text, articles, article, rest))
        return text;
    if (mode == 1)
        return EndsInApostrophe(article) ? article + rest : article + u' ' + rest;
    return mode == 2 ? rest + u", "_s + article : rest;
}

QString ArticleSortKey(const QString& text, const QStringList& articles)
{
    QString article;
    QString rest;
    return SplitArticle(text, articles, article, rest) ? rest : text;
}

QStringList ParseArticleList(const QString& text)
{
    QStringList articles;
    for (const QString& part : text.split(u',')) {
        if (const QString article = part.trimmed(); !article.isEmpty())
            articles.append(article);
    }
    return articles;
}

} // namespace Kestrune
