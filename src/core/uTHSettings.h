// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "uRegistryFile.h"

#include <QString>

#include <memory>

class QSettings;

namespace Kestrune {

/// A flat store of named values of one user. Reads give `absent` when there is no such value or it is of another
/// kind; writes always write, whatever `absent` says.
class TTHCustomSettings {
public:
    virtual ~TTHCustomSettings() = default;

    virtual int ReadInteger(const QString& key, int absent) const = 0;
    virtual QString ReadString(const QString& key, const QString& absent) const = 0;
    virtual bool ReadBoolean(const QString& key, bool absent) const = 0;
    virtual double ReadDouble(const QString& key, double absent) const = 0;
    virtual void WriteInteger(const QString& key, int absent, int value) = 0;
    virtual void WriteString(const QString& key, const QString& absent, const QString& value) = 0;
    virtual void WriteBoolean(const QString& key, bool absent, bool value) = 0;
    virtual void WriteDouble(const QString& key, double absent, double value) = 0;
};

/// The store as an INI file, read once when opened and written as a whole by Flush and when it is destroyed.
class TTHIniSettings final : public TTHCustomSettings {
public:
    /// Opens the file; a missing one is an empty store. A file that cannot be read as settings is renamed to
    /// "<name>.broken-<n>" and the store starts empty: see BrokenFile.
    explicit TTHIniSettings(const QString& path);
    ~TTHIniSettings() override;

    int ReadInteger(const QString& key, int absent) const override;
    QString ReadString(const QString& key, const QString& absent) const override;
    bool ReadBoolean(const QString& key, bool absent) const override;
    double ReadDouble(const QString& key, double absent) const override;
    void WriteInteger(const QString& key, int absent, int value) override;
    void WriteString(const QString& key, const QString& absent, const QString& value) override;
    void WriteBoolean(const QString& key, bool absent, bool value) override;
    void WriteDouble(const QString& key, double absent, double value) override;

    /// All values by their names.
    TSettingValues AllValues() const;
    /// Puts these values in place of what is there under the same names.
    void TakeValues(const TSettingValues& values);
    /// Writes the file aside and renames it; false when that failed (the old file is then intact).
    bool Flush();
    /// Where an unreadable settings file was put, or empty.
    QString BrokenFile() const { return FBrokenFile; }

private:
    QString FBrokenFile;
    bool FKeepsBroken = false;
    std::unique_ptr<QSettings> FStore;
};

} // namespace Kestrune
