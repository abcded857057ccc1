#include "textForm.h"
#include "treeText.h"

#include <tarnbase/cMapObj.h>
#include <tarnbase/cObjIter.h>
#include <tarnbase/cTracer.h>

#include <QTextStream>

#include <memory>

namespace {

struct Place {
    int line = 1;
    int column = 1;
};

// What is wrong with a text, and where.
struct Damage {
    Place place;
    QString message;
};

// The characters of a stream with one of look-ahead. Nothing is taken from the stream beyond what peek has
// shown, so that a reader that stops behind the last character of a tree leaves the stream there.
class Source {
public:
    explicit Source(QTextStream& io_stream) : m_stream(io_stream) {}

    bool atEnd()
    {
        fill();
        return !m_hasNext;
    }
    QChar peek()
    {
        fill();
        return m_hasNext ? m_next : QChar();
    }
    QChar take()
    {
        fill();
        m_hasNext = false;
        if (m_next == QLatin1Char('\n')) {
            ++m_place.line;
            m_place.column = 1;
        } else {
            ++m_place.column;
        }
        return m_next;
    }
    const Place& place() const { return m_place; }

private:
    void fill()
    {
        if (!m_hasNext && !m_stream.atEnd()) {
            m_stream >> m_next;
            m_hasNext = true;
        }
    }

    QTextStream& m_stream;
    QChar m_next;
    bool m_hasNext = false;
    Place m_place;
};

bool isLineEnd(QChar i_c) { return i_c == QLatin1Char('\n'); }

class TreeReader {
public:
    explicit TreeReader(QTextStream& io_stream) : m_source(io_stream) {}

    /** The tree in the text; @throws Damage */
    std::unique_ptr<cObj> root()
    {
        skipBlanksAndComments();
        return object(0);
    }

private:
    std::unique_ptr<cObj> object(unsigned int i_level)
    {
        if (m_source.peek() == QLatin1Char('{'))
            return map(i_level);
        return value();
    }

    std::unique_ptr<cObj> map(unsigned int i_level)
    {
        if (i_level >= cObj::maxDepth)
            throw damage(QStringLiteral("the maps lie too deep in each other"));
        m_source.take();
        auto result = std::make_unique<cMapObj>();
        for (;;) {
            skipBlanksAndComments();
            if (m_source.peek() == QLatin1Char('}')) {
                m_source.take();
                return result;
            }
            entry(*result, i_level);
        }
    }

    void entry(cMapObj& io_map, unsigned int i_level)
    {
        const Place place = m_source.place();
        const QString path = key();
        if (io_map.contains(path))
            throw Damage {place,
                QLatin1String("the key ") + textForm::quote(path) + QLatin1String(" stands here twice")};
        const auto depth = i_level + 1 + static_cast<unsigned int>(path.count(QLatin1Char('/')));
        if (depth > cObj::maxDepth)
            throw Damage {place, QStringLiteral("the path is too deep")};
        skipSpaces();
        if (m_source.peek() != QLatin1Char('='))
            throw expected(QStringLiteral("'='"));
        m_source.take();
        skipSpaces();
        std::unique_ptr<cObj> entry = object(depth);
        if (!io_map.setSubObject(entry.release(), path, true))
            throw Damage {place,
                QLatin1String("the path ") + textForm::quote(path) + QLatin1String(" leads through a value")};
    }

    QString key()
    {
        if (m_source.peek() == QLatin1Char('"'))
            return quoted();
        const QString key = word(QLatin1String("_.-/"));
        if (key.isEmpty())
            throw expected(QStringLiteral("a key or '}'"));
        return key;
    }

    std::unique_ptr<cObj> value()
    {
        const Place typePlace = m_source.place();
        const QString name = word(QLatin1String("_<>:"));
        if (name.isEmpty())
            throw expected(QStringLiteral("a type or '{'"));
        const cObjType* const type = cObjType::findType(name);
        if (type == nullptr || !type->hasTextForm())
            throw Damage {typePlace, textForm::complaint(QStringLiteral("the name of a type"), name)};
        skipSpaces();

        const Place place = m_source.place();
        std::unique_ptr<cObj> result(type->create());
        QString text;
        if (*type->getTypeInfo() == typeid(QString)) {
            text = quoted();
            const Place rest = m_source.place();
            const QString tail = restOfLine();
            if (!tail.isEmpty())
                throw Damage {rest, textForm::complaint(QStringLiteral("the end of the line"), tail)};
        } else {
            text = restOfLine();
        }
        QString error;
        if (!type->fromText(text, result->getData(), &error))
            throw Damage {place, error};
        return result;
    }

