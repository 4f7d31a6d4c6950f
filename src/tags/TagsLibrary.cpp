// SPDX-License-Identifier: GPL-3.0-or-later
#include "TagsLibrary.h"

#include "ID3v1Library.h"
#include "ID3v2Library.h"
#include "TagsLibrary_p.h"
#include "uAPEv2Tag.h"
#include "uByteReader.h"
#include "uDebugLog.h"
#include "uFilePath.h"
#include "uFlacTag.h"
#include "uMP4Tag.h"
#include "uMPEGplus.h"
#include "uMonkey.h"
#include "uOggTag.h"
#include "uStreamSniffer.h"
#include "uWAVPackfile.h"
#include "uWAVTag.h"
#include "uWMATag.h"

#include <algorithm>
#include <deque>
#include <filesystem>
#include <optional>
#include <unordered_set>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

// Where the totals stand: a new one takes the place of the first of its name, of which a tag may state thousands.
class TTotalPlaces {
public:
    void Note(QStringView name, size_t place)
    {
        if (auto* places = PlacesOf(name))
            places->push_back(place);
    }
    std::optional<size_t> TakeFirst(QStringView name)
    {
        auto* places = PlacesOf(name);
        if (!places || places->empty())
            return std::nullopt;
        const size_t first = places->front();
        places->pop_front();
        return first;
    }

private:
    std::deque<size_t>* PlacesOf(QStringView name)
    {
        if (EqualsNoCase(name, u"TOTALTRACKS"))
            return &FTracks;
        return EqualsNoCase(name, u"TOTALDISCS") ? &FDiscs : nullptr;
    }

    std::deque<size_t> FTracks;
    std::deque<size_t> FDiscs;
};

} // namespace

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
    : FAPEv2Tag(std::make_unique<TAPEv2Tag>()),
      FFlacTag(std::make_unique<TFlacTag>()),
      FID3v1Tag(std::make_unique<TID3v1Tag>()),
      FID3v2Tag(std::make_unique<TID3v2Tag>()),
      FMP4Tag(std::make_unique<TMP4Tag>()),
      FOggVorbisAndOpusTag(std::make_unique<TOpusTag>()),
      FWAVTag(std::make_unique<TWAVTag>()),
      FWMATag(std::make_unique<TWMATag>()),
      FSourceAudioAttributes(*this)
{}

TTags::~TTags() = default;

void TTags::Clear()
{
    DeleteAllTags();
    DeleteAllCoverArts();
    FAPEv2Tag->Clear();
    FFlacTag->Clear();
    FID3v1Tag->Clear();
    FID3v2Tag->Clear();
    FMP4Tag->Clear();
    FOggVorbisAndOpusTag->Clear();
    FWAVTag->Clear();
    FWMATag->Clear();
    FSourceAudioAttributes.WAVPackAttributes.reset();
    FSourceAudioAttributes.MusePackAttributes.reset();
    FSourceAudioAttributes.MonkeyAttributes.reset();
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
        LoadFormats(*source);
        LoadSpecialAttributes(*source, dot > fileName.lastIndexOf(u'/') ? fileName.sliced(dot).toUpper() : QString());
    }
    FFileName = fileName;
    LoadTags();
    return TagResultOk;
}

void TTags::LoadFormats(TByteSource& source)
{
    FAPEv2Tag->ParseCoverArts = ParseCoverArts;
    FAPEv2Tag->Load(source);
    FFlacTag->ParseCoverArts = ParseCoverArts;
    FFlacTag->Load(source);
    FID3v1Tag->Load(source);
    FID3v2Tag->ParseAudioAttributes = ParseAudioAttributes;
    FID3v2Tag->ParseCoverArts = ParseCoverArts;
    FID3v2Tag->APEv2TagSize = FAPEv2Tag->Size;
    FID3v2Tag->LyricsTagSize = FID3v1Tag->LyricsTagSize();
    FID3v2Tag->Load(source);
    FID3v2Tag->RemoveUnsynchronisationOnAllFrames();
    FID3v2Tag->DeCompressAllFrames();
    FMP4Tag->ParseAudioAttributes = ParseAudioAttributes;
    FMP4Tag->ParseCoverArts = ParseCoverArts;
    FMP4Tag->Load(source);
    FOggVorbisAndOpusTag->ParseCoverArts = ParseCoverArts;
    FOggVorbisAndOpusTag->Load(source);
    FWAVTag->Load(source);
    // A file without the header of Windows Media gives that reader nothing, so the sniffer need not be asked about it.
    FWMATag->ParseCoverArts = ParseCoverArts;
    if (IsASF(source) && !FID3v2Tag->Loaded && !FWAVTag->Loaded && SniffStream(source) == stUnknown)
        FWMATag->Load(source);
    FLoaded = FAPEv2Tag->Loaded || FFlacTag->Loaded || FID3v1Tag->Loaded || FID3v2Tag->Loaded || FMP4Tag->Loaded ||
              FOggVorbisAndOpusTag->Loaded || FWAVTag->Loaded || FWMATag->Loaded;
}

