// Values into a graph and out of it: constant, values and print, beside images and alone.

#include <cConsole.h>
#include <cFileFormat.h>
#include <cPipelineBuilder.h>
#include <cRunner.h>
#include <hostStations.h>
#include <support/guiApplication.h>
#include <support/images.h>
#include <support/qtPrinters.h>

#include <QPainterPath>
#include <QTemporaryDir>
#include <cstdio>
#include <gtest/gtest.h>
#include <tarnflow/cGraph.h>
#include <tarnimg/imagePortGroups.h>

namespace {

/** Measures images: a number, a pair of numbers, and a text type that no form is known for. */
class cMeasuringStation : public cStation {
public:
    cMeasuringStation() : m_group(this, &cMeasuringStation::process, QStringLiteral("img")) {}
    ~cMeasuringStation() override { stop(); }

private:
    void process(cBufferT<cImg>* i_buffer)
    {
        const cImg& image = i_buffer->getValue();
        const double first = image.getPixel<quint8>(0, 0);
        if (first == 20)
            throw std::runtime_error("20 is not measured");
        m_first.send(first / 4, i_buffer->getStamp());
        m_size.send({int(image.getWidth()), int(image.getHeight())}, i_buffer->getStamp());
        m_img.send(image, i_buffer->getStamp());
    }
    cPortGroup<cImg> m_group;
    cOPort<cImg> m_img {this, QStringLiteral("img"), defaultPoolSize<cImg>};
    cOPort<double> m_first {this, QStringLiteral("first"), defaultPoolSize<double>};
    cOPort<QVector<int>> m_size {this, QStringLiteral("size"), defaultPoolSize<QVector<int>>};
};

/** Adds a number that it needs for every image. */
class cNeedyStation : public cStation {
public:
    cNeedyStation() : m_group(this, &cNeedyStation::process, QStringLiteral("img"), QStringLiteral("number"))
    {
    }
    ~cNeedyStation() override { stop(); }

private:
    void process()
    {
        m_sum.send(m_group.getValue<0>().getPixel<quint8>(0, 0) + m_group.getValue<1>(), m_group.getStamp());
    }
    cPortGroup<cImg, int> m_group;
    cOPort<int> m_sum {this, QStringLiteral("sum"), defaultPoolSize<int>};
};

class valueStations : public testing::Test {
protected:
    static void SetUpTestSuite()
    {
        guiApplication();
        host::registerFileFormats();
        host::registerStations();
        cStation::registercStation(
            QStringLiteral("test/measure"), []() -> cStation* { return new cMeasuringStation; });
        cStation::registercStation(
            QStringLiteral("test/needy"), []() -> cStation* { return new cNeedyStation; });
    }

    /** Images of one grey value each. */
    void writeImages(std::initializer_list<int> i_greys)
    {
        int index = 0;
        for (const int grey : i_greys)
            host::writeImage(m_folder.filePath(QStringLiteral("f%1.png").arg(index++)),
                makeImage<quint8>(cImgType::UInt8, {{quint8(grey), quint8(grey)}}));
    }
    QString writeLines(const QByteArray& i_text)
    {
        QFile file(m_folder.filePath(QStringLiteral("v.jsonl")));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(i_text);
        return file.fileName();
    }

