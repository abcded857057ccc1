#pragma once

#include <cFileFormat.h>
#include <support/guiApplication.h>
#include <support/images.h>
#include <support/messageOf.h>
#include <support/qtPrinters.h>

#include <QBuffer>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

/** The registered formats, and a folder of files for each test. */
class FormatsTest : public testing::Test {
protected:
    void SetUp() override
    {
        guiApplication();
        host::registerFileFormats();
        ASSERT_TRUE(m_folder.isValid());
    }
    QString path(const char* i_name) const { return m_folder.filePath(QString::fromUtf8(i_name)); }
    void writeBytes(const char* i_name, const QByteArray& i_bytes) const
    {
        QFile file(path(i_name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        ASSERT_EQ(file.write(i_bytes), i_bytes.size());
    }
    QByteArray bytesOf(const char* i_name) const
    {
        QFile file(path(i_name));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }
    cImg read(const char* i_name) const { return host::readImage(path(i_name)); }

    QTemporaryDir m_folder;
};

inline const cFileFormat* formatOf(const char* i_name)
{
    for (const cImgIO* handler : cImgIO::getImgIOSet())
        if (handler->getName() == QLatin1String(i_name))
            return dynamic_cast<const cFileFormat*>(handler);
    return nullptr;
}

/** From memory of exactly this length, so that reading past its end is an error that the sanitizers see. */
inline cImg decode(const cFileFormat& i_format, const QByteArray& i_bytes)
{
    const auto* data = reinterpret_cast<const unsigned char*>(i_bytes.constData());
    const std::vector<unsigned char> exact(data, data + i_bytes.size());
    return i_format.decode(exact.data(), exact.size());
}

inline QByteArray encode(const cFileFormat& i_format, const cImg& i_image)
{
    QBuffer buffer;
    buffer.open(QIODevice::ReadWrite);
    i_format.write(buffer, i_image);
    return buffer.data();
}
