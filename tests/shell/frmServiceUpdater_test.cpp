// SPDX-License-Identifier: GPL-3.0-or-later
#include "frmServiceUpdater.h"
#include "uHostLimiter.h"
#include "uServiceFiles.h"
#include "uServicePackage.h"
#include "uTHSettings.h"
#include "uTestFiles.h"
#include "uWebServer.h"

#include <QCoreApplication>
#include <QDir>
#include <QEventLoop>
#include <QFile>
#include <QLockFile>

#include <gtest/gtest.h>

using namespace Kestrune;
using namespace Qt::StringLiterals;

namespace {

// A whole package whose one service has this name.
QByteArray Definitions(const QByteArray& name)
{
    return "<G><Services><service name='" + name + "'/></Services><BarcodeSearch><search ServiceName='" + name +
           "' url='http://h/'/></BarcodeSearch></G>";
}

class Updater : public testing::Test {
protected:
    Updater()
    {
        HostLimiter().Clear();
        Dir.Write(u"InfoGrabber/infograbber.xml"_s, Definitions("old"));
        Kit::RunProgram(u"python3"_s, {u"-c"_s,
                                       u"import zipfile,sys\nz=zipfile.ZipFile(sys.argv[1],'w')\n"
                                       "z.writestr('infograbber.xml',sys.argv[2])"_s,
                                       Dir.File(u"p.zip"_s), QString::fromUtf8(Definitions("new"))});
        Zip = Kit::ReadAll(Dir.File(u"p.zip"_s));
        QFile::remove(Dir.File(u"p.zip"_s));
        Server.Serve("/Services.ver", {.Body = " 7 \r\n"});
        Server.Serve("/Services.zip", {.Body = Zip});
    }

    TUpdateEnd Run(const std::function<void(TServiceUpdaterForm&)>& atDownload = {})
    {
        TServiceUpdaterForm form(Dir.File(u"InfoGrabber/infograbber.xml"_s), Server.URL({}), Store);
        QEventLoop loop;
        QObject::connect(&form, &TServiceUpdaterForm::closed, &loop, &QEventLoop::quit);
        if (atDownload)
            QObject::connect(&form, &TServiceUpdaterForm::downloadStarted, [&] { atDownload(form); });
        form.FormShow();
        loop.exec();
        Attempts = form.Attempts();
        Label = form.LabelText();
        return form.EndState();
    }
    QByteArray Installed() const
    {
        const QString path = Dir.File(u"InfoGrabber/infograbber.xml"_s);
        const QByteArray text = QFile::exists(path) ? Kit::ReadAll(path) : "none";
        for (const QByteArray name : {"old", "new"})
            if (text == Definitions(name))
                return name;
        return text;
    }
    TServiceUpdates Kept() const { return TServiceUpdates::Read(Store); }

    Kit::TTempDir Dir;
    Kit::TWebServer Server;
    TTHIniSettings Store{Dir.File(u"settings.ini"_s)};
    QByteArray Zip;
    int Attempts = 0;
    QString Label;
};

TEST_F(Updater, FetchesANewerPackage)
{
    EXPECT_EQ(Run(), ueReplaced);
    EXPECT_EQ(Installed(), "new");
    EXPECT_EQ(Kept().Version, 7);
    EXPECT_LE(Kept().LastUpdated.secsTo(QDateTime::currentDateTime()), 60);
    EXPECT_TRUE(Label.startsWith(u"Getting updates... "_s)) << Label.toStdString();
    EXPECT_EQ(QDir(Dir.Path()).entryList({u"*.tmp"_s, u"InfoGrabber.*"_s}, QDir::AllEntries), QStringList());
}

TEST_F(Updater, LeavesACurrentOneAlone)
{
    WriteServicesVersion(Store, 7);
    EXPECT_EQ(Run(), ueCurrent);
    EXPECT_EQ(Installed(), "old");
    EXPECT_EQ(Server.Count("/Services.zip"), 0);
    EXPECT_TRUE(Kept().LastUpdated.isValid()) << "the next check waits for its interval";
}

TEST_F(Updater, ReplacesACurrentOneThatDoesNotWork)
{
    WriteServicesVersion(Store, 7);
    Kit::WriteAll(Dir.File(u"InfoGrabber/infograbber.xml"_s),
                  Definitions("old").replace("url", "Transform='gone.xsl' url"));
    EXPECT_EQ(Run(), ueReplaced);
    EXPECT_EQ(Installed(), "new");
}

TEST_F(Updater, LeavesTheFieldToAnotherProcess)
{
    QLockFile other(ServiceLockPath(Dir.File(u"InfoGrabber"_s)));
    ASSERT_TRUE(other.lock());
    EXPECT_EQ(Run(), ueCurrent);
    EXPECT_TRUE(Server.Log().isEmpty());
}

TEST_F(Updater, FetchesWhereTheVersionIsUnknown)
{
    WriteServicesVersion(Store, 99);
    Server.Serve("/Services.ver", {.Body = "<html>"});
    EXPECT_EQ(Run(), ueReplaced);
    Server.Serve("/Services.ver", {.Status = 500});
    EXPECT_EQ(Run(), ueReplaced);
    QFile::remove(Dir.File(u"InfoGrabber/infograbber.xml"_s));
    const int asked = Server.Count("/Services.ver");
    EXPECT_EQ(Run(), ueReplaced) << "a missing package is fetched without a check";
    EXPECT_EQ(Server.Count("/Services.ver"), asked);
    EXPECT_EQ(Installed(), "new");
}

TEST_F(Updater, GivesUpAfterThreeAttempts)
{
    const Kit::TWebAnswer rows[] = {{.Status = 404}, {.Body = "no zip"}, {.Body = Zip, .CutAfter = 20}};
    for (const Kit::TWebAnswer& answer : rows) {
        Server.Serve("/Services.zip", answer);
        const int before = Server.Count("/Services.zip");
        EXPECT_EQ(Run(), ueFailed);
        EXPECT_EQ(Attempts, 3);
        EXPECT_EQ(Server.Count("/Services.zip") - before, 3);
        EXPECT_EQ(Installed(), "old");
        EXPECT_EQ(Kept().Version, -1);
        EXPECT_FALSE(Kept().LastUpdated.isValid());
    }
}

TEST_F(Updater, CancelEndsItAtOnceAndChangesNothing)
{
    Server.Serve("/Services.zip", {.Body = Zip, .SilentAfter = true});
    EXPECT_EQ(Run([](TServiceUpdaterForm& form) {
                  QMetaObject::invokeMethod(
                      &form, [&form] { form.btnCancelClick(); }, Qt::QueuedConnection);
              }),
              ueCancelled);
    EXPECT_EQ(Attempts, 1);
    EXPECT_EQ(Installed(), "old");
    EXPECT_EQ(Kept().Version, -1);
    Server.Serve("/Services.ver", {.Body = "9", .SilentAfter = true});
    TServiceUpdaterForm form(Dir.File(u"InfoGrabber/infograbber.xml"_s), Server.URL({}), Store);
    QEventLoop loop;
    QObject::connect(&form, &TServiceUpdaterForm::closed, &loop, &QEventLoop::quit);
    form.FormShow();
    while (Server.Count("/Services.ver") < 2)
        QCoreApplication::processEvents();
    form.btnCancelClick(); // during the check
    loop.exec();
    EXPECT_EQ(form.EndState(), ueCancelled);
}

} // namespace