    /** Runs a graph, "@" being the folder; what it prints into @/out.jsonl, without the folder. */
    QByteArray run(const QByteArray& i_graph, EExit i_exit = EExit::Good, qint64 i_limit = 0)
    {
        const QString text = QString::fromUtf8(i_graph).replace(u'@', m_folder.path());
        QFile::remove(m_folder.filePath(QStringLiteral("out.jsonl")));
        cGraph graph;
        cPipelineBuilder builder(graph, {});
        builder.setLimit(i_limit);
        const bool built = builder.build(host::parsePipeline(text, QStringLiteral("g")).pipeline);
        m_messages.clear();
        for (const cDiagnostic& error : builder.getErrors())
            m_messages += error.toString().remove(m_folder.path() + u'/').toUtf8() + '\n';
        if (!built) {
            EXPECT_EQ(i_exit, EExit::BadUsage) << m_messages.constData();
            return {};
        }
        std::FILE* file = std::tmpfile();
        cConsole console(file, false);
        EXPECT_EQ(cRunner(graph, {}, console).run([] { return 0; }), i_exit);
        m_messages.resize(int(std::ftell(file)));
        std::rewind(file);
        EXPECT_EQ(std::fread(m_messages.data(), 1, std::size_t(m_messages.size()), file),
            std::size_t(m_messages.size()));
        std::fclose(file);
        QFile out(m_folder.filePath(QStringLiteral("out.jsonl")));
        return out.open(QIODevice::ReadOnly)
            ? out.readAll().replace(m_folder.path().toUtf8() + '/', QByteArray())
            : QByteArray();
    }

    QTemporaryDir m_folder;
    QByteArray m_messages; ///< errors of the build, or what the run said
};

} // namespace

// ---- print ----

TEST_F(valueStations, PrintWritesTheValuesOfAnOutputWithStampFileAndPort)
{
    writeImages({10, 11});
    EXPECT_EQ(run("files @ ! measure name=m   m.first ! print @/out.jsonl"),
        QByteArray("{\"stamp\":0,\"file\":\"f0.png\",\"port\":\"m.first\",\"value\":2.5}\n"
                   "{\"stamp\":1,\"file\":\"f1.png\",\"port\":\"m.first\",\"value\":2.75}\n"));
}

TEST_F(valueStations, PrintTakesSeveralLinksAndKeepsTheOrderOfStampsAndLinks)
{
    std::initializer_list<int> greys = {10, 11, 12, 13, 14, 15, 16, 17, 18, 19};
    writeImages(greys);
    const QByteArray text = run("files @ name=f ! measure name=m   f. ! measure name=n\n"
                                "print @/out.jsonl name=p\n"
                                "n.size ! p.  m.first ! p.  m.size ! p.");
    QByteArray expected;
    int stamp = 0;
    for (const int grey : greys) {
        const QByteArray begin = "{\"stamp\":" + QByteArray::number(stamp) + ",\"file\":\"f"
            + QByteArray::number(stamp) + ".png\",\"port\":";
        expected += begin + "\"n.size\",\"value\":[2,1]}\n" + begin + "\"m.first\",\"value\":"
            + QByteArray::number(grey / 4.0) + "}\n" + begin + "\"m.size\",\"value\":[2,1]}\n";
        ++stamp;
    }
    EXPECT_EQ(text, expected);
}

TEST_F(valueStations, PrintTakesTheFirstOutputThatIsNoImage)
{
    writeImages({10});
    EXPECT_EQ(run("files @ ! measure name=m ! print @/out.jsonl"),
        QByteArray("{\"stamp\":0,\"file\":\"f0.png\",\"port\":\"m.first\",\"value\":2.5}\n"));
}

TEST_F(valueStations, PrintLeavesOutFramesThatFailed)
{
    writeImages({10, 20, 30});
    const QByteArray text = run("files @ ! measure name=m   m.first ! print @/out.jsonl", EExit::SomeFailed);
    EXPECT_EQ(text,
        QByteArray("{\"stamp\":0,\"file\":\"f0.png\",\"port\":\"m.first\",\"value\":2.5}\n"
                   "{\"stamp\":2,\"file\":\"f2.png\",\"port\":\"m.first\",\"value\":7.5}\n"));
}

TEST_F(valueStations, PrintRefusesImagesAndNamesSave)
{
    writeImages({10});
    run("files @ name=f ! print", EExit::BadUsage);
    EXPECT_TRUE(m_messages.endsWith("error: print1: takes values, not images: outputs of f: img (image)\n"
                                    "  help: write images with 'save', as in: f. ! save out/{stem}.png\n"))
        << m_messages.constData();
    run("files @ ! measure name=m   m.img ! print", EExit::BadUsage);
    EXPECT_TRUE(
        m_messages.endsWith("error: print1: takes values, not images: outputs of m: img (image), first "
                            "(double), size (QVector<int>)\n"
                            "  help: write images with 'save', as in: m. ! save out/{stem}.png\n"))
        << m_messages.constData();
}

