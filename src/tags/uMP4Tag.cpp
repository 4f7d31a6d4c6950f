// SPDX-License-Identifier: GPL-3.0-or-later
#include "uMP4Tag.h"

#include "uFilePath.h"
#include "uID3Genres.h"
#include "uMP4Tag_p.h"
#include "uTagText.h"

#include <algorithm>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

constexpr int MostItemLists = 64; // there should be one
constexpr quint32 MP4TypeUtf8 = 1;
constexpr quint32 MP4TypeUtf16 = 2;
constexpr quint32 MP4TypePicture[] = {12, 13, 14, 27}; // GIF, JPEG, PNG, BMP

quint64 BigEndianNumber(QByteArrayView bytes)
{
    quint64 value = 0;
    for (const char byte : bytes)
        value = value << 8 | static_cast<quint8>(byte);
    return value;
}

bool IsPlainText(QByteArrayView bytes)
{
    return IsValidUTF8(bytes) && std::ranges::none_of(bytes, [](char c) {
               return static_cast<quint8>(c) < 0x20 && c != '\n' && c != '\r' && c != '\t';
           });
}

QString TextOfData(const TMP4Data& data)
{
    const QByteArrayView bytes(data.Bytes);
    if (data.Type == MP4TypeUtf8)
        return DecodeText(bytes, teUTF8);
    if (data.Type == MP4TypeUtf16)
        return DecodeText(bytes, teUTF16BE);
    if (std::ranges::find(MP4TypePicture, data.Type) != std::end(MP4TypePicture))
        return {};
    const bool isNumber =
        bytes.size() == 1 || bytes.size() == 2 || bytes.size() == 3 || bytes.size() == 4 || bytes.size() == 8;
    if (isNumber && (data.Type == 21 || data.Type == 22 || !IsPlainText(bytes)))
        return QString::number(BigEndianNumber(bytes));
    return IsPlainText(bytes) ? DecodeUTF8(bytes) : QString();
}

QString XtraText(quint16 type, QByteArrayView bytes)
{
    switch (type) {
    case 8: return DecodeText(bytes, teUTF16);
    case 19: return bytes.size() >= 8 ? QString::number(TByteReader(bytes).U64LE()) : QString();
    case 72: return GuidText(bytes);
    default: return {};
    }
}

QString NameOfAtom(const TMP4Atom& atom)
{
    return QString::fromLatin1(atom.Name.Bytes.data(), std::ssize(atom.Name.Bytes)) + atom.InnerName;
}

} // namespace

QStringList TMP4Atom::GetAsTexts() const
{
    QStringList texts;
    for (const TMP4Data& data : Data)
        if (QString text = TextOfData(data); !text.isEmpty())
            texts.append(std::move(text));
    return texts;
}

quint64 TMP4Atom::GetAsInteger() const
{
    return Data.empty() || Data[0].Bytes.size() > 8 ? 0 : BigEndianNumber(Data[0].Bytes);
}

void TMP4Tag::Clear()
{
    TMP4Tag empty;
    empty.ParseAudioAttributes = ParseAudioAttributes;
    empty.ParseCoverArts = ParseCoverArts;
    *this = std::move(empty);
}

int TMP4Tag::LoadFromFile(const QString& fileName)
{
    Clear();
    const auto source = TFileSource::Open(TextToPath(fileName));
    return source ? Load(*source) : TagResultNoFile;
}

int TMP4Tag::Load(TByteSource& source)
{
    Clear();
    if (source.Read(4, 4) != "ftyp")
        return TagResultNoTag;
    TMP4Walker walker(source, 0, source.Size());
    for (TMP4Box box; walker.Next(box);) {
        if (box.Name == TFourCC("moov"))
            ReadMovie(source, box.Offset, box.End);
        else if (box.Name == TFourCC("mdat"))
            FSoundSize += box.End - box.Offset;
    }
    DeriveTimes(source);
    return Loaded ? TagResultOk : TagResultNoTag;
}

void TMP4Tag::ReadMovie(TByteSource& source, qint64 start, qint64 end)
{
    quint32 scale = 0;
    TMP4Walker walker(source, start, end);
    for (TMP4Box box; walker.Next(box);) {
        if (box.Name == TFourCC("udta")) {
            ReadUserData(source, box.Offset, box.End);
        } else if (box.Name == TFourCC("meta")) {
            ReadMeta(source, box.Offset, box.End);
        } else if (box.Name == TFourCC("mvhd")) {
            FMovieTime = ReadMP4Time(source, box, scale);
        } else if (box.Name == TFourCC("mvex") && FMovieTime == 0 && scale > 0) {
            FFragments.DefaultDuration = ReadMP4DefaultDuration(source, box, FFragments.TrackID);
            if (const auto header = FindMP4Box(source, box.Offset, box.End, "mehd")) {
                const QByteArray bytes = source.Read(header->Offset, 12);
                TByteReader reader(bytes);
                const bool wide = reader.U8() == 1;
                reader.Skip(3);
                FMovieTime = static_cast<double>(wide ? reader.U64BE() : reader.U32BE()) / scale;
            }
        } else if (box.Name == TFourCC("trak") && ParseAudioAttributes && !FHasTrack) {
            if (const auto audio = ReadMP4Track(source, box, FFragments)) {
                Audio = *audio;
                FHasTrack = true;
            }
        }
    }
}

