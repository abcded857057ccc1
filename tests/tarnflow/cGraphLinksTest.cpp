#include "testStations.h"

#include <gtest/gtest.h>
#include <support/TraceLines.h>
#include <tarnbase/cTypeConverter.h>
#include <tarnflow/cGraph.h>

namespace {
/** Text of numbers, to be linked with a port for numbers. */
struct Words {
    QString text;
    friend QTextStream& operator<<(QTextStream& io_stream, const Words& i_words)
    {
        return io_stream << i_words.text;
    }
};
} // namespace

template <> struct cValueConversion<Words, double> {
    static bool convert(const Words& i_source, double& o_target)
    {
        bool good = false;
        const double number = i_source.text.toDouble(&good);
        if (good)
            o_target = number;
        return good;
    }
};

namespace {
const cTypeConverter<Words, double> s_wordsToNumber(true);

class WordsStation : public cStation {
public:
    WordsStation() : out(this, QStringLiteral("words"), 5) {}
    cOPort<Words> out;
};

/** Two inputs of different types and two outputs. */
class MixedStation : public cStation {
public:
    MixedStation()
        : group(this, &MixedStation::process, QStringLiteral("number"), QStringLiteral("count")),
          whole(this, QStringLiteral("whole"), 5),
          broken(this, QStringLiteral("broken"), 5)
    {
    }
    cPortGroup<double, int> group;
    cOPort<int> whole;
    cOPort<double> broken;

private:
    void process() {}
};

/** Refuses all links that were not announced. */
class PickyPort : public cIPort<double> {
public:
    using cIPort<double>::cIPort;
    bool checkStaticData(const cPortBase* i_other) override
    {
        return i_other->getName() == QLatin1String("right");
    }
};
} // namespace

TEST(cGraphLinks, NeedNoPortNamesWhereOneFits)
{
    cGraph graph;
    addTo(graph, "n", new NumberSource(1));
    auto& mixed = addTo(graph, "m", new MixedStation());
    auto& whole = addTo(graph, "w", new IntStation());
    ASSERT_TRUE(graph.link("n"_q, "m"_q));
    EXPECT_EQ(mixed.getInport("number"_q)->getLinkedPorts().size(), 1);
    ASSERT_TRUE(graph.link("m"_q, "w"_q));
    EXPECT_EQ(whole.getInport("in"_q)->getLinkedPorts(), QList<cPortBase*> {&mixed.whole});
    const auto links = graph.getLinks();
    ASSERT_EQ(links.size(), 2);
    EXPECT_EQ(links[0].to->getPortPath(), "m.number"_q);
    EXPECT_EQ(links[1].from->getPortPath(), "m.whole"_q);
}

TEST(cGraphLinks, TakeTheFirstFreeInputOfTheType)
{
    cGraph graph;
    addTo(graph, "n", new NumberSource(1));
    addTo(graph, "k", new NumberSource(1));
    auto& difference = addTo(graph, "d", new SubtractStation());
    ASSERT_TRUE(graph.link("n"_q, "d"_q));
    ASSERT_TRUE(graph.link("k"_q, "d"_q));
    EXPECT_EQ(difference.getInport("a"_q)->getLinkedPorts()[0]->getPortPath(), "n.out"_q);
    EXPECT_EQ(difference.getInport("b"_q)->getLinkedPorts()[0]->getPortPath(), "k.out"_q);
    cGraphError error;
    EXPECT_FALSE(graph.link("n"_q, "d"_q, &error));
    EXPECT_EQ(error.message, "every input is linked already"_q);
}

TEST(cGraphLinks, AreMadeByPortName)
{
    cGraph graph;
    addTo(graph, "n", new NumberSource(1));
    auto& difference = addTo(graph, "d", new SubtractStation());
    ASSERT_TRUE(graph.link("n.out"_q, "d.b"_q));
    EXPECT_TRUE(difference.getInport("b"_q)->isConnected());
    EXPECT_FALSE(difference.getInport("a"_q)->isConnected());
    ASSERT_TRUE(graph.unlink("n"_q, "d"_q));
    EXPECT_FALSE(difference.getInport("b"_q)->isConnected());
    cGraphError error;
    EXPECT_FALSE(graph.unlink("n.out"_q, "d.b"_q, &error));
    EXPECT_EQ(error.toString(), "d.b: is not linked with \"n.out\""_q);
}