TEST_F(valueStations, PrintSaysWhatIsWrongWithItsFile)
{
    writeImages({10});
    run("print", EExit::BadUsage);
    EXPECT_EQ(m_messages,
        QByteArray("g:1:1: error: print1: is linked with nothing\n"
                   "  help: link an output that gives values with it, as in: m.mean ! print\n"));
    run("files @ ! measure name=m   m.first ! print @", EExit::BadUsage);
    EXPECT_TRUE(m_messages.endsWith("error: print1.path: expected a file, found the folder '"
        + m_folder.path().toUtf8() + "'\n  help: put a name behind it, such as values.jsonl\n"))
        << m_messages.constData();
    run("files @ ! measure name=m   m.first ! print @/out.jsonl name=a   m.size ! print @/out.jsonl name=b",
        EExit::BadUsage);
    EXPECT_TRUE(m_messages.contains("error: a.path: 'out.jsonl' is written by b too\n"
                                    "  help: link all values with one of the two\n"))
        << m_messages.constData();
}

TEST_F(valueStations, AFileThatCannotBeWrittenFailsTheRunAndIsNamedOnce)
{
    writeImages({10, 11, 12});
    run("files @ ! measure name=m   m.first ! print /dev/full", EExit::SomeFailed);
    EXPECT_EQ(m_messages.count("/dev/full: "), 1) << m_messages.constData();
    EXPECT_TRUE(m_messages.contains("print1: /dev/full: ")) << m_messages.constData();
}

TEST_F(valueStations, PrintWorksAtAndInsideASubgraph)
{
    writeImages({10});
    EXPECT_EQ(run("graph g {\n in.img ! measure name=m\n m.first ! out.first\n}\n"
                  "files @ ! g.img\ng.first ! print @/out.jsonl"),
        QByteArray("{\"stamp\":0,\"file\":\"f0.png\",\"port\":\"g.first\",\"value\":2.5}\n"));
    EXPECT_EQ(run("graph g {\n in.img ! measure name=m ! print @/out.jsonl\n}\nfiles @ ! g.img"),
        QByteArray("{\"stamp\":0,\"file\":\"f0.png\",\"port\":\"g/m.first\",\"value\":2.5}\n"));
}

// ---- constant ----

TEST_F(valueStations, AConstantIsThereForEveryFrame)
{
    writeImages({10, 11, 12});
    EXPECT_EQ(run("constant 2 ! m.   files @ ! multiplyConstant name=m ! measure name=s   s.first ! print "
                  "@/out.jsonl",
                  EExit::SomeFailed),
        QByteArray("{\"stamp\":1,\"file\":\"f1.png\",\"port\":\"s.first\",\"value\":5.5}\n"
                   "{\"stamp\":2,\"file\":\"f2.png\",\"port\":\"s.first\",\"value\":6}\n"))
        << "20 fails in the test's station, and only that";
}

TEST_F(valueStations, AnInputThatNeedsAValueForEachFrameGetsOne)
{
    writeImages({10, 11, 12});
    EXPECT_EQ(run("constant 5 ! n.number   files @ ! n.img   needy name=n ! print @/out.jsonl"),
        QByteArray("{\"stamp\":0,\"file\":\"f0.png\",\"port\":\"n.sum\",\"value\":15}\n"
                   "{\"stamp\":1,\"file\":\"f1.png\",\"port\":\"n.sum\",\"value\":16}\n"
                   "{\"stamp\":2,\"file\":\"f2.png\",\"port\":\"n.sum\",\"value\":17}\n"));
    EXPECT_FALSE(m_messages.contains("waiting")) << m_messages.constData();
}

