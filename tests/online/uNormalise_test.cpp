// SPDX-License-Identifier: GPL-3.0-or-later
#include "uJSONToXML.h"
#include "uTestFiles.h"
#include "uXSLTranformation.h"
#include "uXml.h"

#include <gtest/gtest.h>

#include <thread>

using namespace Kestrune;
using namespace Qt::StringLiterals;

namespace {

const QByteArray Header = "<?xml version=\"1.0\" encoding=\"utf-8\"?>\r\n";

struct TJsonRow {
    const char* Json;
    const char* Xml; ///< inside of Data
};

TEST(JSONToXML, WritesWhatTheStylesheetsExpect)
{
    const TJsonRow rows[] = {
        {R"({"a":[1,{"b":"x&y"}]})", "<a><Array0>1</Array0><Array1><b>x&amp;y</b></Array1></a>"},
        {R"({"@id":1,"a:b":2,"#text":3})", "<id>1</id><ab>2</ab><text>3</text>"},
        {R"({"a":[],"b":{}})", "<a></a><b></b>"},
        {R"({"z":1.50,"a":12345678901234567890123,"n":-0.0,"e":1E5})",
         "<z>1.50</z><a>12345678901234567890123</a><n>-0.0</n><e>1E5</e>"},
        {R"({"t":true,"f":false,"n":null})", "<t>true</t><f>false</f><n>null</n>"},
        {R"({"s":"<\"q\" 'a'>\u0007\t\u00fc"})", "<s>&lt;&quot;q&quot; 'a'&gt;\t\xC3\xBC</s>"},
        {R"({"s":"a\uDC00\uFFFEb\uFFFFc\uFFFD\uD83D\uDE00"})", "<s>abc\xEF\xBF\xBD\xF0\x9F\x98\x80</s>"},
        {R"({"s":"a\uD83Db\uD83D","t":"\\uD83D","u":"\uD83D\uD83D\uDE00"})",
         "<s>ab</s><t>\\uD83D</t><u>\xF0\x9F\x98\x80</u>"},
        {"{\"s\":\"\xEF\xBF\xBFx\"}", "<s>x</s>"},
        {R"({"k":1,"k":2})", "<k>1</k><k>2</k>"},
        {R"([[1],[2,3]])", "<Array0><Array0>1</Array0></Array0><Array1><Array0>2</Array0><Array1>3</Array1></Array1>"},
        {"\"text\"", "text"},
        {R"({"250":"u"})", "<250>u</250>"},
        {"\xEF\xBB\xBF{\"a\":1}", "<a>1</a>"},
        {"", ""},
        {"{\"a\":", ""},
        {"<html>", ""},
        {"{\"a\":\"\xFF\"}", ""},
        {R"({"a":1} trailing)", ""},
    };
    for (const TJsonRow& row : rows)
        EXPECT_EQ(JSONToXML(QByteArray(row.Json)), Header + "<Data>" + row.Xml + "</Data>") << row.Json;
}

TEST(JSONToXML, SurvivesDepthAndIsThenNoDocument)
{
    const QByteArray deep = QByteArray(200000, '[') + QByteArray(200000, ']');
    EXPECT_FALSE(TXmlDocument::Parse(JSONToXML(deep)));
    EXPECT_FALSE(TXmlDocument::Parse(JSONToXML(QByteArray(R"({"250":1})"))));
    EXPECT_TRUE(TXmlDocument::Parse(JSONToXML(QByteArray(200000, '['))));
}

TEST(JSONToXML, BoundsTheNamesThatItMakes)
{
    const auto items = [](int count) { return "{\"r\":[" + QByteArray("1,").repeated(count) + "1]}"; };
    EXPECT_TRUE(JSONToXML(items(10'000)).contains("<Array9999>"));
    QString error;
    bool isTooLarge = false;
    EXPECT_FALSE(JSONToXML(items(100'000), &error, &isTooLarge).contains("<Array"));
    EXPECT_TRUE(isTooLarge);
    EXPECT_EQ(error, u"the answer is too large"_s);
    isTooLarge = false;
    (void)JSONToXML("<html>", &error, &isTooLarge);
    EXPECT_FALSE(isTooLarge);
}

QByteArray Sheet(const QByteArray& body, const QByteArray& attributes = {})
{
    return "<xsl:stylesheet version='1.0' xmlns:xsl='http://www.w3.org/1999/XSL/Transform' " + attributes + ">" + body +
           "</xsl:stylesheet>";
}

QByteArray Transformed(const QByteArray& xml, const QByteArray& sheet, QString* error = nullptr)
{
    QByteArray output;
    return TransformXSL(xml, sheet, output, false, error) ? output : "failed";
}

TEST(XSLTranformation, GivesTheResultAsXml)
{
    const QByteArray sheet =
        Sheet("<xsl:output method='xml' encoding='iso-8859-1'/>"
              "<xsl:template match='/'><r a='{/d/@x}'><xsl:copy-of select='/d/t'/></r></xsl:template>");
    const QByteArray xml = "<d x='&#252;'><t>b</t></d>";
    EXPECT_EQ(Transformed(xml, sheet), "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<r a=\"\xC3\xBC\"><t>b</t></r>\n");
    QString text;
    EXPECT_TRUE(TransformXSL(QString::fromUtf8(xml), QString::fromUtf8(sheet), text));
    EXPECT_TRUE(text.contains(u"ü"_s));
    const QByteArray plain =
        Sheet("<xsl:output method='text'/><xsl:template match='/'>x<xsl:value-of select='/d/t'/></xsl:template>");
    EXPECT_TRUE(TransformXSL(QString::fromUtf8(xml), QString::fromUtf8(plain), text, true));
    EXPECT_EQ(text, u"xb"_s);
}

TEST(XSLTranformation, KnowsTheNodeSetFunctionsOfBothFamilies)
{
    for (const QByteArray space : {"urn:schemas-microsoft-com:xslt", "http://exslt.org/common"})
        EXPECT_TRUE(Transformed("<d/>", Sheet("<xsl:template match='/'><xsl:variable name='v'><i/><i/></xsl:variable>"
                                              "<n><xsl:value-of select='count(x:node-set($v)/i)'/></n></xsl:template>",
                                              "xmlns:x='" + space + "'"))
                        .contains(">2</n>"))
            << space.constData();
}

TEST(XSLTranformation, NeitherFilesNorNetworkNorEndlessWork)
{
    const Kit::TTempDir dir;
    const QByteArray secret = dir.Write(u"secret.xml"_s, "<s>secret</s>").toUtf8();
    const QByteArray target = dir.File(u"written.xml"_s).toUtf8();
    const std::pair<const char*, QByteArray> rows[] = {
        {"no stylesheet", "<html/>"},
        {"not well-formed", "<xsl:stylesheet"},
        {"document()", Sheet("<xsl:template match='/'><r><xsl:value-of select=\"document('" + secret +
                             "')/s\"/></r></xsl:template>")},
        {"import", Sheet("<xsl:import href='" + secret + "'/><xsl:template match='/'><r/></xsl:template>")},
        {"writing", Sheet("<xsl:template match='/'><e:document href='" + target + "'><x/></e:document></xsl:template>",
                          "xmlns:e='http://exslt.org/common' extension-element-prefixes='e'")},
        {"endless templates", Sheet("<xsl:template match='/'><xsl:call-template name='t'/></xsl:template>"
                                    "<xsl:template name='t'><xsl:call-template name='t'/></xsl:template>")},
        {"exponential work",
         Sheet(
             "<xsl:template match='/'><xsl:call-template name='t'><xsl:with-param name='n' select='60'/>"
             "</xsl:call-template></xsl:template><xsl:template name='t'><xsl:param name='n'/><xsl:if test='$n &gt; 0'>"
             "<xsl:call-template name='t'><xsl:with-param name='n' select='$n - 1'/></xsl:call-template>"
             "<xsl:call-template name='t'><xsl:with-param name='n' select='$n - 1'/></xsl:call-template>"
             "</xsl:if></xsl:template>")},
        {"a text that doubles",
         Sheet("<xsl:template match='/'><xsl:call-template name='t'><xsl:with-param name='n' select='\"0123456789\"'/>"
               "</xsl:call-template></xsl:template><xsl:template name='t'><xsl:param name='n'/><xsl:call-template "
               "name='t'><xsl:with-param name='n' select='concat($n, $n)'/></xsl:call-template></xsl:template>")},
        {"a tree that doubles",
         Sheet("<xsl:template match='/'><xsl:call-template name='t'><xsl:with-param name='n' select='/*'/>"
               "</xsl:call-template></xsl:template><xsl:template name='t'><xsl:param name='n'/><xsl:variable name='v'>"
               "<xsl:copy-of select='$n'/><xsl:copy-of select='$n'/></xsl:variable><xsl:call-template name='t'>"
               "<xsl:with-param name='n' select='x:node-set($v)/*'/></xsl:call-template></xsl:template>",
               "xmlns:x='http://exslt.org/common'")},
        {"one step without an end",
         Sheet("<xsl:template match='/'><xsl:value-of select='s:replace(s:padding(99999, \"x\"), \"x\", "
               "s:padding(99999, \"y\"))'/></xsl:template>",
               "xmlns:s='http://exslt.org/strings'")},
        {"terminates itself",
         Sheet("<xsl:template match='/'><xsl:message terminate='yes'>stop</xsl:message></xsl:template>")},
    };
    for (const auto& [name, sheet] : rows) {
        SCOPED_TRACE(name);
        QString error;
        const QByteArray output = Transformed("<d/>", sheet, &error);
        EXPECT_FALSE(output.contains("secret"));
        EXPECT_EQ(output, "failed");
        EXPECT_FALSE(error.isEmpty());
    }
    EXPECT_FALSE(QFile::exists(QString::fromUtf8(target)));
}

TEST(XSLTranformation, CompilingIsBoundedToo)
{
    const auto many = [](int count, const QByteArray& one) {
        QByteArray all;
        for (int i = 0; i < count; ++i)
            all += QByteArray(one).replace("#", QByteArray::number(i));
        return all;
    };
    const QByteArray values = QByteArray("<xsl:value-of select='a'/>").repeated(30'000);
    const std::pair<const char*, QByteArray> rows[] = {
        {"minutes for decimal formats", Sheet(many(90'000, "<xsl:decimal-format name='f#'/>"))},
        {"gigabytes for a pattern",
         Sheet("<xsl:template match='" + QByteArray("a|").repeated(1'500'000) + "a'/><xsl:template match='/'/>")},
        {"namespaces times expressions",
         Sheet("<xsl:template match='/'>" + values + "</xsl:template>", many(2'000, " xmlns:n#='u#'"))},
    };
    for (const auto& [name, sheet] : rows) {
        SCOPED_TRACE(name);
        QString error;
        EXPECT_FALSE(CompilesXSL(sheet, &error));
        EXPECT_EQ(error, u"the stylesheet takes too much time or memory"_s);
        EXPECT_EQ(Transformed("<d/>", sheet), "failed");
    }
    EXPECT_TRUE(CompilesXSL(Sheet("<xsl:template match='/'/>")));
    QString error;
    EXPECT_FALSE(CompilesXSL("<html/>", &error));
    EXPECT_FALSE(error.isEmpty());
}

TEST(XSLTranformation, RefusesBombsInTheAnswer)
{
    const QByteArray sheet = Sheet("<xsl:template match='/'><r><xsl:value-of select='.'/></r></xsl:template>");
    QByteArray bomb = "<!DOCTYPE d [<!ENTITY a0 'xxxxxxxxxx'>";
    for (int i = 1; i < 12; ++i) {
        const QByteArray inner = "&a" + QByteArray::number(i - 1) + ";";
        bomb += "<!ENTITY a" + QByteArray::number(i) + " '" + inner.repeated(10) + "'>";
    }
    bomb += "]><d>&a11;</d>";
    EXPECT_LT(Transformed(bomb, sheet).size(), 100000);
    const QByteArray external = "<!DOCTYPE d [<!ENTITY e SYSTEM 'file:///etc/passwd'>]><d>&e;</d>";
    EXPECT_FALSE(Transformed(external, sheet).contains("root:"));
    QByteArray elements, attributes;
    for (int i = 0; i < 200'000; ++i) {
        elements += "<a" + QByteArray::number(i) + "/>";
        attributes += " a" + QByteArray::number(i) + "='1'";
    }
    EXPECT_EQ(Transformed("<d>" + elements + "</d>", sheet), "failed") << "names without end";
    EXPECT_EQ(Transformed("<d" + attributes + "/>", sheet), "failed");
    EXPECT_EQ(Transformed("no xml", sheet), "failed");
    EXPECT_EQ(Transformed("", sheet), "failed");
}

TEST(XSLTranformation, RunsOnSeveralThreadsAtOnce)
{
    const QByteArray sheet = Sheet("<xsl:template match='/'><r><xsl:value-of select='count(//i)'/></r></xsl:template>");
    std::atomic<int> right = 0;
    {
        std::vector<std::jthread> threads;
        for (int t = 0; t < 4; ++t)
            threads.emplace_back([&] {
                for (int i = 0; i < 50; ++i)
                    right += Transformed("<d><i/><i/></d>", sheet).contains("<r>2</r>") ? 1 : 0;
            });
    }
    EXPECT_EQ(right, 200);
}

} // namespace
