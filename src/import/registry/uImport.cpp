// SPDX-License-Identifier: GPL-3.0-or-later
#include "uImport.h"

#include "uImport_MP3s.h"

#include <algorithm>
#include <array>

namespace Kestrune {

using namespace Qt::StringLiterals;

std::span<const TImporterClass> ImporterClasses()
{
    static const std::array classes{
        TImporterClass{.ClassName = u"TKRNImporter_MP3s"_s,
                       .DisplayName = u"cSImporterMP3sDisplayName"_s,
                       .DisplayDesc = u"cSImporterMP3sDisplayDesc"_s,
                       .SelectSource = u"cSImporterMP3sSelectSourceDescription"_s,
                       .ImporterType = iitFolder,
                       .AllowsDragNDrop = true,
                       .NewOptions = TMP3ScanOptions::New,
                       .NewWorker = MakeImporter<TKRNImporter_MP3s>},
    };
    return classes;
}

const TImporterClass* FindImporterClass(const QString& className)
{
    const auto classes = ImporterClasses();
    const auto found = std::ranges::find(classes, className, &TImporterClass::ClassName);
    return found == classes.end() ? nullptr : &*found;
}

} // namespace Kestrune