TEST(cGraphLinks, SayWhatIsUnknown)
{
    cGraph graph;
    addTo(graph, "numbers", new NumberSource(1));
    addTo(graph, "d", new SubtractStation());
    cGraphError error;
    EXPECT_FALSE(graph.link("numbrs"_q, "d"_q, &error));
    EXPECT_EQ(error.message, "there is no node \"numbrs\""_q);
    EXPECT_EQ(error.help, "did you mean \"numbers\"?"_q);
    EXPECT_FALSE(graph.link("numbers.image"_q, "d"_q, &error));
    EXPECT_EQ(error.toString(), "numbers.image: there is no output \"image\""_q);
    EXPECT_EQ(error.help, "outputs: out"_q);
    EXPECT_FALSE(graph.link("numbers.out"_q, "d.out"_q, &error));
    EXPECT_EQ(error.help, "\"out\" is an output"_q);
    EXPECT_FALSE(graph.link("d"_q, "numbers"_q, &error));
    EXPECT_EQ(error.toString(), "numbers: has no input"_q);
    EXPECT_FALSE(graph.link(nullptr, nullptr, &error));
}

TEST(cGraphLinks, RefuseTypesThatNothingConverts)
{
    cGraph graph;
    addTo(graph, "n", new NumberSource(1));
    auto& words = addTo(graph, "w", new cStation());
    new cIPort<Words>(&words, "in"_q);
    cGraphError error;
    EXPECT_FALSE(graph.link("n"_q, "w"_q, &error));
    EXPECT_EQ(error.toString().remove("(anonymous namespace)::"_q),
        "w.in: takes Words, but \"n.out\" gives double, and nothing converts the one into the other"_q);
    addTo(graph, "words", new WordsStation());
    addTo(graph, "whole", new IntStation());
    EXPECT_FALSE(graph.link("words.words"_q, "whole"_q, &error));
}

TEST(cGraphLinks, PreferTheSameTypeToAConversion)
{
    cGraph graph;
    addTo(graph, "words", new WordsStation());
    auto& mixed = addTo(graph, "m", new MixedStation());
    ASSERT_TRUE(graph.link("words"_q, "m"_q));
    EXPECT_TRUE(mixed.getInport("number"_q)->isConnected());
}

TEST(cGraphLinks, AnInputTakesOneSenderByName)
{
    cGraph graph;
    addTo(graph, "n", new NumberSource(1));
    addTo(graph, "k", new NumberSource(1));
    addTo(graph, "a", new AddStation());
    cGraphError error;
    ASSERT_TRUE(graph.link("n"_q, "a"_q));
    EXPECT_FALSE(graph.link("n"_q, "a"_q, &error));
    EXPECT_EQ(error.toString(), "a.in: is linked with \"n.out\" already"_q);
    EXPECT_FALSE(graph.link("k"_q, "a"_q, &error));
    EXPECT_EQ(error.toString(), "a.in: has a sender already, \"n.out\""_q);
    EXPECT_EQ(error.help, "unlink that first"_q);
}

TEST(cGraphLinks, ANodeCannotFeedItself)
{
    cGraph graph;
    addTo(graph, "a", new AddStation());
    cGraphError error;
    EXPECT_FALSE(graph.link("a"_q, "a"_q, &error));
    EXPECT_EQ(error.message, "a node cannot feed itself"_q);
}

TEST(cGraphLinks, StayInsideOneGraph)
{
    cGraph graph;
    cGraph other;
    auto& source = addTo(other, "n", new NumberSource(1));
    auto& target = addTo(graph, "a", new AddStation());
    cGraphError error;
    EXPECT_FALSE(graph.link(&source.out, target.getInport("in"_q), &error));
    cGraph* inner = graph.addGraph("sub"_q);
    addTo(*inner, "b", new AddStation());
    EXPECT_FALSE(graph.link("a"_q, "sub/b"_q, &error));
    EXPECT_EQ(error.message, "a link cannot cross the boundary of a subgraph"_q);
}

