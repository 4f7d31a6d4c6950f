// SPDX-License-Identifier: GPL-3.0-or-later
#include "TagsLibrary.h"

#include "ID3v1Library.h"
#include "ID3v2Library.h"
#include "TagsLibrary_p.h"
#include "uByteReader.h"
#include "uDebugLog.h"
#include "uFilePath.h"
#include "uFlacTag.h"

#include <algorithm>
#include <filesystem>
#include <ranges>

namespace Kestrune {

using namespace Qt::StringLiterals;

bool EqualsNoCase(const QString& a, QStringView b)
{
    return a.size() == b.size() && QStringView(a).compare(b, Qt::CaseInsensitive) == 0;
}

QString CoverTypeText(int coverType)
{
    static constexpr QStringView texts[] = {u"Other",
                                            u"32x32 pixels 'file icon' (PNG only)",
                                            u"Other file icon",
                                            u"Cover (front)",
                                            u"Cover (back)",
                                            u"Leaflet page",
                                            u"Media (e.g. label side of CD)",
                                            u"Lead artist/lead performer/soloist",
                                            u"Artist/performer",
                                            u"Conductor",
                                            u"Band/Orchestra",
                                            u"Composer",
                                            u"Lyricist/text writer",
                                            u"Recording Location",
                                            u"During recording",
                                            u"During performance",
                                            u"Movie/video screen capture",
                                            u"A bright coloured fish",
                                            u"Illustration",
                                            u"Band/artist logotype",
                                            u"Publisher/Studio logotype"};
    return coverType >= 0 && coverType < static_cast<int>(std::size(texts)) ? texts[coverType].toString() : QString();
}

int TTag::GetIndex() const
{
    const auto& tags = Parent->Tags();
    const auto found = std::ranges::find(tags, this, &std::unique_ptr<TTag>::get);
    return found == tags.end() ? -1 : static_cast<int>(found - tags.begin());
}

bool TTag::Remove() { return Parent->Delete(GetIndex()); }

int TCoverArt::GetIndex() const
{
    const auto& arts = Parent->CoverArts();
    const auto found = std::ranges::find(arts, this, &std::unique_ptr<TCoverArt>::get);
    return found == arts.end() ? -1 : static_cast<int>(found - arts.begin());
}

TTags::TTags()
    : FFlacTag(std::make_unique<TFlacTag>()),
      FID3v1Tag(std::make_unique<TID3v1Tag>()),
      FID3v2Tag(std::make_unique<TID3v2Tag>()),
      FSourceAudioAttributes(*this)
{}

TTags::~TTags() = default;

void TTags::Clear()
{
    DeleteAllTags();
    DeleteAllCoverArts();
    FFlacTag->Clear();
    FID3v1Tag->Clear();
    FID3v2Tag->Clear();
    FFileName.clear();
    FLoaded = false;
}

int TTags::LoadFromFile(const QString& fileName)
{
    Clear();
    const std::filesystem::path path = TextToPath(fileName);
    const auto source = TFileSource::Open(path);
    if (!source) {
        std::error_code error;
        if (!std::filesystem::is_regular_file(path, error))
            return TagResultNoFile;
        DebugLog(u"[Tags] cannot open %1"_s.arg(fileName));
    } else {
        const qsizetype dot = fileName.lastIndexOf(u'.');
        LoadFormats(*source, dot > fileName.lastIndexOf(u'/') ? fileName.sliced(dot).toUpper() : QString());
    }
    FFileName = fileName;
    LoadTags();
    return TagResultOk;
}

void TTags::LoadFormats(TByteSource& source, const QString&)
{
    FFlacTag->ParseCoverArts = ParseCoverArts;
    FFlacTag->Load(source);
    FID3v1Tag->Load(source);
    FID3v2Tag->ParseAudioAttributes = ParseAudioAttributes;
    FID3v2Tag->ParseCoverArts = ParseCoverArts;
    FID3v2Tag->LyricsTagSize = FID3v1Tag->LyricsTagSize();
    FID3v2Tag->Load(source);
    FID3v2Tag->RemoveUnsynchronisationOnAllFrames();
    FID3v2Tag->DeCompressAllFrames();
    FLoaded = FFlacTag->Loaded || FID3v1Tag->Loaded || FID3v2Tag->Loaded;
}

void TTags::LoadTags()
{
    for (const TTagType type : std::views::reverse(TagLoadPriority))
        LoadEntry(type);
}

void TTags::LoadEntry(TTagType type)
{
    TTagBatch batch;
    if (type == ttFlac && FFlacTag->Loaded) {
        batch = BatchOf(*FFlacTag);
    } else if (type == ttID3v1 && FID3v1Tag->Loaded && !OnlyParseCoverArts) {
        batch = BatchOf(*FID3v1Tag);
    } else if (type == ttID3v2 && FID3v2Tag->Loaded) {
        if (!OnlyParseCoverArts)
            for (const TFrameID id : {TFrameID("SESC"), TFrameID("SEFC"), TFrameID("SEBR")})
                FID3v2Tag->Frames.DeleteAllFrames(id);
        batch = BatchOf(*FID3v2Tag);
    } else {
        return;
    }
    Apply(batch);
}

void TTags::Apply(TTagBatch& batch)
{
    if (!batch.Pictures.empty() && ParseCoverArts) {
        DeleteAllCoverArts();
        for (const TTagPicture& picture : batch.Pictures)
            AddPicture(picture);
    }
    if (OnlyParseCoverArts)
        return;
    if (!FTags.empty()) {
        for (const QString& name : batch.Dropped)
            DeleteAllNamed(name);
        for (const TTagBatch::TItem& item : batch.Items)
            if (!item.IsTotal)
                DeleteAllNamed(item.Tag->Name);
    }
    FTags.reserve(FTags.size() + batch.Items.size());
    for (TTagBatch::TItem& item : batch.Items) {
        if (item.IsTotal)
            Delete(Exists(item.Tag->Name));
        item.Tag->Parent = this;
        FTags.push_back(std::move(item.Tag));
    }
}

void TTags::AddPicture(const TTagPicture& picture)
{
    TCoverArt* art = AddCoverArt(picture.Name.isEmpty() ? u"Cover art %1"_s.arg(CoverArtCount() + 1) : picture.Name);
    art->Stream = picture.Data;
    art->Description = picture.Description;
    art->CoverType = picture.CoverType;
    art->PictureFormat = PictureStreamType(picture.Data);
    art->MIMEType = picture.MIMEType.isEmpty() ? PictureMIMEType(art->PictureFormat) : picture.MIMEType;
    art->Width = picture.Width;
    art->Height = picture.Height;
    art->ColorDepth = picture.ColorDepth;
    art->NoOfColors = picture.NoOfColors;
}

int TTags::Exists(const QString& name) const
{
    const auto found = std::ranges::find_if(FTags, [&](const auto& tag) { return EqualsNoCase(tag->Name, name); });
    return found == FTags.end() ? -1 : static_cast<int>(found - FTags.begin());
}

QString TTags::GetTag(const QString& name) const
{
    const int index = Exists(name);
    return index < 0 ? QString() : FTags[static_cast<size_t>(index)]->Value;
}

TTag* TTags::Add(const QString& name)
{
    auto tag = std::make_unique<TTag>();
    tag->Name = name;
    tag->Parent = this;
    return FTags.emplace_back(std::move(tag)).get();
}

bool TTags::Delete(int index)
{
    if (index < 0 || index >= Count())
        return false;
    FTags.erase(FTags.begin() + index);
    return true;
}

void TTags::DeleteAllNamed(const QString& name)
{
    std::erase_if(FTags, [&](const auto& tag) { return EqualsNoCase(tag->Name, name); });
}

void TTags::DeleteAllTags() { FTags.clear(); }

TCoverArt* TTags::AddCoverArt(const QString& name)
{
    auto art = std::make_unique<TCoverArt>();
    art->Name = name;
    art->Parent = this;
    return FCoverArts.emplace_back(std::move(art)).get();
}

void TTags::DeleteAllCoverArts() { FCoverArts.clear(); }

void TTags::ReSetAlreadyParsedState()
{
    for (const auto& tag : FTags)
        tag->AlreadyParsed = false;
    for (const auto& art : FCoverArts)
        art->AlreadyParsed = false;
}

} // namespace Kestrune
