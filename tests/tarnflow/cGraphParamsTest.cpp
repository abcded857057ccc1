#include "testStations.h"

#include <QVariant>
#include <gtest/gtest.h>
#include <tarnbase/cDataValObj.h>
#include <tarnflow/cGraph.h>
#include <thread>

namespace {
/** One parameter of each kind. */
class ParamStation : public cStation {
public:
    ParamStation() : group(this, &ParamStation::process, QStringLiteral("in"))
    {
        const auto add = [this](cObj* i_entry, const char* i_key) {
            m_params.setSubObject(i_entry, QString::fromLatin1(i_key), true);
            return i_entry;
        };
        cObj* bounded = add(new cDataRefObj<int>(count), "count");
        bounded->setMetaData("min"_q, new cDataValObj<int>(1));
        bounded->setMetaData("max"_q, new cDataValObj<int>(9));
        add(new cDataRefObj<QString>(border), "border")
            ->setEnumeration(new cDataValObj<QStringList>({"BorderConst"_q, "BorderRepl"_q}));
        add(new cDataRefObj<c2DPoint<int>>(size), "maskSize");
        add(new cDataRefObj<bool>(active), "AutoRange/Use");
        add(new cDataRefObj<double>(fixed), "fixed")->setFlags(cObj::ObjReadOnly);
    }

    int count = 3;
    QString border = "BorderRepl"_q;
    c2DPoint<int> size {3, 3};
    bool active = false;
    double fixed = 1;
    cPortGroup<double> group;

private:
    void process(cBufferT<double>*) {}
};

class ParamsTest : public testing::Test {
protected:
    ParamsTest() : station(addTo(*graph.addGraph("sub"_q), "s", new ParamStation())) {}

    bool set(const char* i_path, const char* i_text)
    {
        error = {};
        return graph.setParam(QString::fromLatin1(i_path), QString::fromLatin1(i_text), &error);
    }

    cGraph graph;
    ParamStation& station;
    cGraphError error;
};
} // namespace

TEST_F(ParamsTest, AreWrittenFromText)
{
    EXPECT_TRUE(set("sub/s.count", "7"));
    EXPECT_EQ(station.count, 7);
    EXPECT_TRUE(set("sub/s.border", "BorderConst"));
    EXPECT_EQ(station.border, "BorderConst"_q);
    EXPECT_TRUE(set("sub/s.maskSize", "5,7"));
    EXPECT_EQ(station.size, (c2DPoint<int>(5, 7)));
    EXPECT_TRUE(set("sub/s.AutoRange/Use", "true"));
    EXPECT_TRUE(station.active);
    EXPECT_EQ(graph.getParam("sub/s.count"_q), "7"_q);
    EXPECT_EQ(graph.getParam("sub/s.maskSize"_q), "5,7"_q);
}

TEST_F(ParamsTest, AreWrittenFromVariants)
{
    EXPECT_TRUE(graph.setParam("sub/s.count"_q, QVariant(4)));
    EXPECT_EQ(station.count, 4);
    EXPECT_TRUE(graph.setParam("sub/s.maskSize"_q, QVariant(QVariantList {9, 11})));
    EXPECT_EQ(station.size, (c2DPoint<int>(9, 11)));
    EXPECT_TRUE(graph.setParam("sub/s.AutoRange/Use"_q, QVariant(true)));
    EXPECT_TRUE(station.active);
    EXPECT_FALSE(graph.setParam("sub/s.count"_q, QVariant(), &error));
    EXPECT_FALSE(graph.setParam("sub/s.count"_q, QVariant(77), &error));
    EXPECT_EQ(station.count, 4);
}

TEST_F(ParamsTest, StayAsTheyAreWhenTheTextIsWrong)
{
    EXPECT_FALSE(set("sub/s.count", "many"));
    EXPECT_EQ(error.place, "sub/s.count"_q);
    EXPECT_FALSE(error.message.isEmpty());
    EXPECT_EQ(station.count, 3);
    EXPECT_FALSE(set("sub/s.maskSize", "5"));
    EXPECT_EQ(station.size, (c2DPoint<int>(3, 3)));
}

TEST_F(ParamsTest, KeepToTheirEnumeration)
{
    EXPECT_FALSE(set("sub/s.border", "BorderMirror"));
    EXPECT_EQ(station.border, "BorderRepl"_q);
    EXPECT_FALSE(error.help.isEmpty());
}

TEST_F(ParamsTest, KeepToTheirRange)
{
    EXPECT_FALSE(set("sub/s.count", "10"));
    EXPECT_EQ(error.message, "expected a number from 1 to 9, found 10"_q);
    EXPECT_FALSE(set("sub/s.count", "0"));
    EXPECT_TRUE(set("sub/s.count", "9"));
    EXPECT_TRUE(set("sub/s.count", "1"));
    EXPECT_EQ(station.count, 1);
}