void TMP4Tag::ReadUserData(TByteSource& source, qint64 start, qint64 end)
{
    TMP4Walker walker(source, start, end);
    for (TMP4Box box; walker.Next(box);) {
        if (box.Name == TFourCC("meta"))
            ReadMeta(source, box.Offset, box.End);
        else if (box.Name == TFourCC("Xtra"))
            ReadXtra(source.Read(box.Offset, box.End - box.Offset));
    }
}

void TMP4Tag::ReadMeta(TByteSource& source, qint64 start, qint64 end)
{
    // Four bytes of version and flags come first, but not in QuickTime's own files.
    if (++FItemLists > MostItemLists)
        return;
    const bool bare = source.Read(start + 4, 4) == "hdlr";
    if (const auto list = FindMP4Box(source, start + (bare ? 0 : 4), end, "ilst"))
        ReadItems(source, list->Offset, list->End);
}

void TMP4Tag::ReadItems(TByteSource& source, qint64 start, qint64 end)
{
    FEarlierItems.Begin(Atoms, NameOfAtom);
    TMP4Walker walker(source, start, end);
    for (TMP4Box box; Atoms.size() < MostFields && walker.Next(box);)
        if (ParseCoverArts || box.Name != TFourCC("covr"))
            ReadItem(box.Name, source.Read(box.Offset, box.End - box.Offset));
    Loaded = Loaded || !Atoms.empty();
}

void TMP4Tag::ReadItem(TFourCC name, QByteArrayView content)
{
    TMP4Atom atom;
    atom.Name = name;
    TByteReader reader(content);
    while (reader.Left() >= 8 && atom.Data.size() < MostFields) {
        const quint32 size = reader.U32BE();
        const TFourCC inner(reader.Bytes(4));
        if (size < 8)
            break;
        TByteReader part(reader.Bytes(std::min<qint64>(size - 8, reader.Left())));
        const quint32 type = part.U32BE() & 0xFFFFFF; // below a byte of version
        if (inner == TFourCC("data")) {
            part.Skip(4);
            if (!part.Failed())
                atom.Data.push_back({type, part.Rest().toByteArray()});
        } else if (inner == TFourCC("mean")) {
            atom.Mean = DecodeUTF8(part.Rest());
        } else if (inner == TFourCC("name")) {
            atom.InnerName = DecodeUTF8(part.Rest());
        }
    }
    if (!atom.Data.empty() && !FEarlierItems.Has(NameOfAtom(atom)))
        Atoms.push_back(std::move(atom));
}

// Windows Media fields in an MP4 file: entries of size, name and values; each value has its own size and a type.
void TMP4Tag::ReadXtra(QByteArrayView content)
{
    FEarlierXtra.Begin(Xtra, [](const TMP4Xtra& xtra) { return xtra.Name; });
    TByteReader reader(content);
    while (reader.Left() >= 12) {
        const quint32 size = reader.U32BE();
        if (size < 12)
            break;
        TByteReader entry(reader.Bytes(std::min<qint64>(size - 4, reader.Left())));
        const QString name = DecodeLatin1(entry.Bytes(entry.U32BE()));
        const quint32 count = entry.U32BE();
        for (quint32 i = 0; i < count && !entry.Failed() && Xtra.size() < MostFields; ++i) {
            const quint32 length = entry.U32BE();
            const quint16 type = entry.U16BE();
            const QByteArrayView bytes = entry.Bytes(static_cast<qint64>(length) - 6);
            if (const QString text = XtraText(type, bytes);
                !entry.Failed() && !text.isEmpty() && !FEarlierXtra.Has(name))
                Xtra.push_back({name, text});
        }
    }
    Loaded = Loaded || !Xtra.empty();
}

void TMP4Tag::DeriveTimes(TByteSource& source)
{
    if (!ParseAudioAttributes)
        return;
    if (Audio.PlayTime == 0)
        Audio.PlayTime = FMovieTime;
    if (Audio.PlayTime == 0 && FHasTrack)
        Audio.PlayTime = ReadMP4FragmentTime(source, FFragments);
    if (Audio.BitRate == 0 && FHasTrack)
        Audio.BitRate = BitRateOf(FSoundSize, Audio.PlayTime);
    Audio.SampleCount = SampleCountOf(Audio.PlayTime, Audio.SamplesPerSec);
}

const TMP4Atom* TMP4Tag::FindAtom(TFourCC name) const
{
    const auto found = std::ranges::find(Atoms, name, &TMP4Atom::Name);
    return found == Atoms.end() ? nullptr : &*found;
}

