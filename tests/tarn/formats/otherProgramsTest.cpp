// Programs that know nothing of us read our files, and write files for us.

#include "FormatsTest.h"

#include <formats/cNpyFormat.h>

#include <QProcess>

namespace {

class otherPrograms : public FormatsTest {
protected:
    /** What a program writes; a failure of the test if it fails. */
    QByteArray run(const char* i_program, const QStringList& i_words) const
    {
        QProcess process;
        process.setWorkingDirectory(m_folder.path());
        process.start(QString::fromUtf8(i_program), i_words);
        const bool ended = process.waitForFinished(120000);
        const QByteArray errors = process.readAllStandardError();
        EXPECT_TRUE(ended && process.exitStatus() == QProcess::NormalExit && process.exitCode() == 0)
            << i_program << ": " << errors.toStdString();
        return process.readAllStandardOutput();
    }
    QByteArray python(const char* i_code) const
    {
        return run(TARN_PYTHON, {QStringLiteral("-c"), QString::fromUtf8(i_code)});
    }
};

TEST_F(otherPrograms, NumpyReadsEveryPixelTypeToTheBit)
{
    // Each file beside its pixels as bare bytes in C order, its type and its shape.
    QByteArray list;
    for (int type = cImgType::RGB24; type <= cImgType::Complex; ++type)
        for (const unsigned channels : {1u, 2u, 5u}) {
            const cImg image = makeRandomImage(cImgType::ImageTypes(type), 7, 5, channels, unsigned(type));
            const QByteArray name
                = image.getImgType().getName().toLatin1() + QByteArray::number(image.getNumChannels());
            host::writeImage(path(name + ".npy"), image);
            QByteArray bytes;
            for (unsigned y = 0; y < 5; ++y)
                bytes.append(reinterpret_cast<const char*>(image.getRow<char>(y)), int(image.getYPitch()));
            writeBytes(name + ".raw", bytes);
            static const char* const s_dtypes[] = {"", "u1", "u1", "u1", "u2", "u4", "i1", "i2", "i4", "i8",
                "f4", "f8", "[('dx','<i2'),('dy','<i2')]", "[('dx','<i4'),('dy','<i4')]", "c8"};
            const bool pairs = type >= cImgType::Gradient16;
            const unsigned last = pairs ? 1 : image.getNumChannels();
            list += name + ' ' + s_dtypes[type] + " (5,7"
                + (last > 1 ? ',' + QByteArray::number(last) : QByteArray()) + ")\n";
        }
    writeBytes("list", list);
    const QByteArray result
        = python("import ast, numpy as np\n"
                 "n = 0\n"
                 "for line in open('list'):\n"
                 "    name, dtype, shape = line.split()\n"
                 "    a = np.load(name + '.npy')\n"
                 "    want = np.dtype(ast.literal_eval(dtype) if dtype[0] == '[' else dtype)\n"
                 "    assert a.dtype == want, (name, a.dtype)\n"
                 "    assert a.shape == ast.literal_eval(shape), (name, a.shape)\n"
                 "    assert a.tobytes() == open(name + '.raw', 'rb').read(), name\n"
                 "    n += 1\n"
                 "print(n)\n");
    EXPECT_EQ(result, "42\n");
}

TEST_F(otherPrograms, WhatNumpyWritesIsReadToTheBit)
{
    python("import numpy as np\n"
           "r = np.random.default_rng(1)\n"
           "a = r.integers(0, 65536, (9, 13, 3)).astype('<u2')\n"
           "np.save('c.npy', a)\n"
           "np.save('f.npy', np.asfortranarray(a))\n"
           "np.save('b.npy', a.astype('>u2'))\n"
           "np.save('v.npy', a[:, ::2])\n"
           "np.lib.format.write_array(open('two.npy', 'wb'), a, version=(2, 0))\n"
           "np.save('z.npy', (r.random((4, 6)) + 1j * r.random((4, 6))).astype('complex64').astype('>c8'))\n"
           "np.save('y.npy', np.load('z.npy').astype('<c8'))\n"
           "np.save('m.npy', np.array([[True, False]]))\n"
           "a.tofile('c.raw')\n");
    const cImg image = read("c.npy");
    ASSERT_TRUE(image.isKindOf(cImgType::UInt16));
    ASSERT_EQ(image.getNumChannels(), 3u);
    ASSERT_EQ(image.getSize(), QSize(13, 9));
    ASSERT_EQ(image.getYPitch(), 13u * 6);
    EXPECT_EQ(QByteArray(reinterpret_cast<const char*>(image.getConstData()), 9 * 13 * 6), bytesOf("c.raw"));
    for (const char* name : {"f.npy", "b.npy", "two.npy"})
        EXPECT_TRUE(samePixels(read(name), image)) << name;
    const cImg everySecond = read("v.npy");
    ASSERT_EQ(everySecond.getSize(), QSize(7, 9));
    EXPECT_EQ(everySecond.getRow<quint16>(8)[6 * 3 + 2], image.getRow<quint16>(8)[12 * 3 + 2]);
    EXPECT_TRUE(read("z.npy").isKindOf(cImgType::Complex));
    EXPECT_TRUE(samePixels(read("z.npy"), read("y.npy")));
    EXPECT_TRUE(samePixels(read("m.npy"), makeImage<quint8>(cImgType::UInt8, {{255, 0}})));
}

TEST_F(otherPrograms, LibtiffsToolsReadEveryPixelType)
{
    struct Row {
        cImgType::ImageTypes type;
        unsigned channels;
        const char* bits;
        const char* format;
    };
    const Row rows[] = {
        {cImgType::RGB24, 3, "8", nullptr},
        {cImgType::RGB32, 4, "8", nullptr},
        {cImgType::UInt8, 1, "8", nullptr},
        {cImgType::UInt16, 3, "16", nullptr},
        {cImgType::UInt32, 2, "32", nullptr},
        {cImgType::SInt8, 5, "8", "signed integer"},
        {cImgType::SInt16, 1, "16", "signed integer"},
        {cImgType::SInt32, 1, "32", "signed integer"},
        {cImgType::SInt64, 2, "64", "signed integer"},
        {cImgType::Float32, 1, "32", "IEEE floating point"},
        {cImgType::Float64, 3, "64", "IEEE floating point"},
        {cImgType::Gradient16, 2, "32", "complex signed integer"},
        {cImgType::Gradient32, 2, "64", "complex signed integer"},
        {cImgType::Complex, 2, "64", "complex IEEE floating point"},
    };
    for (const Row& row : rows) {
        const cImg image = makeRandomImage(row.type, 19, 11, row.channels);
        SCOPED_TRACE(imageSupport::structureText(image));
        host::writeImage(path("a.tif"), image);
        const QByteArray text = run(TARN_TIFFINFO, {QStringLiteral("a.tif")});
        const bool pair = row.type >= cImgType::Gradient16;
        EXPECT_TRUE(text.contains("Image Width: 19 Image Length: 11\n")) << text.toStdString();
        EXPECT_TRUE(text.contains(QByteArray("Bits/Sample: ") + row.bits + '\n')) << text.toStdString();
        EXPECT_TRUE(text.contains("Samples/Pixel: " + QByteArray::number(pair ? 1 : row.channels) + '\n'))
            << text.toStdString();
        const QByteArray format
            = row.format ? "Sample Format: " + QByteArray(row.format) + '\n' : QByteArray();
        EXPECT_TRUE(text.contains(format)) << text.toStdString();
        // Copied by them in other layouts, it is still the same to us.
        for (const char* layout : {"none", "lzw", "zip", "packbits"}) {
            run(TARN_TIFFCP,
                {QStringLiteral("-c"), QString::fromLatin1(layout), QStringLiteral("a.tif"),
                    QStringLiteral("b.tif")});
            EXPECT_TRUE(samePixels(read("b.tif"), image)) << layout;
        }
        if (!pair) {
            run(TARN_TIFFCP, {QStringLiteral("-B"), QStringLiteral("a.tif"), QStringLiteral("b.tif")});
            EXPECT_TRUE(samePixels(read("b.tif"), image));
            run(TARN_TIFFCP,
                {QStringLiteral("-t"), QStringLiteral("-w"), QStringLiteral("16"), QStringLiteral("-l"),
                    QStringLiteral("16"), QStringLiteral("a.tif"), QStringLiteral("b.tif")});
            EXPECT_TRUE(samePixels(read("b.tif"), image));
        }
        if (row.channels > 1 && row.bits == QByteArray("8")) { // the tool parts no others
            run(TARN_TIFFCP,
                {QStringLiteral("-p"), QStringLiteral("separate"), QStringLiteral("a.tif"),
                    QStringLiteral("b.tif")});
            EXPECT_TRUE(samePixels(read("b.tif"), image));
        }
    }
}

TEST_F(otherPrograms, OfAFileWithSeveralPagesTheFirstIsRead)
{
    const cImg first = makeRandomImage(cImgType::UInt8, 5, 4, 1, 1);
    host::writeImage(path("a.tif"), first);
    host::writeImage(path("b.tif"), makeRandomImage(cImgType::UInt16, 6, 3, 1, 2));
    run(TARN_TIFFCP,
        {QStringLiteral("a.tif"), QStringLiteral("b.tif"), QStringLiteral("b.tif"),
            QStringLiteral("all.tif")});
    const cImg image = read("all.tif");
    EXPECT_TRUE(samePixels(image, first));
    EXPECT_EQ(image.getNumFrames(), 3u);
    EXPECT_EQ(image.getFrameIndex(), 0u);
    EXPECT_EQ(read("a.tif").getNumFrames(), 1u);
}

} // namespace
