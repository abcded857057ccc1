#include "textForm.h"
#include "treeText.h"

#include <tarnbase/cObj.h>
#include <tarnbase/cObjIter.h>
#include <tarnbase/cTracer.h>

#include <QTextCodec>
#include <QTextStream>

namespace {

bool isBareKey(const QString& i_key)
{
    for (const QChar c : i_key) {
        const ushort code = c.unicode();
        const bool plain = (code >= 'a' && code <= 'z') || (code >= 'A' && code <= 'Z')
            || (code >= '0' && code <= '9') || code == '_' || code == '.' || code == '-';
        if (!plain)
            return false;
    }
    return !i_key.isEmpty();
}

bool isOneLine(const QString& i_text)
{
    for (const QChar c : i_text)
        if (c == QLatin1Char('\n') || c == QLatin1Char('\r'))
            return false;
    return true;
}

class TreeWriter {
public:
    treeText::Written written;

    void value(const cObj& i_object)
    {
        const QString text = i_object.toText();
        const bool isString = *i_object.getObjType().getTypeInfo() == typeid(QString);
        written.text += i_object.getTypeName() + QLatin1Char(' ') + (isString ? textForm::quote(text) : text)
            + QLatin1Char('\n');
    }

    void map(const cObj& i_map, const QString& i_path, unsigned int i_level)
    {
        written.text += QLatin1String("{\n");
        for (cObjIter entry(i_map); entry.isValid(); ++entry) {
            if (entry->getFlags().testFlag(cObj::ObjTransient))
                continue;
            const QString path
                = i_path.isEmpty() ? entry.getKey() : i_path + QLatin1Char('/') + entry.getKey();
            if (!isWritable(*entry, path, i_level + 1))
                continue;
            written.text += QString(int(4 * (i_level + 1)), QLatin1Char(' '));
            written.text += isBareKey(entry.getKey()) ? entry.getKey() : textForm::quote(entry.getKey());
            written.text += QLatin1String(" = ");
            if (entry->isMap())
                map(*entry, path, i_level + 1);
            else
                value(*entry);
        }
        written.text += QString(int(4 * i_level), QLatin1Char(' ')) + QLatin1String("}\n");
    }

    bool isWritable(const cObj& i_object, const QString& i_path, unsigned int i_level)
    {
        const char* trouble = nullptr;
        if (i_object.isMap())
            trouble = i_level < cObj::maxDepth ? nullptr : " lies too deep";
        else if (!i_object.getObjType().hasTextForm() || i_object.getData() == nullptr)
            trouble = " has no text form";
        else if (*i_object.getObjType().getTypeInfo() != typeid(QString) && !isOneLine(i_object.toText()))
            trouble = " has a text form of several lines";
        if (trouble == nullptr)
            return true;
        const QString name
            = i_path.isEmpty() ? QStringLiteral("tree") : QLatin1String("entry ") + textForm::quote(i_path);
        cTracer::cerr << "cObj::write: the " << name << trouble << " and is left out." << cTracer::end();
        written.complete = false;
        return false;
    }
};

// Characters beyond ASCII stand in quotes only, so that each can be put as an escape for a stream that cannot
// hold it.
QString fittedTo(const QTextStream& i_stream, const QString& i_text)
{
    const QTextCodec* const codec = i_stream.codec();
    if (i_stream.string() != nullptr || codec == nullptr || codec->canEncode(i_text))
        return i_text;
    QString fitted;
    fitted.reserve(i_text.size());
    for (const QChar c : i_text) {
        if (c.unicode() < 128 || (!c.isSurrogate() && codec->canEncode(c)))
            fitted += c;
        else
            fitted += QLatin1String("\\u")
                + QString::number(c.unicode(), 16).rightJustified(4, QLatin1Char('0'));
    }
    return fitted;
}

} // namespace

treeText::Written treeText::write(const cObj& i_root)
{
    TreeWriter writer;
    if (writer.isWritable(i_root, QString(), 0)) {
        if (i_root.isMap())
            writer.map(i_root, QString(), 0);
        else
            writer.value(i_root);
    }
    return writer.written;
}

bool treeText::write(const cObj& i_root, QTextStream& io_stream)
{
    const Written written = write(i_root);
    const int fieldWidth = io_stream.fieldWidth();
    io_stream.setFieldWidth(0);
    io_stream << fittedTo(io_stream, written.text);
    io_stream.setFieldWidth(fieldWidth);
    io_stream.flush();
    return written.complete && io_stream.status() == QTextStream::Ok;
}
