// SPDX-License-Identifier: GPL-3.0-or-later
#include "ID3v1Library.h"
#include "ID3v2Library.h"
#include "TagsLibrary_p.h"
#include "uFlacTag.h"
#include "uID3Genres.h"

#include <algorithm>
#include <unordered_map>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

const std::unordered_map<std::string_view, QString>& ID3v2Map()
{
    static const std::unordered_map<std::string_view, QString> map = {
        {"TPE1", u"ARTIST"_s},
        {"TIT2", u"TITLE"_s},
        {"TPE2", u"ALBUMARTIST"_s},
        {"TCOM", u"COMPOSER"_s},
        {"TIT3", u"SUBTITLE"_s},
        {"TPE4", u"MIXARTIST"_s},
        {"TALB", u"ALBUM"_s},
        {"TCOP", u"COPYRIGHT"_s},
        {"TIT1", u"GROUPING"_s},
        {"TCON", u"GENRE"_s},
        {"TDRL", u"RELEASEDATE"_s},
        {"TDRC", u"RECORDINGDATE"_s},
        {"TYER", u"YEAR"_s},
        {"TRCK", u"TRACKNUMBER"_s},
        {"TPOS", u"DISCNUMBER"_s},
        {"TBPM", u"BPM"_s},
        {"TKEY", u"KEY"_s},
        {"TPE3", u"CONDUCTOR"_s},
        {"TEXT", u"LYRICIST"_s},
        {"TPRO", u"PRODUCED"_s},
        {"TSTU", u"STUDIO"_s},
        {"TPUB", u"PUBLISHER"_s},
        {"TENC", u"ENCODEDBY"_s},
        {"TSSE", u"SOFTWARESETTINGS"_s},
        {"TSRC", u"ISRC"_s},
        {"TSST", u"DISCSUBTITLE"_s},
        {"TLAN", u"LANGUAGE"_s},
        {"TMED", u"MEDIA"_s},
        {"TIPL", u"TIPL"_s},
        {"TMCL", u"TMCL"_s},
        {"TMOO", u"MOOD"_s},
        {"COMM", u"COMMENT"_s},
        {"USLT", u"LYRICS"_s},
        {"TSOP", u"ARTISTSORT"_s},
        {"TSOT", u"TITLESORT"_s},
        {"TSO2", u"ALBUMARTISTSORT"_s},
        {"TSOA", u"ALBUMSORT"_s},
        {"TOPE", u"ORIGINALARTIST"_s},
        {"TOAL", u"ORIGINALTITLE"_s},
        {"TOLY", u"ORIGINALLYRICIST"_s},
        {"TOFN", u"ORIGINALFILENAME"_s},
        {"TDOR", u"ORIGINALRELEASEDATE"_s},
        {"WOAR", u"ARTISTURL"_s},
        {"WOAF", u"AUDIOFILEURL"_s},
        {"WCOM", u"BUYCDURL"_s},
        {"WPUB", u"PUBLISHERURL"_s},
        {"WORS", u"RADIOSTATIONURL"_s},
        {"WCOP", u"COPYRIGHTURL"_s},
        {"WOAS", u"OFFICIALAUDIOSOURCEURL"_s},
        {"WPAY", u"PAYMENTURL"_s},
        {"TOWN", u"FILEOWNER"_s},
        {"TRSN", u"RADIOSTATIONNAME"_s},
        {"TRSO", u"RADIOSTATIONOWNER"_s},
    };
    return map;
}

// All values of the frame, each with its references resolved; what two of them say alike stands once.
QString GenreOfFrame(const TID3v2Frame& frame)
{
    TDistinctTexts genres;
    for (const QString& value : frame.GetUnicodeTextMultiple())
        genres.Add(ResolveID3Genre(value));
    return genres.Join();
}

void AddContent(TTagBatch& batch, const TID3v2Frame& frame, const QString& name)
{
    const TID3v2Content content = frame.GetUnicodeContent();
    if (TTag* tag = batch.Add(name, content.Text)) {
        tag->Language = content.Language;
        tag->Description = content.Description;
    }
}

void AddText(TTagBatch& batch, const QString& name, const QString& value)
{
    if (name == u"TRACKNUMBER"_s)
        batch.AddNumberOfTotal(value, name, u"TOTALTRACKS"_s);
    else if (name == u"DISCNUMBER"_s)
        batch.AddNumberOfTotal(value, name, u"TOTALDISCS"_s);
    else
        batch.Add(name, value);
}

void AddMappedFrame(TTagBatch& batch, const TID3v2Frame& frame, const QString& name)
{
    if (frame.ID == TFrameID("TCON"))
        batch.Add(name, GenreOfFrame(frame));
    else if (frame.ID == TFrameID("COMM") || frame.ID == TFrameID("USLT"))
        AddContent(batch, frame, name);
    else if (frame.ID == TFrameID("TIPL") || frame.ID == TFrameID("TMCL"))
        batch.Add(name, frame.GetUnicodeListFrameText());
    else if (frame.ID.Bytes[0] == 'W')
        batch.Add(name, frame.GetURL());
    else
        for (const QString& value : frame.GetUnicodeTextMultiple())
            AddText(batch, name, value);
}

