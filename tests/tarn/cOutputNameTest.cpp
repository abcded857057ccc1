#include <cOutputName.h>
#include <support/qtPrinters.h>

#include <gtest/gtest.h>

namespace {

QString make(const char* i_pattern,
    const cOutputName::Frame& i_frame = {QStringLiteral("in"), 7, 42, QStringLiteral("img")})
{
    cOutputName name;
    const QString error = name.set(QString::fromLatin1(i_pattern));
    return error.isEmpty() ? name.make(i_frame) : error;
}

TEST(cOutputName, PutsTheFrameIntoThePattern)
{
    EXPECT_EQ(make("out/{stem}.png"), QStringLiteral("out/in.png"));
    EXPECT_EQ(make("{stem}_{index}_{stamp}_{port}.png"), QStringLiteral("in_0007_42_img.png"));
    EXPECT_EQ(make("{index}", {{}, 123456, 0, {}}), QStringLiteral("123456"));
    EXPECT_EQ(make("{stamp}", {{}, 0, -3, {}}), QStringLiteral("-3"));
    EXPECT_EQ(make("plain.png"), QStringLiteral("plain.png"));
    EXPECT_EQ(make("{{{stem}}}"), QStringLiteral("{in}"));
}

TEST(cOutputName, AStemNeverChoosesTheFolder)
{
    EXPECT_EQ(make("out/{stem}.png", {QStringLiteral("../../etc/x"), 0, 0, {}}),
        QStringLiteral("out/.._.._etc_x.png"));
}

TEST(cOutputName, RefusesWhatItDoesNotKnow)
{
    EXPECT_EQ(make("{stm}.png"),
        QStringLiteral("unknown placeholder, expected {stem}, {index}, {stamp} or {port}, found "
                       "{stm} (did you mean {stem}?)"));
    EXPECT_EQ(make("{}.png"),
        QStringLiteral("unknown placeholder, expected {stem}, {index}, {stamp} or {port}, found {}"));
    EXPECT_EQ(make("{stem.png"),
        QStringLiteral("a brace stands alone in '{stem.png', expected {stem}, {index}, {stamp} or {port}"));
    EXPECT_EQ(make("a}b"),
        QStringLiteral("a brace stands alone in 'a}b', expected {stem}, {index}, {stamp} or {port}"));
}

TEST(cOutputName, KnowsWhetherFramesShareAName)
{
    cOutputName name;
    for (const char* varying : {"{stem}", "{index}", "a{stamp}"}) {
        EXPECT_TRUE(name.set(QString::fromLatin1(varying)).isEmpty());
        EXPECT_TRUE(name.isVarying()) << varying;
    }
    for (const char* constant : {"a.png", "{port}.png", "{{stem}}"}) {
        EXPECT_TRUE(name.set(QString::fromLatin1(constant)).isEmpty());
        EXPECT_FALSE(name.isVarying()) << constant;
    }
}

} // namespace
