// SPDX-License-Identifier: GPL-3.0-or-later
#include "uCD.h"
#include "uCommand.h"

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
        parser.addOption({u"toc"_s,
                          u"the disc as \"FIRST LAST LEADOUT OFFSET...\": numbers of the first and last track, then "
                          "the lead-out and the start of each track in frames of 1/75 s, with the lead-in of 150"_s,
                          u"NUMBERS"_s});
        parser.addOption({u"device"_s, u"read the disc in this drive, such as /dev/sr0"_s, u"DEVICE"_s});
        parser.addOption({u"json"_s, u"print one object"_s});
    }

    void Run(const QCommandLineParser& parser) override
    {
        Arguments(parser, 0, 0);
        if (parser.isSet(u"toc"_s) == parser.isSet(u"device"_s))
            throw EUsageError(u"either --toc or --device is needed"_s);
        const TDiscTexts texts =
            parser.isSet(u"toc"_s) ? OfNumbers(parser.value(u"toc"_s)) : InDrive(parser.value(u"device"_s));
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

private:
    static TDiscTexts OfNumbers(const QString& numbers)
    {
        TRawTOC toc;
        TDiscTexts texts;
        QString error;
        if (!ParseDecimalTOC(numbers, toc, error) || !DiscTextsOf(toc, texts, error))
            throw EUsageError(OneLine(u"--toc: "_s + error));
        return texts;
    }

    static TDiscTexts InDrive(const QString& device)
    {
        TDiscTexts texts;
        QString error;
        if (!GetTOCAndDiscID(device, texts, error))
            throw ECommandError(OneLine(error));
        return texts;
    }
};

} // namespace

std::unique_ptr<TCommand> MakeDiscIdCommand() { return std::make_unique<TDiscIdCommand>(); }

} // namespace Kestrune
