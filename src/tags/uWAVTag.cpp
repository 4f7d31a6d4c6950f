// SPDX-License-Identifier: GPL-3.0-or-later
#include "uWAVTag.h"

#include "ID3v2Library.h"
#include "uFilePath.h"
#include "uTagText.h"

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

void AddField(std::vector<TTagField>& fields, const QString& name, const QString& value)
{
    if (!value.isEmpty() && fields.size() < MostFields)
        fields.push_back({name, value});
}

// Loudness is stored in hundredths; versions before 2 and unused fields have none.
QString Hundredths(quint16 raw)
{
    const auto value = static_cast<qint16>(raw);
    return raw == 0x7FFF || raw == 0 ? QString() : QString::number(value / 100.0, 'f', 2);
}

QString NumberUnlessZero(quint64 value) { return value == 0 ? QString() : QString::number(value); }

QString HexUnlessZero(QByteArrayView bytes)
{
    const QByteArray copy = bytes.toByteArray();
    return copy.count('\0') == copy.size() ? QString() : QString::fromLatin1(copy.toHex().toUpper());
}

} // namespace

int TWAVTag::LoadFromFile(const QString& fileName)
{
    Clear();
    const auto source = TFileSource::Open(TextToPath(fileName));
    return source ? Load(*source) : TagResultNoFile;
}

int TWAVTag::Load(TByteSource& source)
{
    Clear();
    const qint64 start = ID3v2TagSize(source, 0);
    const TSourceFileType type = ContainerAt(source, start);
    if (type != sftWAVE && type != sftRF64)
        return TagResultNoTag;
    ReadWAVInfo(source, start, Info);
    for (const TTagPlace& list : Info.InfoLists)
        ReadInfoList(source.Read(list.Offset + 4, list.Size - 4));
    if (Info.Bext.Size > 0)
        ReadBroadcast(source.Read(Info.Bext.Offset, Info.Bext.Size));
    if (Info.Cart.Size > 0)
        ReadCart(source.Read(Info.Cart.Offset, Info.Cart.Size));
    Loaded = !Frames.empty() || !Broadcast.empty() || !Cart.empty();
    return Loaded ? TagResultOk : TagResultNoTag;
}

void TWAVTag::ReadInfoList(QByteArrayView bytes)
{
    FEarlier.Begin(Frames, [](const TTagField& field) { return field.Name; });
    TByteReader reader(bytes);
    while (reader.Left() >= 8 && Frames.size() < MostFields) {
        const QString name = DecodeLatin1(reader.Bytes(4));
        const quint32 size = reader.U32LE();
        const QByteArrayView text = reader.Bytes(std::min<qint64>(size, reader.Left()));
        if (!FEarlier.Has(name))
            AddField(Frames, name, DecodeRiffText(text));
        // Texts are padded to even, but writers forget the padding or pad twice: names never begin with a zero.
        while (reader.Left() > 0 && bytes[reader.Position()] == 0)
            reader.Skip(1);
    }
}

void TWAVTag::ReadBroadcast(QByteArrayView bytes)
{
    TByteReader reader(bytes);
    const auto text = [&](const QString& name, qint64 size) {
        AddField(Broadcast, name, DecodeRiffText(reader.Bytes(std::min(size, reader.Left()))));
    };
    text(u"BEXT Description"_s, 256);
    text(u"BEXT Originator"_s, 32);
    text(u"BEXT OriginatorReference"_s, 32);
    text(u"BEXT OriginationDate"_s, 10);
    text(u"BEXT OriginationTime"_s, 8);
    AddField(Broadcast, u"BEXT TimeReference"_s, NumberUnlessZero(reader.U64LE()));
    const quint16 version = reader.U16LE();
    AddField(Broadcast, u"BEXT Version"_s, NumberUnlessZero(version));
    AddField(Broadcast, u"BEXT UMID"_s, HexUnlessZero(reader.Bytes(std::min<qint64>(64, reader.Left()))));
    for (const QString& name : {u"BEXT LoudnessValue"_s, u"BEXT LoudnessRange"_s, u"BEXT MaxTruePeakLevel"_s,
                                u"BEXT MaxMomentaryLoudness"_s, u"BEXT MaxShortTermLoudness"_s}) {
        const quint16 raw = reader.U16LE();
        if (version >= 2)
            AddField(Broadcast, name, Hundredths(raw));
    }
    reader.Skip(180);
    if (!reader.Failed())
        AddField(Broadcast, u"BEXT CodingHistory"_s, DecodeRiffText(reader.Rest()).trimmed());
}

void TWAVTag::ReadCart(QByteArrayView bytes)
{
    TByteReader reader(bytes);
    const auto text = [&](const QString& name, qint64 size) {
        AddField(Cart, u"CART "_s + name, DecodeRiffText(reader.Bytes(std::min(size, reader.Left()))));
    };
    text(u"Version"_s, 4);
    for (const QString& name :
         {u"Title"_s, u"Artist"_s, u"CutID"_s, u"ClientID"_s, u"Category"_s, u"Classification"_s, u"OutCue"_s})
        text(name, 64);
    text(u"StartDate"_s, 10);
    text(u"StartTime"_s, 8);
    text(u"EndDate"_s, 10);
    text(u"EndTime"_s, 8);
    text(u"ProducerAppID"_s, 64);
    text(u"ProducerAppVersion"_s, 64);
    text(u"UserDef"_s, 64);
    const auto level = static_cast<qint32>(reader.U32LE());
    AddField(Cart, u"CART LevelReference"_s, level == 0 ? QString() : QString::number(level));
    for (int i = 0; i < 8; ++i) {
        const QString usage = DecodeRiffText(reader.Bytes(std::min<qint64>(4, reader.Left())));
        const quint32 value = reader.U32LE();
        if (!usage.isEmpty() && !reader.Failed())
            AddField(Cart, u"CART PostTimer%1"_s.arg(i), u"%1 %2"_s.arg(usage).arg(value));
    }
    text(u"Reserved"_s, 276);
    text(u"URL"_s, 1024);
    text(u"TagText"_s, reader.Left());
}

} // namespace Kestrune
