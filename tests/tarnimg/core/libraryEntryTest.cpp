#include "support/qtPrinters.h"

#include <QFile>
#include <QProcess>
#include <gtest/gtest.h>
#include <tarnimg/cImg.h>

namespace {

// Made before main begins and destroyed after it ends: what it points to must be there, and must stay.
const cImg s_image;
struct Late {
    ~Late() { m_image.resize(20, 20); }
    cImg m_image {cImgType::UInt8, 10, 10};
} s_late;

} // namespace

TEST(libraryEntry, TellsTheDebugLogOfLoadAndUnload)
{
    QProcess process;
    process.start(
        QFile::symLinkTarget(QStringLiteral("/proc/self/exe")), {QStringLiteral("--gtest_list_tests")});
    ASSERT_TRUE(process.waitForFinished());
    EXPECT_EQ(process.exitCode(), 0);
    const QString log = QString::fromLocal8Bit(process.readAllStandardError());
    EXPECT_TRUE(log.contains(QStringLiteral("Starting  tarnimg ....\n"))) << log.toStdString();
    EXPECT_TRUE(log.contains(QStringLiteral("Terminating  tarnimg ...\n"))) << log.toStdString();
}

TEST(libraryEntry, ComesBeforeTheFirstImage)
{
    EXPECT_TRUE(s_late.m_image.isValid());
    EXPECT_EQ(s_image.getName(), QStringLiteral("Unnamed"));
}