void AddUserDefined(TTagBatch& batch, const TID3v2UserDefined& user, const QString& name, TExtTagType type)
{
    for (const QString& value : user.Values) {
        if (TTag* tag = batch.Add(name, value)) {
            tag->Description = user.Description;
            tag->ExtTagType = type;
        }
    }
}

void AddUnmappedFrame(TTagBatch& batch, const TID3v2Frame& frame)
{
    if (frame.ID == TFrameID("TXXX")) {
        const TID3v2UserDefined user = frame.GetUnicodeUserDefinedTextInformationMultiple();
        AddUserDefined(batch, user, user.Description, ettTXXX);
    } else if (frame.ID == TFrameID("WXXX")) {
        const TID3v2UserDefined user = frame.GetUnicodeUserDefinedURLLink();
        AddUserDefined(batch, user, user.Description.isEmpty() ? u"URL"_s : user.Description, ettWXXX);
    } else if (frame.ID == TFrameID("PCNT")) {
        batch.Add(u"PLAYCOUNT"_s, QString::number(frame.GetPlayCount()));
    } else if (frame.ID == TFrameID("POPM")) {
        if (const auto popularimeter = frame.GetPopularimeter())
            batch.Add(u"RATING"_s, QString::number(popularimeter->Rating));
    } else if (frame.ID == TFrameID("APIC") && batch.Pictures.size() < MostPictures) {
        if (auto picture = frame.GetUnicodeCoverPictureStream())
            batch.Pictures.push_back(std::move(*picture));
    }
}

} // namespace

bool TTagBatch::Supplies(QStringView name) const
{
    return std::ranges::any_of(
               Items, [&](const TItem& item) { return !item.IsTotal && EqualsNoCase(item.Tag->Name, name); }) ||
           std::ranges::any_of(Dropped, [&](const QString& dropped) { return EqualsNoCase(dropped, name); });
}

TTag* TTagBatch::Add(const QString& name, const QString& value)
{
    if (value.isEmpty() || Items.size() >= MostFields)
        return nullptr;
    auto tag = std::make_unique<TTag>();
    tag->Name = name;
    tag->Value = value;
    Items.push_back({std::move(tag), false});
    return Items.back().Tag.get();
}

void TTagBatch::AddNumberOfTotal(const QString& value, const QString& numberName, const QString& totalName)
{
    const qsizetype slash = value.indexOf(u'/');
    if (slash < 0) {
        Add(numberName, value);
        return;
    }
    Add(numberName, value.first(slash));
    if (Add(totalName, value.sliced(slash + 1)))
        Items.back().IsTotal = true;
}

void TTagBatch::AddFields(const std::vector<TTagField>& fields)
{
    Items.reserve(Items.size() + fields.size());
    TTag* lists[2] = {nullptr, nullptr}; // of people: all texts of one are the lines of one tag
    for (const TTagField& field : fields) {
        const int list = EqualsNoCase(field.Name, u"TIPL") ? 0 : EqualsNoCase(field.Name, u"TMCL") ? 1 : -1;
        if (list >= 0) {
            if (lists[list] && !field.Value.isEmpty())
                lists[list]->Value += u'\n' + field.Value;
            else if (!lists[list])
                lists[list] = Add(field.Name, field.Value);
            continue;
        }
        const bool isTrack = EqualsNoCase(field.Name, u"TRACKNUMBER") || EqualsNoCase(field.Name, u"TRACK");
        if (isTrack && field.Value.contains(u'/')) {
            Drop(field.Name);
            AddNumberOfTotal(field.Value, u"TRACKNUMBER"_s, u"TOTALTRACKS"_s);
        } else {
            Add(field.Name, field.Value);
        }
    }
}

TTagBatch BatchOf(const TID3v1Tag& tag)
{
    TTagBatch batch;
    batch.Add(u"TITLE"_s, tag.Title);
    batch.Add(u"ARTIST"_s, tag.Artist);
    batch.Add(u"ALBUM"_s, tag.Album);
    batch.Add(u"YEAR"_s, tag.Year);
    batch.Add(u"COMMENT"_s, tag.Comment);
    if (tag.Track != 0) {
        batch.Drop(u"TRACK"_s);
        batch.Add(u"TRACKNUMBER"_s, QString::number(tag.Track));
    }
    batch.Add(u"GENRE"_s, tag.Genre);
    return batch;
}

TTagBatch BatchOf(const TID3v2Tag& tag)
{
    TTagBatch batch;
    batch.Items.reserve(tag.Frames.Items().size() + 2);
    const auto& map = ID3v2Map();
    for (const TID3v2Frame& frame : tag.Frames.Items()) {
        const auto mapped = map.find(frame.ID.Text());
        if (mapped != map.end())
            AddMappedFrame(batch, frame, mapped->second);
        else
            AddUnmappedFrame(batch, frame);
    }
    return batch;
}

TTagBatch BatchOf(const TFlacTag& tag)
{
    TTagBatch batch;
    batch.AddFields(tag.Comments.Fields);
    batch.Pictures = tag.Pictures;
    for (TTagPicture picture : tag.Comments.Pictures) {
        picture.Name.clear();
        batch.Pictures.push_back(std::move(picture));
    }
    return batch;
}

} // namespace Kestrune