    // Letters, digits and the other characters given.
    QString word(QLatin1String i_others)
    {
        QString word;
        for (;;) {
            const ushort code = m_source.peek().unicode();
            const bool plain = (code >= 'a' && code <= 'z') || (code >= 'A' && code <= 'Z')
                || (code >= '0' && code <= '9') || (code != 0 && i_others.contains(QChar(code)));
            if (!plain)
                return word;
            word += m_source.take();
        }
    }

    QString quoted()
    {
        const Place place = m_source.place();
        if (m_source.peek() != QLatin1Char('"'))
            throw expected(QStringLiteral("a text in quotes"));
        QString text(m_source.take());
        for (bool escaped = false; !m_source.atEnd();) {
            const QChar c = m_source.take();
            text += c;
            if (c == QLatin1Char('"') && !escaped) {
                int position = 0;
                QString value;
                if (!textForm::unquote(text, position, value))
                    break;
                return value;
            }
            escaped = c == QLatin1Char('\\') && !escaped;
        }
        throw Damage {
            place, textForm::complaint(QStringLiteral("a text in quotes with valid escapes"), text)};
    }

    // Up to and with the end of the line; without the blanks at both ends.
    QString restOfLine()
    {
        QString line;
        while (!m_source.atEnd()) {
            const QChar c = m_source.take();
            if (isLineEnd(c))
                break;
            line += c;
        }
        return line.trimmed();
    }

    void skipSpaces()
    {
        while (!m_source.atEnd() && m_source.peek().isSpace() && !isLineEnd(m_source.peek()))
            m_source.take();
    }

    void skipBlanksAndComments()
    {
        while (!m_source.atEnd()) {
            const QChar c = m_source.peek();
            if (c == QLatin1Char('#'))
                restOfLine();
            else if (c.isSpace() || c == QChar(QChar::ByteOrderMark))
                m_source.take();
            else
                return;
        }
    }

    Damage damage(const QString& i_message) { return {m_source.place(), i_message}; }

    Damage expected(const QString& i_what)
    {
        if (m_source.atEnd())
            return damage(QLatin1String("expected ") + i_what + QLatin1String(", found the end of the text"));
        const QChar c = m_source.peek();
        if (isLineEnd(c))
            return damage(QLatin1String("expected ") + i_what + QLatin1String(", found the end of the line"));
        return damage(textForm::complaint(i_what, QStringView(&c, 1)));
    }

    Source m_source;
};

// Gives the values of a text to the entries of a tree; reports each that is refused by its path.
bool takeOver(cObj& io_target, const cObj& i_source, const QString& i_path)
{
    if (!io_target.isMap() || !i_source.isMap()) {
        if (io_target.isMap() == i_source.isMap() && io_target.assign(&i_source))
            return true;
        const QString name
            = i_path.isEmpty() ? QStringLiteral("tree") : QLatin1String("entry ") + textForm::quote(i_path);
        cTracer::cerr << "cObj::readStream: the " << name << " of type " << io_target.getTypeName()
                      << " refuses its value of type " << i_source.getTypeName() << "." << cTracer::end();
        return false;
    }
    bool allTaken = true;
    for (cObjIter entry(i_source); entry.isValid(); ++entry) {
        const QString& key = entry.getKey();
        const QString path = i_path.isEmpty() ? key : i_path + QLatin1Char('/') + key;
        cObj* const mine = io_target.getSubObject(key);
        if (mine->isVoid())
            allTaken &= io_target.setSubObject(entry->clone(), key, true);
        else
            allTaken &= takeOver(*mine, *entry, path);
    }
    return allTaken;
}

} // namespace

bool treeText::read(cObj& io_root, QTextStream& io_stream)
{
    try {
        const std::unique_ptr<cObj> tree = TreeReader(io_stream).root();
        return takeOver(io_root, *tree, QString());
    } catch (const Damage& damage) {
        cTracer::cerr << "cObj::readStream: line " << damage.place.line << ", column " << damage.place.column
                      << ": " << damage.message << "." << cTracer::end();
        return false;
    }
}