void TTags::LoadSpecialAttributes(TByteSource& source, const QString& extension)
{
    const qint64 head = FID3v2Tag->Loaded ? FID3v2Tag->Size : 0;
    const qint64 tail = FAPEv2Tag->Size + (FID3v1Tag->Loaded ? 128 : 0);
    if (ParseWavPackAudioAttributes && extension == u".WV"_s) {
        auto attributes = std::make_unique<TWAVPackfile>();
        if (attributes->Load(source, FAPEv2Tag->Size))
            FSourceAudioAttributes.WAVPackAttributes = std::move(attributes);
    } else if (ParseMusePackAudioAttributes && extension == u".MPC"_s) {
        auto attributes = std::make_unique<TMPEGplus>();
        if (attributes->Load(source, head, tail))
            FSourceAudioAttributes.MusePackAttributes = std::move(attributes);
    } else if (ParseMonkeyAudioAttributes && extension == u".APE"_s) {
        auto attributes = std::make_unique<TMonkey>();
        if (attributes->Load(source, head, tail))
            FSourceAudioAttributes.MonkeyAttributes = std::move(attributes);
    }
}

void TTags::LoadTags()
{
    for (auto type = TagLoadPriority.rbegin(); type != TagLoadPriority.rend(); ++type)
        LoadEntry(*type);
}

TTagBatch TTags::BatchOfType(TTagType type) const
{
    switch (type) {
    case ttAPEv2: return FAPEv2Tag->Loaded ? BatchOf(*FAPEv2Tag) : TTagBatch();
    case ttFlac: return FFlacTag->Loaded ? BatchOf(*FFlacTag) : TTagBatch();
    case ttID3v1: return FID3v1Tag->Loaded && !OnlyParseCoverArts ? BatchOf(*FID3v1Tag) : TTagBatch();
    case ttID3v2: return FID3v2Tag->Loaded ? BatchOf(*FID3v2Tag) : TTagBatch();
    case ttMP4: return FMP4Tag->Loaded ? BatchOf(*FMP4Tag) : TTagBatch();
    case ttOpusVorbis: return FOggVorbisAndOpusTag->Loaded ? BatchOf(*FOggVorbisAndOpusTag) : TTagBatch();
    case ttWAV: return FWAVTag->Loaded && !OnlyParseCoverArts ? BatchOf(*FWAVTag) : TTagBatch();
    case ttWMA: return FWMATag->Loaded ? BatchOf(*FWMATag) : TTagBatch();
    case ttNone:
    case ttAutomatic:
    case ttMP4Xtra:
    case ttLyrics2: break;
    }
    return {};
}

void TTags::LoadEntry(TTagType type)
{
    if (type == ttID3v2 && !OnlyParseCoverArts)
        for (const TFrameID id : {TFrameID("SESC"), TFrameID("SEFC"), TFrameID("SEBR")})
            FID3v2Tag->Frames.DeleteAllFrames(id);
    TTagBatch batch = BatchOfType(type);
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
    MakeWayFor(batch);
    Append(batch);
}

// Two tags may hold tens of thousands of names each: they are looked up, never compared each with each.
void TTags::MakeWayFor(const TTagBatch& batch)
{
    constexpr size_t few = 1000; // comparisons; a table costs more than these
    if (FTags.size() * (batch.Items.size() + static_cast<size_t>(batch.Dropped.size())) <= few) {
        std::erase_if(FTags, [&](const auto& tag) { return batch.Supplies(tag->Name); });
        return;
    }
    std::unordered_set<QStringView, TNoCaseHash, TNoCaseEqual> names;
    names.reserve(batch.Items.size());
    for (const QString& name : batch.Dropped)
        names.insert(name);
    for (const TTagBatch::TItem& item : batch.Items)
        if (!item.IsTotal)
            names.insert(item.Tag->Name);
    std::erase_if(FTags, [&](const auto& tag) { return names.contains(tag->Name); });
}

void TTags::Append(TTagBatch& batch)
{
    const bool hasTotals = std::ranges::any_of(batch.Items, &TTagBatch::TItem::IsTotal);
    TTotalPlaces totals;
    for (size_t i = 0; hasTotals && i < FTags.size(); ++i)
        totals.Note(FTags[i]->Name, i);
    FTags.reserve(FTags.size() + batch.Items.size());
    for (TTagBatch::TItem& item : batch.Items) {
        if (item.IsTotal)
            if (const auto place = totals.TakeFirst(item.Tag->Name))
                FTags[*place].reset();
        if (hasTotals)
            totals.Note(item.Tag->Name, FTags.size());
        item.Tag->Parent = this;
        FTags.push_back(std::move(item.Tag));
    }
    if (hasTotals)
        std::erase(FTags, nullptr);
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
