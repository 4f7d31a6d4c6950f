// SPDX-License-Identifier: GPL-3.0-or-later
#include "uXSLTranformation.h"

#include "uDebugLog.h"
#include "uXSLTranformation_p.h"

#include <libexslt/exslt.h>
#include <libxml/parser.h>
#include <libxslt/extensions.h>
#include <libxslt/extra.h>
#include <libxslt/functions.h>
#include <libxslt/transform.h>
#include <libxslt/xslt.h>
#include <libxslt/xsltutils.h>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

// Bounds of one transformation beside those of time and memory.
constexpr unsigned long MostXPathOperations = 16'000'000;
constexpr unsigned long MostInstructions = 500'000;
constexpr int DeepestTemplates = 1000;
constexpr int MostVariables = 10'000;

TDoc ParseDocument(const QByteArray& bytes, QString& error)
{
    TDoc document(nullptr, &xmlFreeDoc);
    error = ReasonNotToParse(bytes);
    if (!error.isEmpty())
        return document;
    const std::unique_ptr<xmlParserCtxt, decltype(&xmlFreeParserCtxt)> context(xmlNewParserCtxt(), &xmlFreeParserCtxt);
    if (!context)
        return document;
    // No entity of another file is read, and the guards against bombs and depth stay on.
    document.reset(xmlCtxtReadMemory(context.get(), bytes.constData(), static_cast<int>(bytes.size()), nullptr, "UTF-8",
                                     XSLParseOptions));
    if (!document)
        error = QString::fromUtf8(context->lastError.message).trimmed();
    return document;
}

QByteArray Serialise(xmlDoc& result, xsltStylesheet& sheet, bool asSerialised)
{
    xmlChar* text = nullptr;
    int size = 0;
    if (asSerialised)
        xsltSaveResultToString(&text, &size, &result, &sheet);
    else
        xmlDocDumpMemoryEnc(&result, &text, &size, "UTF-8");
    const QByteArray bytes(reinterpret_cast<const char*>(text), size);
    xmlFree(text);
    return bytes;
}

bool Transform(const QByteArray& xml, const QByteArray& stylesheet, QByteArray& output, bool asSerialised,
               QString& error)
{
    const TDoc source = ParseDocument(xml, error);
    if (!source)
        return false;
    const TStylesheet sheet = CompiledSheet(stylesheet, error);
    if (!sheet)
        return false;
    const std::unique_ptr<xsltTransformContext, decltype(&xsltFreeTransformContext)> context(
        xsltNewTransformContext(sheet.get(), source.get()), &xsltFreeTransformContext);
    if (!context)
        return false;
    xsltSetTransformErrorFunc(context.get(), nullptr, CollectXSLMessage);
    xsltSetCtxtSecurityPrefs(XSLSecurity(), context.get());
    context->opLimit = MostInstructions;
    context->maxTemplateDepth = DeepestTemplates;
    context->maxTemplateVars = MostVariables;
    context->xpathCtxt->opLimit = MostXPathOperations;
    TTaken taken;
    taken.Context = context.get();
    TDoc result(nullptr, &xmlFreeDoc);
    {
        const TCountingScope counting(taken);
        result.reset(xsltApplyStylesheetUser(sheet.get(), source.get(), nullptr, nullptr, nullptr, context.get()));
    }
    if (taken.Stopped)
        error = u"the stylesheet takes too much time or memory"_s;
    if (!result || context->state != XSLT_STATE_OK)
        return false;
    output = Serialise(*result, *sheet, asSerialised);
    return true;
}

} // namespace

void InitXSLLibraries()
{
    static const bool once = [] {
        CountXSLMemory();
        xmlInitParser();
        xsltInit();
        exsltRegisterAll();
        // Stylesheets written for another engine name this function by its namespace.
        xsltRegisterExtModuleFunction(reinterpret_cast<const xmlChar*>("node-set"),
                                      reinterpret_cast<const xmlChar*>("urn:schemas-microsoft-com:xslt"),
                                      xsltFunctionNodeSet);
        // Per process: messages of a stylesheet that is being compiled would go to standard error.
        xsltSetGenericErrorFunc(nullptr, CollectXSLMessage);
        return true;
    }();
    (void)once;
}

xsltSecurityPrefsPtr XSLSecurity()
{
    static const xsltSecurityPrefsPtr prefs = [] {
        const xsltSecurityPrefsPtr made = xsltNewSecurityPrefs();
        for (const xsltSecurityOption option :
             {XSLT_SECPREF_READ_FILE, XSLT_SECPREF_WRITE_FILE, XSLT_SECPREF_CREATE_DIRECTORY, XSLT_SECPREF_READ_NETWORK,
              XSLT_SECPREF_WRITE_NETWORK})
            xsltSetSecurityPrefs(made, option, xsltSecurityForbid);
        // Imports are read while compiling, where no context has preferences of its own.
        xsltSetDefaultSecurityPrefs(made);
        return made;
    }();
    return prefs;
}

bool TransformXSL(const QByteArray& xml, const QByteArray& stylesheet, QByteArray& output, bool asSerialised,
                  QString* error)
{
    InitXSLLibraries();
    (void)XSLSecurity();
    QString reason;
    output.clear();
    bool done = false;
    {
        const TErrorScope scope(reason);
        done = Transform(xml, stylesheet, output, asSerialised, reason);
    }
    if (done)
        return true;
    reason = reason.simplified();
    if (reason.isEmpty())
        reason = u"the stylesheet failed"_s;
    DebugLog(u"[XSLT] "_s + reason);
    if (error)
        *error = reason;
    return false;
}

bool TransformXSL(const QString& xml, const QString& stylesheet, QString& output, bool asSerialised, QString* error)
{
    QByteArray bytes;
    const bool done = TransformXSL(xml.toUtf8(), stylesheet.toUtf8(), bytes, asSerialised, error);
    output = QString::fromUtf8(bytes);
    return done;
}

} // namespace Kestrune
