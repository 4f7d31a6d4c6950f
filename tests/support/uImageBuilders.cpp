// SPDX-License-Identifier: GPL-3.0-or-later
#include "uImageBuilders.h"

#include "uTagBuilders.h"

#include <QMap>

#include <algorithm>
#include <functional>

namespace Kestrune::Kit {

namespace {

constexpr int ImageSector = 2048;

void Put(QByteArray& image, qint64 at, const QByteArray& bytes)
{
    if (image.size() < at + bytes.size())
        image.resize(at + bytes.size(), '\0');
    image.replace(at, bytes.size(), bytes);
}

qint64 SectorsOf(qint64 bytes) { return (bytes + ImageSector - 1) / ImageSector; }

QByteArray Padded2048(QByteArray bytes)
{
    return bytes.append(SectorsOf(bytes.size()) * ImageSector - bytes.size(), '\0');
}

QByteArray ParentOf(const QByteArray& path)
{
    return path.contains('/') ? path.left(path.lastIndexOf('/')) : QByteArray();
}
QByteArray LastOf(const QByteArray& path) { return path.mid(path.lastIndexOf('/') + 1); }

// The tree of a list of files: what each directory holds, "" being the root.
struct TTree {
    QMap<QByteArray, QList<QByteArray>> Directories;
    QMap<QByteArray, TImageFile> Files;

