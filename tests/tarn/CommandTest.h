#pragma once

#include <cFileFormat.h>
#include <support/guiApplication.h>
#include <support/images.h>
#include <support/qtPrinters.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QProcessEnvironment>
#include <QTemporaryDir>
#include <gtest/gtest.h>

/** How the command ended, and what it wrote. */
struct Result {
    int exit = -1;
    QString output;
    QString errors;
};

/** A folder of files, and the command that runs in it. */
class CommandTest : public testing::Test {
protected:
    void SetUp() override
    {
        guiApplication();
        host::registerFileFormats();
        ASSERT_TRUE(m_folder.isValid());
    }

    QString path(const QString& i_name) const { return m_folder.filePath(i_name); }
    void write(const QString& i_name, const QByteArray& i_bytes) const
    {
        QDir().mkpath(QFileInfo(path(i_name)).path());
        QFile file(path(i_name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(i_bytes);
    }
    void writeFrames(
        const QString& i_folder, int i_count, cImgType::ImageTypes i_type = cImgType::UInt8) const
    {
        for (int i = 0; i < i_count; ++i)
            host::writeImage(path(QStringLiteral("%1/f%2.png").arg(i_folder).arg(i)),
                makeRandomImage(i_type, 12, 8, 1, unsigned(i)));
    }
    QStringList filesIn(const QString& i_folder) const
    {
        return QDir(path(i_folder)).entryList(QDir::Files, QDir::Name);
    }

    /** Starts the program in the test's folder. The libraries' notes on loading are no part of what is tested
     * here. */
    void start(QProcess& io_process, const QStringList& i_words) const
    {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("QT_LOGGING_RULES"), QStringLiteral("*.debug=false"));
        io_process.setProcessEnvironment(environment);
        io_process.setWorkingDirectory(m_folder.path());
        io_process.start(QStringLiteral(TARN_COMMAND), i_words);
        ASSERT_TRUE(io_process.waitForStarted());
    }
    static Result finish(QProcess& io_process)
    {
        Result result;
        if (io_process.state() != QProcess::NotRunning && !io_process.waitForFinished(120000)) {
            ADD_FAILURE() << "the program does not end";
            io_process.kill();
            io_process.waitForFinished();
        }
        result.exit = io_process.exitStatus() == QProcess::NormalExit ? io_process.exitCode() : -1;
        result.output = QString::fromUtf8(io_process.readAllStandardOutput());
        result.errors = QString::fromUtf8(io_process.readAllStandardError());
        return result;
    }
    Result tarn(const QStringList& i_words, const QByteArray& i_input = {}) const
    {
        QProcess process;
        start(process, i_words);
        process.write(i_input);
        process.closeWriteChannel();
        return finish(process);
    }
    /** The same with a text of which each blank parts two words. */
    Result tarn(const char* i_words) const { return tarn(QString::fromUtf8(i_words).split(u' ')); }
    Result run(const char* i_graph, const QStringList& i_options = {}) const
    {
        return tarn(QStringList {QStringLiteral("run"), QStringLiteral("-e"), QString::fromUtf8(i_graph)}
            + i_options);
    }

    QTemporaryDir m_folder;
};
