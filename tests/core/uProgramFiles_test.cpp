// SPDX-License-Identifier: GPL-3.0-or-later
#include "uProgramFiles.h"

#include <QCoreApplication>
#include <QFile>

#include <gtest/gtest.h>

namespace Kestrune {

using namespace Qt::StringLiterals;

TEST(ProgramFiles, AFileBesideTheProgramGoesBeforeTheResource)
{
    const QString name = u"uProgramFiles_test.txt"_s;
    const QString resource = u":/core/ENGLISHLANG"_s;
    const QByteArray compiled = ProgramText(name, resource);
    EXPECT_FALSE(compiled.isEmpty());
    QFile beside(QCoreApplication::applicationDirPath() + u'/' + name);
    ASSERT_TRUE(beside.open(QIODevice::WriteOnly));
    EXPECT_TRUE(!ProgramText(name, resource).isNull() && ProgramText(name, resource).isEmpty()) << "be it empty";
    beside.write("own");
    beside.close();
    EXPECT_EQ(ProgramText(name, resource), QByteArray("own"));
    beside.remove();
    EXPECT_EQ(ProgramText(name, resource), compiled);
    EXPECT_TRUE(ProgramText(name, u":/none"_s).isNull());
}

} // namespace Kestrune
