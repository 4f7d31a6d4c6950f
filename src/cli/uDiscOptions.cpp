// SPDX-License-Identifier: GPL-3.0-or-later
#include "uDiscOptions.h"

#include "uCommand.h"

namespace Kestrune {

using namespace Qt::StringLiterals;

void AddDiscOptions(QCommandLineParser& parser)
{
    parser.addOption({u"toc"_s,
                      u"the disc as \"FIRST LAST LEADOUT OFFSET...\": numbers of the first and last track, then "
                      "the lead-out and the start of each track in frames of 1/75 s, with the lead-in of 150"_s,
                      u"NUMBERS"_s});
    parser.addOption({u"device"_s, u"read the disc in this drive, such as /dev/sr0"_s, u"DEVICE"_s});
}

bool HasDiscOption(const QCommandLineParser& parser) { return parser.isSet(u"toc"_s) || parser.isSet(u"device"_s); }

TDiscTexts DiscOfOptions(const QCommandLineParser& parser)
{
    TDiscTexts texts;
    QString error;
    if (parser.isSet(u"device"_s)) {
        if (!GetTOCAndDiscID(parser.value(u"device"_s), texts, error))
            throw ECommandError(OneLine(error));
        return texts;
    }
    TRawTOC toc;
    if (!ParseDecimalTOC(parser.value(u"toc"_s), toc, error) || !DiscTextsOf(toc, texts, error))
        throw EUsageError(OneLine(u"--toc: "_s + error));
    return texts;
}

} // namespace Kestrune