QString TMP4Tag::GetGenre() const
{
    if (const TMP4Atom* text = FindAtom("\xA9"
                                        "gen"))
        return text->GetAsText();
    const TMP4Atom* number = FindAtom("gnre");
    const quint64 value = number ? number->GetAsInteger() : 0; // counts from 1
    return value >= 1 && value <= 256 ? ID3GenreName(static_cast<int>(value) - 1) : QString();
}

QString TMP4Tag::GetMediaType() const
{
    static constexpr std::pair<int, QStringView> types[] = {
        {0, u"Movie"},       {1, u"Music"},    {2, u"Audiobook"}, {5, u"Whacked Bookmark"},
        {6, u"Music Video"}, {9, u"Movie"},    {10, u"TV Show"},  {11, u"Booklet"},
        {14, u"Ringtone"},   {21, u"Podcast"}, {23, u"iTunes U"}};
    const TMP4Atom* atom = FindAtom("stik");
    if (!atom)
        return {};
    const quint64 kind = atom->GetAsInteger();
    for (const auto& [number, name] : types)
        if (static_cast<quint64>(number) == kind)
            return name.toString();
    return {};
}

int TMP4Tag::Pair(TFourCC name, int index) const
{
    const TMP4Atom* atom = FindAtom(name);
    if (!atom)
        return 0;
    TByteReader reader(atom->Data[0].Bytes);
    reader.Skip(2 + 2 * index);
    return reader.U16BE();
}

QString TMP4Tag::GetPurchaseCountry() const
{
    // Numbers of the shops, from 143441 on without a gap for the first forty.
    static constexpr QStringView countries[] = {u"United States",
                                                u"France",
                                                u"Germany",
                                                u"United Kingdom",
                                                u"Austria",
                                                u"Belgium",
                                                u"Finland",
                                                u"Greece",
                                                u"Ireland",
                                                u"Italy",
                                                u"Luxembourg",
                                                u"Netherlands",
                                                u"Portugal",
                                                u"Spain",
                                                u"Canada",
                                                u"Sweden",
                                                u"Norway",
                                                u"Denmark",
                                                u"Switzerland",
                                                u"Australia",
                                                u"New Zealand",
                                                u"Japan",
                                                u"Hong Kong",
                                                u"Singapore",
                                                u"China",
                                                u"South Korea",
                                                u"India",
                                                u"Mexico",
                                                u"Russia",
                                                u"Taiwan",
                                                u"Vietnam",
                                                u"South Africa",
                                                u"Malaysia",
                                                u"Philippines",
                                                u"Thailand",
                                                u"Indonesia",
                                                u"Pakistan",
                                                u"Poland",
                                                u"Saudi Arabia",
                                                u"Turkey",
                                                u"United Arab Emirates",
                                                u"Hungary",
                                                u"Chile",
                                                u"Nepal",
                                                u"Panama",
                                                u"Sri Lanka",
                                                u"Romania"};
    static constexpr std::pair<quint64, QStringView> further[] = {
        {143489, u"Czech Republic"}, {143491, u"Israel"},    {143492, u"Ukraine"},
        {143493, u"Kuwait"},         {143494, u"Croatia"},   {143495, u"Costa Rica"},
        {143496, u"Slovakia"},       {143497, u"Lebanon"},   {143498, u"Qatar"},
        {143499, u"Slovenia"},       {143501, u"Colombia"},  {143502, u"Venezuela"},
        {143503, u"Brazil"},         {143504, u"Guatemala"}, {143505, u"Argentina"},
        {143506, u"El Salvador"},    {143507, u"Peru"},      {143508, u"Dominican Republic"},
        {143509, u"Ecuador"},        {143510, u"Honduras"},  {143511, u"Jamaica"},
        {143512, u"Nicaragua"},      {143513, u"Paraguay"},  {143514, u"Uruguay"},
        {143515, u"Macau"},          {143516, u"Egypt"},     {143517, u"Kazakhstan"},
        {143518, u"Estonia"},        {143519, u"Latvia"},    {143520, u"Lithuania"},
        {143521, u"Malta"},          {143523, u"Moldova"},   {143524, u"Armenia"},
        {143525, u"Botswana"},       {143526, u"Bulgaria"},  {143528, u"Jordan"},
        {143529, u"Kenya"},          {143530, u"Macedonia"}, {143531, u"Madagascar"},
        {143532, u"Mali"},           {143533, u"Mauritius"}, {143534, u"Niger"},
        {143535, u"Senegal"},        {143536, u"Tunisia"},   {143537, u"Uganda"}};
    const TMP4Atom* atom = FindAtom("sfID");
    const quint64 shop = atom ? atom->GetAsInteger() : 0;
    constexpr quint64 first = 143441;
    if (shop >= first && shop - first < std::size(countries))
        return countries[shop - first].toString();
    const auto found = std::ranges::find(further, shop, &std::pair<quint64, QStringView>::first);
    return found == std::end(further) ? QString() : found->second.toString();
}

} // namespace Kestrune
