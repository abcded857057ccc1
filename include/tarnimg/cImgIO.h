#pragma once

#include <tarnimg/cImg.h>
#include <tarnimg/export.h>

#include <QFlags>
#include <QSet>
#include <QSharedPointer>
#include <QString>
#include <QStringList>

/**
 * Reads and writes image files of one format.
 *
 * Other libraries derive handlers and register them while they are loaded; this one registers none. The
 * operations of this class itself go through `QImage`, so that a handler can forward to them.
 */
class TARNIMG_EXPORT cImgIO {
public:
    enum EFileIOFlag { Read = 1, Write = 2 };
    Q_DECLARE_FLAGS(FileIOFlags, EFileIOFlag)

    virtual ~cImgIO();

    /** Loads any format that `QImage` knows; the parameters do not count. */
    virtual cImg openImg(const QString& i_path, const cMapObj& i_params);
    /** The void image, unless a handler can do better. */
    virtual cImg openImgFromMemory(const char* i_data, unsigned i_size, const cMapObj& i_params);
    /**
     * Saves through `QImage` in the format of the suffix, or as BMP without one. Other types than `RGB32`,
     * `RGB24` and `UInt8` are converted to 8 bits, which is told on the standard trace.
     */
    virtual bool writeImg(const QString& i_path, const cImg& i_image, const cObj* i_params);
    /** A new handler of this class, which the caller owns. */
    virtual cImgIO* clone() const = 0;

    const QString& getName() const { return m_name; }
    /** The patterns of the extensions, as a file dialog takes them. */
    QString getFilter() const { return m_filter; }
    QFlags<EFileIOFlag> getFlags() const { return m_flags; }

    /** The handler must live until the end of the process. */
    static bool registerFileIO(cImgIO* i_handler);
    static QSet<cImgIO*>& getImgIOSet();
    /**
     * A clone of a handler whose filter contains the extension of the path (in lower case) anywhere in its
     * text; the first in hash order, null if there is none.
     */
    static QSharedPointer<cImgIO> findReadHandler(const QString& i_path);
    static QSharedPointer<cImgIO> findSaveHandler(const QString& i_path);
    /**
     * The filter text of a file dialog: the handlers with one of the flags, then the additional entries, each
     * of the form "filter;name". For reading there are entries for all known files and for all files besides.
     */
    static QString getDlgFilterStrings(QFlags<EFileIOFlag> i_flags, const QStringList& i_additional);

protected:
    /** @param i_name what a file dialog shows */
    cImgIO(const QString& i_name, const QString& i_filter, QFlags<EFileIOFlag> i_flags);

private:
    QString m_name;
    QString m_filter;
    QFlags<EFileIOFlag> m_flags;
};

Q_DECLARE_OPERATORS_FOR_FLAGS(cImgIO::FileIOFlags)