    explicit TTree(const QList<TImageFile>& files)
    {
        Directories[""];
        for (const TImageFile& file : files) {
            const bool directory = file.Path.endsWith('/');
            const QByteArray path = directory ? file.Path.chopped(1) : file.Path;
            Add(path, directory);
            if (!directory)
                Files[path] = file;
        }
    }

private:
    void Add(const QByteArray& path, bool directory)
    {
        const QByteArray parent = ParentOf(path);
        if (!Directories.contains(parent))
            Add(parent, true);
        if (!Directories[parent].contains(path))
            Directories[parent] << path;
        if (directory)
            Directories[path];
    }
};

// ISO 9660

QByteArray Both32(quint32 value) { return LE32(value) + BE32(value); }

QByteArray IsoRecord(const QByteArray& name, quint32 block, quint32 size, bool directory)
{
    QByteArray record = QByteArray(1, '\0') + Both32(block) + Both32(size) + QByteArray(7, '\0') +
                        QByteArray(1, directory ? '\2' : '\0') + QByteArray(2, '\0') + LE16(1) + BE16(1) +
                        QByteArray(1, static_cast<char>(name.size())) + name;
    record.prepend('\0');
    record.append(record.size() % 2, '\0');
    record[0] = static_cast<char>(record.size());
    return record;
}

} // namespace

QByteArray IsoImage(const QByteArray& label, const QList<TImageFile>& files)
{
    const TTree tree(files);
    QMap<QByteArray, quint32> blocks;
    QMap<QByteArray, quint32> sizes;
    const auto build = [&](const QByteArray& path) {
        QByteArray bytes;
        const auto add = [&](const QByteArray& record) {
            if (bytes.size() % ImageSector + record.size() > ImageSector) // records do not cross sectors
                bytes = Padded2048(bytes);
            bytes += record;
        };
        add(IsoRecord(QByteArray(1, '\0'), blocks.value(path), sizes.value(path), true));
        add(IsoRecord("\1", blocks.value(ParentOf(path)), sizes.value(ParentOf(path)), true));
        for (const QByteArray& child : tree.Directories[path]) {
            const bool directory = tree.Directories.contains(child);
            add(IsoRecord(LastOf(child) + (directory ? "" : ";1"), blocks.value(child), sizes.value(child), directory));
        }
        return Padded2048(bytes);
    };
    quint32 block = 18;
    for (auto it = tree.Directories.cbegin(); it != tree.Directories.cend(); ++it) {
        sizes[it.key()] = static_cast<quint32>(build(it.key()).size());
        blocks[it.key()] = block;
        block += sizes[it.key()] / ImageSector;
    }
    for (auto it = tree.Files.cbegin(); it != tree.Files.cend(); ++it) {
        sizes[it.key()] = static_cast<quint32>(it->Bytes.size());
        blocks[it.key()] = block;
        block += static_cast<quint32>(SectorsOf(it->Bytes.size()));
    }
    QByteArray image;
    QByteArray descriptor = "\1CD001\1" + QByteArray(33, ' ') + label.leftJustified(32, ' ');
    descriptor.append(156 - descriptor.size(), '\0');
    descriptor += IsoRecord(QByteArray(1, '\0'), blocks[""], sizes[""], true);
    Put(image, 16 * ImageSector, Padded2048(descriptor));
    Put(image, 17 * ImageSector,
        Padded2048("\xFF"
                   "CD001\1"));
    for (auto it = tree.Directories.cbegin(); it != tree.Directories.cend(); ++it)
        Put(image, blocks[it.key()] * qint64(ImageSector), build(it.key()));
    for (auto it = tree.Files.cbegin(); it != tree.Files.cend(); ++it)
        Put(image, blocks[it.key()] * qint64(ImageSector), Padded2048(it->Bytes));
    return image;
}

// Super Audio CD

namespace {

QByteArray SacdSound(const QByteArray& sound)
{
    constexpr int frameSize = 9408;
    constexpr int most = 2000; // bytes of sound in a sector
    QByteArray sectors;
    for (qsizetype frame = 0; frame < sound.size(); frame += frameSize) {
        const QByteArray bytes = sound.mid(frame, frameSize);
        for (qsizetype at = 0; at < bytes.size(); at += most) {
            const QByteArray piece = bytes.mid(at, most);
            const bool starts = at == 0;
            // A packet of supplementary data before the sound, which is no part of it.
            QByteArray sector(1, static_cast<char>(2 << 5 | (starts ? 1 << 2 : 0)));
            sector += BE16(3 << 11 | 5);
            sector += BE16(static_cast<quint32>((starts ? 0x8000 : 0) | 2 << 11 | piece.size()));
            if (starts)
                sector += QByteArray(3, '\0');
            sectors += (sector + "extra" + piece).leftJustified(ImageSector, '\xEE');
        }
    }
    return sectors;
}

QByteArray SacdTrackText(const QList<TSacdTrack>& tracks)
{
    QByteArray offsets;
    QByteArray texts;
    for (const TSacdTrack& track : tracks) {
        QList<QByteArray> items;
        const auto add = [&](char type, const QByteArray& text) {
            if (!text.isEmpty())
                items << QByteArray(1, type) + '\x20' + text + '\0';
        };
        add('\1', track.Title);
        add('\2', track.Performer);
        add('\3', track.Composer);
        offsets += BE16(static_cast<quint32>(items.isEmpty() ? 0 : 8 + 2 * tracks.size() + texts.size()));
        if (items.isEmpty())
            continue;
        texts += QByteArray(1, static_cast<char>(items.size())) + QByteArray(3, '\0') + items.join(QByteArray(3, '\0'));
    }
    return Padded2048("SACDTTxt" + offsets + texts);
}

} // namespace

QByteArray SacdImage(const QList<TSacdTrack>& tracks, const TSacdOptions& options)
{
    constexpr quint32 areaAt = 544;
    QByteArray master = "SACDMTOC" + QByteArray(8, '\0') + BE16(static_cast<quint32>(options.DiscCount)) +
                        BE16(static_cast<quint32>(options.DiscNo)) + QByteArray(4, '\0') +
                        options.Catalog.leftJustified(16, ' ');
    master.append(160 - master.size(), '\0');
    Put(master, 64, BE32(areaAt));
    Put(master, 80, QByteArray(1, options.Hybrid ? '\1' : '\0'));
    Put(master, 120, BE16(static_cast<quint32>(options.Year)) + "\5\x11");
    Put(master, 138, QByteArray(1, static_cast<char>(options.Charset)));
    QByteArray text = "SACDText" + QByteArray(40, '\0');
    const quint32 artistAt = static_cast<quint32>(48 + options.Title.size() + 1);
    Put(text, 16, BE16(options.Title.isEmpty() ? 0 : 48) + BE16(options.Artist.isEmpty() ? 0 : artistAt));
    text += options.Title + '\0' + options.Artist + '\0';

    QByteArray positions("SACDTRL1");
    QByteArray times("SACDTRL2");
    QByteArray sound;
    constexpr quint32 soundAt = 600;
    for (qsizetype i = 0; i < tracks.size(); ++i) {
        const QByteArray sectors = SacdSound(tracks[i].Sound);
        Put(positions, 8 + 4 * i, BE32(soundAt + static_cast<quint32>(sound.size() / ImageSector)));
        Put(positions, 1028 + 4 * i, BE32(static_cast<quint32>(sectors.size() / ImageSector)));
        Put(times, 1028 + 4 * i,
            QByteArray(1, static_cast<char>(tracks[i].Minutes)) + static_cast<char>(tracks[i].Seconds) +
                static_cast<char>(tracks[i].Frames) + '\0');
        sound += sectors;
    }
    QByteArray area = "TWOCHTOC" + QByteArray(2, '\0') + BE16(9) + QByteArray(148, '\0');
    Put(area, 20, QByteArray("\4") + (options.Compressed ? '\0' : '\2'));
    Put(area, 32, QByteArray(1, static_cast<char>(options.Channels)));
    Put(area, 69, QByteArray(1, static_cast<char>(tracks.size())));
    QByteArray table = Padded2048(area) + SacdTrackText(tracks);
    if (options.SecondText)
        table += SacdTrackText({{.Title = "another language"}});
    table += Padded2048(positions) + Padded2048(times);
    Put(master, 84, BE16(static_cast<quint32>(table.size() / ImageSector)));

    QByteArray image(0xFF800, '\0');
    Put(image, 510 * ImageSector, Padded2048(master));
    Put(image, 511 * ImageSector, Padded2048(text));
    Put(image, 520 * ImageSector, QByteArray(ImageSector, '\0'));
    Put(image, areaAt * ImageSector, table);
    Put(image, soundAt * ImageSector, sound);
    return image;
}

// DVD-Audio

QByteArray DvdaIfo(const QList<QList<TDvdaTrack>>& titles)
{
    QByteArray ifo = QByteArray("DVDAUDIO-ATS").leftJustified(ImageSector, '\0');
    ifo.replace(0xCC, 4, BE32(1));
    QByteArray table = BE16(static_cast<quint32>(titles.size())) + QByteArray(6, '\0');
    QByteArray records;
    for (qsizetype i = 0; i < titles.size(); ++i) {
        const auto tracks = static_cast<char>(titles[i].size());
        const QByteArray at = BE32(static_cast<quint32>(8 + 8 * titles.size() + records.size()));
        table += QByteArray(1, static_cast<char>(0x81 + i)) + QByteArray(3, '\0') + at;
        QByteArray entries;
        QByteArray sectors;
        double total = 0;
        for (const TDvdaTrack& track : titles[i]) {
            entries += QByteArray(6, '\0') + BE32(900) + BE32(static_cast<quint32>(track.Seconds * 90000)) +
                       QByteArray(6, '\0');
            sectors += QByteArray("\1\0\0\0", 4) + BE32(track.FirstSector) + BE32(track.LastSector);
            total += track.Seconds;
        }
        records += QByteArray(2, '\0') + tracks + tracks + BE32(static_cast<quint32>(total * 90000)) +
                   QByteArray(4, '\0') + BE16(static_cast<quint32>(16 + entries.size())) + QByteArray(2, '\0') +
                   entries + sectors;
    }
    return Padded2048(ifo + table + records);
}

QByteArray AobSectors(const QByteArray& sound, quint8 subStream)
{
    constexpr int most = 1900;
    QByteArray sectors;
    for (qsizetype at = 0; at == 0 || at < sound.size(); at += most) {
        const QByteArray head = QByteArray(1, static_cast<char>(subStream)) + QByteArray("\0\0\6"
                                                                                         "headin",
                                                                                         9);
        const QByteArray pes = QByteArray("\x81\x80\5\x21\0\1\0\1", 8) + head + sound.mid(at, most);
        const QByteArray packets = QByteArray("\0\0\1\xBA\x44\0\4\0\4\1\1\x89\xC3\xF8", 14) +
                                   QByteArray("\0\0\1\xBD", 4) + BE16(static_cast<quint32>(pes.size())) + pes;
        const int rest = ImageSector - static_cast<int>(packets.size()) - 6;
        sectors += packets + QByteArray("\0\0\1\xBE", 4) + BE16(static_cast<quint32>(rest)) + QByteArray(rest, '\xFF');
    }
    return sectors;
}

// Transport streams

namespace {

QByteArray TsPacket(int pid, bool starts, const QByteArray& payload, int counter)
{
    constexpr int room = 184;
    QByteArray packet("\x47");
    packet += BE16(static_cast<quint32>((starts ? 0x4000 : 0) | pid));
    const int stuffing = room - static_cast<int>(payload.size());
    packet += static_cast<char>((stuffing > 0 ? 0x30 : 0x10) | (counter & 15));
    if (stuffing > 0)
        packet += static_cast<char>(stuffing - 1);
    if (stuffing > 1)
        packet += '\0' + QByteArray(stuffing - 2, '\xFF');
    return QByteArray(4, '\0') + packet + payload; // the arrival time stands before each
}

QByteArray TsSection(const QByteArray& content)
{
    const quint32 length = static_cast<quint32>(content.size() - 1 + 4);
    return '\0' + content.left(1) + BE16(0xB000 | length) + content.mid(1) + QByteArray(4, 'c');
}

} // namespace

QByteArray TransportStream(quint8 streamType, const QList<std::pair<qint64, QByteArray>>& packets, int extensionID)
{
    constexpr int mapPID = 0x100, soundPID = 0x1100;
    QByteArray stream =
        TsPacket(0, true, TsSection(QByteArray("\0\0\1\xC1\0\0", 6) + BE16(1) + BE16(0xE000 | mapPID)), 0);
    const QByteArray map = QByteArray("\2\0\1\xC1\0\0", 6) + BE16(0xE000 | soundPID) + BE16(0xF000) +
                           static_cast<char>(streamType) + BE16(0xE000 | soundPID) + BE16(0xF000);
    stream += TsPacket(mapPID, true, TsSection(map), 0);
    int counter = 0;
    for (const auto& [time, bytes] : packets) {
        const QByteArray stamp = QByteArray(1, static_cast<char>(0x21 | (time >> 30 & 7) << 1)) +
                                 BE16(static_cast<quint32>((time >> 15 & 0x7FFF) << 1 | 1)) +
                                 BE16(static_cast<quint32>((time & 0x7FFF) << 1 | 1));
        const QByteArray extension =
            extensionID < 0 ? QByteArray() : QByteArray("\x0F\x81") + static_cast<char>(extensionID);
        const QByteArray fields = stamp + extension;
        const QByteArray pes = QByteArray("\0\0\1\xFD\0\0\x81", 7) + (extensionID < 0 ? '\x80' : '\x81') +
                               static_cast<char>(fields.size()) + fields + bytes;
        for (qsizetype at = 0; at < pes.size(); at += 184)
            stream += TsPacket(soundPID, at == 0, pes.mid(at, 184), counter++);
    }
    return stream;
}

} // namespace Kestrune::Kit