TEST(cGraphLinks, AskBothPorts)
{
    cGraph graph;
    auto& station = addTo(graph, "s", new cStation());
    auto* port = new PickyPort(&station, "in"_q);
    auto& source = addTo(graph, "n", new cStation());
    auto* right = new cOPort<double>(&source, "right"_q, 5);
    auto* wrong = new cOPort<double>(&source, "wrong"_q, 5);
    cGraphError error;
    EXPECT_FALSE(graph.link(wrong, port, &error));
    EXPECT_EQ(error.toString(), "s.in: takes nothing of what \"n.wrong\" gives"_q);
    ASSERT_TRUE(graph.link("n"_q, "s"_q, &error)) << error.toString().toStdString();
    EXPECT_EQ(port->getLinkedPorts(), QList<cPortBase*> {right});
}

TEST(cGraphLinks, ConvertTheValuesOfOtherTypes)
{
    cGraph graph;
    auto& words = addTo(graph, "words", new WordsStation());
    cIPort<double> tap;
    std::vector<double> values;
    std::vector<qint64> stamps;
    tap.setDirectCallback([&](cBufferT<double>* buffer) {
        values.push_back(buffer->getValue());
        stamps.push_back(buffer->getStamp().getStamp());
    });
    ASSERT_TRUE(graph.link(&words.out, &tap));
    words.out.send({"1.5"_q}, 7);
    words.out.send({"2.5"_q}, 9);
    EXPECT_EQ(values, (std::vector<double> {1.5, 2.5}));
    EXPECT_EQ(stamps, (std::vector<qint64> {7, 9}));
    EXPECT_EQ(words.out.getHeldCount(), 0);
}

TEST(cGraphLinks, AValueWithoutCounterpartIsRefused)
{
    TraceLines trace;
    cGraph graph;
    auto& words = addTo(graph, "words", new WordsStation());
    cIPort<double> tap;
    int calls = 0;
    tap.setDirectCallback([&](cBufferT<double>*) { ++calls; });
    ASSERT_TRUE(graph.link(&words.out, &tap));
    words.out.send({"many"_q}, 1);
    words.out.send({"3"_q}, 2);
    EXPECT_EQ(calls, 1);
    EXPECT_EQ(tap.getFates().refused, 1u);
    EXPECT_EQ(tap.getFates().used, 1u);
    EXPECT_EQ(tap.getFates().arrived, 2u);
    EXPECT_EQ(words.out.getHeldCount(), 0);
    EXPECT_EQ(trace.take().size(), 1);
}

TEST(cGraphLinks, GoWithTheirPorts)
{
    cGraph graph;
    auto& source = addTo(graph, "n", new NumberSource(1));
    addTo(graph, "a", new AddStation());
    ASSERT_TRUE(graph.link("n"_q, "a"_q));
    EXPECT_TRUE(source.out.requestsData());
    ASSERT_TRUE(graph.removeNode("a"_q));
    EXPECT_FALSE(source.out.requestsData());
    EXPECT_FALSE(source.out.isConnected());
    EXPECT_TRUE(graph.getLinks().isEmpty());
}

TEST(cGraphLinks, ADisabledNodeReceivesNothing)
{
    cGraph graph;
    auto& source = addTo(graph, "n", new NumberSource(1));
    auto& receiver = addTo(graph, "a", new AddStation());
    ASSERT_TRUE(graph.link("n"_q, "a"_q));
    EXPECT_TRUE(receiver.getInport("in"_q)->receivesData());
    EXPECT_EQ(receiver.getInport("in"_q)->getEnabledChannelCount(), 1u);
    source.setEnabled(false);
    EXPECT_FALSE(receiver.getInport("in"_q)->receivesData());
    EXPECT_TRUE(receiver.getInport("in"_q)->isConnected());
    source.setEnabled(true);
    receiver.setEnabled(false);
    EXPECT_TRUE(receiver.getInport("in"_q)->receivesData());
    EXPECT_FALSE(source.out.requestsData());
}
