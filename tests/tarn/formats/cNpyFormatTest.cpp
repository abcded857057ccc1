// Arrays as others write them, and what of them is refused.

#include "FormatsTest.h"

#include <formats/cNpyFormat.h>

#include <QtEndian>

namespace {

using npyFormat = FormatsTest;

/** A file with this dictionary, unpadded, of version 1.0. */
QByteArray npy(const QByteArray& i_dictionary, const QByteArray& i_bytes)
{
    return QByteArray("\x93NUMPY\x01\x00", 8) + char(i_dictionary.size() & 255)
        + char(i_dictionary.size() >> 8) + i_dictionary + i_bytes;
}

QByteArray array(const char* i_type, const char* i_shape, const QByteArray& i_bytes)
{
    return npy(
        QByteArray("{'descr': ") + i_type + ", 'fortran_order': False, 'shape': " + i_shape + ", }", i_bytes);
}

cImg decodeNpy(const QByteArray& i_bytes) { return decode(cNpyFormat(), i_bytes); }

std::string refusal(const QByteArray& i_bytes)
{
    return messageOf([&] { decodeNpy(i_bytes); });
}

TEST_F(npyFormat, HasThisForm)
{
    const QByteArray bytes = encode(cNpyFormat(), makeImage<quint16>(cImgType::UInt16, {{1, 2, 0x1234}}));
    QByteArray dictionary = "{'descr': '<u2', 'fortran_order': False, 'shape': (1, 3), }";
    dictionary = dictionary.leftJustified(128 - 10 - 1, ' ') + '\n';
    EXPECT_EQ(bytes,
        QByteArray("\x93NUMPY\x01\x00\x76\x00", 10) + dictionary + QByteArray("\x01\0\x02\0\x34\x12", 6));
}

TEST_F(npyFormat, TellsAllPixelTypesApart)
{
    struct Row {
        cImgType::ImageTypes type;
        unsigned channels;
        const char* text;
    };
    const Row rows[] = {
        {cImgType::UInt8, 1, "'|u1', 'fortran_order': False, 'shape': (2, 3),"},
        {cImgType::UInt8, 2, "'|u1', 'fortran_order': False, 'shape': (2, 3, 2),"},
        {cImgType::RGB24, 3, "'|u1', 'fortran_order': False, 'shape': (2, 3, 3),"},
        {cImgType::RGB32, 4, "'|u1', 'fortran_order': False, 'shape': (2, 3, 4),"},
        {cImgType::SInt8, 3, "'|i1', 'fortran_order': False, 'shape': (2, 3, 3),"},
        {cImgType::SInt64, 1, "'<i8', 'fortran_order': False, 'shape': (2, 3),"},
        {cImgType::Float64, 5, "'<f8', 'fortran_order': False, 'shape': (2, 3, 5),"},
        {cImgType::Complex, 2, "'<c8', 'fortran_order': False, 'shape': (2, 3),"},
        {cImgType::Gradient16, 2, "[('dx', '<i2'), ('dy', '<i2')], 'fortran_order': False, 'shape': (2, 3),"},
        {cImgType::Gradient32, 2, "[('dx', '<i4'), ('dy', '<i4')], 'fortran_order': False, 'shape': (2, 3),"},
    };
    for (const Row& row : rows)
        EXPECT_TRUE(encode(cNpyFormat(), makeRandomImage(row.type, 3, 2, row.channels)).contains(row.text))
            << row.text;
}

TEST_F(npyFormat, EitherByteOrderIsRead)
{
    const cImg expected = makeImage<quint16>(cImgType::UInt16, {{1, 0x0203}});
    EXPECT_TRUE(samePixels(decodeNpy(array("'<u2'", "(1, 2)", QByteArray("\x01\0\x03\x02", 4))), expected));
    EXPECT_TRUE(samePixels(decodeNpy(array("'>u2'", "(1, 2)", QByteArray("\0\x01\x02\x03", 4))), expected));
    QByteArray numbers(16, '\0');
    qToBigEndian<double>(-2.5, numbers.data());
    qToBigEndian<double>(1e300, numbers.data() + 8);
    EXPECT_TRUE(samePixels(
        decodeNpy(array("'>f8'", "(1, 2)", numbers)), makeImage<double>(cImgType::Float64, {{-2.5, 1e300}})));
    QByteArray pair(8, '\0');
    qToBigEndian<float>(0.5f, pair.data());
    qToBigEndian<float>(-3.0f, pair.data() + 4);
    EXPECT_TRUE(samePixels(
        decodeNpy(array("'>c8'", "(1, 1)", pair)), makeImage<float>(cImgType::Complex, {{0.5f, -3.0f}})));
    EXPECT_TRUE(samePixels(
        decodeNpy(array("[('dx', '>i2'), ('dy', '>i2')]", "(1, 1)", QByteArray("\0\x05\xff\xfe", 4))),
        makeImage<qint16>(cImgType::Gradient16, {{5, -2}})));
}

TEST_F(npyFormat, ColumnByColumnIsTurnedRound)
{
    // Sizes on both sides of a block.
    for (const unsigned width : {1u, 3u, 64u, 130u})
        for (const auto type : {cImgType::SInt8, cImgType::UInt16, cImgType::Float32, cImgType::Float64}) {
            const cImg expected = makeRandomImage(type, width, 67, 2);
            const unsigned size = expected.getImgType().getChannelPixelSize();
            QByteArray columns;
            for (unsigned channel = 0; channel < 2; ++channel)
                for (unsigned x = 0; x < width; ++x)
                    for (unsigned y = 0; y < 67; ++y)
                        columns.append(reinterpret_cast<const char*>(
                                           expected.getRow<unsigned char>(y) + (2 * x + channel) * size),
                            int(size));
            const char* types[] = {"|i1", "<u2", "<f4", "<f8"};
            const QByteArray name = type == cImgType::SInt8 ? types[0]
                : type == cImgType::UInt16                  ? types[1]
                : type == cImgType::Float32                 ? types[2]
                                                            : types[3];
            const QByteArray bytes = npy("{'descr': '" + name + "', 'fortran_order': True, 'shape': (67, "
                    + QByteArray::number(width) + ", 2)}",
                columns);
            EXPECT_TRUE(samePixels(decodeNpy(bytes), expected)) << width << " " << name.toStdString();
        }
}

TEST_F(npyFormat, DictionariesOfAnyLayoutAreUnderstood)
{
    const cImg expected = makeImage<quint8>(cImgType::UInt8, {{7, 8}});
    for (const char* dictionary : {
             "{'descr':'|u1','fortran_order':False,'shape':(1,2)}",
             "{ \"shape\" : ( 1 , 2 , ) ,\n\t'fortran_order' : False , 'descr' : 'u1' , }\n",
             "{'descr': '|u1', 'fortran_order': False, 'shape': (1L, 2L), }",
             "{'descr': '=u1', 'fortran_order': False, 'shape': (1, 2, 1), }",
         })
        EXPECT_TRUE(samePixels(decodeNpy(npy(dictionary, "\x07\x08")), expected)) << dictionary;
    const QByteArray dictionary = "{'descr': '|u1', 'fortran_order': False, 'shape': (1, 2), }";
    for (const char version : {'\x02', '\x03'})
        EXPECT_TRUE(samePixels(decodeNpy(QByteArray("\x93NUMPY", 6) + version + '\0' + char(dictionary.size())
                                   + QByteArray(3, '\0') + dictionary + "\x07\x08"),
            expected));
}

TEST_F(npyFormat, TruthsBecomeBlackAndWhite)
{
    EXPECT_TRUE(samePixels(decodeNpy(array("'|b1'", "(1, 3)", QByteArray("\x01\x00\x01", 3))),
        makeImage<quint8>(cImgType::UInt8, {{255, 0, 255}})));
}

TEST_F(npyFormat, WhatIsNoImageIsRefusedWithTheReason)
{
    const QByteArray bytes(64, '\0');
    const std::pair<QByteArray, const char*> rows[] = {
        {array("'<f2'", "(2, 2)", bytes), "NPY: no pixel type has elements '<f2'"},
        {array("'<u8'", "(2, 2)", bytes), "NPY: no pixel type has elements '<u8'"},
        {array("'<c16'", "(2, 2)", bytes), "NPY: no pixel type has elements '<c16'"},
        {array("'|O'", "(2, 2)", bytes), "NPY: no pixel type has elements '|O'"},
        {array("[('x', '<i2'), ('y', '<i2')]", "(2, 2)", bytes),
            "NPY: no pixel type has elements [('x', '<i2'), ('y', '<i2')]"},
        {array("[('dx', '<i2'), ('dy', '>i2')]", "(2, 2)", bytes),
            "NPY: fields of different byte order are not supported"},
        {array("[('dx', '<i2', (2,)), ('dy', '<i2')]", "(2, 2)", bytes),
            "NPY: fields that are arrays or records themselves are not supported"},
        {array("[]", "(2, 2)", bytes), "NPY: no pixel type has elements []"},
        {array("'<f4'", "(4,)", bytes),
            "NPY: an image of '<f4' has the shape (height, width) or (height, width, channels), found (4,)"},
        {array("'<f4'", "()", bytes),
            "NPY: an image of '<f4' has the shape (height, width) or (height, width, channels), found ()"},
        {array("'<f4'", "(1, 2, 2, 2)", bytes),
            "NPY: an image of '<f4' has the shape (height, width) or (height, width, channels), found (1, 2, "
            "2, 2)"},
        {array("'<c8'", "(2, 2, 2)", bytes),
            "NPY: an image of '<c8' has the shape (height, width), found (2, 2, 2)"},
        {array("'<f4'", "(2, 0)", bytes), "the image is empty (0x2)"},
        {array("'<f4'", "(2, 2, 0)", bytes), "NPY: the shape (2, 2, 0) has too few or too many channels"},
        {array("'<f4'", "(2, -2)", bytes), "NPY: the header is damaged at its byte 54, expected a number"},
        {array("'<f4'", "(1, 17)", bytes), "the file ends too early: 64 bytes of pixels, expected 68"},
        {npy("{'descr': '|u1', 'shape': (1, 2)}", bytes),
            "NPY: the header lacks one of descr, fortran_order and shape"},
        {npy("{'descr': '|u1', 'colour': True}", bytes),
            "NPY: unknown entry in the header, expected descr, fortran_order and shape, found 'colour'"},
        {npy("{'descr': '|u1", bytes), "NPY: the header is damaged at its byte 11, expected a closing quote"},
        {npy("", bytes), "NPY: the header is damaged at its byte 0, expected '{'"},
        {QByteArray("\x93NUMPY\x04\x00", 8) + bytes, "NPY: version 4 is not supported, expected 1 to 3"},
        {QByteArray("\x93NUMPY\x01\x00\xff\xff{", 11), "NPY: the file ends within the header"},
        {QByteArray("\x93NUMPY\x02\x00\x05\x00", 10), "NPY: the file ends within the header"},
    };
    for (const auto& [file, message] : rows)
        EXPECT_EQ(refusal(file), message);
}

TEST_F(npyFormat, SizesBeyondMeasureTakeNoMemory)
{
    for (const char* shape : {"(4294967296, 4294967296)", "(65536, 65536)", "(18446744073709551615, 2)",
             "(1, 1, 536870911)", "(2000000000, 1)", "(1, 1, 18446744073709551615)"})
        EXPECT_NE(refusal(array("'<f8'", shape, "ab")), "no failure") << shape;
    EXPECT_EQ(refusal(array("'<f8'", "(99999999999999999999, 2)", "ab")),
        "NPY: the header is damaged at its byte 71, expected a number");
}

} // namespace
