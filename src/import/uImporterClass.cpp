// SPDX-License-Identifier: GPL-3.0-or-later
#include "uImporterClass.h"

#include "uTHStrings.h"

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

QString TextOf(const QString& keyOrText)
{
    const QString text = GetLanguageString(keyOrText);
    return text.isEmpty() ? keyOrText : text;
}

struct TNoOptions final : TImportOptions {
    std::unique_ptr<TImportOptions> Clone() const override { return std::make_unique<TNoOptions>(); }
};

} // namespace

QString TImporterClass::GetImporterFileExtFilter() const
{
    return FileFilter.isEmpty() ? QString() : TextOf(FileFilter) + u'|' + GetLanguageString(u"cSImporterAllFiles"_s);
}

QString TImporterClass::GetDisplayName() const { return TextOf(DisplayName); }

QString TImporterClass::GetDisplayDesc() const { return TextOf(DisplayDesc); }

QString TImporterClass::GetSelectSourceDescription() const
{
    return TextOf(SelectSource.isEmpty() ? u"cSImporterSource"_s : SelectSource);
}

std::optional<TMissingDriver> TImporterClass::FindMissingDriver() const
{
    if (!Driver || Driver->IsThere())
        return std::nullopt;
    return TMissingDriver{GetLanguageString(u"cSImportMissingDriverFmt"_s).replace(u"%s"_s, Driver->Name), Driver->URL};
}

std::unique_ptr<TImportOptions> TImporterClass::MakeOptions() const
{
    return NewOptions ? NewOptions() : std::make_unique<TNoOptions>();
}

} // namespace Kestrune
