// SPDX-License-Identifier: GPL-3.0-or-later
#include "uCommand.h"
#include "uDiscOptions.h"

#include <QJsonObject>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

class TDiscIdCommand final : public TCommand {
public:
    QString Name() const override { return u"discid"_s; }
    QString Summary() const override { return u"show what identifies an audio CD"_s; }
    void Describe(QCommandLineParser& parser) const override
    {
        AddDiscOptions(parser);
        parser.addOption({u"json"_s, u"print one object"_s});
    }

    void Run(const QCommandLineParser& parser) override
    {
        Arguments(parser, 0, 0);
        if (parser.isSet(u"toc"_s) == parser.isSet(u"device"_s))
            throw EUsageError(u"either --toc or --device is needed"_s);
        const TDiscTexts texts = DiscOfOptions(parser);
        const std::pair<QString, QString> rows[] = {{u"DISCID"_s, texts.DiscID},
                                                    {u"TOC"_s, texts.TOC},
                                                    {u"TOC_Microsoft"_s, texts.TOC_Microsoft},
                                                    {u"TOC_DECIMAL"_s, texts.TOC_DECIMAL}};
        QJsonObject object;
        for (const auto& [key, value] : rows) {
            object.insert(key, value);
            if (!parser.isSet(u"json"_s))
                PrintLine(key + u'\t' + value);
        }
        if (parser.isSet(u"json"_s))
            PrintJson(QJsonDocument(object));
    }
};

} // namespace

std::unique_ptr<TCommand> MakeDiscIdCommand() { return std::make_unique<TDiscIdCommand>(); }

} // namespace Kestrune
