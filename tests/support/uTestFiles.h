// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QString>
#include <QTemporaryDir>

#include <ostream>

QT_BEGIN_NAMESPACE
inline void PrintTo(const QString& text, std::ostream* out) { *out << '"' << text.toStdString() << '"'; }
QT_END_NAMESPACE

namespace Kestrune::Kit {

/// A folder of its own for one test, removed at the end.
class TTempDir {
public:
    TTempDir();
    QString Path() const { return FDir.path(); }
    /// Absolute path of a name inside the folder; its parent folders are made.
    QString File(const QString& name) const;
    /// Writes a file inside the folder and returns its path.
    QString Write(const QString& name, const QByteArray& bytes) const;

private:
    QTemporaryDir FDir;
};

/// The whole file; fails the test by an exception when it cannot be read.
QByteArray ReadAll(const QString& path);
void WriteAll(const QString& path, const QByteArray& bytes);

/// Folder of the real sample files, or empty when it is not there.
QString SamplesFolder();

/// A picture of one colour gradient, encoded as "JPG", "PNG", "GIF" or "BMP".
QByteArray MakePicture(int width, int height, const char* format, int seed = 1);

/// Runs a program to its end and returns true when it exited with 0; its output goes to `output`.
bool RunProgram(const QString& program, const QStringList& arguments, QByteArray* output = nullptr);

} // namespace Kestrune::Kit
