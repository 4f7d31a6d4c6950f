// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QString>

#include <map>

namespace Kestrune {

/// What was put into the folder of the service definitions, so that what the user changed there is known. It lies in
/// that folder as a file of its own.
struct TServiceDelivery {
    int Version = -1;                    ///< of the package; -1 unknown
    QByteArray Template;                 ///< what the program brought when it looked last
    std::map<QString, QByteArray> Files; ///< SHA-256 by name, as delivered

    /// Nothing where there is no such file or it is damaged.
    static TServiceDelivery Read(const QString& folder);
    bool Write(const QString& folder) const;
};

/// Brings the definitions of the program into the user's folder: all of them when `infograbber.xml` is missing there,
/// what is missing beside it, and what the user never changed when the program comes with others than before and the
/// ones that are there are not of a later version. The folder is replaced as a whole; when that fails it is tried again
/// at the next start. First takes away what an update that was killed left behind.
void SeedServiceDefinitions(const QString& templateFolder, const QString& userFolder);

/// Path of the lock that is held while the folder is changed.
QString ServiceLockPath(const QString& folder);
/// Beginning of the names of folders in which a new content is made; they lie beside the folder.
QString ServiceAsidePrefix(const QString& folder);
/// Puts a folder back that was lost between two renames, and takes away unfinished ones. Only with the lock.
void SweepServiceLeftovers(const QString& folder);

/// Gives the folder what it has and `made` has not, whatever lies in it.
bool CarryOver(const QString& folder, const QString& made, QString& error);
/// Puts the folder `made` in the place of another beside it, as a whole or not at all, and removes the old one.
bool ReplaceFolder(const QString& made, const QString& folder, QString& error);
/// Writes a file that is whole after a loss of power as well.
bool WriteDurably(const QString& path, const QByteArray& bytes);

} // namespace Kestrune