TEST_F(ParamsTest, AreNamedWhenTheyAreUnknown)
{
    EXPECT_FALSE(set("sub/s.masksize", "1,1"));
    EXPECT_EQ(error.toString(), "sub/s.masksize: there is no parameter \"masksize\""_q);
    EXPECT_EQ(error.help, "did you mean \"maskSize\"?"_q);
    EXPECT_FALSE(set("sub/s.threshold", "1"));
    EXPECT_EQ(error.help, "parameters: count, border, maskSize, AutoRange/Use, fixed, in.delay"_q);
    EXPECT_FALSE(set("sub/t.count", "1"));
    EXPECT_EQ(error.message, "there is no node \"sub/t\""_q);
    EXPECT_FALSE(set("sub/s", "1"));
    EXPECT_TRUE(graph.getParam("sub/s.nothing"_q, &error).isNull());
}

TEST_F(ParamsTest, RefuseWhatCannotBeWritten)
{
    EXPECT_FALSE(set("sub/s.fixed", "2"));
    EXPECT_EQ(error.message, "the parameter can only be read"_q);
    EXPECT_EQ(station.fixed, 1);
    EXPECT_FALSE(set("sub/s.AutoRange", "2"));
    EXPECT_EQ(error.message, "is a group of parameters, not a value"_q);
}

TEST_F(ParamsTest, OfAPortAreReachedThroughIt)
{
    EXPECT_EQ(graph.getParam("sub/s.in.delay"_q), "0"_q);
    EXPECT_TRUE(set("sub/s.in.delay", "2"));
    EXPECT_EQ(station.group.getQueueParams(station.getInport("in"_q)).delay, 2u);
    EXPECT_FALSE(set("sub/s.in.delay", "-1"));
    EXPECT_EQ(station.group.getQueueParams(station.getInport("in"_q)).delay, 2u);
    EXPECT_TRUE(graph.findParam("sub/s.in.delay"_q));
}

TEST_F(ParamsTest, ADelayGivesItsSenderRoom)
{
    auto& source = addTo(graph, "n", new NumberSource(1));
    auto& add = addTo(graph, "a", new AddStation());
    auto& difference = addTo(graph, "d", new SubtractStation());
    ASSERT_TRUE(graph.link("n"_q, "a"_q));
    ASSERT_TRUE(graph.link("n"_q, "d.a"_q));
    ASSERT_TRUE(graph.link("a"_q, "d.b"_q));
    EXPECT_EQ(source.out.getExtraRoom(), 0);
    ASSERT_TRUE(graph.setParam("d.a.delay"_q, "3"_q));
    EXPECT_EQ(source.out.getExtraRoom(), 3);
    EXPECT_EQ(add.out.getExtraRoom(), 0);
    // A station that works in place passes the source's buffers on.
    ASSERT_TRUE(graph.setParam("d.b.delay"_q, "2"_q));
    EXPECT_EQ(source.out.getExtraRoom(), 5);
    EXPECT_EQ(add.out.getExtraRoom(), 2);
    ASSERT_TRUE(graph.unlink("n"_q, "a"_q));
    EXPECT_EQ(source.out.getExtraRoom(), 3);
    ASSERT_TRUE(graph.setParam("d.a.delay"_q, "4294967295"_q));
    EXPECT_EQ(source.out.getExtraRoom(), 2147483647);
    (void)difference;
}

TEST(cGraphParams, FallBetweenTwoSteps)
{
    cGraph graph;
    auto& source = addTo(graph, "n", new NumberSource(100000));
    auto& add = addTo(graph, "a", new AddStation());
    auto& end = addTo(graph, "end", new Collector<double>());
    double atStart = 0;
    std::atomic<bool> changed {false};
    Gate begun;
    // The step reads its parameter twice, as a long computation would.
    add.beforeSend = [&](double) {
        atStart = add.summand;
        begun.open();
        std::this_thread::yield();
        changed = changed || atStart != add.summand;
    };
    source.beforeSend = [&](int) {
        if (end.values().size() > 3000)
            source.finish();
    };
    ASSERT_TRUE(graph.link("n"_q, "a"_q));
    ASSERT_TRUE(graph.link("a"_q, "end"_q));
    ASSERT_TRUE(graph.launch());
    ASSERT_TRUE(begun.pass());
    for (int i = 1; graph.getFlow() == cGraph::EFlow::Running; ++i)
        ASSERT_TRUE(graph.setParam("a.summand"_q, QString::number(i)));
    EXPECT_EQ(graph.waitForFlow(30000), cGraph::EFlow::Drained);
    graph.stop();
    EXPECT_FALSE(changed);
}
