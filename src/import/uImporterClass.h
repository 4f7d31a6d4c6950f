// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "uImportAbstract.h"
#include "uImportOptions.h"

#include <QString>
#include <QStringList>

#include <concepts>
#include <memory>
#include <optional>

namespace Kestrune {

/// What a group of sources needs of the system before it can read anything.
struct TImporterDriver {
    QString Name; ///< as it stands in the message
    QString URL;  ///< where it is found
    bool (*IsThere)() = nullptr;
};

/// A driver that is not there.
struct TMissingDriver {
    QString Sentence;
    QString URL;
};

/// One source, as values: what the wizard and the command line ask before any worker exists. Programs that one worker
/// reads alike differ in nothing else. Texts are keys of the language table; a text that is no key stands as it is, as
/// the names of programs do.
struct TImporterClass {
    QString ClassName{};    ///< "TKRNImporter_MP3s"
    QString DisplayName{};  ///< in the list of sources
    QString DisplayDesc{};  ///< beside it
    QString SelectSource{}; ///< above the source field; empty for the plain sentence
    TKRNImporterInputType ImporterType = iitFile;
    QString ImporterFileExt{}; ///< default extension without point
    QString FileFilter{};      ///< "Name (*.x)|*.x", without "All files"
    bool CanSelectWhichAlbumsToImport = false;
    bool CanCopyAndPasteData = false;
    bool AllowsDragNDrop = false;
    const TImporterDriver* Driver = nullptr; ///< outlives the row; null where none is needed
    QStringList ExtraPages{};                ///< the source's own pages of the wizard, behind the source page
    QString ScriptPrefix{};                  ///< what the scripts or the stylesheet of a program are named by
    std::unique_ptr<TImportOptions> (*NewOptions)() = nullptr; ///< from the settings; null where there are none
    TImporterPtr (*NewWorker)(TDataModuleMain& dataModule, const TImporterClass& source) = nullptr;

    QString GetDisplayName() const;
    QString GetDisplayDesc() const;
    QString GetSelectSourceDescription() const;
    /// "Name (*.x)|*.x|All files (*.*)|*.*", or empty for sources that are no files.
    QString GetImporterFileExtFilter() const;
    /// The driver that this source lacks, none when it may start.
    std::optional<TMissingDriver> FindMissingDriver() const;
    /// Never null: sources without options have empty ones. Main thread.
    std::unique_ptr<TImportOptions> MakeOptions() const;
    TImporterPtr Create(TDataModuleMain& dataModule) const { return NewWorker(dataModule, *this); }
};

/// Makes the worker T of a source; T may take the row that it is made for.
template <std::derived_from<TKRNImporter> T>
TImporterPtr MakeImporter(TDataModuleMain& dataModule, const TImporterClass& source)
{
    if constexpr (std::constructible_from<T, TDataModuleMain&, const TImporterClass&>)
        return TImporterPtr(new T(dataModule, source));
    else
        return TImporterPtr(new T(dataModule));
}

} // namespace Kestrune
