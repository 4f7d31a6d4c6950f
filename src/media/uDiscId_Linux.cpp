// SPDX-License-Identifier: GPL-3.0-or-later
#include "uDiscId.h"
#include "uFilePath.h"

#include <fcntl.h>
#include <linux/cdrom.h>
#include <sys/ioctl.h>
#include <unistd.h>

namespace Kestrune {

namespace {

class TLinuxCDDrive final : public TCDDrive {
public:
    explicit TLinuxCDDrive(int file) : FFile(file) {}
    ~TLinuxCDDrive() override { ::close(FFile); }
    TLinuxCDDrive(const TLinuxCDDrive&) = delete;
    TLinuxCDDrive& operator=(const TLinuxCDDrive&) = delete;

    bool ReadHeader(int& first, int& last) override
    {
        cdrom_tochdr header{};
        if (::ioctl(FFile, CDROMREADTOCHDR, &header) != 0)
            return false;
        first = header.cdth_trk0;
        last = header.cdth_trk1;
        return true;
    }

    bool ReadEntry(int track, TRawTOCEntry& entry) override
    {
        static_assert(LeadOutTrack == CDROM_LEADOUT);
        cdrom_tocentry request{};
        request.cdte_track = static_cast<__u8>(track);
        request.cdte_format = CDROM_LBA;
        if (::ioctl(FFile, CDROMREADTOCENTRY, &request) != 0)
            return false;
        entry = {request.cdte_ctrl, request.cdte_addr.lba};
        return true;
    }

    bool Eject() override
    {
        // Without a lock on the door there is nothing to undo, so only the tray counts.
        ::ioctl(FFile, CDROM_LOCKDOOR, 0);
        return ::ioctl(FFile, CDROMEJECT, 0) == 0;
    }

private:
    int FFile;
};

} // namespace

std::unique_ptr<TCDDrive> OpenCDDrive(const QString& device)
{
    // Without O_NONBLOCK an empty drive cannot be opened, and an open tray would be drawn in.
    const int file = ::open(TextToPath(device).c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    return file < 0 ? nullptr : std::make_unique<TLinuxCDDrive>(file);
}

} // namespace Kestrune