TEST_F(valueStations, OneConstantServesInputsOfSeveralTypes)
{
    writeImages({10, 11});
    EXPECT_EQ(run("constant 5 name=c   c. ! n.number   c. ! a.value\n"
                  "files @ ! addConstant name=a ! needy name=n ! print @/out.jsonl"),
        QByteArray("{\"stamp\":0,\"file\":\"f0.png\",\"port\":\"n.sum\",\"value\":20}\n"
                   "{\"stamp\":1,\"file\":\"f1.png\",\"port\":\"n.sum\",\"value\":21}\n"));
}

TEST_F(valueStations, AConstantOfTheWrongTypeIsRefusedAtItsPlace)
{
    writeImages({10});
    run("files @ ! n.img   constant abc ! n.   needy name=n ! print", EExit::BadUsage);
    EXPECT_TRUE(m_messages.contains("error: constant1.value: expected an integer")) << m_messages.constData();
    EXPECT_TRUE(m_messages.contains("found \"abc\"")) << m_messages.constData();
}

TEST_F(valueStations, AConstantFindsOnlyInputsThatTakeValues)
{
    writeImages({10});
    run("constant 5 ! abs ! save @/x.png", EExit::BadUsage);
    EXPECT_TRUE(m_messages.contains("constant1: no free input of abs1 takes a value: inputs img (image)\n"
                                    "  help: name an input that takes a value, and is free"))
        << m_messages.constData();
    run("constant 5 ! a.img   abs name=a ! save @/x.png", EExit::BadUsage);
    EXPECT_TRUE(m_messages.contains("constant1: a.img takes no value, it takes image: SInt16"))
        << m_messages.constData();
    run("constant 5 ! print", EExit::BadUsage);
    EXPECT_TRUE(m_messages.contains("no free input of print1 takes a value: inputs none\n"
                                    "  help: the type of a value comes from the input"))
        << m_messages.constData();
    run("constant 5", EExit::BadUsage);
    EXPECT_TRUE(m_messages.contains("constant1: is linked with nothing\n  help: link it with the input"))
        << m_messages.constData();
}

TEST_F(valueStations, AConstantGoesIntoASubgraph)
{
    writeImages({10, 11});
    EXPECT_EQ(run("graph g {\n in.img ! n.img\n in.number ! n.number\n needy name=n ! out.sum\n}\n"
                  "files @ ! g.img\nconstant 5 ! g.number\ng.sum ! print @/out.jsonl"),
        QByteArray("{\"stamp\":0,\"file\":\"f0.png\",\"port\":\"g.sum\",\"value\":15}\n"
                   "{\"stamp\":1,\"file\":\"f1.png\",\"port\":\"g.sum\",\"value\":16}\n"));
}

// ---- values ----

TEST_F(valueStations, ALineBelongsToTheFrameOfItsStamp)
{
    writeImages({10, 11, 12, 13});
    writeLines("{\"stamp\":1,\"value\":2}\n{\"stamp\":3,\"value\":3}\n");
    EXPECT_EQ(run("values @/v.jsonl ! m.   files @ ! multiplyConstant name=m ! measure name=s   s.first ! "
                  "print @/out.jsonl"),
        QByteArray("{\"stamp\":0,\"file\":\"f0.png\",\"port\":\"s.first\",\"value\":2.5}\n"
                   "{\"stamp\":1,\"file\":\"f1.png\",\"port\":\"s.first\",\"value\":5.5}\n"
                   "{\"stamp\":2,\"file\":\"f2.png\",\"port\":\"s.first\",\"value\":6}\n"
                   "{\"stamp\":3,\"file\":\"f3.png\",\"port\":\"s.first\",\"value\":9.75}\n"));
    EXPECT_FALSE(m_messages.contains("unseen")) << m_messages.constData();
}

TEST_F(valueStations, WhatPrintWroteIsReadAgain)
{
    writeImages({10, 11});
    const QByteArray printed
        = run("files @ ! measure name=m   print @/out.jsonl name=p   m.first ! p.   m.size ! p.");
    writeLines(printed);
    EXPECT_EQ(run("values @/v.jsonl port=m.first ! a.   files @ ! addConstant name=a ! measure name=s   "
                  "s.first ! print @/out.jsonl"),
        QByteArray("{\"stamp\":0,\"file\":\"f0.png\",\"port\":\"s.first\",\"value\":3}\n"
                   "{\"stamp\":1,\"file\":\"f1.png\",\"port\":\"s.first\",\"value\":3.25}\n"));
}

TEST_F(valueStations, FramesWithoutAValueAreDroppedWhereEachNeedsOne)
{
    writeImages({10, 11, 12});
    writeLines("{\"stamp\":1,\"value\":5}\n");
    EXPECT_EQ(run("values @/v.jsonl ! n.number   files @ ! n.img   needy name=n ! print @/out.jsonl"),
        QByteArray("{\"stamp\":1,\"file\":\"f1.png\",\"port\":\"n.sum\",\"value\":16}\n"));
    EXPECT_TRUE(m_messages.contains("incomplete")) << m_messages.constData();
}

TEST_F(valueStations, ValuesBeyondTheFramesAreCountedAsUnused)
{
    writeImages({10});
    writeLines("1\n2\n3\n");
    EXPECT_EQ(run("values @/v.jsonl ! a.   files @ ! addConstant name=a ! measure name=s   s.first ! print "
                  "@/out.jsonl"),
        QByteArray("{\"stamp\":0,\"file\":\"f0.png\",\"port\":\"s.first\",\"value\":2.75}\n"));
    EXPECT_TRUE(m_messages.contains("incomplete")) << m_messages.constData();
}

TEST_F(valueStations, ALimitHoldsForValuesToo)
{
    writeImages({10, 11});
    writeLines("1\n2\n");
    EXPECT_EQ(run("values @/v.jsonl ! a.   files @ ! addConstant name=a ! measure name=s   s.first ! print "
                  "@/out.jsonl",
                  EExit::Good, 1),
        QByteArray("{\"stamp\":0,\"file\":\"f0.png\",\"port\":\"s.first\",\"value\":2.75}\n"));
    EXPECT_FALSE(m_messages.contains("incomplete")) << m_messages.constData();
}

TEST_F(valueStations, ManyFramesPassWithoutAHang)
{
    writeImages({10});
    QByteArray lines;
    for (int i = 0; i < 3000; i += 3)
        lines += "{\"stamp\":" + QByteArray::number(i) + ",\"value\":" + QByteArray::number(i % 7) + "}\n";
    writeLines(lines);
    const QByteArray text = run("values @/v.jsonl ! a.   constant 0 ! b.\n"
                                "files @/f0.png repeat=3000 ! addConstant name=a ! subtractConstant name=b ! "
                                "measure name=s   s.first ! print @/out.jsonl");
    EXPECT_EQ(text.count('\n'), 3000);
    EXPECT_TRUE(text.contains("\"stamp\":2998,")) << text.right(200).constData();
}

TEST_F(valueStations, ABadLineIsRefusedWithItsPlaceBeforeTheRun)
{
    writeImages({10});
    writeLines("1\n\"x\"\n");
    run("values @/v.jsonl ! a.   files @ ! addConstant name=a ! save @/x.tif", EExit::BadUsage);
    EXPECT_EQ(m_messages,
        QByteArray(
            "g:1:8: error: values1.path: v.jsonl:2:1: expected a number, \"nan\", \"inf\" or \"-inf\", "
            "found \"x\"\n"));
    run("values ! a.   files @ ! addConstant name=a ! save @/x.tif", EExit::BadUsage);
    EXPECT_EQ(m_messages,
        QByteArray("g:1:1: error: values1.path: no file is named, expected a path such as values.jsonl\n"));
    run("files @ ! measure name=m   m.first ! print @/v.jsonl   values @/v.jsonl ! a.   m.img ! a.img   "
        "addConstant name=a ! save @/x.tif",
        EExit::BadUsage);
    EXPECT_TRUE(m_messages.contains("print1.path: 'v.jsonl' is read by values1 and is not written over\n"))
        << m_messages.constData();
}
